#include "Answers.h"

#include "Lines.h"
#include "Logins.h"
#include "OutgoingFaxes.h"
#include "Records.h"
#include "ServerError.h"
#include "ServerTime.h"
#include "Store.h"
#include "WireText.h"

#include <QFile>
#include <QRegularExpression>

#include <algorithm>

using namespace Frames;
using namespace WireText;

namespace {

const QString strCompany = "Northgate Joinery";

QStringList IdsOf(const QByteArray &body, char separator)
{
    return FromAnsi(body).split(QLatin1Char(separator), Qt::SkipEmptyParts);
}

} // namespace

Answers::Answers(Store &store, Logins &logins, OutgoingFaxes &outgoing, Lines &lines)
    : objStore(store)
    , objLogins(logins)
    , objOutgoing(outgoing)
    , objLines(lines)
{
}

Answers::Reply Answers::To(const Requests::Request &request, Session &session, QTcpSocket *socket)
{
    const QByteArray &body = request.abBody;
    if (request.lCommand == cmdLogIn)
        return {LogIn(body, session, socket), {}, {}, false};
    if (!session.account)
        return {Refused(refNotLoggedIn), {}, {}, false};
    switch (request.lCommand) {
    case cmdLogOut:
        return {Ok(), {}, {}, true};
    case cmdGetContactVersion:
        return {Versions(), {}, {}, false};
    case cmdGetPublicContactGroup:
        return Addresses(AddressBook::lstGroups);
    case cmdGetPublicContacts:
        return Addresses(AddressBook::lstContacts);
    case cmdGetDepartmentList:
        return Addresses(AddressBook::lstDepartments);
    case cmdGetNewFaxList:
        return {NewFaxList(session), {}, {}, false};
    case cmdGetFax:
        return FaxFor(body, session);
    case cmdGetFaxState:
        return {FaxStates(body, session), {}, {}, false};
    case cmdGetHistoryList:
        return {HistoryList(body, session), {}, {}, false};
    case cmdChangePassword:
        return {ChangePassword(body, session), {}, {}, false};
    case cmdGetUserList:
        return {UserList(), {}, {}, false};
    case cmdCancelSendingFax:
        return {Cancel(body, session), {}, {}, false};
    case cmdResendErrorFax:
        return {Resend(body, session), {}, {}, false};
    case cmdNewFaxReceived:
        return {TakeAcknowledgement(session), {}, {}, false};
    case cmdGetFaxConfigAndKeepTouckTime:
        return {Ok({Record({"1", "150", "0"})}), {}, {}, false};
    case cmdSendReturnReceipt:
        return {TakeReceipts(body, session), {}, {}, false};
    case cmdGetReturnReceiptState:
        return {ReceiptStates(body, session), {}, {}, false};
    default:
        return {Ok(), {}, {}, false};
    }
}

QByteArray Answers::LogIn(const QByteArray &body, Session &session, QTcpSocket *socket)
{
    const qsizetype lineEnd = body.indexOf("\r\n");
    if (lineEnd < 0)
        return Refused(refBadRequest);
    const std::optional<Account> account = objStore.accounts.Find(FromAnsi(body.left(lineEnd)));
    if (!account || account->strDigest != FromAnsi(body.mid(lineEnd + 2)))
        return Refused(refWrongPassword);
    if (account->bLocked)
        return Refused(refLocked);
    if (const int refusal = objLogins.Enter(account->strID, socket))
        return Refused(refusal);
    session = Session();
    session.account = account;
    return Ok();
}

QByteArray Answers::ChangePassword(const QByteArray &body, Session &session)
{
    static const QRegularExpression digest("^[0-9A-F]{32}$");
    const QStringList fields = FromAnsi(body).split(QChar(0));
    if (fields.size() != 3 || !digest.match(fields[2]).hasMatch())
        return Refused(refBadRequest);
    const std::optional<Account> account = objStore.accounts.Find(fields[0]);
    if (!account || account->strID != session.account->strID || account->strDigest != fields[1])
        return Refused(refWrongPassword);
    objStore.accounts.SetDigest(account->strID, fields[2]);
    return Ok();
}

QByteArray Answers::Versions() const
{
    const auto version = [this](AddressBook::List list) {
        return QByteArray::number(objStore.addresses.Version(list));
    };
    return Ok({Record({version(AddressBook::lstGroups), version(AddressBook::lstContacts),
                       version(AddressBook::lstUsers), version(AddressBook::lstDepartments),
                       Field(strCompany), QByteArray::number(OutgoingFaxes::lServerInterval),
                       QByteArray::number(OutgoingFaxes::lServerResends), ToAnsi(objStore.ServerID())})});
}

Answers::Reply Answers::Addresses(AddressBook::List list) const
{
    return {Ok(objStore.addresses.Lines(list)), {}, {}, false};
}

QByteArray Answers::UserList() const
{
    QByteArrayList lines;
    for (const Account &account : objStore.accounts.All())
        lines.append(Records::OfAccount(account));
    return Ok(lines);
}

QByteArray Answers::NewFaxList(Session &session)
{
    session.aListed.clear();
    session.unfinished.clear();
    QByteArrayList lines;
    for (const Fax &fax : objStore.mailboxes.Waiting(session.account->strID)) {
        session.aListed.append(fax.strID);
        lines.append(Record({ToAnsi(fax.strID), QByteArray::number(fax.lSize)}));
    }
    return Ok(lines);
}

QByteArray Answers::HistoryList(const QByteArray &body, Session &session)
{
    const std::optional<HistoryRange> range = Records::RangeOf(FromAnsi(body));
    if (!range)
        return Refused(refBadRequest);
    session.aListed.clear();
    session.unfinished.clear();
    QByteArrayList lines;
    for (const Fax &fax : objStore.mailboxes.History(session.account->strID, *range)) {
        session.aListed.append(fax.strID);
        lines.append(
            Record({ToAnsi(fax.strID), QByteArray::number(fax.lSize), QByteArray::number(fax.lKind)}));
    }
    return Ok(lines);
}

Answers::Reply Answers::FaxFor(const QByteArray &body, Session &session)
{
    const QString id = FromAnsi(body.mid(body.indexOf('\0') + 1));
    const std::optional<Fax> fax = objStore.mailboxes.Find(session.account->strID, id);
    if (!fax)
        return {Refused(refNoSuchFax), {}, {}, false};
    session.unfinished.insert(id);
    return {Ok({Records::OfFax(*fax)}), objStore.mailboxes.PathOf(fax->strFile), id, false};
}

/// A listed fax that was never asked for is one that the client has already; one that left only in part
/// waits on.
QByteArray Answers::TakeAcknowledgement(Session &session)
{
    QStringList taken;
    for (const QString &id : std::as_const(session.aListed)) {
        if (!session.unfinished.contains(id))
            taken.append(id);
    }
    objStore.mailboxes.Acknowledge(session.account->strID, taken);
    session.aListed.clear();
    return Ok();
}

QByteArray Answers::FaxStates(const QByteArray &body, Session &session)
{
    QByteArrayList lines;
    for (const QString &id : IdsOf(body, '\0'))
        lines.append(FaxState(id, session));
    return Ok(lines);
}

QByteArray Answers::FaxState(const QString &id, Session &session)
{
    std::optional<Fax> fax = objStore.mailboxes.Find(session.account->strID, id);
    if (!fax || fax->lKind == kindReceived)
        return Records::OfUnknownState(id);
    const QList<Call> calls = objStore.calls.OfFax(id);
    QByteArray record = Records::OfState(*fax, calls);
    if (fax->lKind == kindSending && std::exchange(session.told[id], record) == record) {
        fax->lKind = kindUnchanged;
        record = Records::OfState(*fax, calls);
    }
    return record;
}

/// All ids of a request; those of faxes that the account does not have are reported.
QStringList Answers::FaxIds(const QByteArray &body, const Session &session) const
{
    const QStringList ids = IdsOf(body, ';');
    const auto foreign = std::count_if(ids.begin(), ids.end(), [&](const QString &id) {
        return !objStore.mailboxes.Find(session.account->strID, id);
    });
    if (foreign > 0)
        Complain(ServerError(QString("%1: ids that are of no fax of this account: %2")
                                 .arg(session.account->strLogin, QString::number(foreign))));
    return ids;
}

QByteArray Answers::Cancel(const QByteArray &body, const Session &session)
{
    QStringList cancelled;
    const auto changes = objStore.Change();
    for (const QString &id : FaxIds(body, session)) {
        if (objOutgoing.Cancel(session.account->strID, id))
            cancelled.append(id);
    }
    changes->Commit();
    for (const QString &id : std::as_const(cancelled))
        objLines.HangUp(id);
    objLines.Wake();
    return Ok();
}

QByteArray Answers::Resend(const QByteArray &body, const Session &session)
{
    QByteArray accepted;
    const auto changes = objStore.Change();
    for (const QString &id : FaxIds(body, session))
        accepted += objOutgoing.Resend(session.account->strID, id) ? "1;" : "0;";
    changes->Commit();
    objLines.Wake();
    return Ok({accepted});
}

/// Every id is acknowledged, since a client keeps what is not and sends it again and again.
QByteArray Answers::TakeReceipts(const QByteArray &body, const Session &session)
{
    QByteArray taken;
    const auto changes = objStore.Change();
    for (const QString &id : IdsOf(body, ';')) {
        objStore.mailboxes.MarkRead(session.account->strID, id, ServerTime::Now());
        taken += Field(id) + ';';
    }
    changes->Commit();
    return Ok({taken});
}

QByteArray Answers::ReceiptStates(const QByteArray &body, const Session &session)
{
    QByteArrayList lines;
    for (const QString &id : IdsOf(body, ';')) {
        if (const std::optional<Fax> fax = objStore.mailboxes.Find(session.account->strID, id))
            lines.append(ToAnsi(id) + '\1' + ToAnsi(fax->strReceipts));
    }
    return Ok(lines);
}
