#include "fakes/FakePorts.h"
#include "fixtures/Profile.h"
#include "platform/CanberraSound.h"
#include "platform/DesktopShell.h"
#include "platform/SystemFolders.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTest>

/// Folders, sound, and the programs that are started: small scripts that write down folder and arguments.
class tst_SystemServices : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        folders.strRoot = root.path();
        WriteProgram("program/Companion.exe", recorder);
        WriteProgram("program/Broken.exe", "#!/no/such/interpreter\n");
        WriteProgram("path/xdg-open", recorder);
        QVERIFY(WriteTestFile(root.filePath(hardName), "text"));
        qputenv("PATH", root.filePath("path").toUtf8() + ":" + qgetenv("PATH"));
        qputenv("RECORD", root.filePath("record").toUtf8());
    }

    void argumentsAreNeverReadByAShell()
    {
        const QString companion = root.filePath("program/Companion.exe"), hard = root.filePath(hardName);
        const QString opener = root.filePath("path/xdg-open"), record = root.filePath("record");
        const QString mail = "mailto:a@example.com?body=Version%201.0";
        // What is opened, with which parameters, and which program then runs.
        const std::tuple<QString, QStringList, QString> rows[] = {
            {companion, {"/Brenmot", hard}, "Companion.exe"},
            {companion, {"one", "two words", "", "\"three\""}, "Companion.exe"},
            {hard, {}, "xdg-open"},
            {opener, {}, "xdg-open"}, // a foreign program is not run
            {mail, {}, "xdg-open"}};
        for (const auto &[file, parameters, program] : rows) {
            QFile::remove(record);
            QVERIFY(Open(file, parameters) >= 33);
            QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(record), 20000);
            QStringList started = QString::fromUtf8(ReadTestFile(record)).chopped(1).split('\n');
            QCOMPARE(QFileInfo(started.takeAt(1)).canonicalFilePath(),
                     QFileInfo(root.path()).canonicalFilePath());
            QCOMPARE(started, QStringList(program) + (file == companion ? parameters : QStringList(file)));
        }
    }

    void failuresAreBelow33()
    {
        for (const QString &file : {QString(), root.filePath("missing.pdf"), QString("file:///etc/passwd"),
                                    root.filePath("program/Broken.exe")})
            QVERIFY2(Open(file) < 33, qPrintable(file));
        qputenv("PATH", "/nowhere");
        QVERIFY(Open(root.filePath(hardName)) < 33);
    }

    void foldersFollowTheEnvironment()
    {
        qputenv("XDG_DATA_HOME", "/srv/data/");
        qputenv("XDG_CONFIG_HOME", "/srv/config");
        qunsetenv("VELMAR_DATA_HOME");
        QCOMPARE(SystemFolders().CommonAppData(), "/srv/data");
        QCOMPARE(SystemFolders().UserAppData(), "/srv/config");
        qputenv("VELMAR_DATA_HOME", "/srv/velmar//common/");
        QCOMPARE(SystemFolders().CommonAppData(), "/srv/velmar/common");
    }

    void soundWithoutDeviceNeitherBlocksNorFails()
    {
        const QString noise = root.filePath("noise.wav");
        QVERIFY(WriteTestFile(noise, "no sound at all"));
        QElapsedTimer passed;
        passed.start();
        CanberraSound sound;
        sound.Play(root.filePath("missing.wav"));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("noise.wav was not played"));
        sound.Play(noise);
        QVERIFY2(passed.elapsed() < 5000, qPrintable(QString::number(passed.elapsed())));
    }

private:
    void WriteProgram(const QString &name, const QByteArray &text)
    {
        const QString path = root.filePath(name);
        QVERIFY(QDir().mkpath(QFileInfo(path).path()) && WriteTestFile(path, text));
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }
    int Open(const QString &file, const QStringList &parameters = {})
    {
        return DesktopShell(folders).Open(file, "Open", parameters, root.path(), 4);
    }

    static constexpr char hardName[] = "a: $(id) 'letter';`id` & \"x\".pdf";
    /// First line the name of the program, second the working folder, then an argument each.
    static constexpr char recorder[] = "#!/bin/sh\n"
                                       "{ basename \"$0\"; pwd; for a in \"$@\"; do echo \"$a\"; done; }"
                                       " >\"$RECORD.new\"\n"
                                       "mv \"$RECORD.new\" \"$RECORD\"\n";
    QTemporaryDir root;
    FakeFolders folders;
};

QTEST_GUILESS_MAIN(tst_SystemServices)
#include "tst_SystemServices.moc"
