#include "core/Globals.h"
#include "core/Schema.h"
#include "core/SettingsFile.h"
#include "endtoend/ClientUnderTest.h"
#include "fixtures/OldDatabases.h"
#include "fixtures/Profile.h"
#include "fixtures/TrialServer.h"
#include "server/PasswordChange.h"
#include "server/Polling.h"

#include <QDir>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <QtTest>

namespace {

const QString digestOfAnna = "A70F9E38FF015AFAA9AB0AACABEE2E13";
const QString refusedText = "User name or password incorrect";
const QString unsavedText = "Failed to save user profiles.";

QString LostText(const QString &server)
{
    return "Failed to connect to Velmar server at: " + server +
           "\nOr client has exceeded max number of allowed connections.";
}

QString Setting(const QString &section, const QString &key)
{
    return ReadIniValue(section, key, Global().strIniFile);
}

/// A port on which a connection is neither accepted nor refused: its short queue is full.
class FullServer
{
public:
    FullServer()
    {
        server.setListenBacklogSize(0);
        server.listen(QHostAddress::LocalHost);
        server.pauseAccepting();
        for (QTcpSocket &socket : aFillers) {
            socket.connectToHost(QHostAddress::LocalHost, server.serverPort());
            socket.waitForConnected(200);
        }
    }
    QString Address() const { return QString("127.0.0.1:%1").arg(server.serverPort()); }

private:
    QTcpServer server;
    QTcpSocket aFillers[3];
};

} // namespace

/// Each test starts with an untouched data folder; the server is one for all that need no script.
class tst_LoginEndToEnd : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void firstLoginLaysTheProfileOut();
    void bothBoxesMakeTwoRows();
    void rememberedPasswordIsNeverTyped();
    void automaticLoginNeedsNoClick();
    void accountInAnotherCaseIsTheSameProfile();
    void refusalIsToldAndTheWindowStays_data();
    void refusalIsToldAndTheWindowStays();
    void serverThatFailsIsToldAndTheWindowStays_data();
    void serverThatFailsIsToldAndTheWindowStays();
    void userCanAbort_data();
    void userCanAbort();
    void offlineWorkNeedsTheStoredPassword();
    void changedPasswordCountsAtOnce();
    void idleLogoutIsMendedByTheNextCommand();
    void oldDatabaseIsUpgradedAtTheLogin();
    void oldDatabaseStaysWhenTheUserSaysNo();
    void damagedDatabaseIsToldAndKept();
    void impossibleFoldersAreTold_data();
    void impossibleFoldersAreTold();
    void brokenSettingsFileDoesNotHinderTheLogin_data();
    void brokenSettingsFileDoesNotHinderTheLogin();

private:
    LoginChoice Anna(bool remember = false, bool autoLogin = false) const
    {
        return {server.Address(), "anna", "anna", remember, autoLogin};
    }
    QString Home() const { return home->path(); }
    QString DataPath() const { return Home() + "/common/Velmar/"; }
    QString DatabasePath() const { return DataPath() + "anna/Database/MFax_Client.mfd"; }
    /// The window can be used for another try.
    static void VerifyReady(const LoginControls &controls);
    /// Whatever happened before, the account can be used now.
    void VerifyNextLogin() const;

    TrialServer server;
    std::unique_ptr<QTemporaryDir> home;
};

void tst_LoginEndToEnd::initTestCase()
{
    QVERIFY(server.AddUser("anna", "anna"));
    QVERIFY(server.AddUser("locked", "locked", true));
    QVERIFY(server.Start());
}

void tst_LoginEndToEnd::init()
{
    home = std::make_unique<QTemporaryDir>();
}

void tst_LoginEndToEnd::VerifyReady(const LoginControls &controls)
{
    QVERIFY(controls.bLoginEnabled && controls.bBrowseEnabled && controls.bExitEnabled);
    QVERIFY(controls.bInputEnabled);
    QCOMPARE(controls.strLoginCaption, "&Login");
    QCOMPARE(controls.strLoginTag, QString());
    QVERIFY2(controls.strLoginTip.startsWith("Ready"), qPrintable(controls.strLoginTip));
}

void tst_LoginEndToEnd::VerifyNextLogin() const
{
    ClientUnderTest client(Home());
    QVERIFY2(client.LogIn(Anna()), qPrintable(client.prompts.Texts().join('|')));
    QVERIFY(client.session.IsConnected());
    QCOMPARE(Profile::Value("Select Version From DatabaseVersion"), "2.8");
}

void tst_LoginEndToEnd::firstLoginLaysTheProfileOut()
{
    ClientUnderTest client(Home());
    QVERIFY(client.LogIn(Anna()));
    QCOMPARE(client.prompts.Texts(), QStringList());
    QVERIFY(client.session.bOnline && client.session.IsConnected() && !client.session.bDigestUsed);

    QCOMPARE(QDir(DataPath() + "anna").entryList(QDir::Dirs | QDir::NoDotAndDotDot),
             (QStringList{"Database", "Header", "InputBox", "OutputBox"}));
    QCOMPARE(QDir(DataPath() + "anna/Database").entryList({"*.mfd", "*.new*"}, QDir::Files),
             QStringList{"MFax_Client.mfd"});
    QCOMPARE(Profile::Values("Select MarkFax From Option"), QStringList{"5"});
    QCOMPARE(Profile::Value("Select ContactVersion From Option"), "-1");
    QCOMPARE(Profile::Value("Select Pwd From Option"), QString());
    QCOMPARE(Setting("General", "ServerIP"), server.Address());
    QCOMPARE(Setting("General", "LastUser"), "anna");
    QCOMPARE(Setting("UserList", "TotalCount") + Setting("UserList", "1"), "1anna");
    QCOMPARE(Setting("anna", "UserFolder"), DataPath() + "anna/");
    QCOMPARE(Setting("anna", "UserPwd"), QString());
    QCOMPARE(Global().strPwdDigest, digestOfAnna);
    QCOMPARE(Global().strServerPort.toInt(), server.Port());
    QCOMPARE(Global().CheckFax, 1); // the row did not exist when the settings were loaded
}

void tst_LoginEndToEnd::bothBoxesMakeTwoRows()
{
    ClientUnderTest client(Home());
    QVERIFY(client.LogIn(Anna(true, true)));
    QCOMPARE(Profile::Values("Select MarkFax || Pwd From Option"),
             (QStringList{"5" + digestOfAnna, "5" + digestOfAnna}));
    QCOMPARE(Setting("anna", "UserPwd"), digestOfAnna);
}

void tst_LoginEndToEnd::rememberedPasswordIsNeverTyped()
{
    QVERIFY(ClientUnderTest(Home()).LogIn(Anna(true)));
    ClientUnderTest client(Home());
    QVERIFY(client.RunLogin([](Login &login) {
        QCOMPARE(login.Controls().strAccount, "anna");
        QCOMPARE(login.Controls().aAccounts, QStringList{"anna"});
        QVERIFY(login.Controls().bRememberPwd && !login.Controls().bAutoLogin);
        login.ClickLogin();
    }));
    QVERIFY(client.session.bDigestUsed && client.session.IsConnected());
    QCOMPARE(Profile::Values("Select MarkFax From Option"), QStringList{"5"});
}

void tst_LoginEndToEnd::automaticLoginNeedsNoClick()
{
    QVERIFY(ClientUnderTest(Home()).LogIn(Anna(true, true)));
    ClientUnderTest client(Home());
    QVERIFY(client.StartLogin());
    QVERIFY(client.session.bDigestUsed && client.session.IsConnected());
    QCOMPARE(client.prompts.Texts(), QStringList());
}

void tst_LoginEndToEnd::accountInAnotherCaseIsTheSameProfile()
{
    QVERIFY(ClientUnderTest(Home()).LogIn(Anna()));
    ClientUnderTest client(Home());
    QVERIFY(client.LogIn({server.Address(), "ANNA", "anna"}));
    QCOMPARE(Global().strUserFolder, DataPath() + "anna/");
    QCOMPARE(Setting("UserList", "TotalCount"), "1");
    QCOMPARE(QDir(DataPath()).entryList(QDir::Dirs | QDir::NoDotAndDotDot), QStringList{"anna"});
    QCOMPARE(Profile::Values("Select MarkFax From Option"), QStringList{"5"});
}

void tst_LoginEndToEnd::refusalIsToldAndTheWindowStays_data()
{
    QTest::addColumn<QString>("account");
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("text");
    QTest::newRow("1") << "anna"
                       << "nonsense" << refusedText;
    QTest::newRow("14") << "locked"
                        << "locked"
                        << "The user is locked by Administrator";
    QTest::newRow("12") << "bert"
                        << "bert"
                        << "The user has logged in.";
    QTest::newRow("2") << "anna"
                       << "anna"
                       << "Too many users logged in already.";
}

void tst_LoginEndToEnd::refusalIsToldAndTheWindowStays()
{
    QFETCH(QString, account);
    QFETCH(QString, password);
    TrialServer crowded; // one user has taken the only place
    QVERIFY(crowded.AddUser("anna", "anna") && crowded.AddUser("bert", "bert"));
    QVERIFY(crowded.AddUser("locked", "locked", true));
    QVERIFY(crowded.Start({}, {}, {"--max-users", "1"}));
    QTemporaryDir otherHome;
    auto holder = std::make_unique<ClientUnderTest>(otherHome.path());
    QVERIFY(holder->LogIn({crowded.Address(), "bert", "bert"}));

    ClientUnderTest client(Home());
    QVERIFY(!client.LogIn({crowded.Address(), account, password}));
    QTEST(client.prompts.Texts().join('|'), "text");
    VerifyReady(client.LastControls());
    QVERIFY(!QFileInfo::exists(DataPath() + account));

    holder.reset();
    Global().strAppDataPath = DataPath();
    Global().strIniFile = DataPath() + "FaxSetup.ini";
    QVERIFY(client.LogIn({crowded.Address(), "anna", "anna"})); // the same program tries again
}

void tst_LoginEndToEnd::serverThatFailsIsToldAndTheWindowStays_data()
{
    const QString lost = LostText("%1");
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QString>("text");
    QTest::newRow("another protocol")
        << QByteArray(R"(on greeting once short "Welcome\r\n1.5\r\n")")
        << "The desired communication protocol is version 1.6 beta\nPlease install the newest version of "
           "Velmar Client";
    QTest::newRow("closed behind the greeting") << QByteArray("on greeting once answer close") << lost;
    QTest::newRow("reset behind the greeting") << QByteArray("on greeting once answer abort") << lost;
    QTest::newRow("no greeting") << QByteArray("on greeting once silence") << lost;
    QTest::newRow("no answer to the login") << QByteArray("on 1 once silence") << lost;
    QTest::newRow("refusal without a known reason") << QByteArray("on 1 once refuse 99") << QString();
    QTest::newRow("refusal of one line")
        << QByteArray("on 1 once short \"ERR\"") << "Unexpected data received from server!|" + lost;
}

void tst_LoginEndToEnd::serverThatFailsIsToldAndTheWindowStays()
{
    QFETCH(QByteArray, script);
    QFETCH(QString, text);
    TrialServer failing;
    QVERIFY(failing.AddUser("anna", "anna") && failing.Start(script));
    constexpr int timerFactor = 20; // 10 s of silence pass in half a second
    ClientUnderTest client(Home(), timerFactor);
    QVERIFY(!client.LogIn({failing.Address()}));
    QCOMPARE(client.prompts.Texts().join('|'), text.replace("%1", failing.Address()));
    VerifyReady(client.LastControls());
    QVERIFY(!QFileInfo::exists(DataPath() + "anna"));
    QVERIFY(client.LogIn({failing.Address()}));
}

void tst_LoginEndToEnd::userCanAbort_data()
{
    QTest::addColumn<int>("abortAfter"); // milliseconds; the wait before connecting takes 150 here
    QTest::newRow("during the wait") << 20;
    QTest::newRow("while connecting") << 600;
}

void tst_LoginEndToEnd::userCanAbort()
{
    QFETCH(int, abortAfter);
    const FullServer fullServer;
    ClientUnderTest client(Home());
    QElapsedTimer elapsed;
    elapsed.start();
    const bool closed = client.RunLogin([&](Login &login) {
        login.SetServer(fullServer.Address());
        login.SetAccount("anna");
        login.SetPassword("anna");
        QTimer::singleShot(abortAfter, &login, [&login] {
            QCOMPARE(login.Controls().strLoginTag, "Cancel");
            QVERIFY(!login.Controls().bExitEnabled);
            login.ClickLogin();
        });
        login.ClickLogin();
    });
    QVERIFY(!closed && elapsed.elapsed() >= abortAfter);
    QCOMPARE(client.prompts.Texts(), QStringList());
    QCOMPARE(client.LastControls().strLoginTip, "Ready ...");
    VerifyReady(client.LastControls());
    VerifyNextLogin();
}

void tst_LoginEndToEnd::offlineWorkNeedsTheStoredPassword()
{
    ClientUnderTest stranger(Home());
    QVERIFY(!stranger.WorkOffline(Anna()));
    QCOMPARE(stranger.prompts.Texts(), QStringList{"The user had not logged in yet, cannot work offline."});
    QVERIFY(ClientUnderTest(Home()).LogIn(Anna(true)));

    ClientUnderTest client(Home());
    QVERIFY(!client.WorkOffline({{}, "anna", "wrong"}));
    QCOMPARE(client.prompts.Texts(), QStringList{refusedText});
    VerifyReady(client.LastControls());
    QVERIFY(!Global().objDB->IsOpen());
    QVERIFY(client.WorkOffline(Anna()));
    QVERIFY(!client.session.bOnline && !client.session.HasClient());
    QCOMPARE(Profile::Values("Select MarkFax From Option"), QStringList{"5"});
    QCOMPARE(Global().MarkFax, 5);

    QVERIFY(QFile::remove(DatabasePath()));
    ClientUnderTest later(Home());
    QVERIFY(!later.WorkOffline(Anna()));
    QCOMPARE(later.prompts.Texts(), QStringList{"User profile could not be found, cannot work offline."});
    VerifyNextLogin();
}

void tst_LoginEndToEnd::changedPasswordCountsAtOnce()
{
    QVERIFY(server.AddUser("carl", "first"));
    const LoginChoice carl{server.Address(), "carl", "first", true};
    {
        ClientUnderTest client(Home());
        QVERIFY(client.LogIn(carl));
        PasswordChange window(
            client.ports, [&](auto old, auto next) { return client.runs.ChangePassword(old, next); },
            [&] { return client.session.IsConnected(); });
        QCOMPARE(window.ClickOK("wrong", "second", "second"), PasswordChange::resInvalidOld);
        QCOMPARE(window.ClickOK("first", "second", "second"), PasswordChange::resChanged);
        QCOMPARE(client.prompts.Texts(),
                 (QStringList{"The password you gave is incorrect.", "Your new password has been saved."}));
        client.session.CancelTransfer();
        QVERIFY(client.session.ConnectToServer()); // with the new digest
    }
    ClientUnderTest client(Home());
    QVERIFY(!client.LogIn(carl));
    QCOMPARE(client.prompts.Texts(), QStringList{refusedText});
    ClientUnderTest later(Home());
    QVERIFY(later.RunLogin([](Login &login) { login.ClickLogin(); })); // remembered, and new
    QVERIFY(later.session.bDigestUsed && later.prompts.aBoxes.isEmpty());
}

void tst_LoginEndToEnd::idleLogoutIsMendedByTheNextCommand()
{
    ClientUnderTest client(Home());
    QVERIFY(client.LogIn(Anna()));
    Polling polling(client.ports, client.session, client.download, client.desktop.forms, {});
    Global().DisconnectTime = 1;
    for (int second = 0; second < 60; ++second)
        polling.OnCheckFaxTick();
    QVERIFY(client.session.IsConnected() && !client.session.bUserLogout);
    polling.OnCheckFaxTick();
    QVERIFY(client.WaitUntil([&] { return !client.session.IsConnected(); }));
    QVERIFY(client.session.bOnline);

    QVERIFY(server.Deliver("anna", {server.MakeFax("offer.tif")}));
    client.download.ReceiveFaxes(true, false, true, false);
    QCOMPARE(client.StoredIds().size(), 1);
    QVERIFY(client.session.IsConnected() && !client.session.bUserLogout);
    QCOMPARE(client.prompts.Texts(), QStringList());
}

void tst_LoginEndToEnd::oldDatabaseIsUpgradedAtTheLogin()
{
    QVERIFY(ClientUnderTest(Home()).LogIn(Anna()));
    QVERIFY(QFile::remove(DatabasePath()));
    OldDatabases::Make(DatabasePath(), "2.5");

    ClientUnderTest client(Home());
    client.prompts.aAnswers = {mbAnswerYes};
    QVERIFY(client.LogIn(Anna()));
    QCOMPARE(client.prompts.Texts().value(1), "Upgrade 2.5 to 2.8 succefully!");
    QCOMPARE(client.prompts.aBoxes.size(), 2);
    QVERIFY(client.session.IsConnected());
    QCOMPARE(client.StoredIds(), QStringList{"R1"});
    QCOMPARE(client.StoredIds("SendFax"), QStringList{"S1"});
    QCOMPARE(QDir(DataPath() + "anna/Database").entryList({"*.mfd", "*.bak*"}, QDir::Files).size(), 2);
    client.session.CancelTransfer();
    VerifyNextLogin();
}

void tst_LoginEndToEnd::oldDatabaseStaysWhenTheUserSaysNo()
{
    QVERIFY(ClientUnderTest(Home()).LogIn(Anna()));
    QVERIFY(QFile::remove(DatabasePath()));
    OldDatabases::Make(DatabasePath(), "2.5");

    ClientUnderTest client(Home());
    client.prompts.aAnswers = {mbAnswerNo};
    QVERIFY(!client.LogIn(Anna()));
    QCOMPARE(client.prompts.aBoxes.size(), 1);
    VerifyReady(client.LastControls());
    QVERIFY(!client.session.HasClient() && !Global().objDB->IsOpen());
    QCOMPARE(OldDatabases::Value(DatabasePath(), "Select Version From DatabaseVersion"), "2.5");
    client.prompts.aAnswers = {mbAnswerYes};
    QVERIFY(client.LogIn(Anna())); // the server has let go of the refused connection
}

void tst_LoginEndToEnd::damagedDatabaseIsToldAndKept()
{
    QVERIFY(ClientUnderTest(Home()).LogIn(Anna(true)));
    const QByteArray rubbish(8192, 'x');
    QVERIFY(WriteTestFile(DatabasePath(), rubbish));

    ClientUnderTest client(Home());
    QVERIFY(!client.LogIn(Anna()));
    QCOMPARE(client.prompts.Texts(),
             (QStringList{"Failed to load user anna's configuration. \nIf this problem still remains, please "
                          "reinstall Velmar Client",
                          "Invalid or incompatible user profile(Can not get Version)."}));
    VerifyReady(client.LastControls());
    QVERIFY(!client.WorkOffline(Anna()));
    QCOMPARE(client.prompts.Texts().last(), "Failed to load user data: anna");
    QCOMPARE(ReadTestFile(DatabasePath()), rubbish);
    QVERIFY(QFile::remove(DatabasePath()));
    VerifyNextLogin();
}

void tst_LoginEndToEnd::impossibleFoldersAreTold_data()
{
    QTest::addColumn<QString>("blocked");
    QTest::newRow("user folder") << "anna";
    QTest::newRow("database folder") << "anna/Database";
    QTest::newRow("inbox") << "anna/InputBox";
    QTest::newRow("headers") << "anna/Header";
    QTest::newRow("working folder") << "";
}

void tst_LoginEndToEnd::impossibleFoldersAreTold()
{
    QFETCH(QString, blocked);
    const QString file = QDir::cleanPath(DataPath() + blocked);
    QVERIFY(QDir().mkpath(QFileInfo(file).path()));
    QVERIFY(WriteTestFile(file, "a file where the folder should be"));
    ClientUnderTest client(Home());
    QVERIFY(!client.LogIn(Anna()));
    QCOMPARE(
        client.prompts.Texts(),
        QStringList{blocked.isEmpty() ? "Cannot create working directory:\n" + DataPath() : unsavedText});
    QVERIFY(!client.session.HasClient());
    QVERIFY(QFile::remove(file));
    if (!blocked.isEmpty()) {
        VerifyReady(client.LastControls());
        QVERIFY(client.LogIn(Anna()));
        client.session.CancelTransfer();
    }
    VerifyNextLogin();
}

void tst_LoginEndToEnd::brokenSettingsFileDoesNotHinderTheLogin_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("rubbish") << QByteArray("\xff\xfe[[[\0==\r[General\n[anna]\nUserFolder", 35);
    QTest::newRow("entries without sense")
        << QByteArray("[UserList]\nTotalCount=2147483647\n1=../anna\n[anna]\nUserFolder=../../etc\n");
    QTest::newRow("list of accounts lost")
        << QByteArray("[General]\nLastUser=anna\n[anna]\nUserFolder=%1/moved/\n");
    QTest::newRow("a folder in its place") << QByteArray();
}

void tst_LoginEndToEnd::brokenSettingsFileDoesNotHinderTheLogin()
{
    QFETCH(QByteArray, content);
    QVERIFY(ClientUnderTest(Home()).LogIn(Anna()));
    const QString settings = DataPath() + "FaxSetup.ini";
    QVERIFY(QDir().mkpath(Home() + "/moved/Database"));
    QVERIFY(QFile::copy(DatabasePath(), Home() + "/moved/Database/MFax_Client.mfd"));
    QVERIFY(QFile::remove(settings));
    if (content.isEmpty())
        QVERIFY(QDir().mkpath(settings + "/blocked"));
    else
        QVERIFY(WriteTestFile(settings, content.replace("%1", Home().toUtf8())));

    ClientUnderTest client(Home());
    QVERIFY(client.LogIn(Anna()));
    QCOMPARE(client.prompts.Texts(), content.isEmpty() ? QStringList{unsavedText} : QStringList());
    QVERIFY(client.session.IsConnected());
    QCOMPARE(Global().strUserFolder, DataPath() + "anna/");
    QCOMPARE(Global().objDB->DataBasePath(), DatabasePath());
    client.session.CancelTransfer();
    if (content.isEmpty())
        QVERIFY(QDir(settings).removeRecursively());
    VerifyNextLogin();
    QCOMPARE(ReadIniValue("General", "LastUser", settings), "anna");
}

QTEST_GUILESS_MAIN(tst_LoginEndToEnd)
#include "tst_LoginEndToEnd.moc"
