#include "server/FaxUpload.h"

#include "core/AnsiText.h"
#include "core/Globals.h"
#include "core/Message.h"
#include "core/RaisedError.h"
#include "core/Utilities.h"
#include "core/ports/Clock.h"
#include "core/ports/EventPump.h"
#include "core/ports/Ports.h"
#include "desktop/MainWindow.h"
#include "mailbox/Mailbox.h"
#include "mailbox/ShownText.h"
#include "server/OutgoingFaxes.h"
#include "server/Progress.h"
#include "server/RunScope.h"
#include "server/Session.h"
#include "server/wire/Frames.h"
#include "server/wire/clsClient.h"

#include <QCoreApplication>
#include <QScopeGuard>

#include <algorithm>
#include <utility>

namespace {
constexpr qsizetype lIDLength = 32;

QString Tr(const char *text)
{
    return QCoreApplication::translate("FaxUpload", text);
}

QString ErrorText(const QString &description)
{
    return Tr("Failed to send faxes.") + '\n' + description;
}

QString ShownTitle(const QString &id, const QString &title)
{
    return title.isEmpty() ? id : ToListText(title);
}
} // namespace

FaxUpload::FaxUpload(const Ports &ports, const UploadRooms &rooms)
    : ports(ports)
    , rooms(rooms)
{
    rooms.session.SetHandler(pndUpload, [this](const ClientReply &reply) { HandleUploadReply(reply); });
    rooms.session.SetUploadEvents({[this](int percent) { ShowTransfer(percent); }, [this] { MarkCurrent(); },
                                   [this] { stage = std::max(stage, Stage::Left); }});
}

bool FaxUpload::GetSendFaxID(bool useList, const QString &idList, bool clearRows, bool checkStateAfter)
{
    RunScope scope(rooms.session);
    if (!scope && useList)
        TellBusy();
    if (!scope || !rooms.session.HasClient())
        return true;
    const auto leave = qScopeGuard([this] {
        rooms.session.lPendingCommand = pndNone;
        rooms.mainWindow.SetTotalPercent(-1);
        CurrentSendFaxID.clear();
    });
    strError.clear();
    strMarkedAhead.clear();
    bSent = bRowsDropped = false;
    bool result = false;
    try {
        rooms.session.SetIdleState(false);
        rooms.session.bUserAbort = false;
        rooms.session.bSendTimedOut = false;
        rooms.session.bNeedRefresh = false;
        const QStringList ids = PickFaxes(useList, idList);
        result = RunUpload(ids, {clearRows, checkStateAfter});
    } catch (const RaisedError &error) {
        strError = ErrorText(error.Description());
        ShowClose();
        rooms.progress.StopAnimation();
        RefreshMailbox(); // faxes may have gone before it
        rooms.session.SetIdleState(true);
    }
    ReportError();
    return result;
}

void FaxUpload::TellBusy()
{
    if (!ports.pump.IsQuitting())
        ports.message.ShowMessage(
            Tr("A transfer is under way. The fax waits in Outgoing and goes with the next sending."),
            mbInformation);
}

QStringList FaxUpload::PickFaxes(bool useList, const QString &idList)
{
    OutgoingFaxes::Recover(Now());
    QStringList ids = useList ? idList.split(';', Qt::SkipEmptyParts) : OutgoingFaxes::Waiting();
    ids.removeDuplicates(); // an id may have two rows, and goes once
    // One that costs the connection each time must not keep back all others for ever.
    for (const QString &id : std::as_const(aCutAt)) {
        if (ids.removeAll(id) > 0)
            ids.append(id);
    }
    LeaveOutDoubtful(ids);
    return ids;
}

/// A lost connection or a killed program leaves open whether the server has the fax. Only its sender can tell
/// which is worse, none or two.
void FaxUpload::LeaveOutDoubtful(QStringList &ids)
{
    constexpr qsizetype most = 10;
    const QList<OutgoingFaxes::Doubtful> doubtful = OutgoingFaxes::MayHaveArrived(ids);
    aMarked.clear();
    for (const OutgoingFaxes::Doubtful &fax : doubtful)
        aMarked.append(fax.strFaxID);
    if (doubtful.isEmpty())
        return;
    QStringList titles;
    for (const OutgoingFaxes::Doubtful &fax : doubtful.mid(0, most))
        titles.append(ShownTitle(fax.strFaxID, fax.strTitle));
    if (doubtful.size() > most)
        titles.append("...");
    const QString text = Tr("These faxes may already have reached the server:") + "\n\n" + titles.join('\n') +
                         "\n\n" + Tr("Send them again? Otherwise they stay in Outgoing.");
    if (ports.message.ShowMessage(text, mbYesNo + mbQuestion + mbDefaultButton2) == mbAnswerYes)
        return;
    for (const QString &id : aMarked)
        ids.removeAll(id);
}

bool FaxUpload::RunUpload(const QStringList &ids, const Run &run)
{
    if (run.bClearRows)
        rooms.progress.ClearRows();
    rooms.progress.Show();
    if (ids.isEmpty()) {
        EndEmpty(run);
        return true;
    }
    rooms.progress.SetButton("Cancel", Tr("&Cancel"));
    rooms.progress.SetButtonEnabled(true);
    ports.pump.RunPending();
    FaxCount = static_cast<int>(ids.size());
    rooms.progress.SetTotal(FaxCount);
    rooms.session.TotalPercent = 0;
    bool result = true;
    const bool isWhole = SendEach(ids, result);
    OutgoingFaxes::DropOldNames();
    RefreshMailbox();
    Report(rooms.session.CurrentFaxIndex, isWhole, run);
    return result;
}

/// False when the run was cut short at the fax of `CurrentFaxIndex`.
bool FaxUpload::SendEach(const QStringList &ids, bool &result)
{
    bool goesOn = true;
    for (int i = 0; goesOn && i < ids.size(); ++i) {
        strNextID = ids.value(i + 1);
        if (aMarked.contains(strNextID))
            strNextID.clear();
        goesOn = SendOne(ids.at(i), i + 1, result);
        if (!goesOn && !IsStopped() && CurrentSendFaxID == ids.at(i) && !aCutAt.contains(ids.at(i)))
            aCutAt.append(ids.at(i));
        if (strMarkedAhead != strNextID) // it did not go
            OutgoingFaxes::Unmark(std::exchange(strMarkedAhead, {}));
    }
    OutgoingFaxes::Unmark(std::exchange(strMarkedAhead, {}));
    return goesOn;
}

/// The program may die before the answer comes.
void FaxUpload::MarkCurrent()
{
    if (strMarkedAhead == CurrentSendFaxID)
        strMarkedAhead.clear();
    else
        OutgoingFaxes::MarkHandedOver(CurrentSendFaxID);
    stage = Stage::Leaving;
}

/// False when the run cannot go on.
bool FaxUpload::SendOne(const QString &id, int index, bool &result)
{
    Session &session = rooms.session;
    session.CurrentFaxIndex = index;
    ports.pump.RunPending();
    rooms.progress.AddRow("Outputbox/" + id + ".tif");
    rooms.progress.ChangePos2(2, index, 0);
    if (!FileExists(OutgoingFaxes::PathOf(id + ".tif"))) {
        if (session.bUserAbort)
            return false;
        rooms.progress.ChangePos2(4, index, 0);
        return true;
    }
    if (IsStopped())
        return false;
    const bool isUnderWay = SendFax(id, result);
    session.bReplyDone = false;
    if (!MayGoOn())
        return false;
    if (!isUnderWay) {
        rooms.progress.ChangePos2(4, index, 0);
        return true;
    }
    const WaitEnd end = AwaitReply();
    if (IsSent(end)) {
        CompleteFax(id, index); // whether or not the connection still stands: the next fax connects again
        return true;
    }
    return LeaveFax(index, end);
}

bool FaxUpload::IsStopped() const
{
    return rooms.session.bUserAbort || rooms.session.bSendTimedOut || ports.pump.IsQuitting();
}

bool FaxUpload::MayGoOn() const
{
    return rooms.session.IsConnected() && !IsStopped();
}

/// True when the fax is on its way and a reply is due. `result` becomes false when connecting fails, or by an
/// error.
bool FaxUpload::SendFax(const QString &id, bool &result)
{
    try {
        if (rooms.session.ConnectToServer())
            return StartFax(id);
    } catch (const RaisedError &error) {
        ports.message.ShowMessage(error.Description() + Tr("error in sendfax function"), mbExclamation);
    }
    result = false;
    return false;
}

bool FaxUpload::StartFax(const QString &id)
{
    const std::optional<OutgoingFax> fax = OutgoingFaxes::Read(id);
    if (!fax)
        return false;
    strPath = OutgoingFaxes::PathOf(fax->FileName);
    if (!OutgoingFaxes::IsSendable(strPath))
        return false; // the server would wait for a file that never comes
    clsClient &client = rooms.session.BeginCommand(pndUpload);
    rooms.progress.SetCurrent(rooms.session.CurrentFaxIndex);
    CurrentSendFaxID = id;
    strTitle = ShownTitle(id, UnescapeText(fax->Title));
    stage = Stage::Waiting;
    client.SendFaxFile(FaxInfo(*fax, ports.clock.Now(), Global().strUserID), strPath);
    return true;
}

WaitEnd FaxUpload::AwaitReply()
{
    const WaitEnd end = rooms.session.WaitForServerReply();
    if (strError.isEmpty() && !rooms.session.HandlerError().isEmpty())
        strError = ErrorText(rooms.session.HandlerError());
    return end;
}

/// True when the fax is the server's. With its whole file gone and no answer it counts as that, too: the
/// states tell what has become of it.
bool FaxUpload::IsSent(WaitEnd end) const
{
    return stage == Stage::Accepted || (stage == Stage::Left && end == WaitEnd::Silent);
}

/// The fax stays in "Outgoing". False when the run cannot go on with the next one.
bool FaxUpload::LeaveFax(int index, WaitEnd end)
{
    // The client itself has ended the connection then. What is wrong with one fax must not keep back all that
    // wait behind it.
    const bool isOfThisFax =
        end == WaitEnd::Refused || (end == WaitEnd::Failed && rooms.session.HandlerError().isEmpty());
    if (IsStopped() || !(rooms.session.IsConnected() || isOfThisFax))
        return false;
    if (isOfThisFax && strError.isEmpty())
        strError = (end == WaitEnd::Refused
                        ? Tr("The server has not taken this fax, it stays in Outgoing:")
                        : Tr("The file of this fax cannot be read to its end, it stays in Outgoing:")) +
                   "\n\n" + strTitle;
    rooms.session.MarkOutOfStep(); // an answer may still come, and is not the next fax's
    rooms.progress.ChangePos2(4, index, 100);
    return true;
}

void FaxUpload::CompleteFax(const QString &id, int index)
{
    // Finds no row when the answer has given the fax another id.
    OutgoingFaxes::MoveToSending(id, stage == Stage::Accepted, Now());
    rooms.progress.ChangePos2(8, index, 100);
    rooms.session.bNeedRefresh = true;
    // The first row, whichever fax it shows: the list is loaded anew at the end.
    bSent = true;
    bRowsDropped = rooms.mailbox.DropFirstWaiting() || bRowsDropped;
}

void FaxUpload::HandleUploadReply(const ClientReply &reply)
{
    // What comes earlier answers the header.
    if (CurrentSendFaxID.isEmpty() || stage == Stage::Waiting || stage == Stage::Accepted)
        return;
    const QString id = AnsiText::FromAnsi(reply.abData);
    if (id.size() != lIDLength || !IsSafeFaxID(id))
        return; // nothing that could be an id: the watchdog ends the wait
    if (id != CurrentSendFaxID) {
        if (OutgoingFaxes::IsTaken(id))
            return; // another fax's row must not get mixed up with this one
        LastServerFaxID = id;
        OutgoingFaxes::Accept(CurrentSendFaxID, id, strPath, Now(), strNextID);
        strMarkedAhead = strNextID;
    }
    stage = Stage::Accepted;
    rooms.session.SignalServerReply();
}

void FaxUpload::ShowTransfer(int percent)
{
    Session &session = rooms.session;
    if (session.CurrentFaxIndex == 0)
        session.CurrentFaxIndex = 1;
    if (FaxCount == 0)
        return;
    const qint64 done = qint64(session.CurrentFaxIndex - 1) * 100 + percent;
    const int overall = std::clamp(Frames::Percent(done, qint64(FaxCount) * 100), 0, 100);
    if (overall != session.TotalPercent) {
        session.TotalPercent = overall;
        rooms.mainWindow.SetTotalPercent(overall);
    }
    // That of all faxes in the place of this one's: the bar moves slower than the transfer but for the first.
    rooms.progress.ChangePos2(2, session.CurrentFaxIndex, int(overall));
}

QString FaxUpload::Now() const
{
    return ports.clock.Now().toString("yyyy-MM-dd HH:mm:ss");
}
