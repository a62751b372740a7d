#include "core/Globals.h"
#include "core/SettingsFile.h"
#include "server/LoginTest.h"
#include "server/wire/Frames.h"
#include "server/wire/clsClient.h"

#include <QFileInfo>
#include <QSignalSpy>
#include <QTest>

namespace {
const QString connectFailure = "Failed to connect to Velmar server at: faxhost:9000\n"
                               "Or client has exceeded max number of allowed connections.";
} // namespace

class tst_LoginDialogue : public QObject, private LoginTest
{
    Q_OBJECT

private slots:
    void init() { SetUp(); }
    void cleanup() { TearDown(); }

    void serverTextBecomesHostAndPort_data();
    void serverTextBecomesHostAndPort();
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
};

void tst_LoginDialogue::serverTextBecomesHostAndPort_data()
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

void tst_LoginDialogue::serverTextBecomesHostAndPort()
{
    QFETCH(QString, text);
    Fill();
    login->SetServer(text);
    login->ClickLogin();
    QTEST(Server().strHost, "host");
    QTEST(Server().lPort, "port");
    QTEST(Global().strServerIP, "host");
}

void tst_LoginDialogue::firstLoginHandsTheClientOver()
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

void tst_LoginDialogue::clientLeavesInsideItsOwnEvent()
{
    owner->onClose = [&] { login.release()->deleteLater(); };
    ConnectToServer();
    Greet();
    Server().FeedShort("OK\r\n");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(owner->client->IsConnected());
    Server().Feed("more");
}

void tst_LoginDialogue::abortDuringTheWaitConnectsToNothing()
{
    Fill();
    fakes->pump.Then([] {}).Then([&] { login->ClickLogin(); });
    login->ClickLogin();
    QVERIFY(!fakes->sockets.Last());
    QVERIFY(fakes->clock.lMilliseconds < 100);
    QCOMPARE(Controls().strLoginTip, "Ready ...");
    QVERIFY(IsReady());
}

void tst_LoginDialogue::abortAndNewLoginConnectOnce()
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

void tst_LoginDialogue::abortWhileConnectingClosesTheSocket()
{
    Fill();
    login->ClickLogin();
    login->ClickLogin();
    QCOMPARE(Server().State(), Socket::sckClosed);
    QVERIFY(IsReady());
}

void tst_LoginDialogue::connectedLoginCannotBeAborted()
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

void tst_LoginDialogue::windowThatClosesDuringTheWaitEndsIt()
{
    Fill();
    owner->onClose = [&] { login.release()->deleteLater(); };
    fakes->pump.Then([&] { login->ClickExit(); }).Then([] {});
    login->ClickLogin();
    QCOMPARE(owner->aCalls, QStringList{"close"});
    QVERIFY(!fakes->sockets.Last());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void tst_LoginDialogue::lostServerIsTold_data()
{
    QTest::addColumn<QString>("how");
    for (const char *how : {"refused", "closed", "silent", "silent after the greeting"})
        QTest::newRow(how) << how;
}

void tst_LoginDialogue::lostServerIsTold()
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

void tst_LoginDialogue::lateFailureOfAnEarlierLoginIsNotHeard()
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

void tst_LoginDialogue::refusedLoginCanBeTriedAgain_data()
{
    QTest::addColumn<QByteArray>("code");
    QTest::addColumn<QStringList>("messages");
    QTest::newRow("twice") << QByteArray("12") << QStringList{"The user has logged in."};
    QTest::newRow("full") << QByteArray("2") << QStringList{"Too many users logged in already."};
    QTest::newRow("locked") << QByteArray("14") << QStringList{"The user is locked by Administrator"};
    QTest::newRow("password") << QByteArray("1") << QStringList{"User name or password incorrect"};
    QTest::newRow("other") << QByteArray("99") << QStringList{};
}

void tst_LoginDialogue::refusedLoginCanBeTriedAgain()
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

void tst_LoginDialogue::otherProtocolVersionIsToldNothing()
{
    ConnectToServer();
    Server().FeedShort("Welcome\r\n1.7\r\n");
    QCOMPARE(Prompts().Texts(), QStringList{"The desired communication protocol is version 1.6 beta\nPlease "
                                            "install the newest version of Velmar Client"});
    QVERIFY(Server().aWrites.isEmpty());
    QCOMPARE(Server().State(), Socket::sckClosed);
    QVERIFY(IsReady());
}

void tst_LoginDialogue::replyOfOneLineLeavesTheConnection()
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

void tst_LoginDialogue::okBeforeTheLoginIsNoAcceptance()
{
    ConnectToServer();
    Server().FeedShort("OK\r\n");
    QVERIFY(owner->aCalls.isEmpty());
    Greet();
    Greet();
    QCOMPARE(Server().aWrites.size(), 1);
}

void tst_LoginDialogue::databaseOfOtherVersionEndsTheLogin()
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

void tst_LoginDialogue::loginFromTheMainWindowOnlyHandsOver()
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

QTEST_GUILESS_MAIN(tst_LoginDialogue)
#include "tst_LoginDialogue.moc"
