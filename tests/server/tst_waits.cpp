#include "core/Globals.h"
#include "core/ports/Timer.h"
#include "fixtures/SessionBench.h"
#include "server/RunScope.h"
#include "server/wire/clsClient.h"

#include <QTest>

#include <optional>

using Script = std::function<void()>;
Q_DECLARE_METATYPE(Script)
Q_DECLARE_METATYPE(WaitEnd)

/// No wait may hang, and no reply may answer a command that it was not meant for. Without the rule under
/// test each of these either outlives the script (`IsStuck`) or pairs a reply wrongly.
class tst_waits : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        bench.emplace();
        aAnswers.clear();
        session().SetHandler(pndVersions, [this](const ClientReply &reply) {
            aAnswers.append(QString::fromLatin1(reply.abData));
            if (reply.abData != "part")
                session().SignalServerReply();
        });
    }

    void cleanup()
    {
        QVERIFY(!bench->ports.pump.IsStuck());
        bench.reset();
    }

    void everyWaitEnds_data()
    {
        QTest::addColumn<Script>("script");
        QTest::addColumn<WaitEnd>("end");
        QTest::addColumn<int>("milliseconds");
        QTest::newRow("reply") << Script([this] { bench->SayShort("OK"); }) << WaitEnd::Replied << 10;
        QTest::newRow("silence") << Script([] {}) << WaitEnd::Silent << 6000;
        QTest::newRow("silence after a sign of life")
            << Script([this] { bench->Silence(4000).SayShort("part"); }) << WaitEnd::Silent << 10000;
        QTest::newRow("no connection")
            << Script([this] { session().CancelTransfer(); }) << WaitEnd::Closed << 0;
        QTest::newRow("connection closes") << Script([this] { bench->Close(); }) << WaitEnd::Closed << 10;
        QTest::newRow("program quits")
            << Script([this] { bench->Then([this] { bench->ports.pump.Quit(); }); }) << WaitEnd::Quitting
            << 10;
        const auto fail = [](const ClientReply &) { Profile::Execute("Insert Into Nowhere"); };
        QTest::newRow("handler fails")
            << Script([this, fail] { session().SetHandler(pndVersions, fail), bench->SayShort("OK"); })
            << WaitEnd::Failed << 10;
        QTest::newRow("no handler") << Script([this] {
            for (const int pending : {0, 3, 4, 20})
                bench->Then([this, pending] { session().lPendingCommand = pending; }).SayShort("Welcome\r\n");
        }) << WaitEnd::Silent << 6000;
    }

    void everyWaitEnds()
    {
        QFETCH(Script, script);
        QFETCH(int, milliseconds);
        RunScope run(session());
        script();
        const WaitEnd end = AskVersions();
        QTEST(end, "end");
        QCOMPARE(Now(), milliseconds);
        QVERIFY(session().bIsSocketBusy); // the run's own end clears it
        // Whoever reads the state now still finds a connection: the run goes on.
        QVERIFY(session().IsConnected() || end == WaitEnd::Closed);
        QCOMPARE(session().IsOutOfStep(), end == WaitEnd::Silent);
        QCOMPARE(session().HandlerError().isEmpty(), end != WaitEnd::Failed);
    }

    void nestedWaits()
    {
        // A signal wakes the newest only.
        QStringList order;
        bench->Then([&] {
            session().WaitForServerReply();
            order.append("inner");
        });
        bench->Then([&] { session().SignalServerReply(); }).Silence(100).Then([&] {
            order.append("second signal");
            session().SignalServerReply();
        });
        QCOMPARE(AskVersions(), WaitEnd::Replied);
        QCOMPARE(order, QStringList({"inner", "second signal"}));
        // A connection that is made anew ends the waits of the old one, a closed one ends all.
        bench->Then([this] {
            session().MarkOutOfStep();
            session().ConnectToServer();
        });
        bench->AcceptConnection();
        QCOMPARE(AskVersions(), WaitEnd::Closed);
        QVERIFY(session().IsConnected());
        bench->Then([this] { QCOMPARE(session().WaitForServerReply(), WaitEnd::Closed); }).Close();
        QCOMPARE(AskVersions(), WaitEnd::Closed);
        QVERIFY(Now() < 1000);
    }

    void boxInAHandlerStopsTheWatchdogOfItsOwnWaitOnly()
    {
        session().SetHandler(pndVersions, [this](const ClientReply &) {
            bench->LetPass(60); // the user reads a box
            QCOMPARE(session().WaitForServerReply(), WaitEnd::Silent);
            session().SignalServerReply();
        });
        bench->SayShort("OK");
        QCOMPARE(AskVersions(), WaitEnd::Replied);
    }

    void headerAnswerHasItsOwnLimit()
    {
        const QString file = Global().strOutputBoxPath + "F1.tif";
        QVERIFY(WriteTestFile(file, "fax"));
        bench->Then(
            [this] { bench->Socket().DrainSends(); }); // the client now waits for the answer by itself
        session().BeginCommand(pndUpload).SendFaxFile("header", file);
        session().bUserLogout = true;
        QCOMPARE(session().WaitForServerReply(), WaitEnd::Closed);
        QVERIFY2(Now() >= 8000, qPrintable(QString::number(Now())));
        QVERIFY(!session().IsConnected());
    }

    void lateReplyNeverAnswersTheNextCommand_data()
    {
        QTest::addColumn<Script>("before");
        QTest::newRow("after a silence") << Script([this] { QCOMPARE(AskVersions(), WaitEnd::Silent); });
        QTest::newRow("after a good-bye without a wait") << Script([this] { session().LogOut(); });
    }

    void lateReplyNeverAnswersTheNextCommand()
    {
        QFETCH(Script, before);
        before();
        bench->Heard(); // the server's answer is late
        bench->ForgetHeard();
        session().bConnectRefused = true; // from an earlier attempt
        bench->AcceptConnection().SayShort("new");
        QCOMPARE(AskVersions(), WaitEnd::Replied);
        QCOMPARE(aAnswers, QStringList("new"));
        QCOMPARE(bench->Heard(), QStringList({"1 anna " + Global().strPwdDigest, "3"}));
        QCOMPARE(bench->Socket().lConnects, 1);
        QVERIFY(!session().bUserLogout && bench->ports.prompts.aBoxes.isEmpty());
    }

    void overrunReplyPutsTheConnectionOutOfStep()
    {
        bench->Say(QByteArray("\xff\xff\xff\xff", 4) + "rubbish");
        session().BeginCommand(pndFaxList).GetNewFaxList();
        QCOMPARE(session().WaitForServerReply(), WaitEnd::Failed);
        QCOMPARE(bench->ports.prompts.Texts(), QStringList("Unexpected data received from server!"));
        QVERIFY(session().IsOutOfStep());
    }

    void runsOwnTheConnection()
    {
        try {
            RunScope owner(session());
            session().SetIdleState(false);
            {
                const RunPermit permit(session());
                RunScope called(session());
                QVERIFY(called);
                QVERIFY(!RunScope(session())); // a click during the called run's wait
            }
            QVERIFY(session().bIsSocketBusy && !bench->desktop.mainWindow.bEnabled);
            Profile::Execute("Insert Into Nowhere");
        } catch (const std::exception &) {
        }
        QVERIFY(!session().bIsSocketBusy && bench->desktop.mainWindow.bEnabled);
        QVERIFY(session().CheckFaxTimer().IsEnabled());
        bench->ports.pump.Quit();
        QVERIFY(!RunScope(session()));
    }

private:
    Session &session() { return bench->session; }
    /// Asks for the versions and waits.
    WaitEnd AskVersions()
    {
        session().BeginCommand(pndVersions).GetContactVersion();
        return session().WaitForServerReply();
    }
    qint64 Now() const { return bench->ports.clock.lMilliseconds; }

    std::optional<SessionBench> bench;
    QStringList aAnswers; ///< to `GetContactVersion`
};

QTEST_GUILESS_MAIN(tst_waits)
#include "tst_waits.moc"
