#include "server/FaxStore.h"

#include "core/Globals.h"
#include "core/Utilities.h"
#include "server/FaxReply.h"

namespace {
/// "Name(Fax);" of each contact, with the number in the place of an empty name.
QString ContactNames(const QString &list)
{
    const QString ids = FaxReply::QuotedIds(list, 0);
    if (ids.isEmpty())
        return {};
    QString names;
    const auto rows =
        Global().objDB->SelectEx(QStringLiteral("Select Name,Fax From Contacts Where Id in(%1)").arg(ids));
    while (rows->Next()) {
        const QString name = rows->Text(0).isEmpty() ? rows->Text(1) : rows->Text(0);
        names += name + '(' + rows->Text(1) + ");";
    }
    return names;
}

QString UserName(const clsStatement &row)
{
    return row.Text(0).isEmpty() ? row.Text(1) : row.Text(0);
}

/// "UserName[LoginName];" of each user of the server.
QString UserNames(const QString &list)
{
    const QString ids = FaxReply::QuotedIds(list, 1);
    if (ids.isEmpty())
        return {};
    QString names;
    const auto rows = Global().objDB->SelectEx(
        QStringLiteral("Select UserName,LoginName From UserList Where Id in(%1)").arg(ids));
    while (rows->Next())
        names += UserName(*rows) + '[' + rows->Text(1) + "];";
    return names;
}

QString ResenderName(const QString &id)
{
    if (id.isEmpty())
        return {};
    const auto row = Global().objDB->SelectEx(
        QStringLiteral("Select UserName,LoginName From UserList Where ID='%1'").arg(EscapeText(id)));
    if (!row->Next())
        return {};
    return UnescapeText(row->Text(0)) + '(' + row->Text(1) + ')';
}
} // namespace

bool FaxStore::Exists(const NewFaxItem &item)
{
    const QString table = item.IsSent() ? "SendFax" : "ReceiveFax";
    const auto row = Global().objDB->SelectEx(
        QStringLiteral("Select Count(*) from %1 Where Fax_ID='%2'").arg(table, item.FaxID));
    return row->Next() && row->Number(0) > 0;
}

QString FaxStore::TargetFolder(const NewFaxItem &item)
{
    return item.IsSent() ? Global().strOutputBoxPath : Global().strInputBoxPath;
}

void FaxStore::Store(const NewFaxItem &item, const QStringList &fields)
{
    if (item.IsSent()) {
        Global().objDB->Execute(FaxReply::SendFaxInsert(item, fields));
        return;
    }
    const QString receivers = ContactNames(fields.value(FaxReply::fldContacts)) +
                              UserNames(fields.value(FaxReply::fldUsers)) + fields.value(FaxReply::fldTyped);
    Global().objDB->Execute(FaxReply::ReceiveFaxInsert(item, fields, receivers,
                                                       ResenderName(fields.value(FaxReply::fldResender))));
}

QString FaxStore::InboxName(const NewFaxItem &item, const QStringList &fields)
{
    if (item.IsSent())
        return {};
    const QString named = fields.value(FaxReply::fldFileName);
    if (FaxReply::IsBareName(named) && FileExists(Global().strInputBoxPath + named))
        return named;
    return item.FaxID + ".tif";
}
