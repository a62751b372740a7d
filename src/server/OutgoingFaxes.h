#pragma once

#include "server/FaxInfo.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/// The rows and files of the faxes on their way from "Outgoing" to "Sending". All of it raises the database
/// layer's errors; times are "YYYY-MM-DD HH:MM:SS".
///
/// `sSndReserve1` holds the id under which a fax was last handed to the server. While that is still its id
/// and the fax waits in "Outgoing", the server may have it without this side having got the answer. Once the
/// fax has got another id, it names the file whose old name may be left over.
namespace OutgoingFaxes {

/// Ids of all that wait, in the order of the table.
QStringList Waiting();

struct Doubtful
{
    QString strFaxID;
    QString strTitle;
};
/// Those among `ids` that the server may have already.
QList<Doubtful> MayHaveArrived(const QStringList &ids);

/// The row of a fax; nothing when there is none.
std::optional<OutgoingFax> Read(const QString &id);

/// Full path of the file of that name in the outbox, in whatever case. It need not exist.
QString PathOf(const QString &fileName);
/// True for a file that can be read and has a size that the server takes: 1 byte to 2 GiB less 1.
bool IsSendable(const QString &path);

/// To be called before the last bytes of the file go.
void MarkHandedOver(const QString &id);
/// The file has not gone after all. An empty id does nothing.
void Unmark(const QString &id);

/// True when a fax has this id, or a file with its name.
bool IsTaken(const QString &id);
/// The server has accepted the fax under an id of its own: row and file get it, and the fax is in "Sending".
/// At every moment the row names a complete file. `path` is the file that was sent. The fax `nextID`, if it
/// is not empty, is marked as handed over with the same write to the disk: one of its own takes as long.
void Accept(const QString &id, const QString &newID, const QString &path, const QString &time,
            const QString &nextID = {});
/// The fax goes to "Sending" under the id that it has; nothing happens when it has got another. `answered`
/// ends the doubt.
void MoveToSending(const QString &id, bool answered, const QString &time);

/// Takes away the old names of accepted faxes, where that has not been done, and forgets them.
void DropOldNames();

/// Completes what a run that was killed has left half done.
void Recover(const QString &time);

} // namespace OutgoingFaxes
