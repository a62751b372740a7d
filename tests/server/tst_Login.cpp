#include "core/Globals.h"
#include "server/LoginTest.h"
#include "server/wire/Frames.h"
#include "server/wire/clsClient.h"

#include <QDir>
#include <QTest>

class tst_Login : public QObject, private LoginTest
{
    Q_OBJECT

private slots:
    void init() { SetUp(); }
    void cleanup() { TearDown(); }

    void workingFolderThatCannotBeMadeIsTold();
    void windowStartsWithTheLastUser();
    void lastUserIsLoggedInByTheStoredDigest();
    void profileWithoutStoredPasswordIsClosedAgain();
    void damagedProfileIsTold();
    void anotherAccountBringsItsOwnOptions();
    void checkBoxesPullEachOther();
    void missingInputIsAskedFor_data();
    void missingInputIsAskedFor();
    void offlineRefusals_data();
    void offlineRefusals();
    void offlineOpensTheProfile();
    void offlineFailureIsAnApplicationError();
    void exitClosesTheProfile();
};

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
