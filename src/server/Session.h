#pragma once

#include "server/Progress.h"
#include "server/ServerWaits.h"
#include "server/SessionFields.h"

#include <QObject>

#include <functional>
#include <map>
#include <memory>

class MainWindow;
class Timer;
class clsClient;
struct ClientError;
struct ClientReply;
struct Ports;

/// The session with the server: holds the connection that the login made, remakes it, pairs each command
/// with its reply, and waits for replies without blocking the events.
///
/// The order of any command: `ConnectToServer` if a connection is needed, `BeginCommand(pending)` and on its
/// result the method of the command, `WaitForServerReply`, then the fields that the handler has set.
class Session final : public QObject, public ProgressOwner, public SessionFields
{
    Q_OBJECT

public:
    using Handler = std::function<void(const ClientReply &)>;

    Session(const Ports &ports, Progress &progress, MainWindow &mainWindow);
    ~Session() override;

    // The connection

    /// Takes the connection that the login has made.
    void SetClient(std::shared_ptr<clsClient> client);
    bool HasClient() const { return sockClient != nullptr; }
    bool IsConnected() const override;
    /// Makes sure that a logged-in connection stands. False leaves it closed.
    bool ConnectToServer();
    /// Sets `lPendingCommand` and gives the client, ready for the command's method. A connection on which a
    /// late reply may still come is first remade, silently; when that fails the command is dropped by the
    /// closed connection. Needs a client.
    clsClient &BeginCommand(PendingCommand pending);
    /// Late replies may come on this connection: it is remade before the next command.
    void MarkOutOfStep() { bOutOfStep = true; }
    bool IsOutOfStep() const { return bOutOfStep; }
    /// Says good-bye without waiting for the answer.
    void LogOut();

    // Replies

    /// Runs events until the reply has been handled. Also ends when the connection closes, the server is
    /// silent for more than 5 seconds, or the program quits; at once when there is no connection.
    WaitEnd WaitForServerReply();
    /// Ends the newest wait.
    void SignalServerReply() override { waits.Signal(); }
    bool IsWaiting() const { return waits.IsWaiting(); }
    /// See `ServerWaits::SetTimeLeft`.
    void SetTimeLeft(int milliseconds) { waits.SetTimeLeft(milliseconds); }
    /// Names the routine that takes the replies to a command. What it raises ends the wait as `Failed`.
    void SetHandler(PendingCommand pending, Handler handler);
    /// What an upload tells while a wait for its reply runs. What `leaving` raises ends the wait as `Failed`
    /// and keeps the last bytes back.
    struct UploadEvents
    {
        std::function<void(int percent)> progress;
        std::function<void()> leaving; ///< from here on the server may have the whole file
        std::function<void()> left;    ///< the whole file has gone
    };
    void SetUploadEvents(UploadEvents events) { upload = std::move(events); }
    /// What the handler said that failed during the latest wait; empty for none.
    const QString &HandlerError() const { return strHandlerError; }

    // Runs

    /// Off: a run owns the connection, the timers stand still and the main window is disabled.
    void SetIdleState(bool enabled);
    /// Lets both timers run, or stand still during a run that leaves the main window enabled.
    void SetTimersOn(bool on);
    bool AreTimersOn() const { return bTimersOn; }
    bool IsIdleState() const { return bIdleState; }
    Timer &CheckFaxTimer() { return *tmrCheckFax; } ///< 1000 ms
    Timer &MarkFaxTimer() { return *tmrMarkFax; }

    // What the progress window asks

    void CancelTransfer() override;
    void SetCommMenu(bool enabled) override;
    void EnableMainWindow() override;
    void SetUserAbort() override { bUserAbort = true; }

private:
    friend class RunScope;
    friend class RunPermit;

    bool EnsureConnected();
    bool Reconnect();
    bool AwaitGreetingAndLogin();
    void CloseConnection();
    void SetOwnHandlers();

    void sockClient_DataArrival(const ClientReply &reply);
    void HandleReply(const ClientReply &reply);
    void HandleFailure(const ClientReply &reply);
    void Dispatch(const ClientReply &reply);
    void HandlePasswordReply(const ClientReply &reply);
    void HandleConfigReply(const ClientReply &reply);
    void sockClient_ConnectClosed();
    void sockClient_Error(const ClientError &error);
    void sockClient_SendingProgress(int percent);
    void sockClient_FileLeaving();
    void sockClient_FileLeft();

    const Ports &ports;
    Progress &progress;
    MainWindow &mainWindow;
    ServerWaits waits;
    std::unique_ptr<Timer> tmrCheckFax;
    std::unique_ptr<Timer> tmrMarkFax;
    std::shared_ptr<clsClient> sockClient;
    std::shared_ptr<clsClient> lastClient; ///< outlives the event in which it was replaced
    std::map<int, Handler> handlers;
    UploadEvents upload;
    QString strHandlerError;
    int lConnection = 0; ///< number of the connection; a wait belongs to one
    int lHandlers = 0;   ///< reply handlers that the newest wait runs
    bool bConnecting = false;
    bool bOutOfStep = false;
    bool bReplyRefused = false; ///< the last reply was a failure: a transfer may be left half set
    bool bIdleState = true;
    bool bTimersOn = true; ///< no run keeps them from being started
    bool bRunPermitted = false;
};
