#pragma once

#include <QObject>
#include <QStringList>

#include <memory>

class Mailbox;
class MainWindow;
class Session;
class Timer;
struct ClientReply;
struct Ports;

/// Tells the server which faxes the user has read, and learns which recipients of a fax have read it.
///
/// What is read stands in the table `ReceiptQueue` until the server has acknowledged it.
class ReturnReceipts final : public QObject
{
    Q_OBJECT

public:
    ReturnReceipts(const Ports &ports, Session &session, Mailbox &mailbox, MainWindow &mainWindow);
    ~ReturnReceipts() override;

    // Steps of a run that owns the connection. Each sets `sent` when a request went out: the caller then
    // waits for the answer. They raise the errors of the database.

    /// Sends the oldest receipts of the queue; the rest follows by itself once these are acknowledged.
    void SendQueuedReceipts(bool &sent);
    /// Asks for the states of all faxes with a recipient who has not read them yet.
    void RequestReceiptStates(bool &sent);

    /// The user has read a fax: sends what is queued, if the client is connected. While another run owns the
    /// connection, or there is none, the queue is kept and sent when there is a free one. Shows no error: a
    /// receipt is no reason to disturb a reader.
    void NotifyReceiptRead();

private:
    void OnCheckFaxTick();
    bool CanSend() const;
    void SendAndWait();
    void HandleReceiptAck(const ClientReply &reply);
    void HandleReceiptStateReply(const ClientReply &reply);
    static bool StoreStates(const QStringList &lines);
    static bool StoreState(const QString &faxID, const QString &receipts);
    static QString GetFirstReader(const QString &receipts, const QString &faxID);

    Session &session;
    Mailbox &mailbox;
    MainWindow &mainWindow;
    std::unique_ptr<Timer> tmrBusyPointer;
    bool bFlushDue = true;    ///< something was read and not sent yet, perhaps in an earlier session
    bool bMoreQueued = false; ///< the last request did not hold the whole queue
};
