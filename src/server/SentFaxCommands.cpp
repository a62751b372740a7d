#include "server/SentFaxCommands.h"

#include "core/AnsiText.h"
#include "core/Globals.h"
#include "core/Message.h"
#include "core/Utilities.h"
#include "core/ports/Clock.h"
#include "core/ports/EventPump.h"
#include "core/ports/Ports.h"
#include "desktop/MainWindow.h"
#include "mailbox/Mailbox.h"
#include "server/Progress.h"
#include "server/RunScope.h"
#include "server/Session.h"
#include "server/wire/clsClient.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QScopeGuard>

#include <algorithm>
#include <iterator>

namespace {

constexpr int lTaken = 1; ///< the server's answer for a fax that it sends again

QString Tr(const char *text)
{
    return QCoreApplication::translate("SentFaxCommands", text);
}

/// Those that may stand in a statement.
QStringList SafeIds(const QStringList &ids)
{
    QStringList safe;
    std::copy_if(ids.begin(), ids.end(), std::back_inserter(safe), IsSafeFaxID);
    return safe;
}

QString Quoted(const QStringList &ids)
{
    return '\'' + ids.join("','") + '\'';
}

/// As the server takes it.
QString ListOf(const QStringList &ids)
{
    return ids.join(';') + ';';
}

} // namespace

SentFaxCommands::SentFaxCommands(const Ports &ports, const StatusRooms &rooms)
    : ports(ports)
    , rooms(rooms)
{
    rooms.session.SetHandler(pndResend, [this](const ClientReply &reply) { HandleResendReply(reply); });
}

/// False when nothing was run. However the run ends, the main window is free again afterwards.
bool SentFaxCommands::RunAlone(const QString &text, const std::function<void()> &run)
{
    const RunScope scope(rooms.session);
    if (!scope || !rooms.session.HasClient()) {
        Say(Tr("A transfer is under way, please try again when it has ended."));
        return false;
    }
    rooms.progress.ShowSoon(rooms.mainWindow.IsActive()); // mostly the answer comes at once
    rooms.progress.ClearRows();
    rooms.progress.SetBar(0);
    rooms.progress.SetText(text);
    rooms.progress.SetButtonEnabled(false);
    rooms.session.SetIdleState(false);
    const auto end = qScopeGuard([this] {
        rooms.session.lPendingCommand = pndNone;
        rooms.progress.SetButtonEnabled(true);
        rooms.progress.Unload();
    });
    rooms.session.bSendTimedOut = false;
    ports.pump.RunPending();
    run();
    return true;
}

void SentFaxCommands::ShowFaxes(const QStringList &ids)
{
    if (ports.pump.IsQuitting())
        return;
    rooms.mailbox.FollowFaxes(ids, {});
    rooms.mailbox.RefreshFolderUnreadCounts();
}

void SentFaxCommands::Say(const QString &text)
{
    if (!ports.pump.IsQuitting())
        ports.message.ShowMessage(text, mbExclamation);
}

// Cancel

void SentFaxCommands::mnuCancelSend(const QStringList &selected)
{
    const QStringList ids = SafeIds(selected);
    bool isConfirmed = false;
    const bool hasRun = !ids.isEmpty() && RunAlone(Tr("Abort sending fax......"), [&] {
        Global().objDB->Execute("Update SendFax Set FolderID='1002',RecyleID='1008' Where Fax_ID in(" +
                                Quoted(ids) + ")");
        ShowFaxes(ids);
        isConfirmed = Cancel(ids);
    });
    if (hasRun && !isConfirmed)
        Say(Tr("The server has not confirmed that it stops. It may still send what is in the Recycle bin "
               "now."));
}

bool SentFaxCommands::Cancel(const QStringList &ids)
{
    if (!rooms.session.ConnectToServer())
        return false;
    rooms.session.BeginCommand(pndCancelSending).CancelSendingFax(ListOf(ids));
    return rooms.session.WaitForServerReply() == WaitEnd::Replied;
}

// Resend

void SentFaxCommands::mnuResendError(const QStringList &selected)
{
    const QStringList ids = SafeIds(selected);
    bool isConnected = false;
    const bool hasRun = !ids.isEmpty() && RunAlone(Tr("Resend fax..."), [&] {
        isConnected = rooms.session.ConnectToServer();
        if (isConnected)
            Resend(ids);
    });
    if (!hasRun)
        return;
    if (!isConnected)
        Say(Tr("Failed to connect to Velmar Server."));
    else if (!rooms.session.HandlerError().isEmpty()) // of the tables: the server may have taken them
        Say(Tr("Failed to resend fax.") + '\n' + rooms.session.HandlerError());
    else if (!ResendIDs.isEmpty())
        Say(Tr("The server has not said whether it sends again. It may still send what stays in "
               "Undelivered."));
    else if (aResent.isEmpty())
        Say(Tr("The server sends nothing of it again. It stays in Undelivered."));
    else if (aResent.size() < ids.size())
        Say(Tr("The server sends %1 of %2 faxes again. The others stay undelivered.")
                .arg(QString::number(aResent.size()), QString::number(ids.size())));
}

void SentFaxCommands::Resend(const QStringList &ids)
{
    aResent.clear();
    ResendIDs = ListOf(ids);
    rooms.session.BeginCommand(pndResend).ResendErrorFax(ResendIDs);
    if (rooms.session.WaitForServerReply() == WaitEnd::Refused)
        ResendIDs.clear();
    ShowFaxes(aResent);
}

/// An answer that does not match the request changes nothing. `ResultDetailed` keeps what the failed attempt
/// has left: the next state is compared with it.
void SentFaxCommands::HandleResendReply(const ClientReply &reply)
{
    if (reply.lState == ClientReply::statPart)
        return;
    const QStringList lines = AnsiText::FromAnsi(reply.abData).split("\r\n");
    const QStringList answers = lines.value(1).split(';');
    const QStringList ids = ResendIDs.split(';');
    if (lines.size() > 1 && answers.size() == ids.size()) {
        QStringList taken;
        for (qsizetype i = 0; i < ids.size() - 1; ++i) {
            if (NumericPrefix(answers[i]) == lTaken)
                taken.append(ids[i]);
        }
        if (!taken.isEmpty())
            Global().objDB->Execute(
                QStringLiteral("Update SendFax Set FolderID='1005',Result='Sending',SendTime='%1' Where "
                               "Fax_ID in(%2)")
                    .arg(ports.clock.Now().toString("yyyy-MM-dd HH:mm:ss"), Quoted(taken)));
        aResent = taken;
        ResendIDs.clear();
    }
    rooms.session.SignalServerReply();
}
