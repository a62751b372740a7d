#pragma once

#include <QByteArray>
#include <QString>

struct sqlite3;

/// The measure that the program's own times are held against: SQLite by itself, on a connection of its own.
class Bare
{
public:
    /// With SQLite's own settings, or with those of the program's connection.
    enum Settings { Plain, AsProgram };

    explicit Bare(const QString &databaseFile, Settings settings = Plain);
    ~Bare();
    Bare(const Bare &) = delete;
    Bare &operator=(const Bare &) = delete;

    /// Steps a statement to its end and reads all columns of its rows as text. The number of rows; ends the
    /// program when the statement fails.
    int Read(const QByteArray &sql) const;

private:
    sqlite3 *connection = nullptr;
};
