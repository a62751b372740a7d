#include "core/Globals.h"
#include "core/SettingsFile.h"
#include "fakes/FakePorts.h"
#include "fixtures/Profile.h"
#include "server/Login.h"
#include "server/LoginReply.h"
#include "server/wire/Frames.h"
#include "server/wire/clsClient.h"

#include <QDir>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTest>

namespace {

const QString digestOfSecret = "5EBE2294ECD0E0F08EAB7690D2A6EE69";
const QString connectFailure = "Failed to connect to Velmar server at: faxhost:9000\n"
                               "Or client has exceeded max number of allowed connections.";

/// The program around the login, which writes down what is asked of it.
class FakeOwner final : public LoginOwner
{
public:
    bool IsMainWindowLoaded() const override { return bMainLoaded; }
    void MarkOnline(bool online, bool usedDigest) override
    {
        aCalls.append(QString("online %1 digest %2").arg(int(online)).arg(int(usedDigest)));
    }
    void TakeClient(std::shared_ptr<clsClient> newClient) override
    {
        client = std::move(newClient);
        aCalls.append("client");
    }
    void ShowMainWindow() override { aCalls.append("show"); }
    void CloseLogin() override
    {
        aCalls.append("close");
        if (onClose)
            onClose();
    }

    bool bMainLoaded = false;
    QStringList aCalls;
    std::shared_ptr<clsClient> client;
    std::function<void()> onClose;
};

} // namespace

class tst_Login : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void repliesAreTold_data();
    void repliesAreTold();
    void serverTextBecomesHostAndPort_data();
    void serverTextBecomesHostAndPort();

    void workingFolderThatCannotBeMadeIsTold();
    void windowStartsWithTheLastUser();
    void lastUserIsLoggedInByTheStoredDigest();
    void profileWithoutStoredPasswordIsClosedAgain();
    void damagedProfileIsTold();
    void anotherAccountBringsItsOwnOptions();
    void checkBoxesPullEachOther();

    void missingInputIsAskedFor_data();
    void missingInputIsAskedFor();
    void firstLoginHandsTheClientOver();
    void clientLeavesInsideItsOwnEvent();
    void abortDuringTheWaitConnectsToNothing();
    void abortAndNewLoginConnectOnce();
    void abortWhileConnectingClosesTheSocket();
    void connectedLoginCannotBeAborted();
    void windowThatClosesDuringTheWaitEndsIt();
    void lostServerIsTold_data();
    void lostServerIsTold();
    void lateFailureOfAnEarlierLoginIsNotHeard();
    void refusedLoginCanBeTriedAgain_data();
    void refusedLoginCanBeTriedAgain();
    void otherProtocolVersionIsToldNothing();
    void replyOfOneLineLeavesTheConnection();
    void okBeforeTheLoginIsNoAcceptance();
    void databaseOfOtherVersionEndsTheLogin();
    void loginFromTheMainWindowOnlyHandsOver();

    void offlineRefusals_data();
    void offlineRefusals();
    void offlineOpensTheProfile();
    void offlineFailureIsAnApplicationError();
    void exitClosesTheProfile();

private:
    FakePrompts &Prompts() { return fakes->prompts; }
    FakeSocket &Server() { return *fakes->sockets.Last(); }
    const LoginControls &Controls() const { return login->Controls(); }
    static void Set(const QString &section, const QString &key, const QString &value)
    {
        QVERIFY(WriteIniValue(section, key, value, Global().strIniFile));
    }
    /// Enters "anna", whose database the fixture has made, as the last user, with one row of settings.
    static void EnterAnna(const QString &columns = {}, const QString &values = {});
    void MakeLogin(bool fromMainWindow = false);
    void Fill(const QString &account = "bert");
    /// Fills the window, clicks and lets the server accept the connection.
    void ConnectToServer();
    void Greet() { Server().FeedShort("Welcome\r\n1.6 beta\r\n"); }
    bool IsReady() const;

    std::unique_ptr<Profile> profile;
    std::unique_ptr<FakePorts> fakes;
    std::unique_ptr<FakeOwner> owner;
    std::unique_ptr<Login> login;
};

void tst_Login::init()
{
    profile = std::make_unique<Profile>(Profile::NoOptionRow);
    fakes = std::make_unique<FakePorts>();
    fakes->folders.strRoot = profile->Root();
    owner = std::make_unique<FakeOwner>();
    Global().objDB->CloseDB();
    MakeLogin();
}

void tst_Login::cleanup()
{
    QVERIFY(!fakes->pump.IsStuck());
    login.reset();
    owner.reset();
    fakes.reset();
    profile.reset();
}

void tst_Login::EnterAnna(const QString &columns, const QString &values)
{
    Set("General", "ServerIP", "faxhost:9000");
    Set("General", "LastUser", "anna");
    Set("UserList", "TotalCount", "1");
    Set("UserList", "1", "anna");
    Set("anna", "UserFolder", Global().strAppDataPath + "anna/");
    if (columns.isEmpty())
        return;
    Global().objDB->OpenDB(UserProfile::DatabaseFile(Global().strUserFolder));
    Profile::Execute("Insert Into Option(" + columns + ") Values(" + values + ")");
    Global().objDB->CloseDB();
}

void tst_Login::MakeLogin(bool fromMainWindow)
{
    owner->bMainLoaded = fromMainWindow;
    login = std::make_unique<Login>(fakes->ports, *owner, fromMainWindow);
}

void tst_Login::Fill(const QString &account)
{
    login->SetServer("faxhost:9000");
    login->SetAccount(account);
    login->SetPassword("secret");
}

void tst_Login::ConnectToServer()
{
    Fill();
    login->ClickLogin();
    Server().AcceptConnection();
}

bool tst_Login::IsReady() const
{
    const LoginControls &controls = Controls();
    return controls.bLoginEnabled && controls.bBrowseEnabled && controls.bExitEnabled &&
           controls.bInputEnabled && controls.strLoginCaption == "&Login" && controls.strLoginTag.isEmpty() &&
           !login->IsLoggingIn();
}

void tst_Login::repliesAreTold_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("detail");
    const auto add = [](const char *name, const QByteArray &data, LoginReply::Kind kind, const char *detail) {
        QTest::newRow(name) << data << int(kind) << QString(detail);
    };
    add("greeting", "welcome\r\n1.6 beta\r\n", LoginReply::rplGreeting, "1.6 beta");
    add("greeting with ok in it", "Welcome\r\n1.6 beta\r\nTokyo", LoginReply::rplGreeting, "1.6 beta");
    add("greeting of one line", "Welcome", LoginReply::rplUnexpected, "");
    add("not quite a greeting", "Welcome!\r\n1.6 beta", LoginReply::rplOther, "");
    add("accepted", "OK\r\n", LoginReply::rplAccepted, "");
    add("accepted somewhere", QByteArray("user\0ok", 7), LoginReply::rplAccepted, "");
    add("refused", "ERR\r\n12\r\n", LoginReply::rplRefused, "12");
    add("refusal outweighs", "OK\r\n14\r\nerr", LoginReply::rplRefused, "14");
    add("refused without a line", "ERR", LoginReply::rplUnexpected, "");
    add("nothing", "", LoginReply::rplOther, "");
}

void tst_Login::repliesAreTold()
{
    QFETCH(QByteArray, data);
    QFETCH(int, kind);
    QFETCH(QString, detail);
    ClientReply reply;
    reply.abData = data;
    const LoginReply told = LoginReply::Classify(reply);
    QCOMPARE(int(told.kind), kind);
    QCOMPARE(told.strCode + told.strVersion, detail);
}

void tst_Login::serverTextBecomesHostAndPort_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("host");
    QTest::addColumn<int>("port");
    QTest::newRow("host alone") << "192.168.1.5"
                                << "192.168.1.5" << 8750;
    QTest::newRow("port") << "faxhost:9000"
                          << "faxhost" << 9000;
    QTest::newRow("empty port") << "faxhost:"
                                << "faxhost" << 0;
    QTest::newRow("two colons") << "faxhost:90:1"
                                << "faxhost" << 90;
}

void tst_Login::serverTextBecomesHostAndPort()
{
    QFETCH(QString, text);
    Fill();
    login->SetServer(text);
    login->ClickLogin();
    QTEST(Server().strHost, "host");
    QTEST(Server().lPort, "port");
    QTEST(Global().strServerIP, "host");
}

void tst_Login::workingFolderThatCannotBeMadeIsTold()
{
    const QString blocked = profile->Root() + "/file/Velmar/";
    QVERIFY(WriteTestFile(profile->Root() + "/file", "x"));
    Global().strAppDataPath = blocked;
    QVERIFY(!login->Load());
    QCOMPARE(Prompts().Texts(), QStringList{"Cannot create working directory:\n" + blocked});
}

void tst_Login::windowStartsWithTheLastUser()
{
    EnterAnna();
    Set("UserList", "TotalCount", "3");
    Set("UserList", "3", "bert");
    QVERIFY(login->Load());
    QCOMPARE(Controls().strServer, "faxhost:9000");
    QCOMPARE(Controls().strAccount, "anna");
    QCOMPARE(Controls().aAccounts, (QStringList{"anna", "bert"}));
    QCOMPARE(Controls().strPwd, "");
    QCOMPARE(Controls().strLoginCaption, "&Login");
}

void tst_Login::lastUserIsLoggedInByTheStoredDigest()
{
    EnterAnna("AutoLogin,RememberPwd,Pwd", "1,0,'" + digestOfSecret + "'");
    QVERIFY(login->Load());
    login->Activate();
    QVERIFY(Controls().bAutoLogin && Controls().bRememberPwd);
    Server().AcceptConnection();
    Greet();
    QCOMPARE(Server().TakeWrite(), Frames::FormA(Frames::cmdLogIn, "anna\r\n" + digestOfSecret.toLatin1()));
    Server().FeedShort("OK\r\n");
    QCOMPARE(owner->aCalls, (QStringList{"online 1 digest 1", "client", "show", "close"}));
    QCOMPARE(Global().strPwdDigest, digestOfSecret);
    QVERIFY(login->CheckUserLogin());
}

void tst_Login::profileWithoutStoredPasswordIsClosedAgain()
{
    EnterAnna("AutoLogin,RememberPwd", "0,0");
    QVERIFY(login->Load());
    login->Activate();
    QVERIFY(!Global().objDB->IsOpen());
    QCOMPARE(Controls().strPwd, "");
    QVERIFY(IsReady());
}

void tst_Login::damagedProfileIsTold()
{
    EnterAnna();
    QVERIFY(WriteTestFile(UserProfile::DatabaseFile(Global().strUserFolder), QByteArray(5000, 'x')));
    QVERIFY(login->Load());
    login->Activate();
    QCOMPARE(Prompts().Texts(),
             QStringList{"Failed to load user anna's configuration. \nIf this problem still remains, please "
                         "reinstall Velmar Client"});
    QVERIFY(!Global().objDB->IsOpen());
}

void tst_Login::anotherAccountBringsItsOwnOptions()
{
    EnterAnna("RememberPwd,Pwd", "1,'" + digestOfSecret + "'");
    Set("bert", "RememberPwd", "1");
    Set("bert", "UserPwd", QString(32, 'B'));
    Set("carl", "AutoLogin", "1");
    Set("carl", "UserPwd", "no digest'");
    QVERIFY(login->Load());
    login->Activate();
    QCOMPARE(Controls().strPwd, digestOfSecret);
    login->SetAccount("ANNA");
    QVERIFY(Global().objDB->IsOpen()); // still the same account
    login->SetAccount("bert");
    QVERIFY(!Global().objDB->IsOpen());
    QCOMPARE(Controls().strPwd, QString(32, 'B'));
    QVERIFY(Controls().bRememberPwd && !Controls().bAutoLogin);
    login->SetAccount("carl");
    QCOMPARE(Controls().strPwd, ""); // bert's digest would count as a typed password
    QVERIFY(Controls().bRememberPwd && Controls().bAutoLogin);
    login->SetPassword("typed");
    login->SetAccount("dora");
    QCOMPARE(Controls().strPwd, "typed");
}

void tst_Login::checkBoxesPullEachOther()
{
    login->SetAutoLogin(true);
    QVERIFY(Controls().bRememberPwd);
    login->SetRememberPwd(false);
    QVERIFY(!Controls().bAutoLogin);
}

void tst_Login::missingInputIsAskedFor_data()
{
    QTest::addColumn<QStringList>("input"); // server, account, password
    QTest::addColumn<QString>("message");
    QTest::addColumn<int>("field");
    QTest::newRow("server") << QStringList{"", "", ""}
                            << "Please specify a Velmar server. For example 192.168.1.5 or faxhost:8750"
                            << int(LoginField::Server);
    QTest::newRow("account") << QStringList{"s", "", ""} << "Please specify a username."
                             << int(LoginField::Account);
    QTest::newRow("unusable") << QStringList{"s", "..", ""} << "This username cannot be used."
                              << int(LoginField::Account);
    QTest::newRow("password") << QStringList{"s", "a", ""} << "Please specify the password."
                              << int(LoginField::Password);
}

void tst_Login::missingInputIsAskedFor()
{
    QFETCH(QStringList, input);
    QFETCH(QString, message);
    QList<int> focused;
    connect(login.get(), &Login::FocusRequested, this, [&](LoginField field) { focused.append(int(field)); });
    login->SetServer(input[0]);
    login->SetAccount(input[1]);
    login->SetPassword(input[2]);
    login->ClickLogin();
    QCOMPARE(Prompts().Texts(), QStringList{message});
    QTEST(focused.value(0), "field");
    QVERIFY(IsReady());
    QVERIFY(!fakes->sockets.Last());
}

void tst_Login::firstLoginHandsTheClientOver()
{
    Fill();
    fakes->pump.Then([&] {
        QCOMPARE(Controls().strLoginTip, "Connecting to faxhost:9000  ...");
        QCOMPARE(Controls().strLoginCaption, "&Abort");
        QVERIFY(!Controls().bBrowseEnabled && !Controls().bExitEnabled && !Controls().bInputEnabled);
        QVERIFY(!fakes->sockets.Last());
    });
    login->ClickLogin();
    QCOMPARE(fakes->clock.lMilliseconds, 1500);
    Server().AcceptConnection();
    QVERIFY(Server().aWrites.isEmpty());
    Greet();
    QCOMPARE(Server().TakeWrite(), Frames::FormA(Frames::cmdLogIn, "bert\r\n" + digestOfSecret.toLatin1()));
    Server().FeedShort("OK\r\n");

    QCOMPARE(owner->aCalls, (QStringList{"online 1 digest 0", "client", "show", "close"}));
    QVERIFY(owner->client->IsConnected());
    QCOMPARE(Global().strServerPort, "9000");
    QCOMPARE(ReadIniValue("General", "ServerIP", Global().strIniFile), "faxhost:9000");
    QCOMPARE(Profile::Values("Select MarkFax From Option"), QStringList{"5"});
    QVERIFY(Prompts().aBoxes.isEmpty());
    // What happens on the connection now is the session's.
    Server().CloseByServer();
    fakes->timers.Advance(20000);
    QVERIFY(Prompts().aBoxes.isEmpty());
    QCOMPARE(owner->aCalls.size(), 4);
}

void tst_Login::clientLeavesInsideItsOwnEvent()
{
    owner->onClose = [&] { login.release()->deleteLater(); };
    ConnectToServer();
    Greet();
    Server().FeedShort("OK\r\n");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(owner->client->IsConnected());
    Server().Feed("more");
}

void tst_Login::abortDuringTheWaitConnectsToNothing()
{
    Fill();
    fakes->pump.Then([] {}).Then([&] { login->ClickLogin(); });
    login->ClickLogin();
    QVERIFY(!fakes->sockets.Last());
    QVERIFY(fakes->clock.lMilliseconds < 100);
    QCOMPARE(Controls().strLoginTip, "Ready ...");
    QVERIFY(IsReady());
}

void tst_Login::abortAndNewLoginConnectOnce()
{
    Fill();
    fakes->pump.Then([&] {
        login->ClickLogin();
        login->ClickLogin();
    });
    login->ClickLogin();
    QCOMPARE(Server().lConnects, 1);
    QCOMPARE(fakes->clock.lMilliseconds, 1510);
    QCOMPARE(Controls().strLoginTag, "Cancel");
}

void tst_Login::abortWhileConnectingClosesTheSocket()
{
    Fill();
    login->ClickLogin();
    login->ClickLogin();
    QCOMPARE(Server().State(), Socket::sckClosed);
    QVERIFY(IsReady());
}

void tst_Login::connectedLoginCannotBeAborted()
{
    ConnectToServer();
    QVERIFY(Controls().strLoginTag.isEmpty());
    QVERIFY(!Controls().bLoginEnabled);
    login->ClickLogin();
    login->ClickBrowse();
    QCOMPARE(Server().State(), Socket::sckConnected);
    QCOMPARE(Server().lConnects, 1);
    QVERIFY(Prompts().aBoxes.isEmpty());
}

void tst_Login::windowThatClosesDuringTheWaitEndsIt()
{
    Fill();
    owner->onClose = [&] { login.release()->deleteLater(); };
    fakes->pump.Then([&] { login->ClickExit(); }).Then([] {});
    login->ClickLogin();
    QCOMPARE(owner->aCalls, QStringList{"close"});
    QVERIFY(!fakes->sockets.Last());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void tst_Login::lostServerIsTold_data()
{
    QTest::addColumn<QString>("how");
    for (const char *how : {"refused", "closed", "silent", "silent after the greeting"})
        QTest::newRow(how) << how;
}

void tst_Login::lostServerIsTold()
{
    QFETCH(QString, how);
    Fill();
    login->ClickLogin();
    if (how == "refused") {
        Server().RefuseConnection();
    } else {
        Server().AcceptConnection();
        if (how != "closed")
            fakes->timers.Advance(9990);
        if (how == "silent after the greeting") {
            Greet();
            fakes->timers.Advance(9990);
        }
        QVERIFY(Prompts().aBoxes.isEmpty());
        if (how == "closed")
            Server().CloseByServer();
        else
            fakes->timers.Advance(10);
    }
    QCOMPARE(Prompts().Texts(), QStringList{connectFailure});
    QCOMPARE(Prompts().aBoxes.first().lFlags, long(mbCritical));
    QCOMPARE(Server().State(), Socket::sckClosed);
    QCOMPARE(Controls().strLoginTip, "Ready....");
    QVERIFY(IsReady());
}

void tst_Login::lateFailureOfAnEarlierLoginIsNotHeard()
{
    Fill();
    login->ClickLogin();
    FakeSocket *first = fakes->sockets.Last();
    login->ClickLogin();
    login->ClickLogin();
    QVERIFY(fakes->sockets.Last() != first);
    first->RefuseConnection();
    QVERIFY(Prompts().aBoxes.isEmpty());
    QVERIFY(login->IsLoggingIn());
}

void tst_Login::refusedLoginCanBeTriedAgain_data()
{
    QTest::addColumn<QByteArray>("code");
    QTest::addColumn<QStringList>("messages");
    QTest::newRow("twice") << QByteArray("12") << QStringList{"The user has logged in."};
    QTest::newRow("full") << QByteArray("2") << QStringList{"Too many users logged in already."};
    QTest::newRow("locked") << QByteArray("14") << QStringList{"The user is locked by Administrator"};
    QTest::newRow("password") << QByteArray("1") << QStringList{"User name or password incorrect"};
    QTest::newRow("other") << QByteArray("99") << QStringList{};
}

void tst_Login::refusedLoginCanBeTriedAgain()
{
    QFETCH(QByteArray, code);
    QFETCH(QStringList, messages);
    ConnectToServer();
    Greet();
    QSignalSpy focus(login.get(), &Login::FocusRequested);
    Server().FeedShort("ERR\r\n" + code + "\r\n");
    QCOMPARE(Prompts().Texts(), messages);
    QCOMPARE(Server().State(), Socket::sckClosed);
    QCOMPARE(Controls().strLoginTip, "Ready...");
    QCOMPARE(focus.size(), 1);
    QVERIFY(IsReady());
    QVERIFY(!QFileInfo::exists(Global().strAppDataPath + "bert")); // no profile for a stranger
    login->ClickLogin();
    Server().AcceptConnection();
    Greet();
    Server().FeedShort("OK\r\n");
    QVERIFY(login->CheckUserLogin());
}

void tst_Login::otherProtocolVersionIsToldNothing()
{
    ConnectToServer();
    Server().FeedShort("Welcome\r\n1.7\r\n");
    QCOMPARE(Prompts().Texts(), QStringList{"The desired communication protocol is version 1.6 beta\nPlease "
                                            "install the newest version of Velmar Client"});
    QVERIFY(Server().aWrites.isEmpty());
    QCOMPARE(Server().State(), Socket::sckClosed);
    QVERIFY(IsReady());
}

void tst_Login::replyOfOneLineLeavesTheConnection()
{
    ConnectToServer();
    Server().FeedShort("Welcome");
    QCOMPARE(Prompts().Texts(), QStringList{"Unexpected data received from server!"});
    QCOMPARE(Server().State(), Socket::sckConnected);
    QVERIFY(Server().aWrites.isEmpty());
    fakes->timers.Advance(10000);
    QCOMPARE(Prompts().Texts().value(1), connectFailure);
    QVERIFY(IsReady());
}

void tst_Login::okBeforeTheLoginIsNoAcceptance()
{
    ConnectToServer();
    Server().FeedShort("OK\r\n");
    QVERIFY(owner->aCalls.isEmpty());
    Greet();
    Greet();
    QCOMPARE(Server().aWrites.size(), 1);
}

void tst_Login::databaseOfOtherVersionEndsTheLogin()
{
    EnterAnna();
    Global().objDB->OpenDB(UserProfile::DatabaseFile(Global().strUserFolder));
    Profile::Execute("Update DatabaseVersion Set Version='2.7'");
    Fill("anna");
    login->ClickLogin();
    Server().AcceptConnection();
    Greet();
    Server().FeedShort("OK\r\n");
    QCOMPARE(Prompts().Texts(), QStringList{"Unsupported database version: 2.7 , need version: 2.8"});
    QCOMPARE(Server().State(), Socket::sckClosed);
    QVERIFY(owner->aCalls.isEmpty());
    QVERIFY(!Global().objDB->IsOpen());
    QVERIFY(IsReady());
}

void tst_Login::loginFromTheMainWindowOnlyHandsOver()
{
    EnterAnna("MarkFax", "5");
    Global().objDB->OpenDB(UserProfile::DatabaseFile(Global().strUserFolder));
    MakeLogin(true);
    QVERIFY(login->Load());
    login->Activate();
    QVERIFY(Controls().bFixed);
    QCOMPARE(Controls().strAccount, "anna");
    login->SetAccount("bert");
    QCOMPARE(Controls().strAccount, "anna");
    login->SetPassword("changed");
    login->ClickLogin();
    Server().AcceptConnection();
    Greet();
    Server().FeedShort("OK\r\n");
    QCOMPARE(owner->aCalls, (QStringList{"client", "close"}));
    QVERIFY(login->CheckUserLogin());
    QCOMPARE(Global().strPwdDigest, Frames::Md5Digest("changed"));
    QVERIFY(Global().objDB->IsOpen());
    QCOMPARE(ReadIniValue("anna", "AutoLogin", Global().strIniFile), "");
}

void tst_Login::offlineRefusals_data()
{
    QTest::addColumn<QString>("account");
    QTest::addColumn<QString>("message");
    QTest::newRow("stranger") << "bert"
                              << "The user had not logged in yet, cannot work offline.";
    QTest::newRow("no account") << ""
                                << "The user had not logged in yet, cannot work offline.";
    QTest::newRow("no folder") << "gone"
                               << "User profile could not be found, cannot work offline.";
    QTest::newRow("damaged") << "broken"
                             << "Failed to load user data: broken";
    QTest::newRow("no row") << "anna"
                            << "Load user profile fails, cannot work offline.anna";
    QTest::newRow("other password") << "carl"
                                    << "User name or password incorrect";
}

void tst_Login::offlineRefusals()
{
    QFETCH(QString, account);
    QFETCH(QString, message);
    EnterAnna();
    Set("gone", "UserFolder", profile->Root() + "/gone");
    Set("broken", "UserFolder", profile->Root() + "/broken");
    QDir().mkpath(profile->Root() + "/broken/Database");
    QVERIFY(WriteTestFile(profile->Root() + "/broken/Database/MFax_Client.mfd", QByteArray(5000, 'x')));
    if (account == "carl") {
        EnterAnna("Pwd", "'" + QString(32, 'C') + "'");
        Set("carl", "UserFolder", Global().strAppDataPath + "anna");
    }
    Fill(account);
    login->ClickBrowse();
    QCOMPARE(Prompts().Texts(), QStringList{message});
    QVERIFY(owner->aCalls.isEmpty());
    QVERIFY(IsReady());
}

void tst_Login::offlineOpensTheProfile()
{
    EnterAnna("Pwd,MarkFax", "'" + digestOfSecret + "',7");
    Fill("anna");
    login->ClickBrowse();
    QCOMPARE(owner->aCalls, (QStringList{"online 0 digest 0", "show", "close"}));
    QVERIFY(!login->CheckUserLogin());
    QCOMPARE(Global().MarkFax, 7);
    QCOMPARE(Global().strUserName, "anna");
    QVERIFY(Global().objDB->IsOpen());
    QVERIFY(!fakes->sockets.Last());
}

void tst_Login::offlineFailureIsAnApplicationError()
{
    EnterAnna();
    Global().objDB->OpenDB(UserProfile::DatabaseFile(Global().strUserFolder));
    Profile::Execute("Drop Table Option");
    Fill("anna");
    login->ClickBrowse();
    QCOMPARE(Prompts().aBoxes.size(), 1);
    const QString text = Prompts().Texts().first();
    const QString start = "Application Error\nin VelmarClient.frmUserLogin.btnBrowse_Click at line ";
    QVERIFY2(text.startsWith(start) && text.mid(start.length()).toInt() > 0, qPrintable(text));
    QVERIFY(IsReady());
}

void tst_Login::exitClosesTheProfile()
{
    EnterAnna("RememberPwd,Pwd", "1,'" + digestOfSecret + "'");
    QVERIFY(login->Load());
    login->Activate();
    QVERIFY(Global().objDB->IsOpen());
    login->ClickExit();
    login->ClickExit();
    QCOMPARE(owner->aCalls, QStringList{"close"});
    QVERIFY(!Global().objDB->IsOpen());
}

QTEST_GUILESS_MAIN(tst_Login)
#include "tst_Login.moc"
