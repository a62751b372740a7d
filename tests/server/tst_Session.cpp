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

    void lostConnectionIsRemadeWithTheStoredDigest();
    void answerToTheLoginIsNotRead();
    void failedConnectionLeavesASocketThatIsClosed_data();
    void failedConnectionLeavesASocketThatIsClosed();
    void refusedConnectionEndsAtOnce();
    void repliesAreIgnoredUntilTheWindowIsReady();
    void unusedPendingNumbersDoNothing();
    void failureReplyReachesNoHandler();
    void refusalInOneLineIsUnexpected();
    void receiptStatesWaitForTheWholeReply();
    void wholeReplyOfOneReadIsHandledOnce();
    void serverSettingsAreStored_data();
    void serverSettingsAreStored();
    void uploadProgressIsShownUntilTheUserCancels();
    void newClientReplacesTheOldOne();

private:
    Session &session() { return bench->session; }

    std::optional<SessionBench> bench;
};

void tst_Session::lostConnectionIsRemadeWithTheStoredDigest()
{
    bench->Socket().CloseByServer();
    QVERIFY(!session().IsConnected());
    session().bUserLogout = true;
    session().lPendingCommand = pndFaxState;
    bench->AcceptConnection();
    QVERIFY(session().ConnectToServer());
    QCOMPARE(bench->Socket().strHost, QString("127.0.0.1"));
    QCOMPARE(bench->Heard(), QStringList("1 anna " + Global().strPwdDigest));
    QCOMPARE(session().lPendingCommand, int(pndFaxState));
    QVERIFY(!session().bUserLogout);
}

void tst_Session::answerToTheLoginIsNotRead()
{
    bench->Socket().CloseByServer();
    bench->Server([](FakeSocket &socket) { socket.AcceptConnection(); })
        .SayShort("Welcome\r\n9.9\r\n")
        .SayShort("ERR\r\n14\r\n");
    QVERIFY(session().ConnectToServer());
    QVERIFY(bench->ports.prompts.aBoxes.isEmpty());
}

void tst_Session::failedConnectionLeavesASocketThatIsClosed_data()
{
    QTest::addColumn<int>("stage");
    QTest::newRow("host does not answer") << 0;
    QTest::newRow("no greeting") << 1;
    QTest::newRow("something else than a greeting") << 2;
    QTest::newRow("no answer to the login") << 3;
    QTest::newRow("closed instead of an answer") << 4;
    QTest::newRow("cancelled by the user") << 5;
    QTest::newRow("greeting that comes too late for its wait") << 6;
}

void tst_Session::failedConnectionLeavesASocketThatIsClosed()
{
    QFETCH(int, stage);
    bench->Socket().CloseByServer();
    if (stage > 0)
        bench->Server([](FakeSocket &socket) { socket.AcceptConnection(); });
    if (stage == 2)
        bench->SayShort("Hello");
    if (stage == 6)
        bench->Silence(6500);
    if (stage > 2)
        bench->SayShort("Welcome\r\n1.6 beta\r\n");
    if (stage == 4)
        bench->Close();
    if (stage == 5)
        bench->Then([this] { session().CancelTransfer(); });
    QVERIFY(!session().ConnectToServer());
    QCOMPARE(bench->Socket().State(), Socket::sckClosed);
    QVERIFY(!session().IsOutOfStep());
}

void tst_Session::refusedConnectionEndsAtOnce()
{
    bench->Socket().CloseByServer();
    bench->Server([](FakeSocket &socket) { socket.RefuseConnection(); });
    QVERIFY(!session().ConnectToServer());
    QVERIFY(session().bConnectRefused);
    QVERIFY(bench->ports.clock.lMilliseconds < 100);
}

void tst_Session::repliesAreIgnoredUntilTheWindowIsReady()
{
    int handled = 0;
    session().SetHandler(pndVersions, [&](const ClientReply &) { ++handled; });
    session().BeginCommand(pndVersions);
    session().bAcceptReplies = false;
    bench->Socket().FeedShort("early");
    QCOMPARE(handled, 0);
    session().bAcceptReplies = true;
    bench->Socket().FeedShort("late");
    QCOMPARE(handled, 1);
}

void tst_Session::unusedPendingNumbersDoNothing()
{
    for (const int pending : {0, 3, 4, 20})
        bench->Then([this, pending] { session().lPendingCommand = pending; }).SayShort("Welcome\r\n");
    QCOMPARE(session().WaitForServerReply(), WaitEnd::Silent);
}

void tst_Session::failureReplyReachesNoHandler()
{
    bool handled = false;
    session().SetHandler(pndContacts, [&](const ClientReply &) { handled = true; });
    bench->SayLong("ERR\r\n3\r\n");
    session().BeginCommand(pndContacts).GetPublicContacts();
    QCOMPARE(session().WaitForServerReply(), WaitEnd::Refused);
    QVERIFY(!handled);
    QVERIFY(bench->ports.prompts.aBoxes.isEmpty());
}

void tst_Session::refusalInOneLineIsUnexpected()
{
    bench->progress.SetTotal(2);
    bench->progress.AddRow("InputBox/F1.tif");
    session().CurrentFaxIndex = 1;
    bench->SayLong("ERROR");
    session().BeginCommand(pndFax).GetFax(1, "F1", Global().strInputBoxPath);
    QCOMPARE(session().WaitForServerReply(), WaitEnd::Refused);
    QCOMPARE(bench->ports.prompts.Texts(), QStringList("Unexpected data received from server!"));
    QCOMPARE(bench->ports.prompts.aBoxes.constFirst().lFlags, long(mbExclamation));
    QCOMPARE(bench->progress.Rows().constFirst().strState, QString("Failed"));
}

void tst_Session::receiptStatesWaitForTheWholeReply()
{
    QList<int> states;
    session().SetHandler(pndReceiptStates, [&](const ClientReply &reply) {
        states.append(reply.lState);
        session().SignalServerReply();
    });
    bench->Say(QByteArray("\xb8\x0b\0\0", 4) + QByteArray(1000, 'a')).Say(QByteArray(2000, 'b'));
    session().BeginCommand(pndReceiptStates).GetReturnReceiptState("F1;");
    QCOMPARE(session().WaitForServerReply(), WaitEnd::Replied);
    QCOMPARE(states, QList<int>{ClientReply::statComplete});
}

void tst_Session::wholeReplyOfOneReadIsHandledOnce()
{
    int handled = 0;
    session().SetHandler(pndContacts, [&](const ClientReply &reply) {
        if (reply.lCurrent != reply.lTotal)
            return;
        ++handled;
        session().SignalServerReply();
    });
    bench->SayLong("OK\r\n" + QByteArray(3000, 'x') + "\r\n");
    session().BeginCommand(pndContacts).GetPublicContacts();
    QCOMPARE(session().WaitForServerReply(), WaitEnd::Replied);
    QCOMPARE(handled, 1);
}

void tst_Session::serverSettingsAreStored_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("stored");
    QTest::addColumn<int>("minutes");
    QTest::newRow("three fields") << QByteArray("OK\r\n2\0001\00015\r\n", 13) << "2 1 15" << 15;
    QTest::newRow("two fields") << QByteArray("OK\r\n2\0001\r\n", 9) << "  " << 7;
    QTest::newRow("one line") << QByteArray("OK") << "  " << 7;
    QTest::newRow("hostile") << QByteArray("OK\r\n1',Pwd='x\0002\0003\r\n", 20) << "1~$@~,Pwd=~$@~x 2 3" << 3;
}

void tst_Session::serverSettingsAreStored()
{
    QFETCH(QByteArray, reply);
    Global().DisconnectTime = 7;
    bench->SayShort(reply);
    session().BeginCommand(pndFaxConfig).GetFaxConfigAndKeepTouckTime();
    QCOMPARE(session().WaitForServerReply(), WaitEnd::Replied);
    QTEST(Profile::Value("Select coalesce(ServerResolve,'')||' '||coalesce(ServerDeepness,'')||' '||"
                         "coalesce(DisconnectTime,'') From Option"),
          "stored");
    QTEST(Global().DisconnectTime, "minutes");
    QCOMPARE(Profile::Value("Select coalesce(Pwd,'') From Option"), QString());
}

void tst_Session::uploadProgressIsShownUntilTheUserCancels()
{
    QList<int> shown;
    session().SetUploadProgress([&](int percent) { shown.append(percent); });
    const QString file = Global().strOutputBoxPath + "F1.tif";
    QVERIFY(WriteTestFile(file, QByteArray(1000, 'x')));
    bench->Server([](FakeSocket &socket) { socket.DrainSends(); }).SayShort("OK");
    bench->Then([this] {
        session().bUserAbort = true;
        emit bench->Socket().SendProgress(500, 500);
    });
    session().BeginCommand(pndUpload).SendFaxFile("header", file);
    QCOMPARE(session().WaitForServerReply(), WaitEnd::Closed);
    QCOMPARE(shown, QList<int>{100});
    QVERIFY(!session().IsConnected());
    QVERIFY(session().bNeedRefresh);
}

void tst_Session::newClientReplacesTheOldOne()
{
    FakeSocket &old = bench->Socket();
    int handled = 0;
    session().SetHandler(pndVersions, [&](const ClientReply &) { ++handled; });
    session().SetClient(std::make_shared<clsClient>(bench->ports.sockets.Create(), bench->ports.ports));
    QCOMPARE(old.State(), Socket::sckClosed);
    session().lPendingCommand = pndVersions;
    old.FeedShort("late");
    QCOMPARE(handled, 0);
    bench->Socket().Connect("127.0.0.1", 8750);
    bench->Socket().AcceptConnection();
    bench->Socket().FeedShort("new");
    QCOMPARE(handled, 1);
}

QTEST_GUILESS_MAIN(tst_Session)
#include "tst_Session.moc"
