#include "core/Globals.h"
#include "core/ports/Timer.h"
#include "fixtures/SessionBench.h"
#include "server/RunScope.h"
#include "server/wire/clsClient.h"

#include <QTest>

#include <optional>

/// No wait may hang, and no reply may answer a command that it was not meant for. Without the rule under
/// test each of these either outlives the script (`IsStuck`) or pairs a reply wrongly.
class tst_waits : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench.emplace(); }
    void cleanup()
    {
        QVERIFY(!bench->ports.pump.IsStuck());
        bench.reset();
    }

    void silenceEndsASingleCommandAfterSixTicks();
    void signOfLifeStartsTheCountAnew();
    void watchdogLeavesTheBusyFlagToTheRun();
    void watchdogLeavesAnOpenMessageBoxAlone();
    void headerAnswerHasItsOwnLimit();
    void lateReplyNeverAnswersTheNextCommand();
    void goodbyeWithoutAWaitNeverAnswersTheNextCommand();
    void waitWithoutAConnectionEndsAtOnce();
    void closedConnectionEndsEveryNestedWait();
    void remadeConnectionEndsTheWaitsOfTheOldOne();
    void quittingProgramEndsTheWait();
    void signalWakesTheNewestWaitOnly();
    void failedHandlerEndsTheWait();
    void refusedFaxDoesNotTurnTheNextReplyIntoAFile();
    void overrunReplyPutsTheConnectionOutOfStep();
    void limitHoldsForAllWaitsTogether();
    void runCalledByTheOwnerPasses();
    void runLeftByAnErrorPutsTheWindowBack();

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
};

void tst_waits::silenceEndsASingleCommandAfterSixTicks()
{
    QCOMPARE(AskVersions(), WaitEnd::Silent);
    QCOMPARE(Now(), 6000);
    // Whoever reads the state now still finds a connection: the run goes on.
    QVERIFY(session().IsConnected());
}

void tst_waits::signOfLifeStartsTheCountAnew()
{
    session().SetHandler(pndVersions, [](const ClientReply &) {});
    bench->Silence(4000).SayShort("part").Silence(4000).SayShort("part");
    QCOMPARE(AskVersions(), WaitEnd::Silent);
    QVERIFY2(Now() > 13000, qPrintable(QString::number(Now())));
}

void tst_waits::watchdogLeavesTheBusyFlagToTheRun()
{
    RunScope run(session());
    QCOMPARE(AskVersions(), WaitEnd::Silent);
    QVERIFY(session().bIsSocketBusy);
}

void tst_waits::watchdogLeavesAnOpenMessageBoxAlone()
{
    session().SetHandler(pndVersions, [this](const ClientReply &) {
        bench->LetPass(60); // the user reads a box
        session().SignalServerReply();
    });
    bench->SayShort("OK");
    QCOMPARE(AskVersions(), WaitEnd::Replied);
    QVERIFY(!session().IsOutOfStep());
}

void tst_waits::headerAnswerHasItsOwnLimit()
{
    const QString file = Global().strOutputBoxPath + "F1.tif";
    QVERIFY(WriteTestFile(file, "fax"));
    bench->Then([this] { bench->Socket().DrainSends(); }); // the client now waits for the answer by itself
    session().BeginCommand(pndUpload).SendFaxFile("header", file);
    session().bUserLogout = true;
    QCOMPARE(session().WaitForServerReply(), WaitEnd::Closed);
    QVERIFY2(Now() >= 8000, qPrintable(QString::number(Now())));
    QVERIFY(!session().IsConnected());
}

void tst_waits::lateReplyNeverAnswersTheNextCommand()
{
    QStringList answers;
    session().SetHandler(pndVersions, [&](const ClientReply &reply) {
        answers.append(QString::fromLatin1(reply.abData));
        session().SignalServerReply();
    });
    QCOMPARE(AskVersions(), WaitEnd::Silent);
    QCOMPARE(bench->Socket().lConnects, 0);
    bench->AcceptConnection().SayShort("new");
    QCOMPARE(AskVersions(), WaitEnd::Replied);
    QCOMPARE(answers, QStringList("new"));
    QCOMPARE(bench->Socket().lConnects, 1);
    QCOMPARE(bench->Heard(), QStringList({"3", "1 anna " + Global().strPwdDigest, "3"}));
    QVERIFY(bench->ports.prompts.aBoxes.isEmpty());
}

void tst_waits::goodbyeWithoutAWaitNeverAnswersTheNextCommand()
{
    session().LogOut();
    bench->AcceptConnection();
    QVERIFY(session().ConnectToServer());
    QCOMPARE(bench->Socket().lConnects, 1);
    QVERIFY(!session().bUserLogout);
}

void tst_waits::waitWithoutAConnectionEndsAtOnce()
{
    session().CancelTransfer();
    QCOMPARE(session().WaitForServerReply(), WaitEnd::Closed);
    QCOMPARE(Now(), 0);
}

void tst_waits::closedConnectionEndsEveryNestedWait()
{
    WaitEnd inner = WaitEnd::Replied;
    bench->Then([&] { inner = session().WaitForServerReply(); }).Close();
    QCOMPARE(AskVersions(), WaitEnd::Closed);
    QCOMPARE(inner, WaitEnd::Closed);
    QVERIFY(Now() < 100);
}

void tst_waits::remadeConnectionEndsTheWaitsOfTheOldOne()
{
    bench->Then([this] {
        session().MarkOutOfStep();
        session().ConnectToServer();
    });
    bench->AcceptConnection();
    QCOMPARE(AskVersions(), WaitEnd::Closed);
    QVERIFY(session().IsConnected());
    QVERIFY(Now() < 200);
}

void tst_waits::quittingProgramEndsTheWait()
{
    bench->Then([this] { bench->ports.pump.Quit(); });
    QCOMPARE(AskVersions(), WaitEnd::Quitting);
    QVERIFY(Now() < 100);
}

void tst_waits::signalWakesTheNewestWaitOnly()
{
    QStringList order;
    bench->Then([&] {
        session().WaitForServerReply();
        order.append("inner");
    });
    bench->Then([&] { session().SignalServerReply(); });
    bench->Silence(100);
    bench->Then([&] {
        order.append("second signal");
        session().SignalServerReply();
    });
    QCOMPARE(AskVersions(), WaitEnd::Replied);
    QCOMPARE(order, QStringList({"inner", "second signal"}));
}

void tst_waits::failedHandlerEndsTheWait()
{
    session().SetHandler(pndVersions, [](const ClientReply &) { Profile::Execute("Insert Into Nowhere"); });
    bench->SayShort("OK");
    QCOMPARE(AskVersions(), WaitEnd::Failed);
    QVERIFY(!session().HandlerError().isEmpty());
    QVERIFY(Now() < 100);
}

void tst_waits::refusedFaxDoesNotTurnTheNextReplyIntoAFile()
{
    bench->SayLong("ERR\r\n5\r\n");
    session().BeginCommand(pndFax).GetFax(1, "F1", Global().strInputBoxPath);
    QCOMPARE(session().WaitForServerReply(), WaitEnd::Refused);
    QByteArray answer;
    session().SetHandler(pndVersions, [&](const ClientReply &reply) {
        answer = reply.abData;
        session().SignalServerReply();
    });
    bench->SayShort("OK\r\nversions");
    QCOMPARE(AskVersions(), WaitEnd::Replied);
    QCOMPARE(answer, QByteArray("OK\r\nversions"));
    QCOMPARE(bench->Socket().lConnects, 0);
}

void tst_waits::overrunReplyPutsTheConnectionOutOfStep()
{
    bench->Say(QByteArray("\xff\xff\xff\xff", 4) + "rubbish");
    session().BeginCommand(pndFaxList).GetNewFaxList();
    QCOMPARE(session().WaitForServerReply(), WaitEnd::Failed);
    QCOMPARE(bench->ports.prompts.Texts(), QStringList("Unexpected data received from server!"));
    QVERIFY(session().IsOutOfStep());
}

void tst_waits::limitHoldsForAllWaitsTogether()
{
    session().SetTimeLeft(5000);
    bench->Silence(3000).SayShort("OK");
    session().SetHandler(pndVersions, [this](const ClientReply &) { session().SignalServerReply(); });
    QCOMPARE(AskVersions(), WaitEnd::Replied);
    QCOMPARE(AskVersions(), WaitEnd::Quitting);
    QCOMPARE(Now(), 5000);
}

void tst_waits::runCalledByTheOwnerPasses()
{
    RunScope owner(session());
    const RunPermit permit(session());
    {
        RunScope called(session());
        QVERIFY(called);
        RunScope third(session()); // a click during the called run's wait
        QVERIFY(!third);
    }
    QVERIFY(session().bIsSocketBusy);
}

void tst_waits::runLeftByAnErrorPutsTheWindowBack()
{
    try {
        RunScope run(session());
        session().SetIdleState(false);
        QVERIFY(!bench->desktop.mainWindow.bEnabled);
        Profile::Execute("Insert Into Nowhere");
    } catch (const std::exception &) {
    }
    QVERIFY(bench->desktop.mainWindow.bEnabled);
    QVERIFY(session().CheckFaxTimer().IsEnabled());
    QVERIFY(!session().bIsSocketBusy);
}

QTEST_GUILESS_MAIN(tst_waits)
#include "tst_waits.moc"
