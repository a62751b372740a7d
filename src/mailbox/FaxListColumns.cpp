#include "mailbox/FaxListColumns.h"

#include <QCoreApplication>

namespace {

QString Caption(const char *text)
{
    return QCoreApplication::translate("mailbox", text);
}

FaxColumn TimeColumn(const char *key, const char *caption, int width)
{
    return {key, Caption(caption), {}, width, true};
}

QList<FaxColumn> SummaryColumns()
{
    return {{"Folder", Caption("Folder"), {}, 250},
            {"Unread", Caption("Unread"), {}, 100},
            {"Faxes", Caption("Faxes"), {}, 100}};
}

QList<FaxColumn> ReceivedColumns(const char *timeCaption)
{
    return {{"Sender", Caption("Sender"), {}, 200},       {"FirstReader", Caption("First Read By"), {}, 100},
            {"Subject", Caption("Subject"), {}, 180},     {"PageCount", Caption("Pages"), {}, 70},
            TimeColumn("ReceivedTime", timeCaption, 250), {"ReSender", Caption("Forwarded"), {}, 150},
            {"File", Caption("Fax file"), {}, 250},       {"FaxTable", {}, {}, 0}};
}

QList<FaxColumn> SentColumns(const QList<FaxColumn> &tail)
{
    return QList<FaxColumn>{{"Receiver", Caption("Recipient"), {}, 200},
                            {"Subject", Caption("Subject"), {}, 180},
                            {"PageCount", Caption("Pages"), {}, 70}} +
           tail;
}

QList<FaxColumn> TextColumns(int layout)
{
    switch (layout) {
    case 1:
        return ReceivedColumns("Received Time");
    case 2:
        return SentColumns({{"SendResult", Caption("Result"), {}, 250},
                            TimeColumn("SendTime", "Time Sent", 150),
                            {"File", Caption("Fax File"), {}, 250}});
    case 3:
        return SentColumns({{"File", Caption("Fax file"), {}, 250}});
    case 4:
        return SentColumns(
            {TimeColumn("ModifiedTime", "Time Modified", 150), {"File", Caption("Fax file"), {}, 250}});
    default:
        return ReceivedColumns("Time");
    }
}

} // namespace

int GetColumnLayout(FolderFamily family)
{
    switch (family) {
    case FolderFamily::Root:
        return 0;
    case FolderFamily::Received:
        return 1;
    case FolderFamily::Sended:
        return 2;
    case FolderFamily::WaitSend:
        return 3;
    case FolderFamily::Draft:
        return 4;
    case FolderFamily::Recyle:
        return 5;
    }
    return 0;
}

QList<FaxColumn> GetFaxListColumns(int layout)
{
    const FaxColumn id{"ID", {}, {}, 0};
    if (layout == 0)
        return QList<FaxColumn>{id} + SummaryColumns();
    return QList<FaxColumn>{id,
                            {"IsReaded", Caption("Read"), "imgIsRead", 30},
                            {"Level", Caption("Priority"), "imgNormalLevel", 30}} +
           TextColumns(layout);
}
