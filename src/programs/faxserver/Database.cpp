#include "Database.h"

#include "ServerError.h"

#include <sqlite3.h>

namespace {

constexpr int lBusyMilliseconds = 5000;

[[noreturn]] void Fail(sqlite3 *database)
{
    throw ServerError(QString("The database failed: %1").arg(QString::fromUtf8(sqlite3_errmsg(database))));
}

} // namespace

Statement::Statement(sqlite3 *database, const char *sql, const QVariantList &values)
    : objDatabase(database)
    , objStatement(nullptr, &sqlite3_finalize)
{
    sqlite3_stmt *statement = nullptr;
    if (sqlite3_prepare_v2(database, sql, -1, &statement, nullptr) != SQLITE_OK)
        Fail(database);
    objStatement.reset(statement);
    for (int i = 0; i < values.size(); ++i) {
        if (values[i].typeId() == QMetaType::QString) {
            const QByteArray text = values[i].toString().toUtf8();
            sqlite3_bind_text(statement, i + 1, text.constData(), int(text.size()), SQLITE_TRANSIENT);
        } else {
            sqlite3_bind_int64(statement, i + 1, values[i].toLongLong());
        }
    }
}

bool Statement::Next()
{
    const int result = sqlite3_step(objStatement.get());
    if (result != SQLITE_ROW && result != SQLITE_DONE)
        Fail(objDatabase);
    return result == SQLITE_ROW;
}

QString Statement::Text(int column) const
{
    return QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(objStatement.get(), column)),
                             sqlite3_column_bytes(objStatement.get(), column));
}

qint64 Statement::Number(int column) const
{
    return sqlite3_column_int64(objStatement.get(), column);
}

Database::Database(const QString &path)
    : objDatabase(nullptr, &sqlite3_close)
{
    sqlite3 *database = nullptr;
    const int result = sqlite3_open(path.toUtf8().constData(), &database);
    objDatabase.reset(database);
    if (result != SQLITE_OK)
        Fail(database);
    sqlite3_busy_timeout(database, lBusyMilliseconds);
    Run("PRAGMA journal_mode=WAL");
    Run("PRAGMA synchronous=NORMAL");
}

Statement Database::Query(const char *sql, const QVariantList &values) const
{
    return Statement(objDatabase.get(), sql, values);
}

int Database::Run(const char *sql, const QVariantList &values)
{
    Statement statement = Query(sql, values);
    while (statement.Next()) {
    }
    return sqlite3_changes(objDatabase.get());
}

Transaction::Transaction(Database &database)
    : objDatabase(database)
{
    objDatabase.Run("BEGIN IMMEDIATE");
}

Transaction::~Transaction()
{
    if (!bOpen)
        return;
    try {
        objDatabase.Run("ROLLBACK");
    } catch (const ServerError &) {
        // SQLite has rolled back by itself; the first error is on its way to the caller
    }
}

void Transaction::Commit()
{
    objDatabase.Run("COMMIT");
    bOpen = false;
}
