#include "core/Globals.h"
#include "core/ports/Timer.h"
#include "fixtures/SessionBench.h"
#include "fixtures/TestTable.h"
#include "server/RunScope.h"
#include "server/wire/clsClient.h"

#include <optional>

using Script = std::function<void()>;
Q_DECLARE_METATYPE(Script)
Q_DECLARE_METATYPE(WaitEnd)

/// No wait may hang (`IsStuck`), and no reply may answer a command that it was not meant for.
class tst_Session : public QObject
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
        const TestTable<Script, WaitEnd, int> row{"script", "end", "milliseconds"};
        const Script nothing = [] {}, reply = [this] { bench->SayShort("OK"); };
        const Script cancel = [this] { session().CancelTransfer(); }, close = [this] { bench->Close(); };
        const Script fail = [this] {
            session().SetHandler(pndVersions, [](auto &) { Profile::Execute("Insert Into Nowhere"); });
            bench->SayShort("OK");
        };
        const Script ignore = [this] { // nobody reads such replies
            for (const int pending : {0, 3, 4, 20})
                bench->Then([this, pending] { session().lPendingCommand = pending; }).SayShort("Welcome\r\n");
        };
        const Script part = [this] { bench->Silence(4000).SayShort("part"); };
        const Script quit = [this] { bench->Then([this] { bench->ports.pump.Quit(); }); };
        row("reply", reply, WaitEnd::Replied, 10);
        row("silence", nothing, WaitEnd::Silent, 6000);
        row("silence after a sign of life", part, WaitEnd::Silent, 10000);
        row("no connection", cancel, WaitEnd::Closed, 0);
        row("connection closes", close, WaitEnd::Closed, 10);
        row("program quits", quit, WaitEnd::Quitting, 10);
        row("handler fails", fail, WaitEnd::Failed, 10);
        row("no handler", ignore, WaitEnd::Silent, 6000);
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

    void lateReplyNeverAnswersTheNextCommand_data()
    {
        const TestTable<bool> row{"saysGoodBye"};
        row("after a silence", false);
        row("after a good-bye without a wait", true);
    }

    void lateReplyNeverAnswersTheNextCommand()
    {
        QFETCH(bool, saysGoodBye);
        if (saysGoodBye)
            session().LogOut();
        else
            QCOMPARE(AskVersions(), WaitEnd::Silent);
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

    void failedConnectionLeavesASocketThatIsClosed_data()
    {
        const TestTable<int, QString> row{"answers", "then"}; // how far the server gets: connection, greeting
        row("host does not answer", 0, "");
        row("host refuses", 0, "refuse");
        row("no greeting", 1, "");
        row("no answer to the login", 2, "");
        row("cancelled by the user", 2, "cancel");
        row("greeting that comes too late for its wait", 1, "late");
    }

    void failedConnectionLeavesASocketThatIsClosed()
    {
        QFETCH(int, answers);
        QFETCH(QString, then);
        bench->Socket().CloseByServer();
        if (answers > 0)
            bench->Server([](FakeSocket &socket) { socket.AcceptConnection(); });
        if (then == "late")
            bench->Silence(6500);
        if (answers > 1 || then == "late")
            bench->SayShort("Welcome\r\n1.6 beta\r\n");
        if (then == "refuse")
            bench->Server([](FakeSocket &socket) { socket.RefuseConnection(); });
        if (then == "cancel")
            bench->Then([this] { session().CancelTransfer(); });
        QVERIFY(!session().ConnectToServer());
        QCOMPARE(bench->Socket().State(), Socket::sckClosed);
        QVERIFY(!session().IsOutOfStep());
        QCOMPARE(session().bConnectRefused, then == "refuse");
        QVERIFY(then != "refuse" || bench->ports.clock.lMilliseconds < 100);
    }

    void onlyTheCurrentClientIsHeardAndOnlyWhenReady()
    {
        CountReplies(pndVersions);
        FakeSocket &old = bench->Socket();
        session().bAcceptReplies = false;
        session().BeginCommand(pndVersions);
        old.FeedShort("early");
        session().bAcceptReplies = true;
        session().lIdleTicks = 600;
        session().SetClient(std::make_shared<clsClient>(bench->ports.sockets.Create(), bench->ports.ports));
        QCOMPARE(old.State(), Socket::sckClosed);
        QCOMPARE(session().lIdleTicks, 0);
        old.FeedShort("late");
        QCOMPARE(lReplies, 0);
        bench->Socket().Connect("127.0.0.1", 8750);
        bench->Socket().AcceptConnection();
        bench->Socket().FeedShort("new");
        QCOMPARE(lReplies, 1);
    }

    void failureReplyReachesNoHandler()
    {
        CountReplies(pndContacts);
        bench->SayLong("ERR\r\n3\r\n");
        session().BeginCommand(pndContacts).GetPublicContacts();
        QCOMPARE(session().WaitForServerReply(), WaitEnd::Refused);
        QCOMPARE(lReplies, 0);
        QVERIFY(bench->ports.prompts.aBoxes.isEmpty());
        // One line is unexpected. A fax's row says that it failed.
        bench->progress.SetTotal(2);
        bench->progress.AddRow("InputBox/F1.tif");
        session().CurrentFaxIndex = 1;
        bench->SayLong("ERROR");
        session().BeginCommand(pndFax).GetFax(1, "F1", Global().strInputBoxPath);
        QCOMPARE(session().WaitForServerReply(), WaitEnd::Refused);
        QCOMPARE(bench->ports.prompts.Texts(), QStringList("Unexpected data received from server!"));
        QCOMPARE(bench->progress.Rows().constFirst().strState, QString("Failed"));
    }

    void longReplyIsHandledOnce()
    {
        CountReplies(pndReceiptStates); // its parts do not reach the handler
        bench->Say(QByteArray("\xb8\x0b\0\0", 4) + QByteArray(1000, 'a')).Say(QByteArray(2000, 'b'));
        session().BeginCommand(pndReceiptStates).GetReturnReceiptState("F1;");
        QCOMPARE(session().WaitForServerReply(), WaitEnd::Replied);
        QCOMPARE(lReplies, 1);
        CountReplies(pndContacts); // whole in one read, and told as a part and as complete
        bench->SayLong(QByteArray(3000, 'a'));
        session().BeginCommand(pndContacts).GetPublicContacts();
        QCOMPARE(session().WaitForServerReply(), WaitEnd::Replied);
        QCOMPARE(lReplies, 1);
    }

    void serverSettingsAreStored()
    {
        const auto stored = [this](const QByteArray &reply) {
            bench->SayShort(QByteArray(reply).replace('|', '\0'));
            session().BeginCommand(pndFaxConfig).GetFaxConfigAndKeepTouckTime();
            const bool replied = session().WaitForServerReply() == WaitEnd::Replied;
            return Profile::Value(
                       "Select ServerResolve||' '||ServerDeepness||' '||DisconnectTime From Option") +
                   (replied ? " " : " unanswered ") + QString::number(Global().DisconnectTime);
        };
        QCOMPARE(stored("OK\r\n2|1|15\r\n"), QString("2 1 15 15"));
        QCOMPARE(stored("OK\r\n3|2\r\n"), QString("2 1 15 15"));
        QCOMPARE(stored("OK\r\n1',Pwd='x|2|3\r\n"), QString("1~$@~,Pwd=~$@~x 2 3 3"));
    }

private:
    Session &session() { return bench->session; }
    /// Asks for the versions and waits.
    WaitEnd AskVersions()
    {
        session().BeginCommand(pndVersions).GetContactVersion();
        return session().WaitForServerReply();
    }
    void CountReplies(PendingCommand pending)
    {
        session().SetHandler(pending, [this](const ClientReply &reply) {
            ++lReplies;
            if (reply.lCurrent == reply.lTotal)
                session().SignalServerReply();
        });
        lReplies = 0;
    }
    qint64 Now() const { return bench->ports.clock.lMilliseconds; }

    std::optional<SessionBench> bench;
    QStringList aAnswers; ///< to `GetContactVersion`
    int lReplies = 0;
};

QTEST_GUILESS_MAIN(tst_Session)
#include "tst_Session.moc"
