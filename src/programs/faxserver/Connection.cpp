#include "Connection.h"

#include "Answers.h"
#include "Lines.h"
#include "ServerError.h"
#include "Store.h"
#include "Upload.h"
#include "WireText.h"

#include <QTcpSocket>

#include <algorithm>

using namespace Frames;
using Requests::Request;

namespace {

constexpr int lLullMilliseconds = 50;
constexpr qint64 lReadAtOnce = 4 * 1024 * 1024;

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
    Respond(parts.objScript.Match(Script::lGreeting), 0,
            [this](int) { objStream.SendShort("Welcome\r\n1.6 beta\r\n"); });
}

Connection::~Connection()
{
    if (objUpload && objUpload->HasBegun())
        ReportUpload(ServerError(QString("%1 bytes of its file are missing").arg(objUpload->Missing())));
}

void Connection::TakeInput()
{
    if (!objPlayer.IsBusy())
        abInput += sckClient->readAll();
    if (bRefused)
        abInput.clear();
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
        Respond(objParts.objScript.Match(request.lCommand), request.lCommand,
                [this, request](int fields) { Answer(request, fields); });
}

void Connection::Respond(const Steps &steps, int command, ScriptPlayer::Answer answer)
{
    objStream.BeginReply();
    if (steps)
        objPlayer.Play(*steps, Requests::HasLongReply(command), std::move(answer));
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
    const Steps steps = objParts.objScript.Match(request.lCommand);
    objUpload.reset();
    try {
        objUpload = std::make_unique<Upload>(objParts.objStore, *session.account, request.abBody);
        if (steps && Script::Has(*steps, ScriptAction::actKeepID))
            objUpload->KeepID();
    } catch (const ServerError &error) {
        ReportUpload(error);
        objUpload.reset();
        objStream.BeginReply();
        objStream.SendShort(WireText::Refused(WireText::refBadRequest));
        return;
    }
    if (steps && Script::Has(*steps, ScriptAction::actRefuse))
        objUpload.reset();
    Respond(steps, request.lCommand, [this](int) { objStream.SendShort(WireText::Ok()); });
}

void Connection::BeginUploadedFile(const Request &request)
{
    // Without a header nobody knows how many of the coming bytes are the file's.
    if (!objUpload)
        return RefuseAndClose(WireText::refBadRequest);
    try {
        objUpload->Begin(request.lFileSize);
    } catch (const ServerError &error) {
        ReportUpload(error);
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
        ReportUpload(error);
        RefuseAndClose(WireText::refStoreFailed);
    }
}

/// A fax that a script refuses is not kept.
void Connection::FinishUpload()
{
    const Steps steps = objParts.objScript.Match(cmdFileHeader);
    const std::unique_ptr<Upload> upload = std::move(objUpload);
    QString id;
    if (!steps || !Script::Has(*steps, ScriptAction::actRefuse))
        id = upload->Finish(objParts.objOutgoing);
    Respond(steps, cmdFileHeader, [this, id](int) { objStream.SendShort(id.toLatin1()); });
    objParts.objLines.Wake();
}

void Connection::ReportUpload(const ServerError &error) const
{
    Complain(
        ServerError(QString("%1: a fax is refused: %2").arg(session.account->strLogin, error.Description())));
}

void Connection::RefuseAndClose(int reason)
{
    bRefused = true;
    objUpload.reset();
    abInput.clear();
    objStream.BeginReply();
    objStream.SendShort(WireText::Refused(reason));
    objStream.GetOutlet().Close();
}
