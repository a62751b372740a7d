#include "core/AnsiText.h"
#include "core/Globals.h"
#include "core/Message.h"
#include "core/RaisedError.h"
#include "core/Utilities.h"
#include "core/ports/Ports.h"
#include "core/ports/Socket.h"
#include "server/Session.h"
#include "server/wire/clsClient.h"

#include <QCoreApplication>
#include <QScopeGuard>
#include <QStringList>

namespace {
QStringList Lines(const ClientReply &reply)
{
    return AnsiText::FromAnsi(reply.abData).split("\r\n");
}

WaitEnd EndOf(const ClientError &error)
{
    switch (error.lNumber) {
    case ClientError::errHeaderNotAnswered:
        return WaitEnd::Refused;
    case ClientError::errReadingFailed:
        return WaitEnd::Failed;
    default:
        return WaitEnd::Closed;
    }
}
} // namespace

void Session::SetHandler(PendingCommand pending, Handler handler)
{
    handlers[pending] = std::move(handler);
}

void Session::SetOwnHandlers()
{
    const Handler signal = [this](const ClientReply &) { SignalServerReply(); };
    SetHandler(pndCancelSending, [this](const ClientReply &reply) {
        if (reply.lState != ClientReply::statPart) // the rest would answer the next command
            SignalServerReply();
    });
    SetHandler(pndLogIn, signal);
    SetHandler(pndLogOut, [this](const ClientReply &) {
        bReplyDone = true;
        SignalServerReply();
    });
    SetHandler(pndChangePassword, [this](const ClientReply &reply) { HandlePasswordReply(reply); });
    SetHandler(pndFaxConfig, [this](const ClientReply &reply) { HandleConfigReply(reply); });
}

void Session::sockClient_DataArrival(const ClientReply &reply)
{
    if (!bAcceptReplies)
        return;
    waits.ResetSilence();
    ++lHandlers;
    const auto leave = qScopeGuard([this] { --lHandlers; });
    try {
        HandleReply(reply);
    } catch (const RaisedError &error) {
        strHandlerError = error.Description();
        waits.Signal(WaitEnd::Failed);
    }
}

void Session::HandleReply(const ClientReply &reply)
{
    if (reply.lState == ClientReply::statFailure) {
        HandleFailure(reply);
        return;
    }
    if (lPendingCommand == pndGreeting &&
        AnsiText::FromAnsi(reply.abData).contains("Welcome", Qt::CaseInsensitive))
        SignalServerReply();
    else
        Dispatch(reply);
}

void Session::HandleFailure(const ClientReply &reply)
{
    bReplyRefused = true;
    const bool refused = reply.abData.startsWith("ERR");
    if (!refused)
        MarkOutOfStep(); // more came than was declared: where the next reply begins is unknown
    if (lPendingCommand == pndFax)
        progress.ChangePos2(-1, CurrentFaxIndex, 100);
    waits.Signal(refused ? WaitEnd::Refused : WaitEnd::Failed);
    // The client itself has closed the connection when its disk refused a file: no fault of the server.
    if (Lines(reply).size() == 1 && IsConnected())
        ports.message.ShowMessage(
            QCoreApplication::translate("Session", "Unexpected data received from server!"), mbExclamation);
}

void Session::Dispatch(const ClientReply &reply)
{
    if (lPendingCommand == pndReceiptStates && reply.lState != ClientReply::statComplete)
        return;
    // A long reply that came in one read is reported as a part before it is reported as complete.
    if (reply.lState == ClientReply::statPart && reply.lCurrent == reply.lTotal)
        return;
    const auto found = handlers.find(lPendingCommand);
    if (found != handlers.end())
        found->second(reply);
}

void Session::HandlePasswordReply(const ClientReply &reply)
{
    if (Lines(reply).first() == "OK") {
        bPwdChanged = true;
        ports.message.ShowMessage(QCoreApplication::translate("Session", "Your new password has been saved."),
                                  mbInformation);
    }
    SignalServerReply();
}

void Session::HandleConfigReply(const ClientReply &reply)
{
    const QStringList lines = Lines(reply);
    const QStringList fields = lines.size() > 1 ? lines[1].split(QChar(0)) : QStringList();
    if (fields.size() >= 3) {
        Global().objDB->Execute(
            QStringLiteral("Update Option Set ServerResolve='%1',ServerDeepness='%2',DisconnectTime='%3'")
                .arg(EscapeText(fields[0]), EscapeText(fields[1]), EscapeText(fields[2])));
        Global().ServerResolve = ToNumber(fields[0]);
        Global().ServerDeepness = ToNumber(fields[1]);
        Global().DisconnectTime = ToNumber(fields[2]);
    }
    SignalServerReply();
}

void Session::sockClient_ConnectClosed()
{
    sockClient->CloseConnect();
    waits.Signal(WaitEnd::Closed);
}

void Session::sockClient_Error(const ClientError &error)
{
    if (error.lNumber == Socket::sckConnectionRefused)
        bConnectRefused = true;
    waits.Signal(EndOf(error));
    if (!bUserLogout)
        sockClient_ConnectClosed();
}

void Session::sockClient_SendingProgress(int percent)
{
    waits.ResetSilence();
    if (lPendingCommand != pndUpload)
        return;
    if (!bUserAbort) {
        if (upload.progress)
            upload.progress(percent);
        return;
    }
    CancelTransfer();
    bNeedRefresh = true;
    if (bUserLogout)
        bAbortDone = true;
    else
        SignalServerReply();
}

void Session::sockClient_FileLeaving()
{
    if (lPendingCommand != pndUpload || !upload.leaving)
        return;
    try {
        upload.leaving();
    } catch (const RaisedError &error) {
        strHandlerError = error.Description();
        waits.End(WaitEnd::Failed);
        CloseConnection();
    }
}

void Session::sockClient_FileLeft()
{
    if (lPendingCommand == pndUpload && upload.left)
        upload.left();
}
