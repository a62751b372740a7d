#include "fakes/WireDialogue.h"

#include <QTest>

namespace {
/// First read of a long reply.
QByteArray First(qint32 declared, const QByteArray &text)
{
    return Frames::Long(declared) + text;
}

QByteArray Text(qsizetype size, char letter = 'x')
{
    return QByteArray(size, letter);
}
} // namespace

/// Short replies, and long replies put together from reads.
class tst_clsClientReplies : public QObject
{
    Q_OBJECT

private slots:
    void readsBecomeReplies_data()
    {
        QTest::addColumn<bool>("isLong");
        QTest::addColumn<QByteArrayList>("reads");
        QTest::addColumn<QStringList>("told"); // see WireDialogue::Told
        QTest::addColumn<QByteArray>("sent");
        const auto row = [](const char *name, bool isLong, const QByteArrayList &reads,
                            const QStringList &told, const QByteArray &sent = {}) {
            QTest::newRow(name) << isLong << reads << told << sent;
        };
        row("short; its four bytes are not read", false, {"\xff\xff\xff\xffOK\r\n7"}, {"0 0% -1/-1 OK\r\n7"});
        row("short in two reads", false, {"....OK\r", "\n7\r\n"}, {"0 0% -1/-1 OK\r", "0 0% -1/-1 "});
        row("long of one read", true, {First(2044, Text(2044))}, {"4 100% -1/-1 [2044 x x]"});
        row("long above the limit", true, {First(2045, Text(2045))},
            {"3 100% 2045/2045 [2045 x x]", "4 100% 2045/2045 [2045 x x]"}, "GoOn");
        row("long in parts", true, {First(4000, Text(500, 'a')), Text(1000, 'b'), Text(2500, 'c')},
            {"3 12% 500/4000 [500 a a]", "3 38% 1500/4000 [1500 a b]", "4 100% 4000/4000 [4000 a c]"},
            "GoOnGoOn");
        row("refused long one", true, {First(6, "ERR\r\n5")}, {"1 100% 6/-1 ERR\r\n5"});
        row("more than declared below the limit", true, {First(2, "OK\r\n")}, {"4 100% -1/-1 OK\r\n"});
        row("more in the first read", true, {First(3000, Text(3001))}, {"1 0% -1/-1 "});
        row("more in a later read", true, {First(3000, Text(2999)), "yz"},
            {"3 100% 2999/3000 [2999 x x]", "1 0% -1/-1 "}, "GoOn");
        row("negative length", true, {First(-1, "OK\r\n")}, {"1 0% -1/-1 "});
        row("length over the bound", true, {First(256 * 1024 * 1024 + 1, "OK\r\n")}, {"1 0% -1/-1 "});
    }

    void readsBecomeReplies()
    {
        QFETCH(bool, isLong);
        QFETCH(QByteArrayList, reads);
        WireDialogue wire;
        isLong ? wire.client->GetUserList() : wire.client->GetContactVersion();
        wire.Sent();
        for (const QByteArray &read : reads)
            wire.socket.Feed(read);
        QTEST(wire.Told(), "told");
        QTEST(wire.Sent(), "sent");
        QVERIFY(wire.IsIdle());
    }

    void cutReplyWaitsForItsRest()
    {
        WireDialogue wire;
        wire.client->GetUserList();
        const QByteArray frame = First(1500, Text(1500));
        wire.socket.Feed(frame.first(3));
        wire.ports.timers.Advance(900);
        wire.socket.Feed(frame.sliced(3, 1400));
        wire.ports.timers.Advance(900); // the second counts from the latest byte
        QVERIFY(wire.aReplies.isEmpty());
        wire.socket.Feed(frame.sliced(1403));
        wire.ports.timers.Advance(5000);
        QCOMPARE(wire.Told(), QStringList{"4 100% -1/-1 [1500 x x]"});
    }

    void cutReplyIsDeliveredAfterASilentSecond()
    {
        WireDialogue wire;
        wire.client->GetUserList();
        wire.socket.Feed(First(100, "OK\r\nhalf"));
        wire.ports.timers.Advance(1000);
        wire.socket.Feed("late rest"); // is taken as a reply of its own
        QCOMPARE(wire.Told(), QStringList({"4 100% -1/-1 OK\r\nhalf", "0 0% -1/-1  rest"}));
    }

    void closedSocketDropsWhatIsSent()
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

    void closingForgetsTheReplyUnderWay()
    {
        WireDialogue wire;
        wire.client->GetUserList();
        wire.socket.Feed(First(4000, Text(500)));
        wire.socket.Fail(Socket::sckConnectionReset);
        QCOMPARE(wire.aErrors.size(), 1);
        QCOMPARE(wire.aErrors.first().lNumber, 10054);
        wire.Reconnect();
        QVERIFY(wire.IsIdle());
    }

    void ownerMayDestroyTheClientInAnyEvent_data()
    {
        QTest::addColumn<QByteArray>("read");
        QTest::newRow("a part") << First(4000, Text(500));
        QTest::newRow("whole in one read") << First(4000, Text(4000));
        QTest::newRow("refused") << First(3, "ERR");
        QTest::newRow("too much") << First(4000, Text(4001));
    }

    void ownerMayDestroyTheClientInAnyEvent()
    {
        QFETCH(QByteArray, read);
        WireDialogue wire;
        QObject::connect(wire.client.get(), &clsClient::DataArrival, [&] { wire.client.reset(); });
        wire.client->GetUserList();
        wire.socket.Feed(read);
        QCOMPARE(wire.aReplies.size(), 1);
        QVERIFY(!wire.ports.sockets.Last());
    }

    void cancelInsideAPartSendsNoGoOn()
    {
        WireDialogue wire;
        QObject::connect(wire.client.get(), &clsClient::DataArrival, [&] {
            wire.client->Cancel();
            wire.Reconnect();
        });
        wire.client->GetUserList();
        wire.Sent();
        wire.socket.Feed(First(4000, Text(4000)));
        QCOMPARE(wire.Sent(), QByteArray());
        QCOMPARE(wire.aReplies.size(), 0); // nothing more came after the reconnection
    }
};

QTEST_GUILESS_MAIN(tst_clsClientReplies)
#include "tst_clsClientReplies.moc"
