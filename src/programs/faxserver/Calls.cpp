#include "Calls.h"

#include "Database.h"
#include "Mailboxes.h"

Calls::Calls(Database &database)
    : objDatabase(database)
{
    objDatabase.Run(
        "CREATE TABLE IF NOT EXISTS Call (Fax TEXT, Place INTEGER, Kind INTEGER, Target TEXT, "
        "Number TEXT, Status INTEGER, Attempts INTEGER, PagesSent INTEGER, Round INTEGER, "
        "Resends INTEGER, Interval INTEGER, Level INTEGER, DueTime INTEGER, PRIMARY KEY (Fax, Place))");
    for (const char *index :
         {"CallByStatus ON Call (Fax, Status, Place)", "CallByDueTime ON Call (DueTime) WHERE Status = 1",
          "CallInside ON Call (DueTime) WHERE Status = 1 AND Kind = 0",
          "CallOutside ON Call (Level, DueTime) WHERE Status = 1 AND Kind <> 0"})
        objDatabase.Run((QByteArray("CREATE INDEX IF NOT EXISTS ") + index).constData());
}

void Calls::Insert(const Call &call)
{
    objDatabase.Run("INSERT INTO Call (Fax, Place, Kind, Target, Number, Status, Attempts, PagesSent, Round, "
                    "Resends, Interval, Level, DueTime) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
                    {call.strFax, call.lPlace, call.lKind, call.strTarget, call.strNumber, call.lStatus,
                     call.lAttempts, call.lPagesSent, call.lRound, call.lResends, call.lInterval, call.lLevel,
                     call.lDue});
}

void Calls::Update(const Call &call)
{
    objDatabase.Run(
        "UPDATE Call SET Status = ?, Attempts = ?, PagesSent = ?, Round = ?, DueTime = ? WHERE Fax = ? AND "
        "Place = ?",
        {call.lStatus, call.lAttempts, call.lPagesSent, call.lRound, call.lDue, call.strFax, call.lPlace});
}

QList<Call> Calls::Select(const QByteArray &table, const QByteArray &condition,
                          const QVariantList &values) const
{
    const QByteArray sql = "SELECT Call.Fax, Place, Call.Kind, Target, Number, Status, Attempts, PagesSent, "
                           "Round, Resends, Interval, Call.Level, Call.DueTime, Pages FROM " +
                           table + " JOIN Fax ON Fax.ID = Call.Fax WHERE " + condition;
    Statement rows = objDatabase.Query(sql.constData(), values);
    QList<Call> found;
    while (rows.Next())
        found.append({rows.Text(0), int(rows.Number(1)), int(rows.Number(2)), rows.Text(3), rows.Text(4),
                      int(rows.Number(5)), int(rows.Number(6)), int(rows.Number(7)), int(rows.Number(8)),
                      int(rows.Number(9)), int(rows.Number(10)), int(rows.Number(11)), rows.Number(12),
                      int(rows.Number(13))});
    return found;
}

QList<Call> Calls::OfFax(const QString &fax) const
{
    return Select("Call", "Call.Fax = ? ORDER BY Place", {fax});
}

int Calls::Outcome(const QString &fax) const
{
    if (objDatabase.Query("SELECT 1 FROM Call WHERE Fax = ? AND Status = 1 LIMIT 1", {fax}).Next())
        return kindSending;
    Statement row =
        objDatabase.Query("SELECT Status FROM Call WHERE Fax = ? ORDER BY Status = 4, Place LIMIT 1", {fax});
    if (!row.Next())
        return kindFailed; // nobody was to get it
    return row.Number(0) == kindUnchanged ? kindFailed : int(row.Number(0));
}

QList<Call> Calls::ToDial(qint64 now, int most) const
{
    return Select(
        "Call INDEXED BY CallOutside",
        "Status = 1 AND Call.Kind <> 0 AND Call.DueTime <= ? ORDER BY Call.Level, Call.DueTime LIMIT ?",
        {now, most});
}

QStringList Calls::ToDeliver(qint64 now) const
{
    Statement rows = objDatabase.Query(
        "SELECT DISTINCT Fax FROM Call INDEXED BY CallInside WHERE Status = 1 AND Kind = 0 AND DueTime <= ?",
        {now});
    QStringList faxes;
    while (rows.Next())
        faxes.append(rows.Text(0));
    return faxes;
}

std::optional<qint64> Calls::NextDue(qint64 now) const
{
    Statement row = objDatabase.Query(
        "SELECT DueTime FROM Call WHERE Status = 1 AND DueTime > ? ORDER BY DueTime LIMIT 1", {now});
    return row.Next() ? std::optional<qint64>(row.Number(0)) : std::nullopt;
}
