#include "server/FaxDownload.h"

#include "core/RaisedError.h"
#include "core/Utilities.h"
#include "core/ports/EventPump.h"
#include "core/ports/Ports.h"
#include "desktop/MainWindow.h"
#include "desktop/Notifier.h"
#include "mailbox/Mailbox.h"
#include "server/FaxReply.h"
#include "server/FaxStore.h"
#include "server/Progress.h"
#include "server/RunScope.h"
#include "server/Session.h"
#include "server/wire/Frames.h"
#include "server/wire/clsClient.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QScopeGuard>

namespace {
constexpr int lFirstRow = 1;
constexpr long lFileNotFound = 53;

QString Tr(const char *text)
{
    return QCoreApplication::translate("FaxDownload", text);
}

QString ErrorText(const RaisedError &error)
{
    return Tr("Failed to receive faxes.") + '\n' + error.Description();
}
} // namespace

FaxDownload::FaxDownload(const Ports &ports, const DownloadRooms &rooms)
    : ports(ports)
    , rooms(rooms)
{
    rooms.session.SetHandler(pndFaxList, [this](const ClientReply &reply) { HandleFaxListReply(reply); });
    rooms.session.SetHandler(pndFax, [this](const ClientReply &reply) { HandleFaxReply(reply); });
}

void FaxDownload::mnuReceive()
{
    ReceiveFaxes(false, false, true, true);
    if (rooms.mailbox.SelectedFolder() == "1001" && rooms.mailbox.RowCount() > 0)
        rooms.mailbox.SelectRow(lFirstRow);
}

void FaxDownload::ReceiveFaxes(bool silent, bool history, bool keepProgressRows, bool checkStateAfter)
{
    RunScope scope(rooms.session);
    if (!scope || !rooms.session.HasClient())
        return;
    const auto hide = qScopeGuard([this, silent] {
        rooms.session.lPendingCommand = pndNone;
        rooms.mainWindow.SetTotalPercent(-1);
        if (silent)
            rooms.progress.Unload();
    });
    strError.clear();
    try {
        RunDownload({silent, history, keepProgressRows, checkStateAfter});
    } catch (const RaisedError &error) {
        strError = ErrorText(error);
        ShowClose();
        rooms.progress.StopAnimation();
        rooms.session.SetIdleState(true);
    }
    ReportError();
}

void FaxDownload::RunDownload(const Run &run)
{
    Session &session = rooms.session;
    session.bUserAbort = false; // closing the window of an earlier run sets it too
    ShowProgress(run);
    if (!session.IsConnected())
        session.ConnectToServer();
    session.SetIdleState(false);
    session.bSendTimedOut = false;
    session.bNeedRefresh = false;
    if (run.bKeepProgressRows)
        rooms.progress.ClearRows();
    rooms.progress.SetBar(0);
    if (!session.IsConnected()) {
        EndFailed(run);
        return;
    }
    const WaitEnd end = RequestList(run);
    if (aFetchList.isEmpty() || session.bUserAbort) {
        EndEmpty(run, end);
        return;
    }
    FetchAll();
    Announce(run);
    FinishRun(run);
}

void FaxDownload::ShowProgress(const Run &run)
{
    rooms.progress.Load();
    if (!run.bSilent)
        rooms.progress.Show(rooms.mainWindow.IsActive());
    else if (rooms.mainWindow.IsVisible())
        rooms.progress.ShowSoon(rooms.mainWindow.IsActive()); // mostly there is no fax: it would only flash
    rooms.progress.SetButton("Cancel", Tr("&Cancel"));
    rooms.progress.SetButtonEnabled(true);
    rooms.progress.SetText(Tr("Contacting to Velmar Server..."));
}

WaitEnd FaxDownload::RequestList(const Run &run)
{
    aFetchList.clear();
    if (!run.bHistory)
        rooms.session.BeginCommand(pndFaxList).GetNewFaxList();
    return rooms.session.WaitForServerReply();
}

void FaxDownload::HandleFaxListReply(const ClientReply &reply)
{
    if (reply.lCurrent != reply.lTotal)
        return;
    aFetchList = FaxListReply::Parse(reply.abData);
    if (aFetchList.isEmpty())
        rooms.session.bReplyDone = true;
    else
        rooms.progress.ChangePos(reply.lPercent);
    rooms.session.SignalServerReply();
}

void FaxDownload::FetchAll()
{
    Session &session = rooms.session;
    rooms.progress.SetButton("Cancel", Tr("&Cancel"));
    session.bSendTimedOut = false;
    session.TotalPercent = 0;
    ReceivedFileList.clear();
    bFaxMissed = false;
    rooms.progress.SetTotal(static_cast<int>(aFetchList.size()));
    rooms.notifier.SetTrayTip(Tr("Receiving Fax..."));
    const auto tip = qScopeGuard([this] {
        rooms.notifier.SetTrayTip(Tr("Velmar Clinet")); // the tip's own spelling
    });
    try {
        bListComplete = FetchEach();
    } catch (const RaisedError &error) {
        // The faxes that came before it are shown and announced all the same.
        bListComplete = false;
        strError = ErrorText(error);
    }
}

bool FaxDownload::FetchEach()
{
    for (int i = 0; i < aFetchList.size(); ++i) {
        const bool goesOn = FetchOne(aFetchList.at(i), i + 1);
        if (!goesOn || rooms.session.bUserAbort)
            return false;
    }
    return !bFaxMissed;
}

bool FaxDownload::FetchOne(const NewFaxItem &item, int index)
{
    Session &session = rooms.session;
    session.bReplyDone = false;
    session.CurrentFaxIndex = index;
    rooms.progress.SetCurrent(index);
    rooms.progress.AddRow((item.IsSent() ? "Outputbox/" : "InputBox/") + item.FaxID + ".tif");
    ports.pump.RunPending();
    if (FaxStore::Exists(item)) {
        rooms.progress.ChangePos2(3, index, 0);
        return true;
    }
    rooms.progress.ChangePos2(0, index, 0);
    fetched = Fetched::NotYet;
    session.BeginCommand(pndFax).GetFax(item.Size, item.FaxID, FaxStore::TargetFolder(item));
    if (!session.IsConnected() || session.bSendTimedOut || session.bUserAbort) {
        MarkMissed(index);
        return false;
    }
    AwaitFax(index);
    return true;
}

void FaxDownload::AwaitFax(int index)
{
    const WaitEnd end = rooms.session.WaitForServerReply();
    if (fetched == Fetched::Stored || fetched == Fetched::Short) {
        rooms.progress.ChangePos2(1, index, 100);
        return;
    }
    if (end == WaitEnd::Refused)
        return; // its row reads "Failed" already
    MarkMissed(index);
    if (fetched == Fetched::NotYet)
        rooms.session.MarkOutOfStep(); // the rest of the file may still be on its way
    if (end == WaitEnd::Failed && strError.isEmpty())
        strError = FailureText();
}

QString FaxDownload::FailureText() const
{
    const QString text = Tr("Failed to store a received fax, it stays on the server.") + '\n';
    if (!rooms.session.HandlerError().isEmpty())
        return text + rooms.session.HandlerError();
    // What the server did wrong was shown already; the client closes the connection when the disk refuses.
    return rooms.session.IsConnected() ? QString() : text + Tr("The disk is full or cannot be written.");
}

void FaxDownload::MarkMissed(int index)
{
    bFaxMissed = true;
    if (rooms.session.bUserAbort)
        rooms.progress.ChangePos2(5, index, 100);
    else if (!rooms.session.IsConnected())
        rooms.progress.ChangePos2(6, index, 100);
    else
        rooms.progress.ChangePos2(-1, index, 100);
}

void FaxDownload::HandleFaxReply(const ClientReply &reply)
{
    Session &session = rooms.session;
    if (session.bUserAbort) {
        session.CancelTransfer();
        session.bNeedRefresh = true;
        session.SignalServerReply();
        return;
    }
    ShowFaxProgress(reply.lPercent);
    if (reply.lState == ClientReply::statPart)
        return;
    const QStringList fields = FaxReply::Fields(reply.abData);
    if (fields.isEmpty()) {
        session.SignalServerReply();
        return;
    }
    if (reply.lState != ClientReply::statFileDone)
        return;
    if (fields.size() < FaxReply::lLeastFields)
        fetched = Fetched::Short; // skipped without a word; the file stays
    else
        StoreFax(fields);
    session.SignalServerReply();
}

void FaxDownload::ShowFaxProgress(int percent)
{
    Session &session = rooms.session;
    const qint64 done = qint64(session.CurrentFaxIndex - 1) * 100 + percent;
    const int total = Frames::Percent(done, qint64(aFetchList.size()) * 100);
    if (total != session.TotalPercent) {
        session.TotalPercent = total;
        rooms.mainWindow.SetTotalPercent(total);
    }
    rooms.progress.ChangePos2(0, session.CurrentFaxIndex, percent);
    if (!rooms.mainWindow.IsVisible())
        rooms.notifier.SetTrayTip(Tr("Receving Fax : %1%").arg(rooms.progress.Bar())); // spelt so
}

void FaxDownload::StoreFax(const QStringList &fields)
{
    const int place = rooms.session.CurrentFaxIndex - 1;
    if (place < 0 || place >= aFetchList.size())
        return;
    const NewFaxItem item = aFetchList.at(place);
    fetched = Fetched::Arrived;
    const QString path = FaxStore::TargetFolder(item) + item.FaxID + ".tif";
    // The row outlives a power failure, and the server forgets the fax: the file must be as safe.
    if (QFileInfo(path).size() == 0 || !FlushToDisk(path))
        throw RaisedError(lFileNotFound, "FaxDownload", Tr("The file of the fax was not written."));
    FaxStore::Store(item, fields);
    fetched = Fetched::Stored;
    const QString name = FaxStore::InboxName(item, fields);
    if (!name.isEmpty())
        ReceivedFileList.append(name);
}
