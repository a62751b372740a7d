#include "StatusChannel.h"

#include "core/formats/PrintRequest.h"

#include <algorithm>
#include <cstdio>

namespace {

/// The client hides a line with a comma.
QString WithoutCommas(QString text)
{
    constexpr QChar lookAlike{0x201A};
    return text.replace(u',', lookAlike);
}

/// The client takes such a text for the end.
QString WithoutFailureMarks(QString text)
{
    constexpr QChar invisible{0x200C};
    const QString mark = PrintConversation::FailureMark;
    qsizetype at = -1;
    while ((at = text.indexOf(mark, at + 1, Qt::CaseInsensitive)) >= 0)
        text.insert(at + mark.size() - 1, invisible);
    return text;
}

/// Lines that the client shows, whatever names stand in them; so short that the string takes them.
QString ShownLines(const QString &text)
{
    constexpr qsizetype longest = 20000;
    QString lines = WithoutCommas(text.left(longest));
    const auto steers = [](QChar character) {
        return character.unicode() < u' ' && character != u'\r' && character != u'\n';
    };
    std::replace_if(lines.begin(), lines.end(), steers, u' ');
    return QString::fromUtf8(lines.toUtf8()); // as it is read back, also where a name is no proper text
}

} // namespace

StatusChannel::StatusChannel(SharedBlocks &blocks, const Folders &folders)
    : folders(folders)
{
    shared.Create(blocks, PrintConversation::SharedName);
    strRequest = strLast = shared.Item();
}

bool StatusChannel::IsOpen() const
{
    const QString text = shared.Item();
    return text == strLast && text != PrintConversation::StopRequest && shared.IsHeldElsewhere();
}

void StatusChannel::Begin()
{
    SetProgress(printerBusy);
}

bool StatusChannel::Tell(const QString &status)
{
    const QString text = WithoutFailureMarks(ShownLines(status));
    return text.isEmpty() || text == strLast ? IsOpen() : Write(text);
}

// The progress value goes first: behind a final text the client may start the next conversion at once.

bool StatusChannel::Finish(const QString &text, const QString &fileName)
{
    // The client cuts the last three characters.
    const QString end = PrintConversation::FinishMark + fileName + QLatin1String("\r\n ");
    if (!IsOpen())
        return false;
    SetProgress(printerIdle);
    return Write(WithoutFailureMarks(ShownLines(text)) + end);
}

bool StatusChannel::Fail(const QString &text)
{
    if (!IsOpen())
        return false;
    SetProgress(printerFailed);
    const QString lines = ShownLines(text);
    const QString mark = PrintConversation::FailureMark;
    return Write(lines.contains(mark) ? lines : lines + QLatin1String("\r\n") + mark);
}

bool StatusChannel::ReportError()
{
    if (!IsOpen())
        return false;
    SetProgress(printerFailed);
    return Write(PrintConversation::Error);
}

void StatusChannel::Leave()
{
    // Another request has a tool of its own, which sets the value.
    const QString text = shared.Item();
    if (text.isEmpty() || text == strLast || text == PrintConversation::StopRequest)
        SetProgress(printerIdle);
}

bool StatusChannel::Write(const QString &text)
{
    if (!IsOpen())
        return false;
    shared.SetItem(text);
    strLast = text;
    return true;
}

void StatusChannel::SetProgress(PrinterStatus status) const
{
    if (!SetPrinterStatus(folders, status))
        std::fputs("ZemPrint: the progress value cannot be written.\n", stderr);
}
