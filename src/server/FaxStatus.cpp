#include "server/FaxStatus.h"

#include "core/Message.h"
#include "core/ports/EventPump.h"
#include "core/ports/Ports.h"
#include "desktop/MainWindow.h"
#include "mailbox/Mailbox.h"
#include "server/Progress.h"
#include "server/RunScope.h"
#include "server/Session.h"
#include "server/wire/clsClient.h"

#include <QCoreApplication>
#include <QScopeGuard>

namespace {

QString Tr(const char *text)
{
    return QCoreApplication::translate("FaxStatus", text);
}

} // namespace

FaxStatus::FaxStatus(const Ports &ports, const StatusRooms &rooms)
    : ports(ports)
    , rooms(rooms)
{
    rooms.session.SetHandler(pndFaxState, [this](const ClientReply &reply) { HandleFaxStateReply(reply); });
}

void FaxStatus::CheckFaxState(bool showProgress)
{
    const RunScope scope(rooms.session);
    if (!scope || !rooms.session.HasClient())
        return;
    Run(showProgress);
    ReportError();
}

void FaxStatus::Run(bool showProgress)
{
    const auto end = qScopeGuard([this] {
        rooms.session.lPendingCommand = pndNone;
        bShown = false;
    });
    rooms.mainWindow.SetGridCommands(); // the list is not to be read again meanwhile
    rooms.mainWindow.SetTotalPercent(-1);
    strError.clear();
    outcome = {};
    sending = SendingFaxes::Read();
    bShown = showProgress;
    ShowProgress();
    const WaitEnd answer = sending.Ids().isEmpty() ? WaitEnd::Replied : Ask();
    if (ports.pump.IsQuitting())
        return;
    ShowEnd(answer);
    ShowFaxes();
}

/// Mostly it is over at once: a window of its own would only flash.
void FaxStatus::ShowProgress()
{
    if (!bShown)
        return;
    if (!rooms.progress.IsLoaded())
        rooms.progress.ShowSoon(rooms.mainWindow.IsActive());
    rooms.progress.SetText(Tr("Syncing fax status..."));
}

WaitEnd FaxStatus::Ask()
{
    if (bShown)
        rooms.progress.SetBar(0);
    rooms.session.BeginCommand(pndFaxState).GetFaxState(sending.Ids().join(QChar(0)));
    const WaitEnd end = rooms.session.WaitForServerReply();
    if (!rooms.session.HandlerError().isEmpty())
        strError = Tr("Failed to get fax status.") + '\n' + rooms.session.HandlerError();
    return end;
}

void FaxStatus::HandleFaxStateReply(const ClientReply &reply)
{
    if (reply.lState == ClientReply::statPart) {
        if (bShown)
            rooms.progress.ChangePos(reply.lPercent);
        return;
    }
    const FaxStateReply::Cut cut = FaxStateReply::Parse(reply.abData);
    if (!cut.bEmpty)
        outcome = sending.Store(cut.states);
    if (cut.bShort)
        strError = Tr("Failed to get fax status.");
    rooms.session.SignalServerReply();
}

void FaxStatus::ShowEnd(WaitEnd end)
{
    if (!bShown)
        return;
    rooms.progress.SetText(EndText(end));
    rooms.progress.SetBar(100);
}

QString FaxStatus::EndText(WaitEnd end) const
{
    if (end == WaitEnd::Replied && strError.isEmpty())
        return Tr("Tasks were completed successfully.");
    if (rooms.session.bUserAbort)
        return Tr("User abort.");
    return rooms.session.IsConnected() ? Tr("Failed to get fax status.") : Tr("Disconnect from the server");
}

void FaxStatus::ShowFaxes()
{
    if (outcome.aChanged.isEmpty() && outcome.aUnknown.isEmpty())
        return;
    rooms.mailbox.FollowFaxes(outcome.aChanged, outcome.aUnknown);
    rooms.mailbox.RefreshFolderUnreadCounts();
}

void FaxStatus::ReportError()
{
    // The periodic run meets the same error every time: once is enough until a run goes well.
    const bool known = bErrorShown;
    bErrorShown = !strError.isEmpty();
    if (bErrorShown && !known && !ports.pump.IsQuitting())
        ports.message.ShowMessage(strError, mbExclamation);
}
