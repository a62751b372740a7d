#include "fakes/FakePorts.h"
#include "platform/DesktopShell.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

/// The programs that are started are small scripts that write down their folder and arguments.
class tst_DesktopShell : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void companionGetsItsArguments_data();
    void companionGetsItsArguments();
    void documentsGoToTheOpener_data();
    void documentsGoToTheOpener();
    void failuresAreBelow33();

private:
    void WriteFile(const QString &path, const QByteArray &text, bool executable);
    void WriteRecorder(const QString &path) { WriteFile(path, recorder, true); }
    /// First line the name of the program, second the working folder, then an argument each.
    QStringList Recorded() const;
    int Open(const QString &file, const QString &parameters = {}, const QString &working = {})
    {
        return DesktopShell(folders).Open(file, "Open", parameters, working, 4);
    }

    static constexpr char recorder[] = "#!/bin/sh\n"
                                       "{ basename \"$0\"; pwd; for a in \"$@\"; do echo \"$a\"; done; }"
                                       " >\"$RECORD.new\"\n"
                                       "mv \"$RECORD.new\" \"$RECORD\"\n";
    std::unique_ptr<QTemporaryDir> root;
    FakeFolders folders;
    QByteArray abOldPath;
};

void tst_DesktopShell::init()
{
    root = std::make_unique<QTemporaryDir>();
    folders.strRoot = root->path();
    QDir(root->path()).mkpath("program");
    QDir(root->path()).mkpath("path");
    WriteRecorder(root->filePath("program/Companion.exe"));
    WriteRecorder(root->filePath("path/xdg-open"));
    abOldPath = qgetenv("PATH");
    qputenv("PATH", root->filePath("path").toUtf8() + ":" + abOldPath);
    qputenv("RECORD", root->filePath("record").toUtf8());
}

void tst_DesktopShell::cleanup()
{
    qputenv("PATH", abOldPath);
}

void tst_DesktopShell::WriteFile(const QString &path, const QByteArray &text, bool executable)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(text);
    file.close();
    if (executable)
        file.setPermissions(file.permissions() | QFile::ExeOwner | QFile::ExeUser);
}

QStringList tst_DesktopShell::Recorded() const
{
    const QString path = root->filePath("record");
    if (!QTest::qWaitFor([&path] { return QFile::exists(path); }, 20000))
        return {};
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).chopped(1).split('\n')
                                          : QStringList();
}

void tst_DesktopShell::companionGetsItsArguments_data()
{
    QTest::addColumn<QString>("parameters");
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("none") << "" << QStringList{};
    QTest::newRow("path of the viewer") << "/Brenmot /srv/In Box/a \"b\" $(id);`id`.tif"
                                        << QStringList{"/Brenmot", "/srv/In Box/a \"b\" $(id);`id`.tif"};
    QTest::newRow("several") << "one \"two words\" three" << QStringList{"one", "two words", "three"};
}

void tst_DesktopShell::companionGetsItsArguments()
{
    QFETCH(QString, parameters);
    QFETCH(QStringList, arguments);
    QVERIFY(Open(folders.Program() + "/Companion.exe", parameters, root->filePath("path")) >= 33);
    const QStringList recorded = Recorded();
    QCOMPARE(recorded.value(0), "Companion.exe");
    QCOMPARE(QFileInfo(recorded.value(1)).canonicalFilePath(),
             QFileInfo(root->filePath("path")).canonicalFilePath());
    QCOMPARE(recorded.mid(2), arguments);
}

void tst_DesktopShell::documentsGoToTheOpener_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("executable, opened and not run") << "path/xdg-open";
    QTest::newRow("hard") << "my $(id) 'letter'; & \"x\".pdf";
    QTest::newRow("colon") << "http: a letter.txt";
    QTest::newRow("address") << "mailto:support@example.com?body=Version%201.0";
    QTest::newRow("in the program's folder") << "program/VelmarServer.CHM";
}

void tst_DesktopShell::documentsGoToTheOpener()
{
    QFETCH(QString, name);
    const bool isAddress = name.startsWith("mailto:");
    const QString target = isAddress ? name : root->filePath(name);
    if (!isAddress && !QFile::exists(target))
        WriteFile(target, "text", false);
    QVERIFY(Open(target) >= 33);
    const QStringList recorded = Recorded();
    QCOMPARE(recorded.value(0), "xdg-open");
    QCOMPARE(recorded.mid(2), QStringList{target});
}

void tst_DesktopShell::failuresAreBelow33()
{
    WriteFile(root->filePath("letter.pdf"), "text", false);
    QVERIFY(Open("") < 33);
    QVERIFY(Open(root->filePath("missing.pdf")) < 33);
    QVERIFY(Open(folders.Program() + "/Missing.exe") < 33);
    QVERIFY(Open("file:///etc/passwd") < 33);
    WriteFile(root->filePath("program/Broken.exe"), "#!/no/such/interpreter\n", true);
    QVERIFY(Open(folders.Program() + "/Broken.exe") < 33);
    qputenv("PATH", "/nowhere");
    QVERIFY(Open(root->filePath("letter.pdf")) < 33);
}

QTEST_GUILESS_MAIN(tst_DesktopShell)
#include "tst_DesktopShell.moc"
