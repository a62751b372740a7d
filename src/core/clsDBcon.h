#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>

#include <functional>
#include <memory>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

/// A prepared statement, positioned before its first row. It finishes itself when it goes away.
///
/// Every operation raises `RaisedError` with one of the numbers of `clsDBcon::SqliteGetErrMsg`.
class clsStatement
{
public:
    clsStatement(sqlite3 *connection, const QString &sql);
    ~clsStatement();
    clsStatement(const clsStatement &) = delete;
    clsStatement &operator=(const clsStatement &) = delete;

    /// Advances to the next row. `mode` is always 1. `done` becomes false when a row is ready, true when
    /// there are no more.
    void Step(int mode, bool &done);

    /// The same, for loops: true while a row is ready.
    bool Next();

    int ColumnCount() const;

    /// A column of the current row; invalid (empty) for NULL. The name's case does not matter.
    QVariant ColumnValue(const QString &name) const;
    /// By zero-based index.
    QVariant ColumnValue(int index) const;

    /// The column as text, empty for NULL.
    QString Text(const QString &name) const { return ColumnValue(name).toString(); }
    QString Text(int index) const { return ColumnValue(index).toString(); }

    /// The column as UTF-8 where SQLite holds it, for lists of many rows. It is gone when the statement
    /// moves.
    std::string_view Utf8(int index) const;

    /// The longest numeric prefix of the column's text as a whole number, 0 for none.
    long Number(const QString &name) const;
    long Number(int index) const;

    /// Binds a value; `index` counts from 1. Type 5 means a blob.
    void BindParameter(int index, const QByteArray &value, int type);
    /// Binds a text, which is copied; it needs no escape.
    void BindText(int index, QStringView value);

    /// Runs the statement to its end.
    void Execute();
    /// Puts the statement before its first row again, for other values.
    void Reset();

    /// Finishes the statement; further calls raise.
    void Close();

private:
    sqlite3_stmt *Prepared() const;
    void RequireParameter(int index, const QString &source) const;
    void RequireColumn(int index) const;
    int ColumnIndex(const QString &name) const;

    sqlite3 *connection;
    sqlite3_stmt *statement = nullptr;
    int lColumns = 0;
    bool bDone = false;
};

/// The one way in which the client touches its database: a connection to one SQLite file.
///
/// Failures are raised as `RaisedError` with the number, source and description that callers show.
class clsDBcon
{
public:
    clsDBcon();
    ~clsDBcon();
    clsDBcon(const clsDBcon &) = delete;
    clsDBcon &operator=(const clsDBcon &) = delete;

    /// True when the last write failed on a constraint.
    bool ColumnNotUnique() const { return bColumnNotUnique; }
    /// The path given to the last `OpenDB` that reached the connection.
    QString DataBasePath() const { return strDataBasePath; }
    bool IsOpen() const { return bOpened; }

    /// Opens the file, which SQLite makes when it is missing. -1 when the object is open already, else the
    /// status of the connection, 0 for success.
    long OpenDB(const QString &path);
    void CloseDB();

    /// Prepares one statement.
    std::unique_ptr<clsStatement> SelectEx(const QString &sql);
    /// Runs one statement.
    void Execute(const QString &sql);
    void Begin();
    void RollBack();
    void Commit();
    /// Run a statement with one blob as its parameter 1. False when the file is not open.
    bool InsertEx(const QString &sql, const QByteArray &data);
    bool UpdateEx(const QString &sql, const QByteArray &data);
    /// Writes a complete copy of the open file, committed rows of a side file included. An existing file is
    /// overwritten; a failure leaves none.
    void CopyTo(const QString &path);

    /// Is called again and again while statements run, on whatever connection; it raises nothing.
    static void SetWatcher(std::function<void()> watcher);

    /// The text of an error number that this layer raises; "UnSign Error" for others.
    static QString SqliteGetErrMsg(long number);

private:
    void Write(const QString &source, const std::function<void()> &operation);

    sqlite3 *connection = nullptr;
    bool bOpened = false;
    bool bColumnNotUnique = false;
    QString strDataBasePath;
};
