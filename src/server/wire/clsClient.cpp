#include "server/wire/clsClient.h"

#include "core/ports/Ports.h"
#include "core/ports/Socket.h"
#include "core/ports/Timer.h"
#include "server/wire/Frames.h"

namespace {
constexpr int silenceBeforeDelivery = 1000; // milliseconds
}

clsClient::clsClient(std::unique_ptr<Socket> socket, const Ports &ports)
    : pump(ports.pump)
    , clock(ports.clock)
    , tmrSilence(ports.timers.Create())
    , sckClient(std::move(socket))
{
    connect(sckClient.get(), &Socket::Connected, this, &clsClient::sckClient_Connected);
    connect(sckClient.get(), &Socket::Closed, this, &clsClient::sckClient_Closed);
    connect(sckClient.get(), &Socket::Error, this, &clsClient::sckClient_Error);
    connect(sckClient.get(), &Socket::DataArrival, this, &clsClient::sckClient_DataArrival);
    connect(sckClient.get(), &Socket::SendComplete, this, &clsClient::sckClient_SendComplete);
    connect(sckClient.get(), &Socket::SendProgress, this, &clsClient::sckClient_SendProgress);
    connect(sckClient.get(), &Socket::ConnectionRequest, this, &clsClient::ConnectionRequest);
    tmrSilence->SetInterval(silenceBeforeDelivery);
    connect(tmrSilence.get(), &Timer::Tick, this, &clsClient::tmrSilence_Tick);
}

clsClient::~clsClient() = default;

void clsClient::Connect(const QString &host, const QString &port)
{
    sckClient->Connect(host, port.trimmed().toInt());
}

void clsClient::CloseConnect()
{
    sckClient->Close();
    ResetTransfer();
}

int clsClient::State() const
{
    return sckClient->State();
}

bool clsClient::IsConnected() const
{
    return State() == Socket::sckConnected;
}

QByteArray clsClient::GetData()
{
    const int state = State();
    return state == Socket::sckClosed || state == Socket::sckError ? QByteArray() : sckClient->GetData();
}

void clsClient::SendData(const QByteArray &bytes)
{
    if (IsConnected())
        sckClient->SendData(bytes);
}

void clsClient::Cancel()
{
    sckClient->Close();
    ResetTransfer();
    strFileName.clear();
    abReply.clear();
}

void clsClient::ResetTransfer()
{
    ++lTransfer;
    ForgetTransfer();
}

bool clsClient::IsWaitingServerReady() const
{
    return lAwaitedTransfer == lTransfer;
}

void clsClient::sckClient_Connected()
{
    ResetTransfer();
    emit Connected();
}

void clsClient::sckClient_Closed()
{
    if (bHeaderRefused) { // with its reason, which is more than that the connection is lost
        ReportNoAnswer();
        return;
    }
    ResetTransfer();
    emit ConnectClosed();
}

void clsClient::sckClient_Error(int number, const QString &description)
{
    ResetTransfer();
    emit Error({number, description, QStringLiteral("sckClient")});
}

void clsClient::sckClient_DataArrival()
{
    const QByteArray bytes = GetData();
    if (bytes.isEmpty())
        return;
    if (bLongReply)
        ReadLongReply(bytes);
    else if (bReceivingFile)
        ReadFile(bytes);
    else if (bWaitServerReady)
        ReadHeaderAnswer(bytes);
    else
        ReadShortReply(bytes);
}

void clsClient::ClearCounters()
{
    lBytesDone = -1;
    lFileSize = -1;
    lSendSize = -1;
    lProgressBytes = -1;
    lReplySize = -1;
    iFileNumber.reset();
    abWriteBuffer.clear();
    abHeld.clear();
    tmrSilence->SetEnabled(false);
    bFirstBlock = true;
}

void clsClient::ForgetTransfer()
{
    bSendingFile = false;
    bFileLeaving = false;
    bWaitServerReady = false;
    bServerReady = false;
    bHeaderRefused = false;
    bLongReply = false;
    bReceivingFile = false;
    ClearCounters();
}

ClientReply clsClient::MakeReply(qint64 bytesTotal, ClientReply::State state, int percent) const
{
    ClientReply reply;
    reply.bytesTotal = bytesTotal;
    reply.lPercent = percent;
    reply.lState = state;
    reply.lCurrent = lBytesDone;
    reply.lTotal = lSendSize;
    return reply;
}
