#include "core/ports/Folders.h"
#include "core/ports/Sound.h"
#include "platform/SystemPorts.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class tst_SystemPorts : public QObject
{
    Q_OBJECT

private slots:
    void foldersFollowTheEnvironment();
    void soundWithoutDeviceNeitherBlocksNorFails();

private:
    SystemPorts system;
    Ports &ports = system.Get();
};

void tst_SystemPorts::foldersFollowTheEnvironment()
{
    qputenv("XDG_DATA_HOME", "/srv/data/");
    qputenv("XDG_CONFIG_HOME", "/srv/config");
    qunsetenv("VELMAR_DATA_HOME");
    QCOMPARE(ports.folders.CommonAppData(), "/srv/data");
    QCOMPARE(ports.folders.UserAppData(), "/srv/config");
    qputenv("VELMAR_DATA_HOME", "/srv/velmar//common/");
    QCOMPARE(ports.folders.CommonAppData(), "/srv/velmar/common");
    QCOMPARE(ports.folders.Program(), QCoreApplication::applicationDirPath());
}

void tst_SystemPorts::soundWithoutDeviceNeitherBlocksNorFails()
{
    QTemporaryDir folder;
    QFile noise(folder.filePath("noise.wav"));
    QVERIFY(noise.open(QIODevice::WriteOnly));
    noise.write("no sound at all");
    noise.close();
    QElapsedTimer passed;
    passed.start();
    ports.sound.Play(folder.filePath("missing.wav"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("noise.wav was not played"));
    ports.sound.Play(noise.fileName());
    QVERIFY2(passed.elapsed() < 5000, qPrintable(QString::number(passed.elapsed())));
}

QTEST_MAIN(tst_SystemPorts)
#include "tst_SystemPorts.moc"
