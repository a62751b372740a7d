#include "platform/TcpSocket.h"

#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <functional>
#include <utility>

#include <sys/socket.h>

namespace {
/// Acts when the next queued report is about to reach the socket.
class BeforeFirstReport final : public QObject
{
public:
    BeforeFirstReport(QObject &socket, std::function<void()> action)
        : action(std::move(action))
    {
        socket.installEventFilter(this);
    }

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::MetaCall && !std::exchange(bDone, true))
            action();
        return false;
    }

    bool bDone = false;

private:
    std::function<void()> action;
};
} // namespace

/// The socket port on real loopback connections.
class tst_TcpSocket : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void connectsAndTalksBothWays();
    void failedConnectionIsToldThroughTheLoop_data();
    void failedConnectionIsToldThroughTheLoop();
    void lastWordsAreReadBeforeTheClose();
    void lastWordsLeaveOnOwnClose();
    void resetIs10054();
    void oldConnectionIsNotHeardOnTheNext();
    void oldFailureIsNotHeardOnTheNext();
    void eachDrainIsReportedOnce();
    void unreadDataSlowsTheSenderDown();
    void mayBeDestroyedInItsSignals();

private:
    QTcpSocket *ConnectPair();
    static void Reset(QTcpSocket &peer);

    std::unique_ptr<QTcpServer> server;
    std::unique_ptr<TcpSocket> socket;
};

void tst_TcpSocket::init()
{
    server = std::make_unique<QTcpServer>();
    QVERIFY(server->listen(QHostAddress::LocalHost));
    socket = std::make_unique<TcpSocket>();
}

void tst_TcpSocket::cleanup()
{
    socket.reset();
    server.reset();
}

/// Connects and gives the server's end.
QTcpSocket *tst_TcpSocket::ConnectPair()
{
    QSignalSpy connected(socket.get(), &Socket::Connected);
    socket->Connect("127.0.0.1", server->serverPort());
    if (!connected.wait() || (!server->hasPendingConnections() && !server->waitForNewConnection(5000)))
        qFatal("No loopback connection.");
    return server->nextPendingConnection();
}

void tst_TcpSocket::Reset(QTcpSocket &peer)
{
    const linger now{1, 0};
    setsockopt(static_cast<int>(peer.socketDescriptor()), SOL_SOCKET, SO_LINGER, &now, sizeof now);
    peer.abort();
}

void tst_TcpSocket::connectsAndTalksBothWays()
{
    QCOMPARE(socket->State(), Socket::sckClosed);
    QTcpSocket *peer = ConnectPair();
    QCOMPARE(socket->State(), Socket::sckConnected);
    socket->SendData("question");
    QTRY_COMPARE(peer->bytesAvailable(), 8);
    QByteArray got;
    connect(socket.get(), &Socket::DataArrival, [&](qint64 bytes) {
        got += socket->GetData();
        QCOMPARE(got.size(), bytes);
    });
    peer->write("answer");
    QTRY_COMPARE(got, QByteArray("answer"));
}

void tst_TcpSocket::failedConnectionIsToldThroughTheLoop_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<int>("port");
    QTest::addColumn<int>("number");
    QTest::newRow("refused") << "127.0.0.1" << 1 << 10061;
    QTest::newRow("unknown host") << "no-such-host.invalid" << 8750 << 11001;
    QTest::newRow("no port") << "127.0.0.1" << 0 << 10049;
    QTest::newRow("port too high") << "127.0.0.1" << 65536 + 80 << 10049;
}

void tst_TcpSocket::failedConnectionIsToldThroughTheLoop()
{
    QFETCH(QString, host);
    QFETCH(int, port);
    QSignalSpy errors(socket.get(), &Socket::Error);
    socket->Connect(host, port);
    QVERIFY(errors.isEmpty());
    QTRY_COMPARE_WITH_TIMEOUT(errors.size(), 1, 30000);
    QTEST(errors.first().at(0).toInt(), "number");
    QVERIFY(!errors.first().at(1).toString().isEmpty());
    QCOMPARE(socket->State(), Socket::sckError);
}

void tst_TcpSocket::lastWordsLeaveOnOwnClose()
{
    QTcpSocket *peer = ConnectPair();
    QByteArray got;
    connect(peer, &QTcpSocket::readyRead, [&] { got += peer->readAll(); });
    QSignalSpy closes(socket.get(), &Socket::Closed);
    QSignalSpy errors(socket.get(), &Socket::Error);
    QSignalSpy peerCloses(peer, &QTcpSocket::disconnected);
    socket->SendData("bye");
    socket->Close();
    QTRY_COMPARE(peerCloses.size(), 1);
    QCOMPARE(got, QByteArray("bye"));
    QCOMPARE(closes.size() + errors.size(), 0);
    QCOMPARE(socket->GetData(), QByteArray());
}

void tst_TcpSocket::lastWordsAreReadBeforeTheClose()
{
    QTcpSocket *peer = ConnectPair();
    QByteArray got;
    connect(socket.get(), &Socket::DataArrival, [&] { got += socket->GetData(); });
    QSignalSpy closes(socket.get(), &Socket::Closed);
    QSignalSpy peerCloses(peer, &QTcpSocket::disconnected);
    peer->write("last words");
    peer->disconnectFromHost();
    QTRY_COMPARE(closes.size(), 1);
    QCOMPARE(got, QByteArray("last words"));
    QCOMPARE(socket->State(), Socket::sckClosing);
    socket->SendData("too late"); // and does no harm
    socket->Close();
    QCOMPARE(socket->State(), Socket::sckClosed);
    QTRY_COMPARE(peerCloses.size(), 1);
}

void tst_TcpSocket::resetIs10054()
{
    QTcpSocket *peer = ConnectPair();
    QSignalSpy errors(socket.get(), &Socket::Error);
    QSignalSpy closes(socket.get(), &Socket::Closed);
    Reset(*peer);
    QTRY_COMPARE(errors.size(), 1);
    QCOMPARE(errors.first().at(0).toInt(), 10054);
    QCOMPARE(socket->State(), Socket::sckError);
    QVERIFY(closes.isEmpty());
}

void tst_TcpSocket::oldConnectionIsNotHeardOnTheNext()
{
    QTcpSocket *oldPeer = ConnectPair();
    QByteArray got;
    QSignalSpy closes(socket.get(), &Socket::Closed);
    connect(socket.get(), &Socket::DataArrival, [&] { got += socket->GetData(); });
    BeforeFirstReport reconnect(*socket, [&] { socket->Connect("127.0.0.1", server->serverPort()); });
    oldPeer->write("stale");
    oldPeer->disconnectFromHost();
    QTRY_VERIFY(reconnect.bDone);
    QTRY_VERIFY(server->hasPendingConnections());
    server->nextPendingConnection()->write("fresh");
    QTRY_COMPARE(got, QByteArray("fresh"));
    QVERIFY(closes.isEmpty());
    QCOMPARE(socket->State(), Socket::sckConnected);
}

void tst_TcpSocket::oldFailureIsNotHeardOnTheNext()
{
    QSignalSpy errors(socket.get(), &Socket::Error);
    QSignalSpy connected(socket.get(), &Socket::Connected);
    BeforeFirstReport reconnect(*socket, [&] { socket->Connect("127.0.0.1", server->serverPort()); });
    socket->Connect("127.0.0.1", 1);
    QTRY_COMPARE(connected.size(), 1);
    QVERIFY(errors.isEmpty());
}

void tst_TcpSocket::eachDrainIsReportedOnce()
{
    QTcpSocket *peer = ConnectPair();
    connect(peer, &QTcpSocket::readyRead, [&] { peer->readAll(); });
    qint64 sent = 0;
    qint64 remaining = -1;
    connect(socket.get(), &Socket::SendProgress, [&](qint64 bytes, qint64 left) {
        sent += bytes;
        remaining = left;
    });
    QSignalSpy drains(socket.get(), &Socket::SendComplete);
    constexpr int blocks = 5;
    constexpr qsizetype blockSize = 2048000;
    connect(socket.get(), &Socket::SendComplete, [&] {
        QCOMPARE(sent, drains.size() * blockSize);
        QCOMPARE(remaining, 0);
        if (drains.size() < blocks)
            socket->SendData(QByteArray(blockSize, 'x'));
    });
    socket->SendData(QByteArray(blockSize, 'x'));
    QTRY_COMPARE_WITH_TIMEOUT(sent, blocks * blockSize, 30000);
    QTRY_COMPARE(drains.size(), blocks);
}

void tst_TcpSocket::unreadDataSlowsTheSenderDown()
{
    QTcpSocket *peer = ConnectPair();
    qint64 offered = 0;
    connect(socket.get(), &Socket::DataArrival, [&](qint64 bytes) { offered = bytes; });
    const QByteArray flood(64 * 1024 * 1024, 'x');
    peer->write(flood);
    QTRY_VERIFY(offered > 4 * 1024 * 1024);
    QTest::qWait(200);
    QVERIFY(offered <= 8 * 1024 * 1024);
    QVERIFY(peer->bytesToWrite() > 16 * 1024 * 1024);
    qint64 got = 0;
    connect(socket.get(), &Socket::DataArrival, [&] { got += socket->GetData().size(); });
    got += socket->GetData().size();
    QTRY_COMPARE_WITH_TIMEOUT(got, flood.size(), 30000);
}

void tst_TcpSocket::mayBeDestroyedInItsSignals()
{
    ConnectPair()->write("x");
    connect(socket.get(), &Socket::DataArrival, [&] { socket.reset(); });
    QTRY_VERIFY(!socket);

    socket = std::make_unique<TcpSocket>();
    ConnectPair();
    connect(socket.get(), &Socket::SendProgress, [&] { socket.reset(); });
    socket->SendData("x");
    QTRY_VERIFY(!socket);
}

QTEST_GUILESS_MAIN(tst_TcpSocket)
#include "tst_TcpSocket.moc"
