#include "Connection.h"

#include "Answers.h"
#include "ServerError.h"
#include "Store.h"
#include "Upload.h"
#include "WireText.h"

#include <QTcpSocket>

#include <algorithm>
#include <cstdio>

using namespace Frames;
using Requests::Request;

namespace {

constexpr int lLullMilliseconds = 50;
constexpr qint64 lReadAtOnce = 4 * 1024 * 1024;

void Complain(const ServerError &error)
{
    std::fprintf(stderr, "%s\n", error.what());
}

/// Each record of a reply cut to its first fields.
QByteArray CutRecords(const QByteArray &text, int fields)
{
    if (fields <= 0)
        return text;
    QByteArrayList lines;
    qsizetype from = 0;
    for (qsizetype end = text.indexOf("\r\n"); end >= 0; end = text.indexOf("\r\n", from)) {
        lines.append(text.mid(from, end - from).split('\0').mid(0, fields).join('\0'));
        from = end + 2;
    }
    return lines.join("\r\n") + "\r\n";
}

} // namespace

Connection::Connection(QTcpSocket *socket, const ServerParts &parts)
    : sckClient(socket)
    , objParts(parts)
    , objStream(*socket)
    , objPlayer(objStream, *socket)
{
    socket->setParent(this);
    socket->setReadBufferSize(lReadAtOnce);
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    tmrLull.setSingleShot(true);
    tmrLull.setInterval(lLullMilliseconds);
    connect(&tmrLull, &QTimer::timeout, this, [this] {
        bAllCame = true;
        TakeInput();
    });
    connect(socket, &QTcpSocket::readyRead, this, [this] {
        tmrLull.stop();
        bAllCame = false;
        TakeInput();
    });
    connect(&objPlayer, &ScriptPlayer::Done, this, &Connection::TakeInput, Qt::QueuedConnection);
    connect(&objStream, &ReplyStream::Idle, this, &Connection::TakeInput, Qt::QueuedConnection);
    connect(&objStream, &ReplyStream::FileSent, this, [this] { session.unfinished.remove(strSending); });
    Respond(Script::lGreeting, {}, [this](int) { objStream.SendShort("Welcome\r\n1.6 beta\r\n"); });
}

Connection::~Connection() = default;

void Connection::TakeInput()
{
    if (!objPlayer.IsBusy())
        abInput += sckClient->readAll();
    while (!abInput.isEmpty() && !IsBlocked() && TakeNext()) {
    }
}

bool Connection::IsBlocked() const
{
    return objPlayer.IsBusy() || (objStream.IsStreaming() && !abInput.startsWith("GoOn"));
}

/// Takes one frame, or bytes of a file; false when more of it must come first.
bool Connection::TakeNext()
{
    if (objUpload && objUpload->HasBegun()) {
        const QByteArray bytes = abInput.left(objUpload->Missing());
        abInput.remove(0, bytes.size());
        TakeUploadedBytes(bytes);
        return true;
    }
    Request request;
    switch (Requests::Take(abInput, bAllCame, request)) {
    case Requests::cutNeedMore:
        return false;
    case Requests::cutOpenEnded:
        tmrLull.start();
        return false;
    case Requests::cutPermission:
        objStream.Permit();
        return true;
    case Requests::cutWhole:
        OnRequest(request);
        return true;
    case Requests::cutBroken:
        break;
    }
    RefuseAndClose(WireText::refBadRequest);
    return false;
}

void Connection::OnRequest(const Request &request)
{
    if (request.lCommand == cmdFileHeader)
        BeginUploadedFile(request);
    else if (request.lCommand == cmdSendFaxFile && session.account)
        BeginUpload(request);
    else
        Respond(request.lCommand, request, [this, request](int fields) { Answer(request, fields); });
}

void Connection::Respond(int event, const Request &request, ScriptPlayer::Answer answer)
{
    objStream.BeginReply();
    if (const std::optional<QList<ScriptAction>> actions = objParts.objScript.Match(event))
        objPlayer.Play(*actions, Requests::HasLongReply(request.lCommand), std::move(answer));
    else
        answer(0);
}

void Connection::Answer(const Request &request, int fields)
{
    try {
        const Answers::Reply reply = objParts.objAnswers.To(request, session, sckClient);
        const QByteArray text = CutRecords(reply.abText, fields);
        strSending = reply.strFaxID;
        if (reply.strFileToSend.isEmpty()) {
            Send(request.lCommand, text);
        } else if (!objStream.SendFile(text, reply.strFileToSend)) {
            session.unfinished.remove(strSending);
            Send(request.lCommand, WireText::Refused(WireText::refNoSuchFax));
        }
        if (reply.bClose)
            objStream.GetOutlet().Close();
    } catch (const ServerError &error) {
        Complain(error);
        Send(request.lCommand, WireText::Refused(WireText::refStoreFailed));
    }
}

void Connection::Send(int command, const QByteArray &text)
{
    if (Requests::HasLongReply(command))
        objStream.SendLong(text);
    else
        objStream.SendShort(text);
}

void Connection::BeginUpload(const Request &request)
{
    objUpload = std::make_unique<Upload>(objParts.objStore, *session.account, request.abBody);
    Respond(request.lCommand, request, [this](int) { objStream.SendShort(WireText::Ok()); });
}

void Connection::BeginUploadedFile(const Request &request)
{
    // Without a header nobody knows how many of the coming bytes are the file's.
    if (!objUpload)
        return RefuseAndClose(WireText::refBadRequest);
    try {
        objUpload->Begin(request.lFileSize);
    } catch (const ServerError &error) {
        Complain(error);
        return RefuseAndClose(WireText::refStoreFailed);
    }
    TakeUploadedBytes(request.abBody);
}

void Connection::TakeUploadedBytes(const QByteArray &bytes)
{
    try {
        objUpload->Take(bytes);
        if (objUpload->Missing() == 0)
            FinishUpload();
    } catch (const ServerError &error) {
        Complain(error);
        RefuseAndClose(WireText::refStoreFailed);
    }
}

void Connection::FinishUpload()
{
    const QString id = objUpload->Finish(objParts.lLineSeconds);
    objUpload.reset();
    Respond(cmdFileHeader, {}, [this, id](int) { objStream.SendShort(id.toLatin1()); });
}

void Connection::RefuseAndClose(int reason)
{
    abInput.clear();
    objStream.BeginReply();
    objStream.SendShort(WireText::Refused(reason));
    objStream.GetOutlet().Close();
}
