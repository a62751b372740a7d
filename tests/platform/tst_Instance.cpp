#include "PeerProcess.h"
#include "platform/SystemInstance.h"

#include <QLocalSocket>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

class tst_Instance : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void oneProcessHasTheLock();
    void killedHolderFreesTheLock();
    void anotherCopyRaisesThisWindow();
    void thisCopyRaisesAnother();
    void unknownWindowsAreNobody();
    void strangeRequestsAreIgnored();
    void otherUsersAreNotObeyed();

private:
    static QString OwnChannel() { return QString("velmar.%1.%2").arg(geteuid()).arg(getpid()); }

    QTemporaryDir runtime;
};

void tst_Instance::initTestCase()
{
    qputenv("XDG_RUNTIME_DIR", runtime.path().toUtf8());
}

void tst_Instance::oneProcessHasTheLock()
{
    SystemInstance instance;
    QVERIFY(instance.TakeLock("A title"));
    QVERIFY(instance.TakeLock("A title"));
    PeerProcess second({"lock", "A title"});
    QCOMPARE(second.NextLine(), "busy");
    PeerProcess other({"lock", "Another title"});
    QCOMPARE(other.NextLine(), "taken");
}

void tst_Instance::killedHolderFreesTheLock()
{
    PeerProcess holder({"lock", "killed"});
    QCOMPARE(holder.NextLine(), "taken");
    SystemInstance instance;
    QVERIFY(!instance.TakeLock("killed"));
    QVERIFY(holder.Kill());
    QVERIFY(instance.TakeLock("killed"));
}

void tst_Instance::anotherCopyRaisesThisWindow()
{
    SystemInstance instance;
    QSignalSpy raised(&instance, &Instance::RaiseRequested);
    const qlonglong window = instance.PublishWindow();
    QVERIFY(window > 0);
    QCOMPARE(instance.PublishWindow(), window);
    PeerProcess second({"raise", QString::number(window)});
    QVERIFY(second.Leave()); // it does not wait for our loop
    QTRY_COMPARE(raised.size(), 1);
}

void tst_Instance::thisCopyRaisesAnother()
{
    PeerProcess first({"publish"});
    const qlonglong window = first.NextLine().toLongLong();
    QVERIFY(window > 0);
    SystemInstance().RaiseWindow(window);
    QCOMPARE(first.NextLine(), "raised");
    QVERIFY(first.Leave());
}

void tst_Instance::unknownWindowsAreNobody()
{
    SystemInstance instance;
    QSignalSpy raised(&instance, &Instance::RaiseRequested);
    instance.PublishWindow();
    for (const qlonglong window : {0LL, -1LL, 1LL, 99'999'999LL})
        instance.RaiseWindow(window);
    QCoreApplication::processEvents();
    QCOMPARE(raised.size(), 0);
}

void tst_Instance::strangeRequestsAreIgnored()
{
    SystemInstance instance;
    QSignalSpy raised(&instance, &Instance::RaiseRequested);
    const qlonglong window = instance.PublishWindow();
    for (const char *request : {"", "rai", "lower\n", "raise raise raise\n"}) {
        QLocalSocket channel;
        channel.setSocketOptions(QLocalSocket::AbstractNamespaceOption);
        channel.connectToServer(OwnChannel());
        QCOMPARE(channel.state(), QLocalSocket::ConnectedState);
        channel.write(request);
        channel.flush();
    }
    instance.RaiseWindow(window); // arrives behind them all
    QTRY_COMPARE(raised.size(), 1);
}

void tst_Instance::otherUsersAreNotObeyed()
{
    if (geteuid() != 0)
        QSKIP("only root can act as another user");
    SystemInstance instance;
    QSignalSpy raised(&instance, &Instance::RaiseRequested);
    const qlonglong window = instance.PublishWindow();
    PeerProcess foreigner({"foreign", OwnChannel()});
    QVERIFY(foreigner.Leave());
    instance.RaiseWindow(window); // arrives behind the foreigner
    QTRY_COMPARE(raised.size(), 1);
    QCoreApplication::processEvents();
    QCOMPARE(raised.size(), 1);
}

QTEST_GUILESS_MAIN(tst_Instance)
#include "tst_Instance.moc"
