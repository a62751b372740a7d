#pragma once

#include <QString>
#include <QStringList>

class Store;

/// Puts fax files into mailboxes.
namespace Delivery {

/// `copies` faxes of each file, each with an id of its own, and each distributed to all of the users. Raises
/// `ServerError` for an unknown user or a file that is no TIFF; then nothing is delivered.
void Deliver(Store &store, const QStringList &logins, const QStringList &files, int copies);

} // namespace Delivery
