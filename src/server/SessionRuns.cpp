#include "server/SessionRuns.h"

#include "core/Globals.h"
#include "core/Message.h"
#include "core/RaisedError.h"
#include "core/Utilities.h"
#include "core/ports/EventPump.h"
#include "core/ports/Ports.h"
#include "core/ports/Timer.h"
#include "desktop/Forms.h"
#include "desktop/MainWindow.h"
#include "mailbox/Mailbox.h"
#include "server/AddressSync.h"
#include "server/FaxDownload.h"
#include "server/FaxSender.h"
#include "server/FaxStatus.h"
#include "server/Progress.h"
#include "server/RunScope.h"
#include "server/Session.h"
#include "server/wire/clsClient.h"

#include <QCoreApplication>
#include <QScopeGuard>

namespace {
constexpr int lLogOffTime = 5000; // milliseconds

QString Tr(const char *text)
{
    return QCoreApplication::translate("SessionRuns", text);
}
} // namespace

SessionRuns::SessionRuns(const Ports &ports, const SessionRooms &rooms)
    : ports(ports)
    , rooms(rooms)
{
}

void SessionRuns::ActivateFirst()
{
    Session &session = rooms.session;
    session.bAcceptReplies = true;
    rooms.mainWindow.SetCommMenu(session.bOnline);
    session.MarkFaxTimer().SetInterval(Global().MarkFax * 1000);
    const QString place = "Form_Activate - frmMain";
    TrapErrors(place, [this] { BeginOnline(); });
    if (session.bServerRefused)
        return;
    TrapErrors(place, [this] {
        rooms.mailbox.RefreshFolderUnreadCounts();
        OpenFaxFile();
    });
    // Also after an error: without polling no fax would come in any more.
    session.CheckFaxTimer().SetEnabled(true);
}

void SessionRuns::BeginOnline()
{
    if (!rooms.session.bOnline)
        return;
    rooms.mainWindow.SetServerPanel(Global().strServerIP);
    if (SyncOrUnload(true) && Global().Connected)
        SendAndReceive(true);
}

bool SessionRuns::SyncOrUnload(bool showProgress)
{
    SyncWithServer(showProgress);
    if (rooms.session.bServerRefused)
        rooms.mainWindow.Unload();
    return !rooms.session.bServerRefused;
}

void SessionRuns::OpenFaxFile()
{
    const QString path = Global().strFaxFileToOpen;
    if (ports.pump.IsQuitting()) // closed while it was busy above
        return;
    if (!path.isEmpty() && FileExists(path))
        rooms.forms.OpenComposer(path);
}

void SessionRuns::SyncWithServer(bool showProgress)
{
    RunScope scope(rooms.session);
    if (!scope)
        return;
    rooms.mainWindow.SetGridCommands();
    if (showProgress)
        rooms.progress.ShowSoon(); // mostly there is nothing to fetch: the window would only flash
    else
        rooms.progress.Show();
    rooms.progress.SetButton("Cancel", Tr("&Cancel"));
    rooms.progress.SetText({});
    rooms.progress.ClearRows(); // of a run whose window is still open
    rooms.progress.SetBar(0);
    const bool isPolling = rooms.session.CheckFaxTimer().IsEnabled(); // not before the first activation ends
    rooms.session.SetTimersOn(false);
    const auto finish = qScopeGuard([this, showProgress, isPolling] {
        rooms.session.SetTimersOn(true);
        rooms.session.CheckFaxTimer().SetEnabled(isPolling);
        rooms.progress.SetButton("Close", Tr("&Close"));
        rooms.progress.SetButtonEnabled(true);
        rooms.progress.EndWindowMode();
        rooms.progress.StopAnimation();
        if (rooms.session.bUserAbort)
            rooms.progress.SetText(Tr("User abort."));
        if (showProgress)
            rooms.progress.Unload();
    });
    rooms.session.ServerVersions.clear();
    rooms.session.bUserAbort = false;
    rooms.session.bServerRefused = false;
    {
        const RunPermit permit(rooms.session);
        rooms.addressSync.GetServerData();
    }
    if (rooms.session.bServerRefused)
        return;
    if (!rooms.session.bUserAbort) {
        const RunPermit permit(rooms.session);
        rooms.faxStatus.CheckFaxState(true);
    }
    ReadUserID();
}

void SessionRuns::ReadUserID()
{
    const auto row = Global().objDB->SelectEx(QStringLiteral("Select ID from UserList Where LoginName='%1'")
                                                  .arg(EscapeText(Global().strUserName.toLower())));
    Global().strUserID = row->Next() ? row->Text(0) : QString(); // never that of an account before
}

void SessionRuns::SendAndReceive(bool checkState)
{
    Session &session = rooms.session;
    if (session.bIsSocketBusy)
        return;
    rooms.progress.ClearRows();
    session.CurrentFaxIndex = 0;
    session.TotalPercent = 0;
    session.bUserAbort = false;
    rooms.faxUpload.GetSendFaxID(false, {}, false, false);
    if (!session.bUserAbort)
        rooms.faxDownload.ReceiveFaxes(false, false, false, false);
    if (checkState && !session.bUserAbort)
        rooms.faxStatus.CheckFaxState(false);
}

void SessionRuns::mnuSend()
{
    rooms.faxUpload.GetSendFaxID(false, {}, true, true);
}

void SessionRuns::mnuSendReceive()
{
    SendAndReceive(true);
}

void SessionRuns::mnuSyncAddressBook()
{
    TrapErrors("mnuSyncAddressBook - frmMain", [this] { SyncOrUnload(false); });
}

void SessionRuns::mnuLoginServer()
{
    Session &session = rooms.session;
    if (session.bIsSocketBusy)
        return;
    session.lPendingCommand = pndGreeting;
    if (!rooms.forms.LoginFromMainWindow())
        return;
    session.bOnline = true;
    rooms.mainWindow.SetCommMenu(true);
    // What goes before the synchronisation bears it, too.
    TrapErrors("mnuLoginServer - frmMain", [this] { ReadUserID(); });
    if (Global().Connected) {
        rooms.faxDownload.ReceiveFaxes(false, false, true, true);
        mnuSend();
        mnuSendReceive();
    }
    TrapErrors("mnuLoginServer - frmMain", [this] { SyncOrUnload(true); });
    rooms.mainWindow.SetServerPanel(Global().strServerIP);
}

void SessionRuns::mnuLogoutServer()
{
    if (rooms.session.bIsSocketBusy)
        return;
    rooms.session.LogOut();
    rooms.session.bOnline = false;
    rooms.mainWindow.SetCommMenu(false);
    rooms.mainWindow.SetServerPanel(Tr("Offline"));
}

void SessionRuns::LogOffAtClose()
{
    Session &session = rooms.session;
    if (!session.bOnline || !session.HasClient())
        return;
    if (session.bIsSocketBusy || session.IsWaiting()) {
        session.bUserAbort = true;
        session.CancelTransfer(); // ends the run that is under way
        return;
    }
    const RunScope scope(session);
    session.SetIdleState(false); // no click and no tick begins anything in these seconds
    session.SetTimeLeft(lLogOffTime);
    if (session.ConnectToServer()) {
        session.LogOut();
        session.WaitForServerReply();
    }
    session.CancelTransfer();
    session.SetTimeLeft(-1);
}

bool SessionRuns::ChangePassword(const QString &oldPassword, const QString &newPassword)
{
    Session &session = rooms.session;
    RunScope scope(session);
    if (!scope) {
        ports.message.ShowMessage(Tr("A transfer is under way, please try again when it has ended."),
                                  mbInformation);
        return false;
    }
    session.bPwdChanged = false;
    bool answered = session.ConnectToServer();
    if (answered) {
        session.BeginCommand(pndChangePassword)
            .ChangePassword(Global().strUserName, oldPassword, newPassword);
        const WaitEnd end = session.WaitForServerReply();
        answered = end == WaitEnd::Replied || session.bPwdChanged; // the box may outlast the connection
    }
    if (!answered) {
        // Closed, so that nobody takes the silence for a refusal.
        session.CancelTransfer();
        ports.message.ShowMessage(Tr("Failed to connect to Velmar Server."), mbExclamation);
    }
    return session.bPwdChanged;
}

void SessionRuns::TrapErrors(const QString &place, const std::function<void()> &step)
{
    try {
        step();
    } catch (const RaisedError &error) {
        ports.message.ShowMessage(error.Description() + '\n' + place, mbExclamation);
    }
}
