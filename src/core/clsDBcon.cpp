#include "core/clsDBcon.h"

#include "core/DatabaseErrors.h"
#include "core/RaisedError.h"

#include <QFile>

#include <sqlite3.h>

namespace {

constexpr int lBusyMilliseconds = 5000;

void RequireOpen(bool opened, const QString &source)
{
    if (!opened)
        throw RaisedError(DatabaseErrors::lNotOpen, source, "The database hasn't been opened.");
}

void RunStatement(sqlite3 *connection, const QString &sql)
{
    clsStatement(connection, sql).Execute();
}

void RunWithBlob(sqlite3 *connection, const QString &sql, const QByteArray &data)
{
    clsStatement statement(connection, sql);
    statement.BindParameter(1, data, 5);
    statement.Execute();
}

/// To make and remove the journal costs a disk more than the change itself. What is wrong with the file shows
/// at its first use, not here.
void KeepJournal(sqlite3 *connection)
{
    sqlite3_exec(connection, "Pragma journal_mode=Persist", nullptr, nullptr, nullptr);
}

/// A long list is sorted where its rows are kept anyway, not in a file.
void SortInMemory(sqlite3 *connection)
{
    sqlite3_exec(connection, "Pragma temp_store=Memory", nullptr, nullptr, nullptr);
}

std::function<void()> &Watcher()
{
    static std::function<void()> watcher;
    return watcher;
}

int CallWatcher(void *)
{
    if (Watcher())
        Watcher()();
    return 0; // go on
}

/// Long statements call from within, short ones as they begin.
void WatchStatements(sqlite3 *connection)
{
    constexpr int steps = 100 * 1000; // of SQLite's machine: a few milliseconds
    sqlite3_progress_handler(connection, steps, CallWatcher, nullptr);
}

struct CloseConnection
{
    void operator()(sqlite3 *opened) const { sqlite3_close_v2(opened); }
};

void CopyDatabase(sqlite3 *from, const QString &path)
{
    sqlite3 *opened = nullptr;
    const int status = sqlite3_open(path.toUtf8().constData(), &opened);
    const std::unique_ptr<sqlite3, CloseConnection> to(opened);
    if (status != SQLITE_OK)
        DatabaseErrors::RaiseResult(opened, status, "CopyTo");
    sqlite3_backup *copy = sqlite3_backup_init(opened, "main", from, "main");
    if (copy == nullptr)
        DatabaseErrors::RaiseResult(opened, sqlite3_errcode(opened), "CopyTo");
    sqlite3_backup_step(copy, -1);
    const int result = sqlite3_backup_finish(copy);
    if (result != SQLITE_OK)
        DatabaseErrors::RaiseResult(opened, result, "CopyTo");
}

/// Raises what `operation` raises under the source of the routine that the caller knows.
template <typename Operation>
auto RaiseAs(const QString &source, Operation operation)
{
    try {
        return operation();
    } catch (const RaisedError &error) {
        throw RaisedError(error.Number(), source, error.Description());
    }
}

} // namespace

clsDBcon::clsDBcon() = default;

clsDBcon::~clsDBcon()
{
    CloseDB();
}

long clsDBcon::OpenDB(const QString &path)
{
    if (bOpened)
        return -1;
    strDataBasePath = path;
    // An empty name would open a private file that goes away with the connection.
    if (path.isEmpty() || path.contains(QChar::Null))
        return SQLITE_CANTOPEN;
    // One thread uses it: to lock it for each column of a long list would cost a quarter of the reading.
    constexpr int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
    const int status = sqlite3_open_v2(path.toUtf8().constData(), &connection, flags, nullptr);
    if (status != SQLITE_OK) {
        CloseDB();
        return status;
    }
    sqlite3_busy_timeout(connection, lBusyMilliseconds);
    KeepJournal(connection);
    SortInMemory(connection);
    WatchStatements(connection);
    bOpened = true;
    return status;
}

void clsDBcon::CloseDB()
{
    // A statement that an outer event still holds keeps SQLite's connection alive, but no transaction of it.
    if (bOpened && sqlite3_get_autocommit(connection) == 0)
        sqlite3_exec(connection, "Rollback", nullptr, nullptr, nullptr);
    if (bOpened) // the kept journal goes; where it cannot, an empty one stays, which does no harm
        sqlite3_exec(connection, "Pragma journal_mode=Delete", nullptr, nullptr, nullptr);
    sqlite3_close_v2(connection);
    connection = nullptr;
    bOpened = false;
}

std::unique_ptr<clsStatement> clsDBcon::SelectEx(const QString &sql)
{
    RequireOpen(bOpened, "SelectEx");
    CallWatcher(nullptr);
    return RaiseAs("Function SelectEx", [&] { return std::make_unique<clsStatement>(connection, sql); });
}

void clsDBcon::Execute(const QString &sql)
{
    RequireOpen(bOpened, "Excuete");
    Write("Function Execuet", [&] { RunStatement(connection, sql); });
}

void clsDBcon::Begin()
{
    RequireOpen(bOpened, "Begin");
    RaiseAs("Sub Begin", [this] { RunStatement(connection, "Begin"); });
}

void clsDBcon::RollBack()
{
    RequireOpen(bOpened, "RollBack");
    RaiseAs("Sub RollBack", [this] { RunStatement(connection, "Rollback"); });
}

void clsDBcon::Commit()
{
    RequireOpen(bOpened, "Commit");
    RaiseAs("Sub Commit", [this] { RunStatement(connection, "Commit"); });
}

bool clsDBcon::InsertEx(const QString &sql, const QByteArray &data)
{
    bColumnNotUnique = false;
    if (!bOpened)
        return false;
    Write("Function InsertEx", [&] { RunWithBlob(connection, sql, data); });
    return true;
}

bool clsDBcon::UpdateEx(const QString &sql, const QByteArray &data)
{
    // Its errors name InsertEx too.
    return InsertEx(sql, data);
}

void clsDBcon::CopyTo(const QString &path)
{
    RequireOpen(bOpened, "CopyTo");
    try {
        CopyDatabase(connection, path);
    } catch (const RaisedError &) {
        QFile::remove(path);
        throw;
    }
}

/// Runs a writing operation and notes whether it broke a constraint.
void clsDBcon::Write(const QString &source, const std::function<void()> &operation)
{
    bColumnNotUnique = false;
    CallWatcher(nullptr);
    try {
        RaiseAs(source, operation);
    } catch (const RaisedError &error) {
        bColumnNotUnique = error.Number() == DatabaseErrors::lConstraint;
        throw;
    }
}

void clsDBcon::SetWatcher(std::function<void()> watcher)
{
    Watcher() = std::move(watcher);
}

QString clsDBcon::SqliteGetErrMsg(long number)
{
    return DatabaseErrors::Text(number);
}
