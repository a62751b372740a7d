#pragma once

#include "server/wire/Frames.h"

#include <QByteArray>
#include <QFile>
#include <QObject>
#include <QString>

#include <memory>

class Clock;
class EventPump;
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
    /// Values of `lNumber` that are not the socket's own.
    enum Number {
        errReadingFailed = 57,     ///< the file of an upload could not be read to its end
        errHeaderNotAnswered = 748 ///< the server has refused the header of an upload, or not answered it
    };

    int lNumber = 0;
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
    /// The file goes to `folder` (or `strDefaultFolder`), which ends in a slash, `id` and ".tif". `type` is
    /// the listed size. Sends nothing without a folder or with an id that is no safe file name. What the
    /// disk refuses ends as `statFailure` with the connection closed, and leaves no file.
    void GetFax(long type, const QString &id, const QString &folder);
    /// `header` are the fax's fields with a NUL between them. A missing file or an empty header does nothing.
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
    /// The last bytes of an upload are about to go: from here on the server may have the whole file.
    void FileLeaving();
    /// They have gone.
    void FileLeft();
    void Connected();
    void ConnectClosed();
    void ConnectionRequest(int requestId);
    void DataArrival(const ClientReply &reply);
    void Error(const ClientError &error);
    /// An upload has sent its last block; `message` is always empty.
    void SendComplete(const QString &message);

private:
    void sckClient_Connected();
    void sckClient_Closed();
    void sckClient_Error(int number, const QString &description);
    void sckClient_DataArrival();
    void sckClient_SendComplete();
    void sckClient_SendProgress(qint64 bytesSent);

    // Requests
    void SendShort(Frames::Command command, const QByteArray &body = {});
    void SendLong(Frames::Command command, const QByteArray &body = {});
    void SendList(Frames::Command command, const QString &list, bool longReply);
    void SendGoOn();

    // Replies: one routine per state
    void ReadHeaderAnswer(const QByteArray &bytes);
    void ReadShortReply(const QByteArray &bytes);
    void ReadLongReply(const QByteArray &bytes);
    void BeginLongReply(const QByteArray &bytes);
    void TakeOneRead(const QByteArray &bytes);
    void RefuseLongReply(qint64 bytesTotal);
    void AcceptOneRead(qint64 bytesTotal);
    void TakeFirstPart(qint64 bytesTotal);
    void TakePart(qint64 bytesTotal);
    void CompleteLongReply(qint64 bytesTotal);
    void FailLongReply(qint64 bytesTotal);
    void ReportPart(qint64 bytesTotal);
    void Hold(const QByteArray &bytes);
    void tmrSilence_Tick();

    // A file that comes in
    void ReadFile(const QByteArray &bytes);
    void BeginFile(const QByteArray &bytes);
    void ContinueFile(const QByteArray &bytes);
    void CompleteFile(qint64 bytesTotal);
    void FailFile(qint64 bytesTotal);
    void AbandonFile(qint64 bytesTotal);
    void ForgetFile();
    bool OpenForReceiving();
    bool WriteBlock(const QByteArray &bytes, bool last);

    // A file that goes out
    bool WaitServerReady();
    void RunOneWait();
    void ReportNoAnswer();
    void StartUpload(const QString &path);
    void SendFirstBlock(const QByteArray &block);
    void SendNextBlock();
    void SendBlock(const QByteArray &bytes);
    void FinishUpload();
    bool ReadBlock(QByteArray &block);
    void AbandonUpload();

    void ClearCounters();
    void ForgetTransfer();
    ClientReply MakeReply(qint64 bytesTotal, ClientReply::State state, int percent) const;

    EventPump &pump;
    Clock &clock;
    std::unique_ptr<Timer> tmrSilence; ///< ends the wait for the rest of a short first read
    std::unique_ptr<Socket> sckClient;

    QString strDefaultFolder;           ///< folder of `GetFax` when it is given none
    QString strFileName;                ///< file of the transfer under way
    bool bSendingFile = false;          ///< an upload has more blocks to send
    bool bFileLeaving = false;          ///< the last block of an upload is on its way
    bool bReceivingFile = false;        ///< a download is under way
    bool bWaitServerReady = false;      ///< a fax header was sent, its answer is due
    bool bServerReady = false;          ///< the server has answered the header
    bool bHeaderRefused = false;        ///< it was a refusal: its time-out runs
    bool bLongReply = false;            ///< the command just sent has a long reply
    bool bFirstBlock = true;            ///< the next read begins a long reply or a file
    qint64 lBytesDone = -1;             ///< of the file or the long reply, so far
    qint64 lFileSize = -1;              ///< of the file that comes in
    qint64 lSendSize = -1;              ///< of the file that goes out
    qint64 lProgressBytes = -1;         ///< bytes that the socket reports as sent
    qint64 lReplySize = -1;             ///< of the long reply, as declared
    QByteArray abReply;                 ///< long reply so far; during a download its announcement
    QByteArray abHeld;                  ///< first read that is still too short
    QByteArray abWriteBuffer;           ///< downloaded bytes on their way to the file
    std::unique_ptr<QFile> iFileNumber; ///< open file of the transfer; null when none

    int lTransfer = 0;         ///< number of the transfer; a reset by the owner or the socket changes it
    int lAwaitedTransfer = -1; ///< the one whose header's answer is awaited; -1 for none
};
