#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

class Message;
class ShownMailbox;

/// How faxes become read and unread: by command, by a click on the icon of an unread one, or by having been
/// on show for a while. Reading a received fax queues a return receipt.
class ReadMarks final : public QObject
{
    Q_OBJECT

public:
    ReadMarks(ShownMailbox &mailbox, Message &message);

    // Commands on the selected faxes
    void mnuHadRead();
    void mnuUnRead();
    /// A click on the icon of an unread fax. Only Incoming itself and the Recycle bin ask and mark.
    void ClickReadIcon(int row);
    /// The user has opened a fax of `SendFax` or `ReceiveFax`. Raises the errors of the database.
    void MarkOpened(const QString &id, bool isSent);
    /// The fax on show has been so for the time that the user has set. Incoming itself is left alone: there
    /// reading is an act of the user, since the sender learns of it.
    void OnMarkFaxTick();

signals:
    /// There may be something to tell the server.
    void ReceiptsQueued();

private:
    void Guard(const QString &routine, const std::function<void()> &run);
    bool MarkReceivedAsked(const QStringList &ids);
    void ShowMarks(const QStringList &ids, bool read);
    void MarkReceived(const QStringList &ids);

    ShownMailbox &mailbox;
    Message &message;
};

/// Writes that the user has read a received fax and queues its receipt. False when it was read already or is
/// unknown. Raises the errors of the database.
bool MarkReceivedFaxRead(const QString &id);

/// Queues the receipts of received faxes that wait for one. False when an error has left them unqueued: a
/// receipt is no reason to disturb a reader.
bool QueueReceipts(const QStringList &ids);
