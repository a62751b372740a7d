#include "core/AnsiText.h"
#include "core/Message.h"
#include "core/ports/Clock.h"
#include "core/ports/EventPump.h"
#include "core/ports/Ports.h"
#include "server/AddressList.h"
#include "server/AddressStore.h"
#include "server/AddressSync.h"
#include "server/Progress.h"
#include "server/Session.h"
#include "server/wire/clsClient.h"

#include <QCoreApplication>
#include <QScopeGuard>

namespace {

constexpr int lLongestStretch = 30; // milliseconds without events between single statements

} // namespace

void AddressSync::HandleVersionReply(const ClientReply &reply)
{
    const QStringList lines = AnsiText::FromAnsi(reply.abData).split("\r\n");
    rooms.session.ServerVersions = lines.size() > 1 ? lines[1].split(QChar(0)) : QStringList();
    rooms.session.SignalServerReply();
}

void AddressSync::HandleContactGroupReply(const ClientReply &reply)
{
    HandleListReply(AddressList::ContactGroups(), reply);
}

void AddressSync::HandleContactsReply(const ClientReply &reply)
{
    HandleListReply(AddressList::Contacts(), reply);
}

void AddressSync::HandleDepartmentReply(const ClientReply &reply)
{
    HandleListReply(AddressList::Departments(), reply);
}

void AddressSync::HandleUserListReply(const ClientReply &reply)
{
    HandleListReply(AddressList::Users(), reply);
}

/// Parts move the bar; the complete reply replaces the list.
void AddressSync::HandleListReply(const AddressList &list, const ClientReply &reply)
{
    if (reply.lCurrent != reply.lTotal) {
        ShowListProgress(reply.lPercent);
        return;
    }
    if (bStoring) { // in the events that run between the rows of a list: nobody has asked for this
        rooms.session.MarkOutOfStep();
        return;
    }
    const AddressListReply cut(reply.abData);
    const bool isStored = cut.IsWhole() && StoreList(list, cut);
    if (isStored && (!cut.Lines().isEmpty() || rooms.session.lPendingCommand == pndContactGroups))
        ShowListProgress(reply.lPercent);
    rooms.session.bReplyDone = true;
    rooms.session.SignalServerReply();
    if (isStored || IsEnded())
        return;
    SyncFailed = true;
    ports.message.ShowMessage(QCoreApplication::translate("Session", "Unexpected data received from server!"),
                              mbExclamation);
}

bool AddressSync::StoreList(const AddressList &list, const AddressListReply &cut)
{
    bStoring = true;
    const auto stored = qScopeGuard([this] { bStoring = false; });
    qint64 since = ports.clock.Milliseconds();
    const auto goOn = [this, &since] {
        if (ports.clock.Milliseconds() - since < lLongestStretch)
            return true;
        ports.pump.RunPending();
        since = ports.clock.Milliseconds();
        return !IsEnded();
    };
    return AddressStore::Replace(list, cut.Lines(), goOn) == AddressStore::Result::Stored;
}

/// The contacts have a row in the window, the other lists only the bar.
void AddressSync::ShowListProgress(int percent)
{
    if (rooms.session.lPendingCommand == pndContacts && !rooms.progress.IsSyncMode())
        rooms.progress.SetWindowMode(true, {}); // once, since each call adds a row
    rooms.progress.ChangePos(percent);
}
