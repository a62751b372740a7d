#include "server/FaxStore.h"

#include "core/Globals.h"
#include "core/Utilities.h"
#include "server/FaxReply.h"

#include <QHash>

#include <functional>

namespace {
/// The names in the order of the ids, which is that of the fax's receipts; a query keeps no order. Rows hold
/// two names and the id; ids without a row are left out.
QString NamesOf(const QStringList &ids, const QString &sql,
                const std::function<QString(const QString &, const QString &)> &show)
{
    QHash<QString, QString> names;
    const auto rows = Global().objDB->SelectEx(sql);
    while (rows->Next())
        names.insert(rows->Text(2), show(rows->Text(0), rows->Text(1)));
    QString list;
    for (const QString &id : ids)
        list += names.value(id);
    return list;
}

/// "Name(Fax);" of each contact, with the number in the place of an empty name.
QString ContactNames(const QString &list)
{
    const QString ids = FaxReply::QuotedIds(list, 0);
    if (ids.isEmpty())
        return {};
    return NamesOf(FaxReply::Ids(list, 0),
                   QStringLiteral("Select Name,Fax,ID From Contacts Where Id in(%1)").arg(ids),
                   [](const QString &name, const QString &number) {
                       return (name.isEmpty() ? number : name) + '(' + number + ");";
                   });
}

/// "UserName[LoginName];" of each user of the server.
QString UserNames(const QString &list)
{
    const QString ids = FaxReply::QuotedIds(list, 1);
    if (ids.isEmpty())
        return {};
    return NamesOf(FaxReply::Ids(list, 1),
                   QStringLiteral("Select UserName,LoginName,ID From UserList Where Id in(%1)").arg(ids),
                   [](const QString &name, const QString &login) {
                       return (name.isEmpty() ? login : name) + '[' + login + "];";
                   });
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
