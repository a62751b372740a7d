#include "core/Globals.h"
#include "fixtures/SessionBench.h"
#include "server/wire/clsClient.h"

#include <QTest>

#include <optional>

class tst_Session : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench.emplace(); }
    void cleanup()
    {
        QVERIFY(!bench->ports.pump.IsStuck());
        bench.reset();
    }

    void failedConnectionLeavesASocketThatIsClosed_data()
    {
        QTest::addColumn<int>("answers"); // how far the server gets: connection, greeting
        QTest::addColumn<QString>("then");
        QTest::newRow("host does not answer") << 0 << "";
        QTest::newRow("host refuses") << 0 << "refuse";
        QTest::newRow("no greeting") << 1 << "";
        QTest::newRow("no answer to the login") << 2 << "";
        QTest::newRow("cancelled by the user") << 2 << "cancel";
        QTest::newRow("greeting that comes too late for its wait") << 1 << "late";
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

    void uploadProgressIsShownUntilTheUserCancels()
    {
        QList<int> shown;
        session().SetUploadProgress([&](int percent) { shown.append(percent); });
        const QString file = Global().strOutputBoxPath + "F1.tif";
        QVERIFY(WriteTestFile(file, QByteArray(1000, 'x')));
        bench->Server([](FakeSocket &socket) { socket.DrainSends(); }).SayShort("OK").Then([this] {
            session().bUserAbort = true;
            emit bench->Socket().SendProgress(500, 500);
        });
        session().BeginCommand(pndUpload).SendFaxFile("header", file);
        QCOMPARE(session().WaitForServerReply(), WaitEnd::Closed);
        QCOMPARE(shown, QList<int>{100});
        QVERIFY(!session().IsConnected() && session().bNeedRefresh);
    }

private:
    Session &session() { return bench->session; }
    void CountReplies(PendingCommand pending)
    {
        session().SetHandler(pending, [this](const ClientReply &reply) {
            ++lReplies;
            if (reply.lCurrent == reply.lTotal)
                session().SignalServerReply();
        });
        lReplies = 0;
    }

    std::optional<SessionBench> bench;
    int lReplies = 0;
};

QTEST_GUILESS_MAIN(tst_Session)
#include "tst_Session.moc"
