// How a run ends, and what is said of it.

#include "core/Message.h"
#include "core/ports/Ports.h"
#include "mailbox/Mailbox.h"
#include "server/FaxStatus.h"
#include "server/FaxUpload.h"
#include "server/Progress.h"
#include "server/RunScope.h"
#include "server/Session.h"

#include <QCoreApplication>

namespace {
constexpr int lSavedSending = 2; ///< of `Mailbox::NotifySaveFax`
constexpr int lReload = 3;

QString Tr(const char *text)
{
    return QCoreApplication::translate("FaxUpload", text);
}
} // namespace

void FaxUpload::EndEmpty(const Run &run)
{
    if (run.bClearRows) {
        rooms.progress.SetText(Tr("No outgoing faxes ..."));
        ShowClose();
        rooms.progress.SetBar(100);
        if (run.bCheckStateAfter && rooms.session.IsConnected())
            CheckStates();
    } else {
        rooms.progress.AddRow(Tr("No outgoing faxes ..."), "imgOK");
        rooms.progress.ChangePos2(9, 100, 1);
    }
    rooms.session.SetIdleState(true);
    rooms.session.bNeedRefresh = true;
}

void FaxUpload::RefreshMailbox()
{
    rooms.session.bNeedRefresh = true;
    if (bRowsDropped)
        rooms.mailbox.NotifySaveFax(lReload, false, {});
    if (bSent)
        rooms.mailbox.NotifySaveFax(lSavedSending, true, {});
}

void FaxUpload::Report(int index, bool isWhole, const Run &run)
{
    const Session &session = rooms.session;
    if (session.bUserAbort) {
        rooms.progress.SetText(Tr("Abort by user..."));
        if (!isWhole)
            rooms.progress.ChangePos2(5, index, 0);
    } else if (session.bSendTimedOut) {
        rooms.progress.SetText(Tr("Sending fax timeout..."));
    } else if (!isWhole) {
        rooms.progress.SetText(Tr("Failed to connect to Velmar Server."));
        rooms.progress.ChangePos2(6, index, 0);
    } else {
        rooms.progress.SetText(Tr("Completed."));
        if (run.bCheckStateAfter && session.IsConnected())
            CheckStates();
    }
    ShowClose();
    rooms.session.SetIdleState(true);
}

void FaxUpload::ReportError()
{
    if (!strError.isEmpty())
        ports.message.ShowMessage(strError, mbExclamation);
}

void FaxUpload::ShowClose()
{
    rooms.progress.SetButton("Close", Tr("&Close"));
    rooms.progress.SetButtonEnabled(true);
}

void FaxUpload::CheckStates()
{
    const RunPermit permit(rooms.session);
    rooms.faxStatus.CheckFaxState(true);
}
