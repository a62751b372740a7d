#include "Mailboxes.h"

#include "Database.h"
#include "ServerError.h"

#include <QDir>

namespace {

const QByteArray abColumns =
    "ID, Owner, Kind, IsWaiting, File, Size, Sender, Title, Pages, Level, Remark, FaxTime, Contacts, Users, "
    "Typed, Resender, Receipts, EndTime, Distribution";

Fax FaxOf(const Statement &row)
{
    Fax fax;
    fax.strID = row.Text(0);
    fax.strOwner = row.Text(1);
    fax.lKind = int(row.Number(2));
    fax.bWaiting = row.Number(3) != 0;
    fax.strFile = row.Text(4);
    fax.lSize = row.Number(5);
    fax.strSender = row.Text(6);
    fax.strTitle = row.Text(7);
    fax.lPages = int(row.Number(8));
    fax.lLevel = int(row.Number(9));
    fax.strRemark = row.Text(10);
    fax.strTime = row.Text(11);
    fax.strContacts = row.Text(12);
    fax.strUsers = row.Text(13);
    fax.strTyped = row.Text(14);
    fax.strResender = row.Text(15);
    fax.strReceipts = row.Text(16);
    fax.strEndTime = row.Text(17);
    fax.strDistribution = row.Text(18);
    return fax;
}

} // namespace

Mailboxes::Mailboxes(Database &database, const QString &filesFolder)
    : objDatabase(database)
    , strFolder(filesFolder)
{
    if (!QDir().mkpath(strFolder))
        throw ServerError(QString("The folder %1 cannot be made.").arg(strFolder));
    objDatabase.Run(
        "CREATE TABLE IF NOT EXISTS Fax (ID TEXT PRIMARY KEY, Owner TEXT, Kind INTEGER, IsWaiting INTEGER, "
        "File TEXT, Size INTEGER, Sender TEXT, Title TEXT, Pages INTEGER, Level INTEGER, Remark TEXT, "
        "FaxTime TEXT, Contacts TEXT, Users TEXT, Typed TEXT, Resender TEXT, Receipts TEXT, EndTime TEXT, "
        "Distribution TEXT)");
    AddDistribution();
    objDatabase.Run("CREATE INDEX IF NOT EXISTS FaxByOwner ON Fax (Owner, IsWaiting)");
}

/// A data folder of an earlier version has no such column.
void Mailboxes::AddDistribution()
{
    if (!objDatabase.Query("SELECT 1 FROM pragma_table_info('Fax') WHERE name = 'Distribution'").Next())
        objDatabase.Run("ALTER TABLE Fax ADD COLUMN Distribution TEXT");
    objDatabase.Run("CREATE INDEX IF NOT EXISTS FaxByDistribution ON Fax (Distribution)");
}

QString Mailboxes::PathOf(const QString &file) const
{
    return QDir(strFolder).filePath(file);
}

void Mailboxes::Insert(const Fax &fax)
{
    static const QByteArray sql = "INSERT INTO Fax (" + abColumns +
                                  ") VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)";
    objDatabase.Run(sql.constData(), {fax.strID, fax.strOwner, fax.lKind, int(fax.bWaiting), fax.strFile,
                                      fax.lSize, fax.strSender, fax.strTitle, fax.lPages, fax.lLevel,
                                      fax.strRemark, fax.strTime, fax.strContacts, fax.strUsers, fax.strTyped,
                                      fax.strResender, fax.strReceipts, fax.strEndTime, fax.strDistribution});
}

QList<Fax> Mailboxes::Select(const QByteArray &condition, const QVariantList &values) const
{
    const QByteArray sql = "SELECT " + abColumns + " FROM Fax WHERE " + condition;
    Statement rows = objDatabase.Query(sql.constData(), values);
    QList<Fax> found;
    while (rows.Next())
        found.append(FaxOf(rows));
    return found;
}

std::optional<Fax> Mailboxes::Find(const QString &id) const
{
    const QList<Fax> found = Select("ID = ?", {id});
    return found.isEmpty() ? std::nullopt : std::optional<Fax>(found.first());
}

std::optional<Fax> Mailboxes::Find(const QString &owner, const QString &id) const
{
    const QList<Fax> found = Select("ID = ? AND Owner = ?", {id, owner});
    return found.isEmpty() ? std::nullopt : std::optional<Fax>(found.first());
}

QList<Fax> Mailboxes::Waiting(const QString &owner) const
{
    return Select("Owner = ? AND IsWaiting = 1 ORDER BY FaxTime, rowid", {owner});
}

QList<Fax> Mailboxes::History(const QString &owner, const HistoryRange &range) const
{
    return Select("Owner = ? AND substr(FaxTime, 1, 10) BETWEEN ? AND ? AND CASE WHEN Kind = 1 THEN ? "
                  "WHEN Kind = 4 THEN ? WHEN Kind = 9 THEN ? ELSE ? END ORDER BY FaxTime, rowid",
                  {owner, range.strFrom, range.strTo, int(range.bSending), int(range.bSent),
                   int(range.bReceived), int(range.bFailed)});
}

void Mailboxes::Acknowledge(const QString &owner, const QStringList &ids)
{
    Transaction changes(objDatabase);
    for (const QString &id : ids)
        objDatabase.Run("UPDATE Fax SET IsWaiting = 0 WHERE ID = ? AND Owner = ?", {id, owner});
    changes.Commit();
}

void Mailboxes::MarkRead(const QString &owner, const QString &id, const QString &time)
{
    const std::optional<Fax> fax = Find(owner, id);
    if (!fax)
        return;
    const qsizetype user = fax->strUsers.split(';', Qt::SkipEmptyParts).indexOf(owner);
    const qsizetype place = fax->strContacts.count(';') + user; // the contacts stand in front of the users
    QStringList entries = fax->strReceipts.split(';');
    if (user < 0 || place >= entries.size() || !entries[place].endsWith(",0"))
        return;
    entries[place] = time + ",1";
    objDatabase.Run("UPDATE Fax SET Receipts = ? WHERE ID = ? OR (Distribution = ? AND Distribution <> '')",
                    {entries.join(';'), id, fax->strDistribution});
}

void Mailboxes::SetState(const QString &id, int kind, const QString &endTime)
{
    objDatabase.Run("UPDATE Fax SET Kind = ?, EndTime = ? WHERE ID = ?", {kind, endTime, id});
}
