#include "core/Globals.h"
#include "server/LoginTest.h"
#include "server/UserProfile.h"
#include "server/wire/Frames.h"
#include "server/wire/clsClient.h"

#include <QDir>
#include <QScopeGuard>
#include <QTest>

#include <sys/stat.h>

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
        QCOMPARE(Controls().strPwd, "");

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

    void missingInputIsAskedFor()
    {
        QList<LoginField> focused;
        connect(login.get(), &Login::FocusRequested, this, [&](LoginField field) { focused.append(field); });
        login->ClickLogin();
        login->SetServer("s");
        login->ClickLogin();
        login->SetAccount("..");
        login->ClickLogin();
        login->SetAccount("a");
        login->ClickLogin();
        QCOMPARE(Prompts().Texts(),
                 (QStringList{"Please specify a Velmar server. For example 192.168.1.5 or faxhost:8750",
                              "Please specify a username.", "This username cannot be used.",
                              "Please specify the password."}));
        QCOMPARE(focused, (QList<LoginField>{LoginField::Server, LoginField::Account, LoginField::Account,
                                             LoginField::Password}));
        QVERIFY(IsReady());
        QVERIFY(!fakes->sockets.Last());
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
        QVERIFY(owner->aCalls.isEmpty());
    }

    void offlineOpensTheProfile()
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

    void offlineFailureIsAnApplicationError()
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

    void exitClosesTheProfile()
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
};

QTEST_GUILESS_MAIN(tst_Login)
#include "tst_Login.moc"
