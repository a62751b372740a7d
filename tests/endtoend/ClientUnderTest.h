#pragma once

#include "core/Message.h"
#include "endtoend/ScaledTime.h"
#include "fakes/FakeDesktop.h"
#include "fakes/FakePorts.h"
#include "platform/QtEventPump.h"
#include "platform/SystemIds.h"
#include "platform/TcpSocket.h"
#include "server/AddressSync.h"
#include "server/FaxDownload.h"
#include "server/FaxStatus.h"
#include "server/FaxUpload.h"
#include "server/Login.h"
#include "server/Progress.h"
#include "server/ReturnReceipts.h"
#include "server/Session.h"
#include "server/SessionRuns.h"

#include <functional>

/// How a test wants to log in.
struct LoginChoice
{
    QString strServer;
    QString strAccount = QStringLiteral("anna");
    QString strPassword = QStringLiteral("anna");
};

/// The client without its windows: the real logic over real sockets, timers and files, the desktop faked.
/// One object is one start of the program; several in turn on one folder are its restarts.
class ClientUnderTest final : public LoginOwner
{
public:
    /// `home` holds the data of all users. Time waited for runs ten times as fast; ticks do so by
    /// `timerFactor`.
    explicit ClientUnderTest(const QString &home, int timerFactor = 1);
    ~ClientUnderTest() override;

    /// Shows a login window and presses Login. Returns when the window has closed or is ready again; true in
    /// the first case.
    bool LogIn(const LoginChoice &choice);
    /// Turns the real event loop until the condition holds; false after `milliseconds`.
    bool WaitUntil(const std::function<bool()> &condition, int milliseconds = 10000);

    // LoginOwner
    bool IsMainWindowLoaded() const override { return bMainLoaded; }
    void MarkOnline(bool online, bool usedDigest) override;
    void TakeClient(std::shared_ptr<clsClient> client) override { session.SetClient(std::move(client)); }
    void ShowMainWindow() override;
    void CloseLogin() override { bLoginClosed = true; }

    QtEventPump pump;
    ScaledTimers timers;
    ScaledClock clock{10};
    SystemIds ids;
    FakePrompts prompts;
    Message message{prompts};
    FakeFolders folders;
    FakeShell shell;
    FakeSound sound;
    FakeSharedBlocks blocks;
    FakeInstance instance;
    TcpSockets sockets;
    FakeFileDialogs fileDialogs;
    FakeFontDialogs fontDialogs;
    FakePrinters printers;
    Ports ports{pump,  timers, clock,    ids,     message,     folders,     shell,
                sound, blocks, instance, sockets, fileDialogs, fontDialogs, printers};

    FakeDesktop desktop;
    Progress progress{timers};
    Session session{ports, progress, desktop.mainWindow};
    FaxStatus faxStatus{ports, {session, progress, desktop.mainWindow, desktop.mailbox}};
    ReturnReceipts receipts{ports, session, desktop.mailbox, desktop.mainWindow};
    AddressSync addressSync{ports, {session, progress, receipts, desktop.addressTree}};
    FaxUpload faxUpload{ports, {session, progress, faxStatus, desktop.mainWindow, desktop.mailbox}};
    FaxDownload download{ports,
                         {session, progress, faxStatus, desktop.printing, desktop.notifier,
                          desktop.mainWindow, desktop.mailbox}};
    SessionRuns runs{ports,
                     {session, progress, addressSync, faxUpload, download, faxStatus, desktop.mainWindow,
                      desktop.mailbox, desktop.forms}};

private:
    bool bMainLoaded = false;
    bool bLoginClosed = false;
};
