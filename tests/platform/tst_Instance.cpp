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
    void initTestCase() { qputenv("XDG_RUNTIME_DIR", runtime.path().toUtf8()); }

    void oneProcessHasTheLockUntilItEnds()
    {
        SystemInstance instance;
        QVERIFY(instance.TakeLock("A title"));
        PeerProcess second({"lock", "A title"});
        QCOMPARE(second.NextLine(), "busy");
        PeerProcess holder({"lock", "Another title"});
        QCOMPARE(holder.NextLine(), "taken");
        QVERIFY(!instance.TakeLock("Another title"));
        QVERIFY(holder.Kill());
        QVERIFY(instance.TakeLock("Another title"));
    }

    void anotherCopyRaisesThisWindowAndStrangersDoNot()
    {
        SystemInstance instance;
        QSignalSpy raised(&instance, &Instance::RaiseRequested);
        const qlonglong window = instance.PublishWindow();
        for (const qlonglong unknown : {0LL, -1LL, 1LL, 99'999'999LL})
            instance.RaiseWindow(unknown);
        for (const char *request : {"", "rai", "lower\n", "raise raise raise\n"}) {
            QLocalSocket channel;
            channel.setSocketOptions(QLocalSocket::AbstractNamespaceOption);
            channel.connectToServer(QString("velmar.%1.%2").arg(geteuid()).arg(getpid()));
            QCOMPARE(channel.state(), QLocalSocket::ConnectedState);
            channel.write(request);
            channel.flush();
        }
        PeerProcess second({"raise", QString::number(window)});
        QVERIFY(second.Leave()); // it does not wait for our loop
        QTRY_COMPARE(raised.size(), 1);
        QCoreApplication::processEvents();
        QCOMPARE(raised.size(), 1);
    }

private:
    QTemporaryDir runtime;
};

QTEST_GUILESS_MAIN(tst_Instance)
#include "tst_Instance.moc"
