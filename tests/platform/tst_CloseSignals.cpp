#include "PeerProcess.h"

#include <QTest>

#include <csignal>

class tst_CloseSignals : public QObject
{
    Q_OBJECT

private slots:
    void signalledProcessEndsInOrder_data();
    void signalledProcessEndsInOrder();
};

void tst_CloseSignals::signalledProcessEndsInOrder_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("end") << SIGTERM;
    QTest::newRow("interrupt") << SIGINT;
}

void tst_CloseSignals::signalledProcessEndsInOrder()
{
    QFETCH(int, signal);
    PeerProcess peer({"close"});
    QCOMPARE(peer.NextLine(), "ready");
    QCOMPARE(kill(static_cast<pid_t>(peer.processId()), signal), 0);
    QCOMPARE(peer.NextLine(), "closing");
    QVERIFY(peer.waitForFinished());
    QCOMPARE(peer.exitStatus(), QProcess::NormalExit);
    QCOMPARE(peer.exitCode(), 0);
}

QTEST_GUILESS_MAIN(tst_CloseSignals)
#include "tst_CloseSignals.moc"
