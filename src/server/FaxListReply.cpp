#include "server/FaxListReply.h"

#include "core/AnsiText.h"
#include "core/Utilities.h"

#include <QStringList>

namespace {
NewFaxItem ReadItem(const QStringList &fields)
{
    NewFaxItem item{fields[0], ToNumber(fields[1]), 0};
    if (fields.size() == 3) // with more fields the third means something else
        item.Kind = ToNumber(fields[2]);
    return item;
}
} // namespace

QList<NewFaxItem> FaxListReply::Parse(const QByteArray &data)
{
    QList<NewFaxItem> items;
    const QStringList lines = AnsiText::FromAnsi(data).split("\r\n");
    // The first line is the status, the last the empty tail.
    for (int i = 1; i < lines.size() - 1; ++i) {
        const QStringList fields = lines[i].split(QChar(0));
        if (fields.size() < 2)
            break;
        if (IsSafeFaxID(fields[0]))
            items.append(ReadItem(fields));
    }
    return items;
}
