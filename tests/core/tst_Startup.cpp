#include "core/CSharedString.h"
#include "core/Globals.h"
#include "core/OutsideFile.h"
#include "core/RaisedError.h"
#include "core/Startup.h"
#include "core/ports/SharedBlock.h"
#include "fakes/FakePorts.h"
#include "fixtures/Profile.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <cstring>

namespace {

constexpr int blockSize = 65535;

template <typename Action>
long NumberRaisedBy(Action action)
{
    try {
        action();
    } catch (const RaisedError &error) {
        return error.Number();
    }
    return 0;
}

} // namespace

/// The command line, a second copy, and the shared text that hands things over.
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
        QVERIFY(WriteTestFile(strFax, "fax"));
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

    void blockHoldsLengthAndText()
    {
        CSharedString writer, reader;
        writer.Create(fakes->blocks, "name");
        reader.Create(fakes->blocks, "name");
        writer.SetItem("closewindow");
        writer.SetItem(QStringLiteral(u"\u00e4b"));
        QCOMPARE(reader.Item(), QStringLiteral(u"\u00e4b"));
        int errorCode = 0;
        const auto block = fakes->blocks.Open("name", blockSize, errorCode);
        QCOMPARE(block->Size(), blockSize);
        QCOMPARE(QByteArray(block->Bytes(), 7), QByteArray("\3\0\0\0\xc3\xa4\x62", 7));
        QCOMPARE(block->Bytes()[7], '\0');
        writer.SetItem("");
        QCOMPARE(reader.Item(), QString());
        writer.SetItem(QStringLiteral("ab\0cd"));
        QCOMPARE(reader.Item(), QString("ab"));
    }

    void tornBlockIsReadSafely()
    {
        int errorCode = 0;
        const auto block = fakes->blocks.Open("name", blockSize, errorCode);
        CSharedString string;
        string.Create(fakes->blocks, "name");
        const auto lengthOf = [&](const QByteArray &start, char fill) {
            std::memset(block->Bytes(), fill, blockSize);
            std::memcpy(block->Bytes(), start.constData(), 4);
            return static_cast<int>(string.Item().size());
        };
        QCOMPARE(lengthOf("\xff\xff\xff\xff", 'x'), 0);             // negative length
        QCOMPARE(lengthOf("\xff\xff\xff\x7f", 'x'), blockSize - 4); // beyond the block, no NUL
        QCOMPARE(lengthOf(QByteArray("\x10\0\0\0", 4), '\0'), 0);   // no text behind a length
    }

    void textBeyondTheBlockIsRefusedAndChangesNothing()
    {
        CSharedString string;
        string.Create(fakes->blocks, "name");
        const QString longest(blockSize - 5, 'x');
        string.SetItem(longest);
        QCOMPARE(string.Item(), longest);
        QCOMPARE(NumberRaisedBy([&] { string.SetItem(longest + 'y'); }), 14L);
        QCOMPARE(NumberRaisedBy([&] { string.SetItem(QString(blockSize / 2, QChar(0xe4))); }), 14L);
        QCOMPARE(string.Item(), longest);
    }

    void misuseAndFailureAreRaised()
    {
        constexpr long systemErrors = 2147745792L;
        CSharedString string;
        QCOMPARE(NumberRaisedBy([&] { string.Item(); }), 13L);
        QCOMPARE(NumberRaisedBy([&] { string.Create(fakes->blocks, ""); }), systemErrors + 160);
        fakes->blocks.lFailure = EACCES;
        QCOMPARE(NumberRaisedBy([&] { string.Create(fakes->blocks, "name"); }), systemErrors + EACCES);
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
