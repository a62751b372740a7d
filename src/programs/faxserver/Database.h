#pragma once

#include <QByteArray>
#include <QString>
#include <QVariantList>

#include <memory>

struct sqlite3;
struct sqlite3_stmt;

/// One statement under way. Values are text or whole numbers.
class Statement
{
public:
    Statement(sqlite3 *database, const char *sql, const QVariantList &values);

    /// Goes to the next row; false behind the last one. Raises `ServerError`.
    bool Next();
    QString Text(int column) const;
    qint64 Number(int column) const;

private:
    sqlite3 *objDatabase;
    std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt *)> objStatement;
};

/// The SQLite file in the data folder. Several programs may have it open: one serves, another delivers.
class Database
{
public:
    /// Opens the file, made when missing. Raises `ServerError`.
    explicit Database(const QString &path);

    Statement Query(const char *sql, const QVariantList &values = {}) const;
    /// Runs a statement to its end and returns the number of rows that it changed.
    int Run(const char *sql, const QVariantList &values = {});

private:
    std::unique_ptr<sqlite3, int (*)(sqlite3 *)> objDatabase;
};

/// Several changes as one: undone unless `Commit` was reached.
class Transaction
{
public:
    explicit Transaction(Database &database);
    ~Transaction();
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;
    void Commit();

private:
    Database &objDatabase;
    bool bOpen = true;
};
