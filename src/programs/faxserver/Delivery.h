#pragma once

#include <QString>
#include <QStringList>

class Store;

/// Puts fax files into a user's mailbox.
namespace Delivery {

/// `copies` faxes of each file, each with an id of its own. Raises `ServerError` for an unknown user or
/// a file that is no TIFF; then nothing is delivered.
void Deliver(Store &store, const QString &login, const QStringList &files, int copies);

} // namespace Delivery
