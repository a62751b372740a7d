#include "Bare.h"

#include <benchmark/benchmark.h>
#include <sqlite3.h>

Bare::Bare(const QString &databaseFile, Settings settings)
{
    const int flags = SQLITE_OPEN_READONLY | (settings == AsProgram ? SQLITE_OPEN_NOMUTEX : 0);
    if (sqlite3_open_v2(databaseFile.toUtf8().constData(), &connection, flags, nullptr) != SQLITE_OK)
        qFatal("cannot open %s", qPrintable(databaseFile));
    if (settings == AsProgram)
        sqlite3_exec(connection, "Pragma temp_store=Memory", nullptr, nullptr, nullptr);
}

Bare::~Bare()
{
    sqlite3_close(connection);
}

int Bare::Read(const QByteArray &sql) const
{
    sqlite3_stmt *statement = nullptr;
    if (sqlite3_prepare_v2(connection, sql.constData(), static_cast<int>(sql.size()), &statement, nullptr) !=
        SQLITE_OK)
        qFatal("%s", sqlite3_errmsg(connection));
    const int columns = sqlite3_column_count(statement);
    int rows = 0;
    for (; sqlite3_step(statement) == SQLITE_ROW; ++rows) {
        for (int column = 0; column < columns; ++column)
            benchmark::DoNotOptimize(sqlite3_column_text(statement, column));
    }
    sqlite3_finalize(statement);
    return rows;
}
