#pragma once

#include <QByteArray>
#include <QFile>
#include <QObject>
#include <QString>

#include <memory>

class Socket;
class Timer;
struct Ports;

/// What a `DataArrival` of `clsClient` brings.
struct ClientReply
{
    /// Values of `lState`.
    enum State {
        statShort = 0,    ///< a short reply, complete
        statFailure = 1,  ///< a long reply began with "ERR", or more came than was declared
        statFileDone = 2, ///< a file has been received whole and closed; `strFileName` names it
        statPart = 3,     ///< part of a long reply or of a file; more to come
        statComplete = 4  ///< a long reply is complete, or the server has answered a fax header
    };

    qint64 bytesTotal = 0; ///< bytes of the read
    QString strFileName;   ///< empty but for `statFileDone`
    QByteArray abData;     ///< for a file the text of its announcement
    int lPercent = 0;
    qint64 lTotal = -1;
    qint64 lCurrent = -1;
    int lState = statShort;
};

struct ClientError
{
    int lNumber = 0; ///< the socket's own number, or 748 for an upload whose header was not answered
    QString strDescription;
    QString strSource;
};

/// The client end of the fax protocol over one TCP connection: frames, flow control, files in both
/// directions, and long replies put together. It does not know what a reply means; replies match requests by
/// order alone, one request outstanding at a time.
class clsClient : public QObject
{
    Q_OBJECT

public:
    clsClient(std::unique_ptr<Socket> socket, const Ports &ports);
    ~clsClient() override;

    void Connect(const QString &host, const QString &port);
    void CloseConnect();
    /// A `Socket::SocketState`: 0 closed, 7 connected, 9 error.
    int State() const;
    bool IsConnected() const;
    /// Reads the socket unless it is closed or failed.
    QByteArray GetData();
    /// Sends when the socket is connected, otherwise drops the bytes silently.
    void SendData(const QByteArray &bytes);
    /// Closes the connection and forgets any transfer.
    void Cancel();

    // One method per command. They return at once; the reply comes as `DataArrival`.

    /// Stores the digest that it sent in `password`. `alreadyDigested` means that `password` is one.
    void LogIn(const QString &user, QString &password, bool alreadyDigested);
    void LogOut();
    void GetContactVersion();
    void GetPublicContactGroup();
    void GetPublicContacts();
    void GetNewFaxList();
    /// The file goes to `folder` (or `strDefaultFolder`), `id` and ".tif". `type` is the listed size.
    void GetFax(long type, const QString &id, const QString &folder);
    /// `header` are the fax's fields with a NUL between them. A missing file does nothing.
    void SendFaxFile(const QString &header, const QString &path);
    /// `idList` has a NUL between the ids.
    void GetFaxState(const QString &idList);
    void GetHistoryList(const QString &range);
    /// Both passwords are plain text.
    void ChangePassword(const QString &user, const QString &oldPassword, const QString &newPassword);
    void GetUserList();
    void GetDepartmentList();
    /// The lists of these four have ";" behind each id; an empty list sends nothing.
    void CancelSendingFax(const QString &idList);
    void ResendErrorFax(const QString &idList);
    void SendReturnReceipt(const QString &idList);
    void GetReturnReceiptState(const QString &idList);
    void NewFaxReceived();
    void GetFaxConfigAndKeepTouckTime();

    /// Ends whatever transfer is under way, as a closed connection does: flags, counters and the open file.
    void ResetTransfer();
    /// True while the answer to a fax header is awaited; this wait has its own time-out.
    bool IsWaitingServerReady() const;

signals:
    void SendingProgress(int percent);
    void Connected();
    void ConnectClosed();
    void ConnectionRequest(int requestId);
    void DataArrival(const ClientReply &reply);
    void Error(const ClientError &error);
    /// An upload has sent its last block; `message` is always empty.
    void SendComplete(const QString &message);
};
