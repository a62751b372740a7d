#pragma once

#include "server/FaxListReply.h"

#include <QString>
#include <QStringList>

/// The tables and folders that fetched faxes go to. Raises the database layer's errors.
namespace FaxStore {

/// True when the table of the fax's kind has its row.
bool Exists(const NewFaxItem &item);
/// The folder that the fax's file belongs to.
QString TargetFolder(const NewFaxItem &item);
/// Inserts the fax's row.
void Store(const NewFaxItem &item, const QStringList &fields);
/// The name under which the notifier and the printing find a stored fax in the inbox folder; empty for a
/// sent one.
QString InboxName(const NewFaxItem &item, const QStringList &fields);

} // namespace FaxStore
