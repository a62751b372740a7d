#pragma once

#include "ReplyStream.h"
#include "Requests.h"
#include "ScriptPlayer.h"
#include "Session.h"

#include <QObject>
#include <QTimer>

#include <memory>

class Answers;
class Lines;
class OutgoingFaxes;
class QTcpSocket;
class ServerError;
class Store;
class Upload;

/// What the connections of one server share.
struct ServerParts
{
    Store &objStore;
    Answers &objAnswers;
    Script &objScript;
    OutgoingFaxes &objOutgoing;
    Lines &objLines;
};

/// One client: takes its requests in their order and has each answered before the next.
class Connection final : public QObject
{
    Q_OBJECT

public:
    /// Takes the socket over and greets.
    Connection(QTcpSocket *socket, const ServerParts &parts);
    ~Connection() override;

private:
    void TakeInput();
    bool TakeNext();
    bool IsBlocked() const;
    void OnRequest(const Requests::Request &request);
    using Steps = std::optional<QList<ScriptAction>>;

    void Respond(const Steps &steps, int command, ScriptPlayer::Answer answer);
    void Answer(const Requests::Request &request, int fields);
    void BeginUpload(const Requests::Request &request);
    void BeginUploadedFile(const Requests::Request &request);
    void TakeUploadedBytes(const QByteArray &bytes);
    void FinishUpload();
    void Send(int command, const QByteArray &text);
    void ReportUpload(const ServerError &error) const;
    void RefuseAndClose(int reason);

    QTcpSocket *sckClient;
    ServerParts objParts;
    ReplyStream objStream;
    ScriptPlayer objPlayer;
    Session session;
    std::unique_ptr<Upload> objUpload;
    QByteArray abInput;
    QTimer tmrLull; ///< runs behind a request that does not tell its length
    bool bAllCame = false;
    bool bRefused = false; ///< what still comes is not understood
    QString strSending;    ///< the fax whose file goes out
};
