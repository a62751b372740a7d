#pragma once

#include "server/UserProfile.h"

#include <QObject>
#include <QStringList>

#include <memory>

class Timer;
class clsClient;
class clsWaitableTimer;
struct ClientReply;
struct LoginReply;
struct Ports;

/// What a finished login asks of the program around it.
class LoginOwner
{
public:
    virtual ~LoginOwner() = default;

    virtual bool IsMainWindowLoaded() const = 0;
    /// Whether the user is logged in at the server, and whether a stored digest was the password.
    virtual void MarkOnline(bool online, bool usedDigest) = 0;
    /// Hands the connected, logged-in client over. No signal of it reaches the login any more.
    virtual void TakeClient(std::shared_ptr<clsClient> client) = 0;
    virtual void ShowMainWindow() = 0;
    /// Closes the login window. It is called from inside the window's own events: the window and its `Login`
    /// must live until the event loop runs again (`deleteLater`).
    virtual void CloseLogin() = 0;
};

/// The controls of the login window, as they are to be shown.
struct LoginControls
{
    QString strServer;         ///< `txtServer`
    QString strAccount;        ///< `cmbAccount`
    QStringList aAccounts;     ///< its list
    QString strPwd;            ///< `txtPwd`: typed text, or a stored digest
    bool bRememberPwd = false; ///< `chkRememberPwd`
    bool bAutoLogin = false;   ///< `chkAutoLogin`
    bool bFixed = false;       ///< server, account and check boxes cannot be changed
    bool bInputEnabled = true; ///< false while a login is under way
    bool bLoginEnabled = true;
    bool bBrowseEnabled = true;
    bool bExitEnabled = true;
    QString strLoginCaption; ///< "&Login" or "&Abort"
    QString strLoginTag;     ///< "Cancel" while the button aborts
    QString strLoginTip;     ///< `labLoginTip`
};

enum class LoginField { Server, Account, Password };

/// The login window without its widgets: it reads the known accounts, speaks the opening dialogue with the
/// server, prepares the user's profile and hands the connected client over. It also opens a profile offline.
class Login : public QObject
{
    Q_OBJECT

public:
    /// `fromMainWindow`: a login from the running main window, whose profile is open already.
    Login(const Ports &ports, LoginOwner &owner, bool fromMainWindow = false, QObject *parent = nullptr);
    ~Login() override;

    const LoginControls &Controls() const { return controls; }
    /// True after a good login.
    bool CheckUserLogin() const { return bLoginOK; }
    /// True while a login is under way.
    bool IsLoggingIn() const { return stage != stgReady; }

    /// Fills the controls from the settings file. False when the working folder cannot be made.
    bool Load();
    /// The window's first activation: opens the last user's profile and, if the user wants so, logs in. It
    /// returns when that login's wait is over.
    void Activate();

    // The user's changes
    void SetServer(const QString &text);
    void SetAccount(const QString &text);
    void SetPassword(const QString &text);
    void SetRememberPwd(bool checked);
    void SetAutoLogin(bool checked);

    // The user's clicks
    void ClickLogin();
    void ClickBrowse();
    /// Also the window's closing by other means: ends a login that is under way.
    void ClickExit();

signals:
    /// The controls are to be shown anew.
    void Changed();
    void FocusRequested(LoginField field);

private:
    enum Stage { stgReady, stgWaiting, stgConnecting, stgGreeting, stgAnswer, stgFinished };

    void LoadStoredOptions();
    void LoadCheckBoxes();
    bool ReadStoredLogin();
    bool Validate();
    bool Refuse(const QString &text, LoginField field);
    void Begin();
    void Abort();
    void Connect();
    void WatchClient();
    void ReleaseClient();
    void Restore(const QString &tip);
    void ShowText(const QString &text, long flags);

    void sockClient_Connected();
    void sockClient_Error();
    void sockClient_DataArrival(const ClientReply &reply);
    void TakeReply(const LoginReply &reply);
    void TakeGreeting(const QString &version);
    void TakeRefusal(const QString &code);
    void TakeAcceptance();
    bool PrepareProfile();
    void HandOver();
    bool OpenOffline(int &line);
    bool CheckOfflinePassword(int &line);
    LoginEntry Entry() const;

    const Ports &ports;
    LoginOwner &owner;
    const bool bFromMainWindow;
    LoginControls controls;
    UserProfile profile;
    std::shared_ptr<clsWaitableTimer> timer; ///< of the latest login; its wait may outlive this object
    std::unique_ptr<Timer> tmrSilence;
    std::shared_ptr<clsClient> sockClient;
    std::shared_ptr<clsClient> lastClient; ///< outlives the event in which it was replaced
    Stage stage = stgReady;
    bool bPwdIsDigest = false;
    bool bLoginOK = false;
};
