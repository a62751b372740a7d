#include "fixtures/LoginTest.h"
#include "fixtures/OldDatabases.h"
#include "fixtures/TestTable.h"
#include "server/wire/Frames.h"

#include <QDir>
#include <QScopeGuard>
#include <QSignalSpy>

#include <sys/stat.h>

using Step = std::function<void()>;

class tst_Login : public QObject, private LoginTest
{
    Q_OBJECT

private slots:
    void init() { SetUp(); }
    void cleanup() { TearDown(); }

    void nobodyElseReadsWhatALoginMakes()
    {
        const auto restore = qScopeGuard([before = umask(0)] { umask(before); });
        Global().strAppDataPath = profile->Root() + "/new/Velmar/";
        Global().strIniFile = Global().strAppDataPath + "FaxSetup.ini";
        QVERIFY(login->Load());
        QVERIFY(UserProfile(fakes->ports).Save({"bert", "secret"}));
        const QFile::Permissions others(0x0077);
        for (const QString &path : {Global().strAppDataPath, Global().strUserFolder, Global().strIniFile})
            QVERIFY2(!(QFile::permissions(path) & others), qPrintable(path));

        // What somebody has opened to others stays so.
        const QFile::Permissions shared = QFile::permissions(Global().strAppDataPath) | QFile::ReadGroup;
        QVERIFY(QFile::setPermissions(Global().strAppDataPath, shared));
        QVERIFY(login->Load());
        QCOMPARE(QFile::permissions(Global().strAppDataPath), shared);
    }

    void windowStartsWithTheLastUser()
    {
        EnterAnna();
        Set("UserList", "TotalCount", "3");
        Set("UserList", "3", "bert");
        QVERIFY(login->Load());
        QCOMPARE(Controls().strServer, "faxhost:9000");
        QCOMPARE(Controls().strAccount, "anna");
        QCOMPARE(Controls().aAccounts, (QStringList{"anna", "bert"}));

        login->Activate(); // a profile without a stored password is closed again
        QVERIFY(!Global().objDB->IsOpen());
        QVERIFY(IsReady());
        login->SetAutoLogin(true);
        QVERIFY(Controls().bRememberPwd);
        login->SetRememberPwd(false);
        QVERIFY(!Controls().bAutoLogin);
    }

    void lastUserIsLoggedInByTheStoredDigest()
    {
        EnterAnna("AutoLogin,RememberPwd,Pwd", "1,0,'" + digestOfSecret + "'");
        QVERIFY(login->Load());
        login->Activate();
        QVERIFY(Controls().bAutoLogin && Controls().bRememberPwd);
        Server().AcceptConnection();
        Greet();
        QCOMPARE(Server().TakeWrite(),
                 Frames::FormA(Frames::cmdLogIn, "anna\r\n" + digestOfSecret.toLatin1()));
        Server().FeedShort("OK\r\n");
        QCOMPARE(owner->aCalls, (QStringList{"online 1 digest 1", "client", "show", "close"}));
        QCOMPARE(Global().strPwdDigest, digestOfSecret);
        QVERIFY(login->CheckUserLogin());
    }

    void anotherAccountBringsItsOwnOptions()
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

    void offlineRefusals()
    {
        EnterAnna();
        Set("gone", "UserFolder", profile->Root() + "/gone");
        Set("broken", "UserFolder", profile->Root() + "/broken");
        QDir().mkpath(profile->Root() + "/broken/Database");
        QVERIFY(WriteTestFile(profile->Root() + "/broken/Database/MFax_Client.mfd", QByteArray(5000, 'x')));
        for (const char *account : {"bert", "", "gone", "broken", "anna"}) {
            Fill(account);
            login->ClickBrowse();
            QVERIFY(IsReady());
        }
        EnterAnna("Pwd", "'" + QString(32, 'C') + "'");
        login->SetAccount("anna");
        login->ClickBrowse();
        QCOMPARE(Prompts().Texts(), (QStringList{"The user had not logged in yet, cannot work offline.",
                                                 "The user had not logged in yet, cannot work offline.",
                                                 "User profile could not be found, cannot work offline.",
                                                 "Failed to load user data: broken",
                                                 "Load user profile fails, cannot work offline.anna",
                                                 "User name or password incorrect"}));
        Global().objDB->OpenDB(DatabasePath());
        Profile::Execute("Drop Table Option");
        login->ClickBrowse();
        const QString start = "Application Error\nin VelmarClient.frmUserLogin.btnBrowse_Click at line ";
        const QString text = Prompts().Texts().last();
        QVERIFY2(text.startsWith(start) && text.mid(start.length()).toInt() > 0, qPrintable(text));
        QVERIFY(IsReady() && owner->aCalls.isEmpty() && !Global().objDB->IsOpen());
    }

    void offlineOpensTheProfile()
    {
        EnterAnna("Pwd,MarkFax", "'" + digestOfSecret + "',7");
        Fill("anna");
        login->ClickBrowse();
        QCOMPARE(owner->aCalls, (QStringList{"online 0 digest 0", "show", "close"}));
        QVERIFY(!login->CheckUserLogin());
        QCOMPARE(Global().MarkFax, 7);
        QVERIFY(Global().objDB->IsOpen() && !fakes->sockets.Last());
    }

    void serverTextBecomesHostAndPort()
    {
        using Case = std::pair<QString, std::pair<QString, int>>;
        for (const auto &[text, expected] :
             {Case{"192.168.1.5", {"192.168.1.5", 8750}}, Case{"faxhost:", {"faxhost", 0}},
              Case{"faxhost:90:1", {"faxhost", 90}}}) {
            Fill();
            login->SetServer(text);
            login->ClickLogin();
            QCOMPARE(std::pair(Server().strHost, int(Server().lPort)), expected);
            QCOMPARE(Global().strServerIP, expected.first);
            login->ClickLogin(); // gives up
        }
    }

    void firstLoginHandsTheClientOver()
    {
        Fill();
        login->ClickLogin();
        QCOMPARE(fakes->clock.lMilliseconds, 1500);
        Server().AcceptConnection();
        QVERIFY(Server().aWrites.isEmpty());
        Greet();
        QCOMPARE(Server().TakeWrite(),
                 Frames::FormA(Frames::cmdLogIn, "bert\r\n" + digestOfSecret.toLatin1()));
        Server().FeedShort("OK\r\n");
        QCOMPARE(owner->aCalls, (QStringList{"online 1 digest 0", "client", "show", "close"}));
        QVERIFY(owner->client->IsConnected());
        QCOMPARE(Global().strServerPort, "9000");
        QCOMPARE(Setting("General", "ServerIP"), "faxhost:9000");
        QCOMPARE(Profile::Values("Select MarkFax From Option"), QStringList{"5"});
        // What happens on the connection now is the session's.
        Server().CloseByServer();
        fakes->timers.Advance(20000);
        QVERIFY(Prompts().aBoxes.isEmpty());
        QCOMPARE(owner->aCalls.size(), 4);
    }

    void clientLeavesInsideItsOwnEvent()
    {
        owner->onClose = [&] { login.release()->deleteLater(); };
        ConnectToServer();
        Accept();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(owner->client->IsConnected());
        Server().Feed("more");
    }

    void abortedLoginIsOver()
    {
        Fill();
        fakes->pump.Then([&] {
            login->ClickLogin();
            QVERIFY(!fakes->sockets.Last());
            login->ClickLogin();
        });
        login->ClickLogin();
        FakeSocket *first = fakes->sockets.Last();
        QCOMPARE(first->lConnects, 1);
        QCOMPARE(fakes->clock.lMilliseconds, 1510);
        QCOMPARE(Controls().strLoginTag, "Cancel");
        login->ClickLogin();
        QCOMPARE(first->State(), Socket::sckClosed);
        QVERIFY(IsReady());
        login->ClickLogin();
        QVERIFY(fakes->sockets.Last() != first);
        first->RefuseConnection(); // too late to be heard
        QVERIFY(Prompts().aBoxes.isEmpty());
        QVERIFY(login->IsLoggingIn());
    }

    void connectedLoginCannotBeAborted()
    {
        ConnectToServer();
        QVERIFY(Controls().strLoginTag.isEmpty() && !Controls().bLoginEnabled);
        login->ClickLogin();
        login->ClickBrowse();
        QCOMPARE(Server().State(), Socket::sckConnected);
        QCOMPARE(Server().lConnects, 1);
        Server().FeedShort("OK\r\n"); // before the login it is no acceptance
        QVERIFY(owner->aCalls.isEmpty() && Prompts().aBoxes.isEmpty());
        Greet();
        Greet();
        QCOMPARE(Server().aWrites.size(), 1);
    }

    void lostServerIsTold_data()
    {
        const TestTable<Step, bool, QStringList> row{"act", "isSilent", "told"};
        const QString lost = "Failed to connect to Velmar server at: faxhost:9000\n"
                             "Or client has exceeded max number of allowed connections.";
        const QString version = "The desired communication protocol is version 1.6 beta\n"
                                "Please install the newest version of Velmar Client";
        const auto say = [this](const QByteArray &text) {
            return [this, text] { Server().AcceptConnection(), Server().FeedShort(text); };
        };
        const Step greetLate = [this] {
            Server().AcceptConnection();
            fakes->timers.Advance(9990);
            Greet();
        };
        row("refused", [this] { Server().RefuseConnection(); }, false, {lost});
        row("closed", [this] { Server().AcceptConnection(), Server().CloseByServer(); }, false, {lost});
        row("silent", [this] { Server().AcceptConnection(); }, true, {lost});
        row("silent after the greeting", greetLate, true, {lost});
        row("one line only", say("Welcome"), true, {"Unexpected data received from server!", lost});
        row("refusal of one line", say("ERR"), true, {"Unexpected data received from server!", lost});
        row("another protocol", say("Welcome\r\n1.5\r\n"), false, {version});
    }

    void lostServerIsTold()
    {
        QFETCH(Step, act);
        QFETCH(bool, isSilent);
        QFETCH(QStringList, told);
        Fill();
        login->ClickLogin();
        act();
        if (isSilent) {
            fakes->timers.Advance(9990);
            QCOMPARE(Prompts().aBoxes.size(), told.size() - 1);
            fakes->timers.Advance(10);
        }
        QCOMPARE(Prompts().Texts(), told);
        QCOMPARE(Server().State(), Socket::sckClosed);
        QCOMPARE(Controls().strLoginTip, told.last().startsWith("Failed") ? "Ready...." : "Ready...");
        QVERIFY(IsReady());
    }

    void refusalIsToldAndLeavesNothing()
    {
        const std::pair<QByteArray, QStringList> refusals[] = {
            {"1", {"User name or password incorrect"}},
            {"2", {"Too many users logged in already."}},
            {"12", {"The user has logged in."}},
            {"14", {"The user is locked by Administrator"}},
            {"99", {}}};
        for (const auto &[code, told] : refusals) {
            Prompts().aBoxes.clear();
            ConnectToServer();
            Greet();
            const QSignalSpy focus(login.get(), &Login::FocusRequested);
            Server().FeedShort("ERR\r\n" + code + "\r\n");
            QCOMPARE(Prompts().Texts(), told);
            QCOMPARE(focus.size(), 1);
            QVERIFY(IsReady() && Server().State() == Socket::sckClosed);
        }
        QVERIFY(!QFileInfo::exists(Global().strAppDataPath + "bert"));
        ConnectToServer();
        Accept();
        QVERIFY(login->CheckUserLogin());
    }

    void unusableDatabaseIsToldAndKept_data()
    {
        const TestTable<Step, QString> row{"spoil", "told"};
        const auto change = [](const QString &sql) {
            return [sql] { OldDatabases::Execute(DatabasePath(), sql); };
        };
        const Step damage = [] { QVERIFY(WriteTestFile(DatabasePath(), QByteArray(8192, 'x'))); };
        const Step age = [this] {
            QVERIFY(QFile::remove(DatabasePath()));
            OldDatabases::Make(DatabasePath(), "2.5");
            Prompts().aAnswers = {mbAnswerNo};
        };
        row("damaged", damage,
            "Failed to load user anna's configuration. \nIf this problem still remains, please reinstall "
            "Velmar Client|Invalid or incompatible user profile(Can not get Version).");
        row("another version", change("Update DatabaseVersion Set Version='2.7'"),
            "Unsupported database version: 2.7 , need version: 2.8");
        row("upgrade declined", age,
            "The Velmar Client will upgrade your database from version 2.5 to 2.8 automatically.\n"
            "Please confirm, or press Cancel to exit.");
    }

    void unusableDatabaseIsToldAndKept()
    {
        QFETCH(Step, spoil);
        EnterAnna();
        spoil();
        const QByteArray before = ReadTestFile(DatabasePath());
        QVERIFY(login->Load());
        login->Activate();
        ConnectToServer("anna");
        Accept();
        QTEST(Prompts().Texts().join('|'), "told");
        QVERIFY(IsReady() && Server().State() == Socket::sckClosed && owner->aCalls.isEmpty());
        QVERIFY(!Global().objDB->IsOpen());
        QCOMPARE(ReadTestFile(DatabasePath()), before);
    }

    void impossibleFoldersAreTold()
    {
        for (const QString blocked : {"bert", "bert/Database", "bert/InputBox"}) {
            const QString file = Global().strAppDataPath + blocked;
            QVERIFY(QDir().mkpath(QFileInfo(file).path()) && WriteTestFile(file, "in the folder's place"));
            ConnectToServer();
            Accept();
            QVERIFY(IsReady() && Server().State() == Socket::sckClosed && !Global().objDB->IsOpen());
            QVERIFY(QFile::remove(file));
        }
        QCOMPARE(Prompts().Texts(), QStringList(3, "Failed to save user profiles."));
        Global().strAppDataPath = Global().strIniFile + '/';
        QVERIFY(!login->Load());
        QCOMPARE(Prompts().Texts().last(), "Cannot create working directory:\n" + Global().strAppDataPath);
    }

    void brokenSettingsFileDoesNotHinderTheLogin()
    {
        const QByteArray rubbish("\xff\xfe[[[\0==\r[General\n[anna]\nUserFolder", 35);
        const QByteArray senseless =
            "[UserList]\nTotalCount=2147483647\n1=../anna\n[anna]\nUserFolder=../../etc\n";
        const QString database = DatabasePath();
        for (const QByteArray &content : {rubbish, senseless, QByteArray()}) {
            QFile::remove(Global().strIniFile);
            QVERIFY(content.isEmpty() ? QDir().mkpath(Global().strIniFile + "/blocked")
                                      : WriteTestFile(Global().strIniFile, content));
            MakeLogin();
            QVERIFY(login->Load());
            login->Activate();
            ConnectToServer("anna");
            Accept();
            QVERIFY(login->CheckUserLogin());
            QCOMPARE(Global().objDB->DataBasePath(), database);
            QCOMPARE(Prompts().aBoxes.size(), content.isEmpty() ? 1 : 0);
            Global().objDB->CloseDB();
        }
        QCOMPARE(Prompts().Texts(), QStringList{"Failed to save user profiles."});
    }

    void loginFromTheMainWindowOnlyHandsOver()
    {
        EnterAnna("MarkFax", "5");
        Global().objDB->OpenDB(DatabasePath());
        MakeLogin(true);
        QVERIFY(login->Load());
        login->Activate();
        QVERIFY(Controls().bFixed);
        login->SetAccount("bert");
        QCOMPARE(Controls().strAccount, "anna");
        login->SetPassword("changed");
        login->ClickLogin();
        Server().AcceptConnection();
        Accept();
        QCOMPARE(owner->aCalls, (QStringList{"client", "close"}));
        QVERIFY(login->CheckUserLogin());
        QCOMPARE(Global().strPwdDigest, Frames::Md5Digest("changed"));
        QVERIFY(Global().objDB->IsOpen());
        QCOMPARE(Setting("anna", "AutoLogin"), "");
    }
};

QTEST_GUILESS_MAIN(tst_Login)
#include "tst_Login.moc"
