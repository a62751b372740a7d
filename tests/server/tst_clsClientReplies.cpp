#include "fakes/WireDialogue.h"

#include <QTest>

/// Short replies, and long replies put together from reads.
class tst_clsClientReplies : public QObject
{
    Q_OBJECT

private slots:
    void shortReplyLosesItsFourBytes();
    void everyReadIsAShortReply();
    void longReplyOfOneReadNeedsNoGoOn();
    void longReplyAboveTheLimitIsAnsweredWithGoOn();
    void longReplyInPartsAsksAfterEachRead();
    void refusedLongReplyIsAFailure();
    void moreThanDeclaredIsAFailure_data();
    void moreThanDeclaredIsAFailure();
    void cutReplyWaitsForItsRest();
    void cutReplyIsDeliveredAfterASilentSecond();
    void absurdLengthIsRefused_data();
    void absurdLengthIsRefused();
    void closedSocketDropsWhatIsSent();
    void closingForgetsTheReplyUnderWay();
    void ownerMayDestroyTheClientInAnyEvent_data();
    void ownerMayDestroyTheClientInAnyEvent();
    void cancelInsideAPartSendsNoGoOn();
    void nextCommandMayGoOutInsideTheReply();
};

void tst_clsClientReplies::shortReplyLosesItsFourBytes()
{
    WireDialogue wire;
    wire.client->GetContactVersion();
    wire.socket.Feed(QByteArray("\xff\xff\xff\xff") + "OK\r\n7\r\n"); // the four bytes are not read
    const ClientReply reply = wire.TakeReply();
    QCOMPARE(reply.lState, int(ClientReply::statShort));
    QCOMPARE(reply.abData, QByteArray("OK\r\n7\r\n"));
    QCOMPARE(reply.bytesTotal, 11);
    QCOMPARE(reply.lPercent, 0);
    QCOMPARE(reply.lCurrent, reply.lTotal);
}

void tst_clsClientReplies::everyReadIsAShortReply()
{
    WireDialogue wire;
    wire.client->GetContactVersion();
    wire.socket.Feed("....OK\r");
    wire.socket.Feed("\n7\r\n");
    QCOMPARE(wire.aReplies.size(), 2);
    QCOMPARE(wire.aReplies.at(1).abData, QByteArray()); // four bytes are stripped from it, too
}

void tst_clsClientReplies::longReplyOfOneReadNeedsNoGoOn()
{
    WireDialogue wire;
    wire.client->GetUserList();
    wire.Sent();
    const QByteArray text(2044, 'x');
    wire.socket.FeedLong(text);
    const ClientReply reply = wire.TakeReply();
    QCOMPARE(reply.lState, int(ClientReply::statComplete));
    QCOMPARE(reply.abData, text);
    QCOMPARE(reply.lPercent, 100);
    QCOMPARE(reply.lCurrent, reply.lTotal);
    QCOMPARE(wire.Sent(), QByteArray());
    wire.socket.FeedShort("OK"); // the next read belongs to the next command
    QCOMPARE(wire.TakeReply().lState, int(ClientReply::statShort));
}

void tst_clsClientReplies::longReplyAboveTheLimitIsAnsweredWithGoOn()
{
    WireDialogue wire;
    wire.client->GetUserList();
    wire.Sent();
    wire.socket.FeedLong(QByteArray(2045, 'x'));
    QCOMPARE(wire.TakeReply().lState, int(ClientReply::statPart));
    const ClientReply reply = wire.TakeReply();
    QCOMPARE(reply.lState, int(ClientReply::statComplete));
    QCOMPARE(reply.abData.size(), 2045);
    QCOMPARE(reply.lCurrent, 2045);
    QCOMPARE(reply.lTotal, 2045);
    QCOMPARE(wire.Sent(), QByteArray("GoOn"));
}

void tst_clsClientReplies::longReplyInPartsAsksAfterEachRead()
{
    WireDialogue wire;
    wire.client->GetPublicContacts();
    wire.Sent();
    wire.socket.Feed(Frames::Long(4000) + QByteArray(500, 'a'));
    const ClientReply first = wire.TakeReply();
    QCOMPARE(first.lState, int(ClientReply::statPart));
    QCOMPARE(first.lCurrent, 500);
    QCOMPARE(first.lTotal, 4000);
    QCOMPARE(first.lPercent, 12); // 12.5
    QCOMPARE(first.abData.size(), 500);
    wire.socket.Feed(QByteArray(1000, 'b'));
    QCOMPARE(wire.TakeReply().lPercent, 38); // 37.5
    QCOMPARE(wire.Sent(), QByteArray("GoOnGoOn"));
    wire.socket.Feed(QByteArray(2500, 'c'));
    const ClientReply last = wire.TakeReply();
    QCOMPARE(last.lState, int(ClientReply::statComplete));
    QCOMPARE(last.abData, QByteArray(500, 'a') + QByteArray(1000, 'b') + QByteArray(2500, 'c'));
    QCOMPARE(wire.Sent(), QByteArray());
}

void tst_clsClientReplies::refusedLongReplyIsAFailure()
{
    WireDialogue wire;
    wire.client->GetFaxState(QStringLiteral("A"));
    wire.socket.FeedLong("ERR\r\n5\r\n");
    const ClientReply reply = wire.TakeReply();
    QCOMPARE(reply.lState, int(ClientReply::statFailure));
    QCOMPARE(reply.abData, QByteArray("ERR\r\n5\r\n"));
    QCOMPARE(reply.lPercent, 100);
}

void tst_clsClientReplies::moreThanDeclaredIsAFailure_data()
{
    QTest::addColumn<QList<qsizetype>>("reads");
    QTest::newRow("in the first read") << QList<qsizetype>{3001};
    QTest::newRow("in a later read") << QList<qsizetype>{2999, 2};
}

void tst_clsClientReplies::moreThanDeclaredIsAFailure()
{
    QFETCH(QList<qsizetype>, reads);
    WireDialogue wire;
    wire.client->GetUserList();
    QByteArray length = Frames::Long(3000);
    for (const qsizetype size : reads)
        wire.socket.Feed(std::exchange(length, {}) + QByteArray(size, 'x'));
    const ClientReply reply = wire.aReplies.last();
    QCOMPARE(reply.lState, int(ClientReply::statFailure));
    QCOMPARE(reply.abData, QByteArray());
    QCOMPARE(reply.lPercent, 0);
    wire.socket.FeedShort("OK");
    QCOMPARE(wire.aReplies.last().lState, int(ClientReply::statShort));
}

void tst_clsClientReplies::cutReplyWaitsForItsRest()
{
    WireDialogue wire;
    wire.client->GetUserList();
    const QByteArray text = "OK\r\n" + QByteArray(1500, 'x');
    const QByteArray frame = Frames::Long(static_cast<qint32>(text.size())) + text;
    wire.socket.Feed(frame.first(3));
    wire.ports.timers.Advance(900);
    wire.socket.Feed(frame.sliced(3, 1400));
    wire.ports.timers.Advance(900); // the second counts from the latest byte
    QVERIFY(wire.aReplies.isEmpty());
    wire.socket.Feed(frame.sliced(1403));
    QCOMPARE(wire.aReplies.size(), 1);
    QCOMPARE(wire.aReplies.first().lState, int(ClientReply::statComplete));
    QCOMPARE(wire.aReplies.first().abData, text);
    wire.ports.timers.Advance(5000);
    QCOMPARE(wire.aReplies.size(), 1);
}

void tst_clsClientReplies::cutReplyIsDeliveredAfterASilentSecond()
{
    WireDialogue wire;
    wire.client->GetUserList();
    wire.socket.Feed(Frames::Long(100) + "OK\r\nhalf");
    wire.ports.timers.Advance(1000);
    const ClientReply reply = wire.TakeReply();
    QCOMPARE(reply.lState, int(ClientReply::statComplete));
    QCOMPARE(reply.abData, QByteArray("OK\r\nhalf"));
    wire.socket.Feed("late rest"); // is taken as a reply of its own
    QCOMPARE(wire.TakeReply().lState, int(ClientReply::statShort));
}

void tst_clsClientReplies::absurdLengthIsRefused_data()
{
    QTest::addColumn<int>("declared");
    QTest::newRow("negative") << -1;
    QTest::newRow("smallest") << std::numeric_limits<int>::min();
    QTest::newRow("one over the bound") << 256 * 1024 * 1024 + 1;
}

void tst_clsClientReplies::absurdLengthIsRefused()
{
    QFETCH(int, declared);
    WireDialogue wire;
    wire.client->GetUserList();
    wire.socket.Feed(Frames::Long(declared) + "OK\r\n");
    QCOMPARE(wire.aReplies.size(), 1);
    QCOMPARE(wire.aReplies.first().lState, int(ClientReply::statFailure));
}

void tst_clsClientReplies::closedSocketDropsWhatIsSent()
{
    WireDialogue wire;
    wire.socket.CloseByServer();
    QCOMPARE(wire.lCloses, 1);
    wire.client->LogOut();
    wire.client->SendData("x");
    QVERIFY(wire.socket.aWrites.isEmpty());
    wire.client->CloseConnect();
    QCOMPARE(wire.client->State(), 0);
    QCOMPARE(wire.lCloses, 1);
}

void tst_clsClientReplies::closingForgetsTheReplyUnderWay()
{
    WireDialogue wire;
    wire.client->GetUserList();
    wire.socket.Feed(Frames::Long(4000) + QByteArray(500, 'a'));
    wire.socket.Fail(Socket::sckConnectionReset, QStringLiteral("reset"));
    QCOMPARE(wire.aErrors.size(), 1);
    QCOMPARE(wire.aErrors.first().lNumber, 10054);
    wire.aReplies.clear();
    wire.client->Connect(QStringLiteral("fax"), QStringLiteral("8750"));
    wire.socket.AcceptConnection();
    wire.socket.FeedShort("1.6 beta");
    QCOMPARE(wire.TakeReply().abData, QByteArray("1.6 beta"));
}

void tst_clsClientReplies::ownerMayDestroyTheClientInAnyEvent_data()
{
    QTest::addColumn<QByteArray>("read");
    QTest::newRow("a part") << QByteArray(Frames::Long(4000) + QByteArray(500, 'a'));
    QTest::newRow("whole in one read") << QByteArray(Frames::Long(4000) + QByteArray(4000, 'a'));
    QTest::newRow("refused") << QByteArray(Frames::Long(3) + "ERR");
    QTest::newRow("too much") << QByteArray(Frames::Long(4000) + QByteArray(4001, 'a'));
}

void tst_clsClientReplies::ownerMayDestroyTheClientInAnyEvent()
{
    QFETCH(QByteArray, read);
    WireDialogue wire;
    int events = 0;
    QObject::connect(wire.client.get(), &clsClient::DataArrival, [&] {
        ++events;
        wire.client.reset();
    });
    wire.client->GetUserList();
    wire.socket.Feed(read);
    QCOMPARE(events, 1);
    QVERIFY(!wire.ports.sockets.Last());
}

void tst_clsClientReplies::cancelInsideAPartSendsNoGoOn()
{
    WireDialogue wire;
    QObject::connect(wire.client.get(), &clsClient::DataArrival, [&] {
        wire.client->Cancel();
        wire.client->Connect(QStringLiteral("fax"), QStringLiteral("8750"));
        wire.socket.AcceptConnection();
    });
    wire.client->GetUserList();
    wire.Sent();
    wire.socket.Feed(Frames::Long(4000) + QByteArray(4000, 'a'));
    QCOMPARE(wire.Sent(), QByteArray());
    QCOMPARE(wire.aReplies.size(), 1);
}

void tst_clsClientReplies::nextCommandMayGoOutInsideTheReply()
{
    WireDialogue wire;
    int events = 0;
    QObject::connect(wire.client.get(), &clsClient::DataArrival, [&] {
        if (events++ == 0)
            wire.client->GetDepartmentList();
    });
    wire.client->GetUserList();
    wire.socket.FeedLong("OK\r\nusers\r\n");
    wire.socket.FeedLong("OK\r\ndepartments\r\n");
    QCOMPARE(wire.aReplies.size(), 2);
    QCOMPARE(wire.aReplies.at(1).lState, int(ClientReply::statComplete));
}

QTEST_GUILESS_MAIN(tst_clsClientReplies)
#include "tst_clsClientReplies.moc"
