#include "core/CSharedString.h"
#include "core/Globals.h"
#include "core/OutsideFile.h"
#include "core/RaisedError.h"
#include "core/Startup.h"
#include "fakes/FakePorts.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

class tst_Startup : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void argumentsBecomeOneText_data();
    void argumentsBecomeOneText();
    void withoutFileTheLoginIsShown();
    void fileIsKeptForAfterTheLogin();
    void missingFileEndsWithAWarning_data();
    void missingFileEndsWithAWarning();
    void secondCopyHandsItsFileOver();
    void duringTheLoginNobodyIsRaised();
    void missingSharedBlocksAreAnError();

private:
    Startup::Result Run(const QString &commandLine) { return Startup::Run(fakes->ports, commandLine); }
    QString Quoted(const QString &path) const { return '"' + path + '"'; }

    std::unique_ptr<FakePorts> fakes;
    std::unique_ptr<QTemporaryDir> root;
    QString strFax; ///< an existing file
};

void tst_Startup::init()
{
    Global() = Globals();
    fakes = std::make_unique<FakePorts>();
    root = std::make_unique<QTemporaryDir>();
    fakes->folders.strRoot = root->path();
    strFax = root->filePath("my fax.tif");
    QFile file(strFax);
    QVERIFY(file.open(QIODevice::WriteOnly));
}

void tst_Startup::argumentsBecomeOneText_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("commandLine");
    QTest::newRow("none") << QStringList{} << "";
    QTest::newRow("existing file") << QStringList{"<fax>"} << "\"<fax>\"";
    QTest::newRow("missing file") << QStringList{"/no/fax.tif"} << "/no/fax.tif";
    QTest::newRow("folder") << QStringList{"/"} << "/";
    QTest::newRow("file with its quotes") << QStringList{"\"<fax>\""} << "\"<fax>\"";
    QTest::newRow("several") << QStringList{"<fax>", "b"} << "<fax> b";
}

void tst_Startup::argumentsBecomeOneText()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, commandLine);
    arguments.replaceInStrings("<fax>", strFax);
    QCOMPARE(Startup::CommandLine(arguments), commandLine.replace("<fax>", strFax));
}

void tst_Startup::withoutFileTheLoginIsShown()
{
    QCOMPARE(Run(""), Startup::Result::ShowLogin);
    QCOMPARE(Global().strAppDataPath, root->path() + "/common/Velmar/");
    QCOMPARE(Global().strIniFile, root->path() + "/common/Velmar/FaxSetup.ini");
    QCOMPARE(Global().strFaxFileToOpen, "");
    QCOMPARE(fakes->instance.aLocks.size(), 1);
}

void tst_Startup::fileIsKeptForAfterTheLogin()
{
    QCOMPARE(Run(Quoted(strFax)), Startup::Result::ShowLogin);
    QCOMPARE(Global().strFaxFileToOpen, strFax);
    // The main window must not find it a second time.
    OutsideFile mainWindow(fakes->blocks, fakes->instance);
    QCOMPARE(mainWindow.Take(1), "");
}

void tst_Startup::missingFileEndsWithAWarning_data()
{
    QTest::addColumn<QString>("commandLine");
    QTest::newRow("one character") << "x";
    QTest::newRow("quotes only") << "\"\"";
    QTest::newRow("missing") << "\"/no/fax.tif\"";
    QTest::newRow("folder") << "\"<folder>\"";
    QTest::newRow("unquoted") << "<fax>";
    QTest::newRow("last quote missing") << "\"<fax>";
}

void tst_Startup::missingFileEndsWithAWarning()
{
    QFETCH(QString, commandLine);
    commandLine.replace("<fax>", strFax).replace("<folder>", root->path());
    QCOMPARE(Run(commandLine), Startup::Result::EndWithMessage);
    QCOMPARE(fakes->prompts.Texts(), QStringList{"The Fax file does not exist."});
    QCOMPARE(fakes->prompts.aBoxes.first().lFlags, long(mbExclamation));
    QCOMPARE(fakes->instance.aLocks.size(), 0);
}

void tst_Startup::secondCopyHandsItsFileOver()
{
    OutsideFile mainWindow(fakes->blocks, fakes->instance);
    fakes->instance.bFirst = false;
    QCOMPARE(Run("\"/no/fax.tif\""), Startup::Result::EndWithMessage);
    QCOMPARE(mainWindow.Take(1), "");
    QCOMPARE(fakes->instance.aRaised, QList<qlonglong>());

    const QString later = root->filePath("b.tif");
    QVERIFY(QFile::copy(strFax, later));
    QCOMPARE(Run(Quoted(strFax)), Startup::Result::HandedOver);
    QCOMPARE(Run(Quoted(QDir::current().relativeFilePath(later))), Startup::Result::HandedOver);
    QCOMPARE(fakes->instance.aRaised, QList<qlonglong>(2, fakes->instance.PublishWindow()));
    QCOMPARE(mainWindow.Take(2), ""); // it waits for other windows to close
    QCOMPARE(mainWindow.Take(1), later);
    QCOMPARE(mainWindow.Take(1), ""); // once
    QCOMPARE(Global().strAppDataPath, "");
}

void tst_Startup::duringTheLoginNobodyIsRaised()
{
    fakes->instance.bFirst = false;
    QCOMPARE(Run(""), Startup::Result::HandedOver);
    CSharedString handle;
    handle.Create(fakes->blocks, "strProcessHandle");
    handle.SetItem("no number");
    QCOMPARE(Run(""), Startup::Result::HandedOver);
    QCOMPARE(fakes->instance.aRaised, QList<qlonglong>({0, 0}));
}

void tst_Startup::missingSharedBlocksAreAnError()
{
    fakes->blocks.lFailure = 13;
    QVERIFY_THROWS_EXCEPTION(RaisedError, Run(""));
}

QTEST_GUILESS_MAIN(tst_Startup)
#include "tst_Startup.moc"
