#include "AddressBook.h"

#include "Database.h"
#include "ServerError.h"
#include "WireText.h"

namespace {

/// The versions follow the rows by themselves, whoever writes them.
constexpr const char *aStatements[] = {
    "CREATE TABLE IF NOT EXISTS Address (List INTEGER, Fields TEXT)",
    "CREATE INDEX IF NOT EXISTS AddressByID ON Address (List, substr(Fields, 1, instr(Fields, char(9)) - 1))",
    "CREATE TABLE IF NOT EXISTS Version (List INTEGER PRIMARY KEY, Number INTEGER)",
    "INSERT OR IGNORE INTO Version (List, Number) SELECT 0, 1 + count(*) FROM Address WHERE List = 0",
    "INSERT OR IGNORE INTO Version (List, Number) SELECT 1, 1 + count(*) FROM Address WHERE List = 1",
    "INSERT OR IGNORE INTO Version (List, Number) SELECT 2, 1 + count(*) FROM Address WHERE List = 2",
    "INSERT OR IGNORE INTO Version (List, Number) SELECT 3, count(*) FROM Account",
    "CREATE TRIGGER IF NOT EXISTS AddressAdded AFTER INSERT ON Address BEGIN "
    "UPDATE Version SET Number = Number + 1 WHERE List = NEW.List; END",
    "CREATE TRIGGER IF NOT EXISTS AddressRemoved AFTER DELETE ON Address BEGIN "
    "UPDATE Version SET Number = Number + 1 WHERE List = OLD.List; END",
    "CREATE TRIGGER IF NOT EXISTS AccountAdded AFTER INSERT ON Account BEGIN "
    "UPDATE Version SET Number = Number + 1 WHERE List = 3; END",
    "CREATE TRIGGER IF NOT EXISTS AccountChanged AFTER UPDATE OF Name, Department ON Account "
    "WHEN OLD.Name IS NOT NEW.Name OR OLD.Department IS NOT NEW.Department BEGIN "
    "UPDATE Version SET Number = Number + 1 WHERE List = 3; END",
};

int FieldCount(AddressBook::List list)
{
    return list == AddressBook::lstContacts ? 11 : 3;
}

} // namespace

AddressBook::AddressBook(Database &database)
    : objDatabase(database)
{
    for (const char *statement : aStatements)
        objDatabase.Run(statement);
}

void AddressBook::Add(List list, const QStringList &fields)
{
    if (fields.size() != FieldCount(list))
        throw ServerError(
            QString("There are %1 fields instead of %2 in: %3")
                .arg(QString::number(fields.size()), QString::number(FieldCount(list)), fields.join('\t')));
    objDatabase.Run("INSERT INTO Address (List, Fields) VALUES (?, ?)", {int(list), fields.join('\t')});
}

void AddressBook::Replace(List list, const QList<QStringList> &rows)
{
    Transaction changes(objDatabase);
    objDatabase.Run("DELETE FROM Address WHERE List = ?", {int(list)});
    for (const QStringList &fields : rows)
        Add(list, fields);
    changes.Commit();
}

QByteArrayList AddressBook::Lines(List list) const
{
    Statement rows =
        objDatabase.Query("SELECT Fields FROM Address WHERE List = ? ORDER BY rowid", {int(list)});
    QByteArrayList lines;
    while (rows.Next())
        lines.append(WireText::Field(rows.Text(0)).replace('\t', '\0'));
    return lines;
}

int AddressBook::Version(List list) const
{
    Statement row = objDatabase.Query("SELECT Number FROM Version WHERE List = ?", {int(list)});
    return row.Next() ? int(row.Number(0)) : 0;
}

QString AddressBook::FaxNumber(const QString &contact) const
{
    Statement row = objDatabase.Query(
        "SELECT Fields FROM Address WHERE List = ? AND substr(Fields, 1, instr(Fields, char(9)) - 1) = ?",
        {int(lstContacts), contact});
    return row.Next() ? row.Text(0).split('\t').value(5) : QString();
}
