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
    explicit BeforeFirstReport(std::function<void()> action)
        : action(std::move(action))
    {
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
    void init()
    {
        socket = std::make_unique<TcpSocket>();
        server = std::make_unique<QTcpServer>();
        QVERIFY(server->listen(QHostAddress::LocalHost));
    }

    void failedConnectionIsToldThroughTheLoop()
    {
        for (const auto &[host, port, number] : {std::tuple("127.0.0.1", 1, 10061),
                                                 {"no-such-host.invalid", 8750, 11001},
                                                 {"127.0.0.1", 65616, 10049}}) {
            QSignalSpy errors(socket.get(), &Socket::Error);
            socket->Connect(host, port);
            QVERIFY(errors.isEmpty());
            QTRY_COMPARE_WITH_TIMEOUT(errors.size(), 1, 30000);
            QCOMPARE(errors.first().at(0).toInt(), number);
            QCOMPARE(socket->State(), Socket::sckError);
        }
    }

    void lastWordsAreReadBeforeTheClose()
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

    void resetIs10054()
    {
        QTcpSocket *peer = ConnectPair();
        QSignalSpy errors(socket.get(), &Socket::Error), closes(socket.get(), &Socket::Closed);
        const linger now{1, 0};
        setsockopt(static_cast<int>(peer->socketDescriptor()), SOL_SOCKET, SO_LINGER, &now, sizeof now);
        peer->abort();
        QTRY_COMPARE(errors.size(), 1);
        QCOMPARE(errors.first().at(0).toInt(), 10054);
        QVERIFY(closes.isEmpty());
    }

    void oldConnectionIsNotHeardOnTheNext()
    {
        QTcpSocket *oldPeer = ConnectPair();
        QByteArray got;
        QSignalSpy closes(socket.get(), &Socket::Closed);
        connect(socket.get(), &Socket::DataArrival, [&] { got += socket->GetData(); });
        BeforeFirstReport reconnect([&] { socket->Connect("127.0.0.1", server->serverPort()); });
        socket->installEventFilter(&reconnect);
        oldPeer->write("stale");
        oldPeer->disconnectFromHost();
        QTRY_VERIFY(server->hasPendingConnections());
        server->nextPendingConnection()->write("fresh");
        QTRY_COMPARE(got, QByteArray("fresh"));
        QVERIFY(closes.isEmpty());
    }

    void eachDrainIsReportedOnce()
    {
        QTcpSocket *peer = ConnectPair();
        connect(peer, &QTcpSocket::readyRead, [&] { peer->readAll(); });
        constexpr qsizetype blockSize = 2048000;
        qint64 sent = 0;
        connect(socket.get(), &Socket::SendProgress, [&](qint64 bytes) { sent += bytes; });
        QSignalSpy drains(socket.get(), &Socket::SendComplete);
        connect(socket.get(), &Socket::SendComplete, [&] {
            QCOMPARE(sent, drains.size() * blockSize);
            if (drains.size() < 5)
                socket->SendData(QByteArray(blockSize, 'x'));
        });
        socket->SendData(QByteArray(blockSize, 'x'));
        QTRY_COMPARE_WITH_TIMEOUT(drains.size(), 5, 30000);
    }

    void unreadDataSlowsTheSenderDown()
    {
        QTcpSocket *peer = ConnectPair();
        qint64 offered = 0;
        connect(socket.get(), &Socket::DataArrival, [&](qint64 bytes) { offered = bytes; });
        const QByteArray flood(64 * 1024 * 1024, 'x');
        peer->write(flood);
        QTRY_VERIFY(offered > 4 * 1024 * 1024);
        for (int turn = 0; turn < 500; ++turn)
            QCoreApplication::processEvents();
        QVERIFY(offered <= 8 * 1024 * 1024);
        QVERIFY(peer->bytesToWrite() > 16 * 1024 * 1024);
        qint64 got = 0;
        connect(socket.get(), &Socket::DataArrival, [&] { got += socket->GetData().size(); });
        got += socket->GetData().size();
        QTRY_COMPARE_WITH_TIMEOUT(got, flood.size(), 30000);
    }

    void mayBeDestroyedInItsSignals()
    {
        ConnectPair()->write("x");
        connect(socket.get(), &Socket::DataArrival, [&] { socket.reset(); });
        QTRY_VERIFY(!socket);
    }

private:
    /// Connects and gives the server's end.
    QTcpSocket *ConnectPair()
    {
        QSignalSpy connected(socket.get(), &Socket::Connected);
        socket->Connect("127.0.0.1", server->serverPort());
        if (!connected.wait() || (!server->hasPendingConnections() && !server->waitForNewConnection(5000)))
            qFatal("No loopback connection.");
        return server->nextPendingConnection();
    }

    std::unique_ptr<QTcpServer> server;
    std::unique_ptr<TcpSocket> socket;
};

QTEST_GUILESS_MAIN(tst_TcpSocket)
#include "tst_TcpSocket.moc"
