#pragma once

#include "Calls.h"
#include "Mailboxes.h"

#include <QByteArray>

struct Account;

/// The lines of the replies, each a record of fields.
namespace Records {

/// The 14 fields of a fax that is about to be sent.
QByteArray OfFax(const Fax &fax);
/// The seven fields of the state of a sent fax, with its calls in their order.
QByteArray OfState(const Fax &fax, const QList<Call> &calls);
/// The state of a fax that the server does not have: removed here.
QByteArray OfUnknownState(const QString &id);
QByteArray OfAccount(const Account &account);

/// Reads "from;to", a NUL, and the flags for sending, sent, failed and received faxes.
std::optional<HistoryRange> RangeOf(const QString &request);

} // namespace Records
