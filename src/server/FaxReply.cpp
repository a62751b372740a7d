#include "server/FaxReply.h"

#include "core/AnsiText.h"
#include "core/Utilities.h"

#include <QDateTime>
#include <QRegularExpression>

namespace {
QString Escaped(const QStringList &fields, int index)
{
    return EscapeText(fields.value(index));
}
} // namespace

QStringList FaxReply::Fields(const QByteArray &data)
{
    const QStringList lines = AnsiText::FromAnsi(data).split("\r\n");
    return lines.size() > 1 ? lines[1].split(QChar(0)) : QStringList();
}

QStringList FaxReply::Ids(const QString &list, int marker)
{
    QStringList ids;
    for (const QString &element : EscapeText(list).split(';')) {
        const QString id = element.mid(marker);
        if (!id.isEmpty())
            ids.append(id);
    }
    return ids;
}

QString FaxReply::QuotedIds(const QString &list, int marker)
{
    const QStringList ids = Ids(list, marker);
    return ids.isEmpty() ? QString() : '\'' + ids.join("','") + '\'';
}

QString FaxReply::SentFolder(int kind)
{
    if (kind == 1 || kind == 3)
        return "1005";
    return kind == 4 ? "1006" : "1007";
}

QString FaxReply::ShortDate(const QString &text)
{
    const QDateTime time = ToDateTime(text);
    return time.isValid() ? time.toString("yy-MM-dd") : text;
}

bool FaxReply::IsBareName(const QString &name)
{
    // A comma separates the names of the run's list, and an apostrophe would be escaped in it.
    static const QRegularExpression foreign(QStringLiteral("[/\\\\,'\\x00-\\x1f]"));
    return !name.isEmpty() && name != "." && name != ".." && !name.contains(foreign);
}

QString FaxReply::ReceiveFaxInsert(const NewFaxItem &item, const QStringList &fields,
                                   const QString &receivers, const QString &resender)
{
    return QStringLiteral("Insert Into ReceiveFax(Sender,Title,FileName,Pages,FaxLevel,reMark, "
                          "receiveTime,ReceiveUser,Resender,FolderID,Fax_ID,RecyleID,isreaded,"
                          "IsSendedReceipt,ReturnReceipts) "
                          "Values('%1','%2','%3.tif','%4','%5','%6','%7','%8','%9','1001','%3','',0,"
                          "'False','%10')")
        .arg(Escaped(fields, fldSender), Escaped(fields, fldTitle), item.FaxID, Escaped(fields, fldPages),
             Escaped(fields, fldLevel), Escaped(fields, fldRemark), Escaped(fields, fldTime),
             EscapeText(receivers), EscapeText(resender), Escaped(fields, fldReceipts));
}

QString FaxReply::SendFaxInsert(const NewFaxItem &item, const QStringList &fields)
{
    // ModifyTime holds a two-digit year and ReceiverName nothing, unlike in the rows of the composer.
    return QStringLiteral("Insert Into SendFax(Title,FileName,Pages,FaxLevel,reMark, "
                          "ModifyTime,ReceiverName,FolderID,Fax_ID,RecyleID,isreaded) "
                          "Values('%1','%2.tif','%3','%4','%5','%6','','%7','%2','',0)")
        .arg(Escaped(fields, fldTitle), item.FaxID, Escaped(fields, fldPages), Escaped(fields, fldLevel),
             Escaped(fields, fldRemark), EscapeText(ShortDate(fields.value(fldTime))), SentFolder(item.Kind));
}
