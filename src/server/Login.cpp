#include "server/Login.h"

#include "core/Globals.h"
#include "core/Message.h"
#include "core/RaisedError.h"
#include "core/Schema.h"
#include "core/SettingsFile.h"
#include "core/Utilities.h"
#include "core/clsWaitableTimer.h"
#include "core/ports/EventPump.h"
#include "core/ports/Ports.h"
#include "core/ports/Timer.h"
#include "server/LoginReply.h"
#include "server/UserProfileOptions.h"
#include "server/wire/clsClient.h"

#include <QCoreApplication>
#include <QPointer>

namespace {

constexpr int waitBeforeConnecting = 1500; ///< milliseconds in which the user can change his mind
constexpr int longestSilence = 10000;      ///< milliseconds without a word of a connected server

QString ReadSetting(const QString &section, const QString &key)
{
    return ReadIniValue(section, key, Global().strIniFile);
}

} // namespace

Login::Login(const Ports &ports, LoginOwner &owner, bool fromMainWindow, QObject *parent)
    : QObject(parent)
    , ports(ports)
    , owner(owner)
    , bFromMainWindow(fromMainWindow)
    , profile(ports)
    , tmrSilence(ports.timers.Create())
{
    tmrSilence->SetInterval(longestSilence);
    connect(tmrSilence.get(), &Timer::Tick, this, &Login::sockClient_Error);
    controls.bFixed = fromMainWindow;
    controls.strLoginCaption = QCoreApplication::translate("server", "&Login");
    controls.strLoginTip = QCoreApplication::translate("server", "Ready ...");
}

Login::~Login() = default;

LoginEntry Login::Entry() const
{
    return {controls.strAccount, controls.strPwd, bPwdIsDigest, controls.bRememberPwd, controls.bAutoLogin};
}

bool Login::Load()
{
    const QString &folder = Global().strAppDataPath;
    if (!CreatePrivateFolder(folder)) {
        ShowText(QCoreApplication::translate("server", "Cannot create working directory:") + '\n' + folder,
                 mbExclamation);
        return false;
    }
    controls.strServer = ReadSetting("General", "ServerIP");
    controls.strAccount = ReadSetting("General", "LastUser");
    if (bFromMainWindow)
        LoadCheckBoxes();
    else if (!controls.strAccount.isEmpty())
        controls.aAccounts = UserProfile::KnownAccounts();
    emit Changed();
    return true;
}

void Login::Activate()
{
    if (bFromMainWindow)
        return;
    if (!controls.strServer.isEmpty())
        emit FocusRequested(LoginField::Account);
    const QString folder = UserProfile::UserFolder(controls.strAccount);
    if (!FolderExists(folder) || !FileExists(UserProfile::DatabaseFile(folder)))
        return;
    bool logIn = false;
    try {
        if (!profile.Open(folder))
            throw RaisedError(0, "Activate", {});
        logIn = ReadStoredLogin();
    } catch (const RaisedError &) { // the text names what failed; the reason is of no use to the user
        profile.Close();
        ShowText(QCoreApplication::translate("server", "Failed to load user ") + controls.strAccount +
                     QCoreApplication::translate("server", "'s configuration. ") + '\n' +
                     QCoreApplication::translate(
                         "server", "If this problem still remains, please reinstall Velmar Client"),
                 mbExclamation);
        return;
    }
    emit Changed();
    if (logIn)
        ClickLogin();
}

/// Fills password and check boxes from the open profile. True when the user wants to be logged in at once.
bool Login::ReadStoredLogin()
{
    const std::optional<StoredLogin> stored = UserProfileOptions::ReadLogin();
    if (!stored || (!stored->bRememberPwd && !stored->bAutoLogin)) {
        profile.Close();
        return false;
    }
    bPwdIsDigest = UserProfile::IsDigest(stored->strPwd);
    controls.strPwd = bPwdIsDigest ? stored->strPwd : QString();
    controls.bRememberPwd = true; // also with the other box alone, which implies this one
    controls.bAutoLogin = stored->bAutoLogin;
    return stored->bAutoLogin;
}

void Login::SetServer(const QString &text)
{
    controls.strServer = text;
}

void Login::SetAccount(const QString &text)
{
    if (controls.bFixed || text == controls.strAccount)
        return;
    if (text.compare(controls.strAccount, Qt::CaseInsensitive) != 0)
        profile.Close();
    controls.strAccount = text;
    LoadStoredOptions();
    emit Changed();
}

void Login::LoadStoredOptions()
{
    if (bPwdIsDigest)
        controls.strPwd.clear(); // another account's digest; it would count as a typed password
    const QString digest = ReadSetting(controls.strAccount, "UserPwd");
    bPwdIsDigest = UserProfile::IsDigest(digest);
    if (bPwdIsDigest)
        controls.strPwd = digest;
    LoadCheckBoxes();
}

void Login::LoadCheckBoxes()
{
    controls.bAutoLogin = ToNumber(ReadSetting(controls.strAccount, "AutoLogin")) != 0;
    controls.bRememberPwd =
        controls.bAutoLogin || ToNumber(ReadSetting(controls.strAccount, "RememberPwd")) != 0;
}

void Login::SetPassword(const QString &text)
{
    controls.strPwd = text;
    bPwdIsDigest = false;
}

void Login::SetRememberPwd(bool checked)
{
    controls.bRememberPwd = checked;
    controls.bAutoLogin = controls.bAutoLogin && checked;
    emit Changed();
}

void Login::SetAutoLogin(bool checked)
{
    controls.bAutoLogin = checked;
    controls.bRememberPwd = controls.bRememberPwd || checked;
    emit Changed();
}

void Login::ClickLogin()
{
    if (controls.strLoginTag == "Cancel") {
        Abort();
        return;
    }
    if (stage != stgReady || !controls.bLoginEnabled || !Validate())
        return;
    Begin();
    const QPointer<Login> self(this);
    const auto wait = std::make_shared<clsWaitableTimer>(ports);
    timer = wait;
    wait->Wait(waitBeforeConnecting);
    // The window may be gone, or its user may have aborted, and begun anew with a wait of its own.
    if (self && !wait->Cancel && !ports.pump.IsQuitting())
        Connect();
}

bool Login::Validate()
{
    if (controls.strServer.trimmed().isEmpty())
        return Refuse(
            QCoreApplication::translate(
                "server", "Please specify a Velmar server. For example 192.168.1.5 or faxhost:8750"),
            LoginField::Server);
    if (controls.strAccount.isEmpty())
        return Refuse(QCoreApplication::translate("server", "Please specify a username."),
                      LoginField::Account);
    if (!UserProfile::IsUsableAccount(controls.strAccount))
        return Refuse(QCoreApplication::translate("server", "This username cannot be used."),
                      LoginField::Account);
    if (controls.strPwd.isEmpty())
        return Refuse(QCoreApplication::translate("server", "Please specify the password."),
                      LoginField::Password);
    return true;
}

bool Login::Refuse(const QString &text, LoginField field)
{
    ShowText(text, mbExclamation);
    emit FocusRequested(field);
    return false;
}

void Login::Begin()
{
    stage = stgWaiting;
    controls.strLoginTip =
        QCoreApplication::translate("server", "Connecting to ") + controls.strServer + "  ...";
    controls.strLoginTag = "Cancel";
    controls.strLoginCaption = QCoreApplication::translate("server", "&Abort");
    controls.bBrowseEnabled = controls.bExitEnabled = false;
    controls.bInputEnabled = false;
    emit Changed();
}

void Login::Abort()
{
    if (timer)
        timer->Cancel = true;
    ReleaseClient();
    Restore(QCoreApplication::translate("server", "Ready ..."));
}

void Login::Restore(const QString &tip)
{
    stage = stgReady;
    controls.strLoginTip = tip;
    controls.strLoginTag.clear();
    controls.strLoginCaption = QCoreApplication::translate("server", "&Login");
    controls.bLoginEnabled = controls.bBrowseEnabled = controls.bExitEnabled = true;
    controls.bInputEnabled = true;
    emit Changed();
}

void Login::ShowText(const QString &text, long flags)
{
    ports.message.ShowMessage(text, flags);
}

void Login::ClickBrowse()
{
    if (stage != stgReady || !controls.bBrowseEnabled)
        return;
    stage = stgFinished;
    controls.bBrowseEnabled = controls.bLoginEnabled = false;
    emit Changed();
    int line = 0;
    bool opened = false;
    try {
        opened = OpenOffline(line);
    } catch (const RaisedError &) {
        ShowText(QCoreApplication::translate("server", "Application Error") +
                     "\nin VelmarClient.frmUserLogin.btnBrowse_Click " + "at line " + QString::number(line),
                 mbCritical);
    }
    if (!opened) {
        profile.Close();
        Restore(controls.strLoginTip);
        return;
    }
    owner.MarkOnline(false, bPwdIsDigest);
    owner.ShowMainWindow();
    owner.CloseLogin();
}

/// `line` tells where an unexpected failure came from.
bool Login::OpenOffline(int &line)
{
    const auto refuse = [this](const QString &text) {
        ShowText(text, mbExclamation);
        return false;
    };
    line = __LINE__;
    const QString folder = UserProfile::UserFolder(controls.strAccount);
    if (folder.isEmpty())
        return refuse(
            QCoreApplication::translate("server", "The user had not logged in yet, cannot work offline."));
    Global().strUserFolder = folder;
    if (!FolderExists(folder) || !FileExists(UserProfile::DatabaseFile(folder)))
        return refuse(
            QCoreApplication::translate("server", "User profile could not be found, cannot work offline."));
    line = __LINE__;
    if (!profile.Open(folder))
        return refuse(QCoreApplication::translate("server", "Failed to load user data: ") +
                      controls.strAccount);
    if (!CheckOfflinePassword(line))
        return false;
    line = __LINE__;
    return CheckDatabaseVersion(ports.message, ports.clock) && profile.Save(Entry());
}

bool Login::CheckOfflinePassword(int &line)
{
    line = __LINE__;
    const std::optional<QString> stored = UserProfileOptions::ReadPwd();
    if (!stored)
        ShowText(QCoreApplication::translate("server", "Load user profile fails, cannot work offline.") +
                     controls.strAccount,
                 mbExclamation);
    else if (*stored != Entry().Digest())
        ShowText(LoginReply::RefusalText("1"), mbExclamation);
    return stored && *stored == Entry().Digest();
}

void Login::ClickExit()
{
    if (stage == stgFinished)
        return;
    if (stage != stgReady)
        Abort();
    stage = stgFinished;
    if (!bFromMainWindow)
        profile.Close();
    owner.CloseLogin();
}
