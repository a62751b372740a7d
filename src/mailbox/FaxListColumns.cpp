#include "mailbox/FaxListColumns.h"

#include <QCoreApplication>

namespace {

/// Marked for a translator's tool where they stand.
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
    return {{"Folder", Caption(QT_TRANSLATE_NOOP("mailbox", "Folder")), {}, 250},
            {"Unread", Caption(QT_TRANSLATE_NOOP("mailbox", "Unread")), {}, 100},
            {"Faxes", Caption(QT_TRANSLATE_NOOP("mailbox", "Faxes")), {}, 100}};
}

QList<FaxColumn> ReceivedColumns(const char *timeCaption)
{
    return {{"Sender", Caption(QT_TRANSLATE_NOOP("mailbox", "Sender")), {}, 200},
            {"FirstReader", Caption(QT_TRANSLATE_NOOP("mailbox", "First Read By")), {}, 100},
            {"Subject", Caption(QT_TRANSLATE_NOOP("mailbox", "Subject")), {}, 180},
            {"PageCount", Caption(QT_TRANSLATE_NOOP("mailbox", "Pages")), {}, 70},
            TimeColumn("ReceivedTime", timeCaption, 250),
            {"ReSender", Caption(QT_TRANSLATE_NOOP("mailbox", "Forwarded")), {}, 150},
            {"File", Caption(QT_TRANSLATE_NOOP("mailbox", "Fax file")), {}, 250},
            {"FaxTable", {}, {}, 0}};
}

QList<FaxColumn> SentColumns(const QList<FaxColumn> &tail)
{
    return QList<FaxColumn>{{"Receiver", Caption(QT_TRANSLATE_NOOP("mailbox", "Recipient")), {}, 200},
                            {"Subject", Caption(QT_TRANSLATE_NOOP("mailbox", "Subject")), {}, 180},
                            {"PageCount", Caption(QT_TRANSLATE_NOOP("mailbox", "Pages")), {}, 70}} +
           tail;
}

QList<FaxColumn> TextColumns(int layout)
{
    switch (layout) {
    case 1:
        return ReceivedColumns(QT_TRANSLATE_NOOP("mailbox", "Received Time"));
    case 2:
        return SentColumns({{"SendResult", Caption(QT_TRANSLATE_NOOP("mailbox", "Result")), {}, 250},
                            TimeColumn("SendTime", QT_TRANSLATE_NOOP("mailbox", "Time Sent"), 150),
                            {"File", Caption(QT_TRANSLATE_NOOP("mailbox", "Fax File")), {}, 250}});
    case 3:
        return SentColumns({{"File", Caption(QT_TRANSLATE_NOOP("mailbox", "Fax file")), {}, 250}});
    case 4:
        return SentColumns({TimeColumn("ModifiedTime", QT_TRANSLATE_NOOP("mailbox", "Time Modified"), 150),
                            {"File", Caption(QT_TRANSLATE_NOOP("mailbox", "Fax file")), {}, 250}});
    default:
        return ReceivedColumns(QT_TRANSLATE_NOOP("mailbox", "Time"));
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
    return QList<FaxColumn>{
               id,
               {"IsReaded", Caption(QT_TRANSLATE_NOOP("mailbox", "Read")), "imgIsRead", 30},
               {"Level", Caption(QT_TRANSLATE_NOOP("mailbox", "Priority")), "imgNormalLevel", 30}} +
           TextColumns(layout);
}
