#include "fakes/FakePorts.h"
#include "fixtures/Profile.h"
#include "platform/DesktopShell.h"

#include <QDir>
#include <QFile>
#include <QTest>

/// The programs that are started are small scripts that write down their folder and arguments.
class tst_DesktopShell : public QObject
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

    void argumentsAreNeverReadByAShell_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QStringList>("parameters");
        QTest::addColumn<QStringList>("started");
        const QString companion = root.filePath("program/Companion.exe"), hard = root.filePath(hardName);
        const QString opener = root.filePath("path/xdg-open"),
                      mail = "mailto:a@example.com?body=Version%201.0";
        QTest::newRow("viewer") << companion << QStringList{"/Brenmot", hard}
                                << QStringList{"Companion.exe", "/Brenmot", hard};
        QTest::newRow("several") << companion << QStringList{"one", "two words", "", "\"three\""}
                                 << QStringList{"Companion.exe", "one", "two words", "", "\"three\""};
        QTest::newRow("document") << hard << QStringList() << QStringList{"xdg-open", hard};
        QTest::newRow("foreign program, not run")
            << opener << QStringList() << QStringList{"xdg-open", opener};
        QTest::newRow("address") << mail << QStringList() << QStringList{"xdg-open", mail};
    }

    void argumentsAreNeverReadByAShell()
    {
        QFETCH(QString, file);
        QFETCH(QStringList, parameters);
        const QString record = root.filePath("record");
        QFile::remove(record);
        QVERIFY(Open(file, parameters) >= 33);
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(record), 20000);
        QStringList started = QString::fromUtf8(ReadTestFile(record)).chopped(1).split('\n');
        QCOMPARE(QFileInfo(started.takeAt(1)).canonicalFilePath(),
                 QFileInfo(root.path()).canonicalFilePath());
        QTEST(started, "started");
    }

    void failuresAreBelow33()
    {
        for (const QString &file : {QString(), root.filePath("missing.pdf"), QString("file:///etc/passwd"),
                                    root.filePath("program/Broken.exe")})
            QVERIFY2(Open(file) < 33, qPrintable(file));
        qputenv("PATH", "/nowhere");
        QVERIFY(Open(root.filePath(hardName)) < 33);
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

QTEST_GUILESS_MAIN(tst_DesktopShell)
#include "tst_DesktopShell.moc"
