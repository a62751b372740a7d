#include "OutgoingFaxes.h"

#include "FaxHeader.h"
#include "RemoteEnd.h"
#include "ServerTime.h"
#include "Store.h"

#include <algorithm>

namespace {

QString Joined(const QStringList &entries)
{
    return entries.isEmpty() ? QString() : entries.join(';') + ';';
}

bool HasFailed(int kind)
{
    return kind != kindSending && kind != kindSent && kind != kindReceived && kind != kindBadFile &&
           kind != kindRemoved;
}

} // namespace

OutgoingFaxes::OutgoingFaxes(Store &store)
    : objStore(store)
{
}

void OutgoingFaxes::Insert(Fax fax, const FaxHeader &header, const QDateTime &due)
{
    fax.strContacts = Joined(header.aContacts);
    fax.strUsers = Joined(header.aUsers);
    fax.strTyped = Joined(header.aTyped);
    objStore.mailboxes.Insert(fax);
    Call call;
    call.strFax = fax.strID;
    call.lStatus = fax.lKind;
    const bool hasOwn = header.lResends > 0 || header.lInterval > 0;
    call.lResends = hasOwn ? header.lResends : lServerResends;
    call.lInterval = hasOwn ? header.lInterval : lServerInterval;
    call.lLevel = fax.lLevel;
    call.lDue = due.toMSecsSinceEpoch();
    const auto add = [&](Call::Kind kind, const QString &target, const QString &number) {
        call.lKind = kind;
        call.strTarget = target;
        call.strNumber = number;
        objStore.calls.Insert(call);
        ++call.lPlace;
    };
    for (const QString &user : header.aUsers)
        add(Call::toUser, user, {});
    for (const QString &typed : header.aTyped)
        add(Call::toTyped, typed, FaxHeader::NumberOf(typed));
    for (const QString &contact : header.aContacts)
        add(Call::toContact, contact, objStore.addresses.FaxNumber(contact));
}

void OutgoingFaxes::Accept(const Fax &fax, const FaxHeader &header)
{
    const QDateTime now = QDateTime::currentDateTime();
    const auto changes = objStore.Change();
    Insert(fax, header, header.timWanted.isValid() ? std::max(now, header.timWanted) : now);
    if (header.aUsers.isEmpty() && header.aTyped.isEmpty() && header.aContacts.isEmpty())
        Settle(fax.strID, ServerTime::Now());
    changes->Commit();
}

void OutgoingFaxes::DeliverInside(qint64 now)
{
    for (const QString &id : objStore.calls.ToDeliver(now)) {
        const auto changes = objStore.Change();
        DeliverCopies(id);
        changes->Commit();
    }
}

void OutgoingFaxes::DeliverCopies(const QString &id)
{
    const std::optional<Fax> fax = objStore.mailboxes.Find(id);
    for (Call &call : objStore.calls.OfFax(id)) {
        if (call.lKind != Call::toUser || call.lStatus != kindSending)
            continue;
        ++call.lAttempts;
        const bool isDelivered = fax && DeliverCopy(*fax, call.strTarget);
        call.lStatus = isDelivered ? kindSent : kindFailed;
        call.lPagesSent = isDelivered ? call.lPages : 0;
        objStore.calls.Update(call);
    }
    Settle(id, ServerTime::Now());
}

bool OutgoingFaxes::DeliverCopy(const Fax &fax, const QString &account)
{
    if (!objStore.accounts.NameOf(account))
        return false;
    Fax copy = fax;
    copy.strID = Accounts::NewID();
    copy.strOwner = account;
    copy.lKind = kindReceived;
    copy.bWaiting = true;
    copy.strTime = ServerTime::Now();
    copy.strEndTime.clear();
    copy.strDistribution = fax.strID;
    const qsizetype recipients =
        fax.strContacts.count(';') + fax.strUsers.count(';') + fax.strTyped.count(';');
    copy.strReceipts = QString(",0;").repeated(recipients);
    objStore.mailboxes.Insert(copy);
    return true;
}

void OutgoingFaxes::EndCall(Call call, const CallEnd &end, qint64 again)
{
    ++call.lAttempts;
    call.lPagesSent += end.lPages;
    call.lStatus = call.lAttempts > call.lResends ? end.lLastStatus : end.lStatus;
    call.lDue = again;
    const auto changes = objStore.Change();
    objStore.calls.Update(call);
    Settle(call.strFax, ServerTime::Now());
    changes->Commit();
}

void OutgoingFaxes::Settle(const QString &id, const QString &endTime)
{
    objStore.mailboxes.SetState(id, objStore.calls.Outcome(id), endTime);
}

bool OutgoingFaxes::Cancel(const QString &owner, const QString &id)
{
    const std::optional<Fax> fax = objStore.mailboxes.Find(owner, id);
    if (!fax || (fax->lKind != kindSending && !HasFailed(fax->lKind)))
        return false;
    for (Call &call : objStore.calls.OfFax(id)) {
        if (call.lStatus == kindSent)
            continue;
        call.lStatus = kindRemoved;
        objStore.calls.Update(call);
    }
    objStore.mailboxes.SetState(id, kindRemoved, ServerTime::Now());
    return true;
}

bool OutgoingFaxes::Resend(const QString &owner, const QString &id)
{
    const std::optional<Fax> fax = objStore.mailboxes.Find(owner, id);
    if (fax && fax->lKind == kindSending)
        return true;
    if (!fax || !HasFailed(fax->lKind))
        return false;
    for (Call &call : objStore.calls.OfFax(id)) {
        if (call.lStatus == kindSent)
            continue;
        call.lStatus = kindSending;
        call.lAttempts = 0;
        call.lPagesSent = 0;
        ++call.lRound;
        call.lDue = QDateTime::currentMSecsSinceEpoch();
        objStore.calls.Update(call);
    }
    Settle(id, {});
    return true;
}
