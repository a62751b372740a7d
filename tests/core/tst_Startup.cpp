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
    void init()
    {
        Global() = Globals();
        fakes = std::make_unique<FakePorts>();
        root = std::make_unique<QTemporaryDir>();
        fakes->folders.strRoot = root->path();
        strFax = root->filePath("my fax.tif");
        QFile file(strFax);
        QVERIFY(file.open(QIODevice::WriteOnly));
    }

    void fileIsKeptForAfterTheLogin()
    {
        QCOMPARE(Run(Startup::CommandLine({strFax})), Startup::Result::ShowLogin);
        QCOMPARE(Global().strFaxFileToOpen, strFax);
        // The main window must not find it a second time.
        OutsideFile mainWindow(fakes->blocks, fakes->instance);
        QCOMPARE(mainWindow.Take(1), "");
    }

    void missingFileEndsWithAWarning()
    {
        const QStringList lines{"x", "\"\"", "/no/fax.tif", Quoted(root->path()), strFax, '"' + strFax};
        for (const QString &line : lines)
            QVERIFY2(Run(line) == Startup::Result::EndWithMessage, qPrintable(line));
        QCOMPARE(fakes->prompts.Texts(), QStringList(lines.size(), "The Fax file does not exist."));
        QCOMPARE(fakes->instance.aLocks.size(), 0);
    }

    void secondCopyHandsItsFileOver()
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

    void missingSharedBlocksAreAnError()
    {
        fakes->blocks.lFailure = 13;
        QVERIFY_THROWS_EXCEPTION(RaisedError, Run(""));
    }

private:
    Startup::Result Run(const QString &commandLine) { return Startup::Run(fakes->ports, commandLine); }
    QString Quoted(const QString &path) const { return '"' + path + '"'; }

    std::unique_ptr<FakePorts> fakes;
    std::unique_ptr<QTemporaryDir> root;
    QString strFax; ///< an existing file
};

QTEST_GUILESS_MAIN(tst_Startup)
#include "tst_Startup.moc"
