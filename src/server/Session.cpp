#include "server/Session.h"

#include "core/Globals.h"
#include "core/ports/Ports.h"
#include "core/ports/Socket.h"
#include "core/ports/Timer.h"
#include "desktop/MainWindow.h"
#include "server/wire/clsClient.h"

#include <QScopeGuard>

namespace {
constexpr int lCheckInterval = 1000;
}

Session::Session(const Ports &ports, Progress &progress, MainWindow &mainWindow)
    : ports(ports)
    , progress(progress)
    , mainWindow(mainWindow)
    , waits(ports)
    , tmrCheckFax(ports.timers.Create())
    , tmrMarkFax(ports.timers.Create())
{
    tmrCheckFax->SetInterval(lCheckInterval);
    progress.SetOwner(this);
    // The answer to a fax header has a limit of its own, and a message box in a handler has none.
    waits.SetPaused([this] { return lHandlers > 0 || (sockClient && sockClient->IsWaitingServerReady()); });
    SetOwnHandlers();
}

Session::~Session()
{
    progress.SetOwner(nullptr);
}

void Session::SetClient(std::shared_ptr<clsClient> client)
{
    if (sockClient && sockClient != client) {
        disconnect(sockClient.get(), nullptr, this, nullptr);
        sockClient->Cancel();
    }
    lastClient = std::exchange(sockClient, std::move(client));
    ++lConnection;
    bOutOfStep = false;
    bReplyRefused = false;
    bUserLogout = false;
    lIdleTicks = 0; // what the old connection left over must not log the new one off
    if (!sockClient)
        return;
    connect(sockClient.get(), &clsClient::DataArrival, this, &Session::sockClient_DataArrival);
    connect(sockClient.get(), &clsClient::ConnectClosed, this, &Session::sockClient_ConnectClosed);
    connect(sockClient.get(), &clsClient::Error, this, &Session::sockClient_Error);
    connect(sockClient.get(), &clsClient::SendingProgress, this, &Session::sockClient_SendingProgress);
    connect(sockClient.get(), &clsClient::FileLeaving, this, &Session::sockClient_FileLeaving);
    connect(sockClient.get(), &clsClient::FileLeft, this, &Session::sockClient_FileLeft);
}

bool Session::IsConnected() const
{
    return sockClient && sockClient->State() == Socket::sckConnected;
}

bool Session::ConnectToServer()
{
    bUserAbort = false;
    lIdleTicks = 0;
    return EnsureConnected();
}

bool Session::EnsureConnected()
{
    if (!sockClient || bConnecting)
        return false;
    if (IsConnected() && !bOutOfStep)
        return true;
    return Reconnect();
}

bool Session::Reconnect()
{
    bConnecting = true;
    bConnectRefused = false;
    lIdleTicks = 0;
    const auto finish = qScopeGuard([this, pending = lPendingCommand] {
        lPendingCommand = pending;
        bConnecting = false;
    });
    CloseConnection();
    if (AwaitGreetingAndLogin())
        return true;
    CloseConnection();
    return false;
}

bool Session::AwaitGreetingAndLogin()
{
    bReplyDone = false;
    lPendingCommand = pndGreeting;
    sockClient->Connect(Global().strServerIP, Global().strServerPort);
    const bool greeted = WaitForServerReply() == WaitEnd::Replied && IsConnected();
    if (bSendTimedOut || bConnectRefused || !greeted)
        return false;
    bUserLogout = false;
    lPendingCommand = pndLogIn;
    bReplyDone = false;
    sockClient->LogIn(Global().strUserName, Global().strPwdDigest, true);
    // What the answer says is not read: a refused login shows at the next command.
    const bool answered = WaitForServerReply() == WaitEnd::Replied && IsConnected();
    return !bSendTimedOut && answered;
}

void Session::CloseConnection()
{
    ++lConnection;
    bOutOfStep = false;
    bReplyRefused = false;
    if (sockClient)
        sockClient->Cancel();
}

clsClient &Session::BeginCommand(PendingCommand pending)
{
    if (bOutOfStep && IsConnected() && !bConnecting)
        Reconnect();
    if (std::exchange(bReplyRefused, false))
        sockClient->ResetTransfer(); // a refused fax leaves the client waiting for a file
    lPendingCommand = pending;
    bReplyDone = false;
    return *sockClient;
}

void Session::LogOut()
{
    if (!sockClient)
        return;
    lPendingCommand = pndLogOut;
    bUserLogout = true;
    sockClient->LogOut();
    MarkOutOfStep(); // nobody waits for the answer
}

WaitEnd Session::WaitForServerReply()
{
    strHandlerError.clear();
    // A box that an outer handler shows is no reason to let this wait go on for ever.
    const auto leave = qScopeGuard([this, outer = std::exchange(lHandlers, 0)] { lHandlers = outer; });
    const auto isAlive = [this, connection = lConnection] {
        return connection == lConnection && sockClient &&
               sockClient->State() >= Socket::sckConnectionPending &&
               sockClient->State() <= Socket::sckConnected;
    };
    const WaitEnd end = waits.Wait(isAlive);
    if (end == WaitEnd::Silent)
        MarkOutOfStep();
    return end;
}

void Session::SetIdleState(bool enabled)
{
    bIdleState = enabled;
    bIsSocketBusy = !enabled;
    SetTimersOn(enabled);
    bReplyDone = enabled;
    mainWindow.SetEnabled(enabled);
    lCheckTicks = 0;
}

void Session::SetTimersOn(bool on)
{
    bTimersOn = on;
    tmrMarkFax->SetEnabled(on);
    tmrCheckFax->SetEnabled(on);
}

void Session::CancelTransfer()
{
    waits.End(WaitEnd::Closed); // before a signal counts it as replied
    CloseConnection();
}

void Session::SetCommMenu(bool enabled)
{
    mainWindow.SetCommMenu(enabled);
}

void Session::EnableMainWindow()
{
    mainWindow.SetEnabled(true);
}
