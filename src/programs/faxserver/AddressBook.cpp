#include "AddressBook.h"

#include "Database.h"
#include "WireText.h"

AddressBook::AddressBook(Database &database)
    : objDatabase(database)
{
    objDatabase.Run("CREATE TABLE IF NOT EXISTS Address (List INTEGER, Fields TEXT)");
}

void AddressBook::Add(List list, const QStringList &fields)
{
    objDatabase.Run("INSERT INTO Address (List, Fields) VALUES (?, ?)", {int(list), fields.join('\t')});
}

QByteArrayList AddressBook::Lines(List list) const
{
    Statement rows =
        objDatabase.Query("SELECT Fields FROM Address WHERE List = ? ORDER BY rowid", {int(list)});
    QByteArrayList lines;
    while (rows.Next()) {
        QByteArrayList fields;
        for (const QString &field : rows.Text(0).split('\t'))
            fields.append(WireText::Field(field));
        lines.append(WireText::Record(fields));
    }
    return lines;
}

int AddressBook::Version(List list) const
{
    Statement row = objDatabase.Query("SELECT count(*) FROM Address WHERE List = ?", {int(list)});
    return row.Next() ? 1 + int(row.Number(0)) : 1;
}
