#include "fakes/FakePorts.h"
#include "platform/QtEventPump.h"
#include "platform/QtTimers.h"
#include "platform/SystemClock.h"
#include "platform/TcpSocket.h"
#include "server/wire/Frames.h"
#include "server/wire/clsClient.h"

#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>

/// The protocol client on a real connection and a real event loop, where replies come inside its own waits.
class tst_clsClientOverTcp : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void uploadGoesOutWhole_data();
    void uploadGoesOutWhole();
    void connectionLostDuringTheHeaderWaitEndsIt();
    void downloadComesInWhole();
    void cutLongReplyIsPutTogether();

private:
    void AfterAMoment(std::function<void()> answer);
    QByteArray TakeFromPeer(qsizetype count);
    QString Path(const QString &name) const { return dir->path() + u'/' + name; }

    FakePorts fakes;
    QtEventPump pump;
    QtTimers timers;
    SystemClock clock;
    Ports ports{pump,        timers,      clock,        fakes.ids,      fakes.message, fakes.folders,
                fakes.shell, fakes.sound, fakes.blocks, fakes.instance, fakes.sockets};
    std::unique_ptr<QTemporaryDir> dir;
    std::unique_ptr<QTcpServer> server;
    std::unique_ptr<clsClient> client;
    QTcpSocket *peer = nullptr;
    QList<ClientReply> aReplies;
};

namespace {

QByteArray Pattern(qsizetype size)
{
    QByteArray bytes(size, '\0');
    for (qsizetype i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(i * 31 >> 7);
    return bytes;
}

} // namespace

void tst_clsClientOverTcp::init()
{
    dir = std::make_unique<QTemporaryDir>();
    server = std::make_unique<QTcpServer>();
    QVERIFY(server->listen(QHostAddress::LocalHost));
    client = std::make_unique<clsClient>(std::make_unique<TcpSocket>(), ports);
    aReplies.clear();
    connect(client.get(), &clsClient::DataArrival, this,
            [this](const ClientReply &reply) { aReplies.append(reply); });
    client->Connect(QStringLiteral("127.0.0.1"), QString::number(server->serverPort()));
    QTRY_VERIFY(client->IsConnected() && server->hasPendingConnections());
    peer = server->nextPendingConnection();
}

void tst_clsClientOverTcp::cleanup()
{
    client.reset();
    server.reset();
}

/// The server answers the first bytes it gets, while the client waits inside its own loop.
void tst_clsClientOverTcp::AfterAMoment(std::function<void()> answer)
{
    connect(
        peer, &QTcpSocket::readyRead, this,
        [this, answer = std::move(answer)] { QTimer::singleShot(50, this, answer); },
        Qt::SingleShotConnection);
}

QByteArray tst_clsClientOverTcp::TakeFromPeer(qsizetype count)
{
    if (!QTest::qWaitFor([&] { return peer->bytesAvailable() >= count; }, 20000))
        qWarning("The server got %lld bytes only.", static_cast<long long>(peer->bytesAvailable()));
    return peer->read(count);
}

void tst_clsClientOverTcp::uploadGoesOutWhole_data()
{
    QTest::addColumn<qsizetype>("size");
    QTest::newRow("one block") << qsizetype(50000);
    QTest::newRow("several blocks") << qsizetype(5 * 1000 * 1000);
}

void tst_clsClientOverTcp::uploadGoesOutWhole()
{
    QFETCH(qsizetype, size);
    const QByteArray content = Pattern(size);
    QFile file(Path(QStringLiteral("out.tif")));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == size);
    file.close();
    QSignalSpy progress(client.get(), &clsClient::SendingProgress);
    AfterAMoment([this] { peer->write(Frames::Long(2) + "OK"); });
    client->SendFaxFile(QStringLiteral("header"), file.fileName());
    const QByteArray sent = TakeFromPeer(14 + 8 + size);
    QCOMPARE(sent.first(14), Frames::FormB(Frames::cmdSendFaxFile, "header"));
    QCOMPARE(sent.sliced(14, 8), Frames::FormC(static_cast<qint32>(size), {}));
    QVERIFY(sent.sliced(22) == content);
    peer->write(Frames::Long(32) + QByteArray(32, 'A'));
    QTRY_COMPARE(aReplies.size(), 2);
    QCOMPARE(aReplies.first().lState, int(ClientReply::statComplete));
    QCOMPARE(aReplies.last().abData, QByteArray(32, 'A'));
    QVERIFY(progress.last().first().toInt() >= 100);
    QCOMPARE(peer->bytesAvailable(), 0);
}

void tst_clsClientOverTcp::connectionLostDuringTheHeaderWaitEndsIt()
{
    QFile file(Path(QStringLiteral("out.tif")));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("fax") == 3);
    file.close();
    QSignalSpy closes(client.get(), &clsClient::ConnectClosed);
    bool wasWaiting = false;
    AfterAMoment([&] {
        wasWaiting = client->IsWaitingServerReady();
        peer->disconnectFromHost();
    });
    client->SendFaxFile(QStringLiteral("header"), file.fileName());
    QTRY_COMPARE(closes.size(), 1);
    QVERIFY(wasWaiting);
    QVERIFY(!client->IsWaitingServerReady());
}

void tst_clsClientOverTcp::downloadComesInWhole()
{
    const QByteArray content = Pattern(5 * 1000 * 1000);
    client->GetFax(0, QStringLiteral("A1"), Path({}));
    TakeFromPeer(8);
    peer->write(Frames::Long(10) + "OK\r\nfields");
    QCOMPARE(TakeFromPeer(4), Frames::GoOn());
    peer->write(Frames::Long(static_cast<qint32>(content.size())) + content.first(100000));
    QCOMPARE(TakeFromPeer(4), Frames::GoOn());
    peer->write(content.sliced(100000));
    QTRY_VERIFY(!aReplies.isEmpty() && aReplies.last().lState == ClientReply::statFileDone);
    QCOMPARE(aReplies.last().abData, QByteArray("OK\r\nfields"));
    QFile file(Path(QStringLiteral("A1.tif")));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll() == content);
}

void tst_clsClientOverTcp::cutLongReplyIsPutTogether()
{
    client->GetUserList();
    TakeFromPeer(4);
    peer->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    const QByteArray frame = Frames::Long(1800) + QByteArray(1800, 'x');
    peer->write(frame.first(1448));
    QTRY_COMPARE(peer->bytesToWrite(), 0);
    QTest::qWait(20); // a read of its own at the client
    peer->write(frame.sliced(1448));
    QTRY_COMPARE(aReplies.size(), 1);
    QCOMPARE(aReplies.first().abData.size(), 1800);
}

QTEST_GUILESS_MAIN(tst_clsClientOverTcp)
#include "tst_clsClientOverTcp.moc"
