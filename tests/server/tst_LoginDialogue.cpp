#include "core/Globals.h"
#include "core/SettingsFile.h"
#include "server/LoginTest.h"
#include "server/wire/Frames.h"
#include "server/wire/clsClient.h"

#include <QSignalSpy>
#include <QTest>

class tst_LoginDialogue : public QObject, private LoginTest
{
    Q_OBJECT

private slots:
    void init() { SetUp(); }
    void cleanup() { TearDown(); }

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
        QCOMPARE(Server().TakeWrite(),
                 Frames::FormA(Frames::cmdLogIn, "bert\r\n" + digestOfSecret.toLatin1()));
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
        QVERIFY(Controls().strLoginTag.isEmpty());
        QVERIFY(!Controls().bLoginEnabled);
        login->ClickLogin();
        login->ClickBrowse();
        QCOMPARE(Server().State(), Socket::sckConnected);
        QCOMPARE(Server().lConnects, 1);
        QVERIFY(Prompts().aBoxes.isEmpty());
    }

    void windowThatClosesDuringTheWaitEndsIt()
    {
        Fill();
        owner->onClose = [&] { login.release()->deleteLater(); };
        fakes->pump.Then([&] { login->ClickExit(); }).Then([] {});
        login->ClickLogin();
        QCOMPARE(owner->aCalls, QStringList{"close"});
        QVERIFY(!fakes->sockets.Last());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void lostServerIsTold_data()
    {
        QTest::addColumn<QString>("how");
        for (const char *how : {"refused", "closed", "silent", "silent after the greeting", "one line only"})
            QTest::newRow(how) << how;
    }

    void lostServerIsTold()
    {
        QFETCH(QString, how);
        QStringList told{"Failed to connect to Velmar server at: faxhost:9000\n"
                         "Or client has exceeded max number of allowed connections."};
        Fill();
        login->ClickLogin();
        if (how == "refused") {
            Server().RefuseConnection();
        } else if (how == "closed") {
            Server().AcceptConnection();
            Server().CloseByServer();
        } else {
            Server().AcceptConnection();
            fakes->timers.Advance(9990);
            if (how == "silent after the greeting") {
                Greet();
                fakes->timers.Advance(9990);
            } else if (how == "one line only") {
                told.prepend("Unexpected data received from server!");
                Server().FeedShort("Welcome");
                QCOMPARE(Server().State(), Socket::sckConnected);
                fakes->timers.Advance(9990);
            }
            QCOMPARE(Prompts().aBoxes.size(), told.size() - 1);
            fakes->timers.Advance(10);
        }
        QCOMPARE(Prompts().Texts(), told);
        QCOMPARE(Prompts().aBoxes.last().lFlags, long(mbCritical));
        QCOMPARE(Server().State(), Socket::sckClosed);
        QCOMPARE(Controls().strLoginTip, "Ready....");
        QVERIFY(IsReady());
    }

    void refusedLoginCanBeTriedAgain()
    {
        ConnectToServer();
        Greet();
        QSignalSpy focus(login.get(), &Login::FocusRequested);
        Server().FeedShort("ERR\r\n99\r\n"); // an unknown reason is not told
        QVERIFY(Prompts().aBoxes.isEmpty());
        QCOMPARE(focus.size(), 1);
        QVERIFY(IsReady());
        login->ClickLogin();
        Server().AcceptConnection();
        Accept();
        QVERIFY(login->CheckUserLogin());
    }

    void okBeforeTheLoginIsNoAcceptance()
    {
        ConnectToServer();
        Server().FeedShort("OK\r\n");
        QVERIFY(owner->aCalls.isEmpty());
        Greet();
        Greet();
        QCOMPARE(Server().aWrites.size(), 1);
    }

    void loginFromTheMainWindowOnlyHandsOver()
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
        Accept();
        QCOMPARE(owner->aCalls, (QStringList{"client", "close"}));
        QVERIFY(login->CheckUserLogin());
        QCOMPARE(Global().strPwdDigest, Frames::Md5Digest("changed"));
        QVERIFY(Global().objDB->IsOpen());
        QCOMPARE(ReadIniValue("anna", "AutoLogin", Global().strIniFile), "");
    }
};

QTEST_GUILESS_MAIN(tst_LoginDialogue)
#include "tst_LoginDialogue.moc"
