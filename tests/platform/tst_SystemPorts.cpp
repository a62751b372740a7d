#include "core/ports/Folders.h"
#include "core/ports/Sound.h"
#include "fixtures/Profile.h"
#include "platform/SystemPorts.h"

#include <QElapsedTimer>
#include <QTest>

class tst_SystemPorts : public QObject
{
    Q_OBJECT

private slots:
    void foldersFollowTheEnvironment()
    {
        qputenv("XDG_DATA_HOME", "/srv/data/");
        qputenv("XDG_CONFIG_HOME", "/srv/config");
        qunsetenv("VELMAR_DATA_HOME");
        QCOMPARE(ports.folders.CommonAppData(), "/srv/data");
        QCOMPARE(ports.folders.UserAppData(), "/srv/config");
        qputenv("VELMAR_DATA_HOME", "/srv/velmar//common/");
        QCOMPARE(ports.folders.CommonAppData(), "/srv/velmar/common");
    }

    void soundWithoutDeviceNeitherBlocksNorFails()
    {
        const QTemporaryDir folder;
        const QString noise = folder.filePath("noise.wav");
        QVERIFY(WriteTestFile(noise, "no sound at all"));
        QElapsedTimer passed;
        passed.start();
        ports.sound.Play(folder.filePath("missing.wav"));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("noise.wav was not played"));
        ports.sound.Play(noise);
        QVERIFY2(passed.elapsed() < 5000, qPrintable(QString::number(passed.elapsed())));
    }

private:
    SystemPorts system;
    Ports &ports = system.Get();
};

QTEST_MAIN(tst_SystemPorts)
#include "tst_SystemPorts.moc"
