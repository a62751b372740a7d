#include "Store.h"

#include "ServerError.h"

#include <QDir>

namespace {

QString DatabasePath(const QString &dataFolder)
{
    if (!QDir().mkpath(dataFolder))
        throw ServerError(QString("The data folder %1 cannot be made.").arg(dataFolder));
    return QDir(dataFolder).filePath("faxserver.db");
}

} // namespace

Store::Store(const QString &dataFolder)
    : objDatabase(DatabasePath(dataFolder))
    , accounts(objDatabase)
    , addresses(objDatabase)
    , mailboxes(objDatabase, QDir(dataFolder).filePath("faxes"))
    , calls(objDatabase)
{
    objDatabase.Run("CREATE TABLE IF NOT EXISTS Server (ID TEXT)");
    objDatabase.Run("INSERT INTO Server (ID) SELECT ? WHERE NOT EXISTS (SELECT 1 FROM Server)",
                    {Accounts::NewID()});
    // From here on each change is on the disk before anybody is told of it. The tables need no such care.
    objDatabase.Run("PRAGMA synchronous=FULL");
}

QString Store::ServerID() const
{
    Statement row = objDatabase.Query("SELECT ID FROM Server");
    return row.Next() ? row.Text(0) : QString();
}
