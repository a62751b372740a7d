#include "core/FaxImage.h"
#include "core/Globals.h"
#include "core/Message.h"
#include "core/Utilities.h"
#include "core/ports/Ports.h"
#include "desktop/MainWindow.h"
#include "desktop/Notifier.h"
#include "mailbox/FaxPrinting.h"
#include "mailbox/Mailbox.h"
#include "server/FaxDownload.h"
#include "server/FaxStatus.h"
#include "server/Progress.h"
#include "server/RunScope.h"
#include "server/Session.h"
#include "server/wire/clsClient.h"

#include <QCoreApplication>

namespace {
constexpr int lStillFrame = 6;

QString Tr(const char *text)
{
    return QCoreApplication::translate("FaxDownload", text);
}
} // namespace

void FaxDownload::EndFailed(const Run &run)
{
    rooms.progress.SetText(Tr("Failed to connect to Velmar Server..."));
    ShowClose();
    rooms.progress.StopAnimation();
    rooms.session.SetIdleState(true);
    rooms.progress.ShowImage(lStillFrame);
    if (run.bSilent) {
        rooms.progress.ClickCancelOperate();
        rooms.progress.Unload();
    }
}

void FaxDownload::EndEmpty(const Run &run, WaitEnd end)
{
    const bool aborted = rooms.session.bUserAbort;
    if (run.bSilent) {
        rooms.progress.SetText(Tr("Sending && Receiving Fax..."));
        if (!aborted)
            CheckStates(true);
        rooms.progress.Unload();
        rooms.session.SetIdleState(true);
        return;
    }
    const bool answered = !aborted && (end == WaitEnd::Replied || end == WaitEnd::Refused);
    if (!answered) // "No new fax..." would be a guess
        rooms.progress.SetText(LossText());
    else
        rooms.progress.SetText(run.bHistory ? Tr("Cannot find any Fax history...") : Tr("No new fax..."));
    if (answered && run.bCheckStateAfter)
        CheckStates(false);
    ShowClose();
    rooms.progress.SetBar(100);
    if (!run.bKeepProgressRows) {
        rooms.progress.AddRow(Tr("No incoming faxes ..."), "imgOK");
        rooms.progress.ChangePos2(9, 100, 1);
        rooms.progress.SetBar(100);
    }
    rooms.session.SetIdleState(true);
}

QString FaxDownload::LossText() const
{
    return rooms.session.bUserAbort ? Tr("User abort.") : Tr("Disconnect from the server");
}

void FaxDownload::Announce(const Run &run)
{
    if (run.bSilent) {
        if (!rooms.mainWindow.IsVisible() && !ReceivedFileList.isEmpty())
            ShowMonitor();
    } else {
        // Also a run that was cancelled reads so while the connection is up.
        rooms.progress.SetText(rooms.session.IsConnected() ? Tr("Receive Complete") : LossText());
        ShowClose();
    }
}

void FaxDownload::ShowMonitor()
{
    const QString sound = Global().SoundPath;
    if (!sound.isEmpty() && FileExists(sound))
        PlaySoundFile(sound, ports.sound, ports.message);
    rooms.notifier.ShowMonitor(ReceivedFileList.join(','));
}

void FaxDownload::FinishRun(const Run &run)
{
    Session &session = rooms.session;
    session.SetIdleState(true);
    // The run still has commands to send: nobody else may until its end.
    session.bIsSocketBusy = true;
    rooms.mailbox.RefreshFolderUnreadCounts();
    ReloadFolder();
    if (!session.IsConnected() || session.bUserAbort)
        return;
    const bool visible = rooms.mainWindow.IsVisible();
    if (run.bCheckStateAfter && (visible || !ReceivedFileList.isEmpty()))
        CheckStates(visible);
    Acknowledge();
    if (Global().AutoPrint && !run.bHistory)
        PrintReceived();
}

void FaxDownload::ReloadFolder()
{
    const QString key = rooms.mailbox.SelectedFolder();
    if (key == "1001")
        rooms.mailbox.LoadGridItem(key, 2, {}, false, true);
    else if (key == "1005" || key == "1006" || key == "1007")
        rooms.mailbox.LoadGridItem(key, 5, {}, false, true);
    else if (key == "1000")
        rooms.mailbox.LoadGridItem(key, 0, {}, false, true);
    if (rooms.mailbox.RowCount() > 0)
        rooms.mailbox.SelectCurrentRow();
}

void FaxDownload::Acknowledge()
{
    // The server offers an acknowledged list never again, so one with a gap is left open.
    if (!bListComplete)
        return;
    // The files were written through one by one; their names come at once, each would cost as much as a file.
    if (!ReceivedFileList.isEmpty() && !FlushToDisk(Global().strInputBoxPath)) {
        strError = Tr("The disk is full or cannot be written.");
        return;
    }
    rooms.session.BeginCommand(pndFaxList).NewFaxReceived();
    rooms.session.WaitForServerReply();
}

void FaxDownload::PrintReceived()
{
    if (!rooms.faxPrinting.HasPrinter())
        return;
    for (const QString &name : ReceivedFileList) {
        const QString path = Global().strInputBoxPath + name;
        const int pages = FaxImage::GetPageCount(path);
        rooms.faxPrinting.PrintFile(path, 1, pages, ToNumber(Global().Copies), Global().PrinterName);
    }
}

void FaxDownload::ShowClose()
{
    rooms.progress.SetButton("Close", Tr("&Close"));
    rooms.progress.SetButtonEnabled(true);
}

void FaxDownload::CheckStates(bool showProgress)
{
    const RunPermit permit(rooms.session);
    rooms.faxStatus.CheckFaxState(showProgress);
}

void FaxDownload::ReportError()
{
    // The periodic run meets the same error every time: once is enough until a run goes well.
    const bool known = bErrorShown;
    bErrorShown = !strError.isEmpty();
    if (bErrorShown && !known)
        ports.message.ShowMessage(strError, mbExclamation);
}
