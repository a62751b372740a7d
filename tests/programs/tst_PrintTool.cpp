#include "PrintToolTest.h"
#include "core/FaxImage.h"
#include "core/PrinterProgress.h"
#include "core/Utilities.h"
#include "fixtures/FaxFile.h"
#include "fixtures/SmallDisk.h"
#include "fixtures/StoredPages.h"
#include "fixtures/TestTable.h"

#include <QDir>
#include <QImage>
#include <QRegularExpression>

#include <csignal>
#include <iostream>

#include <sys/stat.h>

namespace {

/// What this program does as a second process: a client that asks for a fax and waits.
int ActAsClient(const QStringList &arguments)
{
    SystemSharedBlocks blocks;
    CSharedString shared;
    shared.Create(blocks, PrintConversation::SharedName);
    shared.SetItem(QString::fromUtf8(QByteArray::fromHex(arguments.value(2).toLatin1())));
    std::cout << "asked" << std::endl;
    std::cin.get();
    return 0;
}

/// True when every page is Group 4 in one strip with 1 for black, and of that size and resolution.
bool ArePages(const QString &path, int count, const QSize &size, int dotsPerInchY)
{
    const QList<StoredPage> pages = ReadStoredPages(path);
    return pages.size() == count && std::all_of(pages.begin(), pages.end(), [&](const StoredPage &page) {
               return page.size == size && page.dotsPerInch == QSizeF(204, dotsPerInchY) &&
                      page.lCompression == COMPRESSION_CCITTFAX4 &&
                      page.lPhotometric == PHOTOMETRIC_MINISWHITE && page.lStrips == 1 &&
                      page.lFillOrder == FILLORDER_MSB2LSB;
           });
}

} // namespace

/// The print tool's side of the conversation, and its command line. No client takes part.
class tst_PrintTool final : public QObject
{
    Q_OBJECT

private slots:
    void init() { desk = std::make_unique<PrintDesk>(); }
    void cleanup() { desk.reset(); }

    void documentsBecomeOneFax_data()
    {
        const TestTable<int, int, int> row{"resolve", "height", "dotsPerInch"};
        row("standard", 0, 1146, 98);
        row("fine", 1, 2292, 196);
        row("an option of later times", 7, 1146, 98);
    }

    void documentsBecomeOneFax()
    {
        QFETCH(int, height);
        QFETCH(int, dotsPerInch);
        const QString ready = desk->Path("docs/ready.tif");
        QVERIFY((FaxFile{.lPages = 2, .lHeight = height, .lDotsPerInchY = dotsPerInch}.Write(ready)));
        PrintRequest request =
            desk->RequestFor({desk->WritePdf("letter.pdf", 3), "*" + ready, WritePicture("picture.png")});
        QFETCH(int, resolve);
        request.lResolution = resolve;
        desk->Ask(request);
        PrintTool tool(*desk);
        QVERIFY(desk->Serve(tool));
        QCOMPARE(tool.exitCode(), 0);
        QCOMPARE(desk->Progress(), int(printerIdle));
        const QString fax = Fax();
        QCOMPARE(desk->OutBox(), QStringList{GetBareName(fax)});
        QVERIFY(ArePages(fax, 6, {1728, height}, dotsPerInch));
        QVERIFY(HasInk(fax, 2, {1728 * 110 / 595, height / 7, 100, 20})); // where the letter has its bar
        QVERIFY(HasInk(fax, 3, {16, 16, 64, 16}));                        // the ready page's box
        QVERIFY(!HasInk(fax, 3, {200, 16, 1500, 16}));
        QVERIFY(HasInk(fax, 5, {800, height / 3, 100, 100}));
        // What the user has seen meanwhile
        QVERIFY(!desk->aStatuses.filter(QRegularExpression("letter.pdf .page \\d+ of 3; document 1 of 3"))
                     .isEmpty());
        QVERIFY(desk->aStatuses.filter(",").isEmpty());
    }

    void nameOfADocumentSteersNothing()
    {
        desk->Ask({desk->WritePdf(QStringLiteral(u"it failed., really\u202e.pdf"), 1)});
        PrintTool tool(*desk);
        QVERIFY(desk->Serve(tool));
        QVERIFY(!desk->aStatuses.isEmpty());
        for (const QString &status : desk->aStatuses)
            QVERIFY2(!status.contains(QRegularExpression("failed\\.|,|\\x{202e}")), qPrintable(status));
        QVERIFY(ArePages(Fax(), 1, {1728, 2292}, 196));
    }

    void headerIsDrawnOrMissed()
    {
        const QByteArray profile = "[HeaderLeft_1]\r\nText=[Recipients] 1234567890\r\nFontSize=12\r\n";
        QVERIFY(desk->WriteFile("../Anna/Header/mine.gni", profile).size() > 0);
        PrintRequest request = desk->RequestFor({desk->WritePdf("letter.pdf", 1)});
        request.strHeader = "Mine";
        request.strRecipients = "WWWWWWWW";
        desk->Ask(request);
        PrintTool tool(*desk);
        QVERIFY(desk->Serve(tool));
        QVERIFY(HasInk(Fax(), 0, {0, 0, 900, 120}));
        request.strHeader = "*General"; // the program's own, since the user has none
        desk->Ask(request);
        QVERIFY(desk->Serve(tool));
        QVERIFY(HasInk(Fax(), 0, {0, 0, 1728, 120}));
        for (const char *missing : {"Yours", "../Header/mine", "*Mine", "<New Profile...>"}) {
            request.strHeader = missing;
            desk->Ask(request);
            QVERIFY(desk->Serve(tool));
            QVERIFY2(desk->strFinal.contains("failed.") && desk->strFinal.contains(missing),
                     qPrintable(desk->strFinal));
        }
        QCOMPARE(desk->OutBox().size(), 2);
    }

    void everyFailedDocumentIsNamed()
    {
        desk->Ask({desk->Path("docs/missing.pdf"), desk->WritePdf("good.pdf", 1),
                   desk->WriteFile("broken.pdf", "%PDF-1.4 rubbish"),
                   "*" + desk->WriteFile("none.tif", "II*")});
        PrintTool tool(*desk);
        QVERIFY(desk->Serve(tool));
        QCOMPARE(tool.exitCode(), 1);
        QCOMPARE(desk->Progress(), int(printerFailed));
        for (const char *name : {"missing.pdf failed. ", "broken.pdf failed. ", "none.tif failed. "})
            QVERIFY2(desk->strFinal.contains(name), qPrintable(desk->strFinal));
        QVERIFY(!desk->strFinal.contains("good.pdf") && !desk->strFinal.contains(','));
        QVERIFY(desk->IsClean());
    }

    void textThatIsNoRequestIsAnError()
    {
        for (const char *text : {"", "\x02\x02\xff|*|\x02 0 0 0", "/a.pdf|\x02/home"}) {
            desk->shared->SetItem(QString::fromUtf8(text));
            PrintTool tool(*desk);
            QVERIFY(desk->Serve(tool));
            QCOMPARE(desk->strFinal, "Error");
            QCOMPARE(desk->Progress(), int(printerFailed));
            QVERIFY(desk->IsClean());
        }
    }

    void stopIsObeyedAtOnce_data()
    {
        const TestTable<bool> row{"office"};
        row("in the middle of a page", false);
        row("in the middle of the office program", true);
    }

    void stopIsObeyedAtOnce()
    {
        QFETCH(bool, office);
        desk->Ask({office ? desk->WriteFile("long.txt", "Line\n") : desk->WriteSlowPdf("slow.pdf")});
        PrintTool tool(*desk);
        tool.Start();
        QTRY_COMPARE(desk->Progress(), int(printerBusy));
        QTRY_VERIFY(office ? desk->HasProcess("--headless")
                           : desk->shared->Item().contains("slow.pdf (page 1"));
        desk->shared->SetItem(PrintConversation::StopRequest);
        QVERIFY(EndsSoon(tool));
        QCOMPARE(desk->shared->Item(), PrintConversation::StopRequest);
        QCOMPARE(desk->Progress(), int(printerIdle));
        QTRY_VERIFY_WITH_TIMEOUT(desk->IsClean(), 500); // the system buries a killed process by and by
    }

    void toolEndsAfterItsKilledClient()
    {
        const QString request = desk->RequestFor({desk->WriteSlowPdf("slow.pdf")}).Pack();
        desk->shared.reset();
        QProcess client;
        client.start(QCoreApplication::applicationFilePath(), {"client", request.toUtf8().toHex()});
        QVERIFY(client.waitForReadyRead());
        PrintTool tool(*desk);
        tool.Start();
        QTRY_COMPARE(desk->Progress(), int(printerBusy));
        QVERIFY(!tool.waitForFinished(500));
        client.kill();
        client.waitForFinished();
        QVERIFY(EndsSoon(tool));
        QCOMPARE(desk->Progress(), int(printerIdle));
        QVERIFY(desk->IsClean());
        QVERIFY(!QFile::exists(desk->Path("run/velmar.TestSharestrPrinterStateing")));
    }

    void killedToolLeavesNothing()
    {
        desk->Ask({desk->WriteFile("long.txt", "Line\n")});
        PrintTool killed(*desk), next(*desk);
        killed.Start();
        QTRY_VERIFY_WITH_TIMEOUT(desk->HasProcess("--headless"), 10'000);
        killed.kill();
        QTRY_VERIFY(!desk->HasProcess(""));
        const QDir left(desk->Path("tmp"));
        QVERIFY(!left.entryList({"velmar-print-*"}).isEmpty());
        desk->Ask({desk->WriteFile("broken.rtf", "{\\rtf1 No end")});
        QVERIFY(desk->Serve(next));
        QCOMPARE(left.entryList({"velmar-print-*"}), QStringList());
    }

    void laterRequestSilencesTheEarlier()
    {
        desk->Ask({desk->WriteSlowPdf("slow.pdf")});
        PrintTool earlier(*desk), later(*desk);
        earlier.Start();
        QTRY_VERIFY(desk->shared->Item().contains("slow.pdf (page"));
        desk->Ask({desk->WritePdf("letter.pdf", 1)});
        QVERIFY(desk->Serve(later));
        QVERIFY(earlier.state() == QProcess::NotRunning || earlier.waitForFinished(2000));
        QVERIFY2(ArePages(Fax(), 1, {1728, 2292}, 196), qPrintable(desk->strFinal));
        QCOMPARE(desk->OutBox().size(), 1);
        QCOMPARE(desk->Progress(), int(printerIdle));
        QVERIFY(desk->aStatuses.filter("slow").isEmpty());
    }

    void faxThatCannotBeWrittenIsTold_data()
    {
        const TestTable<QString, QString> row{"obstacle", "told"};
        row("more pages than a fax may have", "bounds", "5003");
        row("folder that takes no file", "folder", "OutputBox");
        row("full disk", "disk", "failed.");
    }

    void faxThatCannotBeWrittenIsTold()
    {
        QFETCH(QString, obstacle);
        const QString noise = desk->Path("docs/noise.tif");
        QVERIFY(FaxFile{.bNoise = true}.Write(noise));
        desk->Ask({"*" + noise, desk->WritePdf("letter.pdf", obstacle == "bounds" ? 5002 : 1)});
        PrintTool tool(*desk);
        if (obstacle == "folder") {
            QVERIFY(QDir(desk->Path("Anna/OutputBox")).removeRecursively());
            QVERIFY(QFile::link("/proc", desk->Path("Anna/OutputBox")));
        } else if (obstacle == "disk") {
            tool.setChildProcessModifier([] { static const SmallDisk disk(100000); });
        }
        QVERIFY(desk->Serve(tool));
        QFETCH(QString, told);
        QVERIFY2(desk->strFinal.contains("failed.") && desk->strFinal.contains(told),
                 qPrintable(desk->strFinal));
        QCOMPARE(desk->Progress(), int(printerFailed));
        QVERIFY(obstacle == "folder" || desk->IsClean());
    }

    void shellGetsTheSameFax()
    {
        const QString fax = desk->Path("docs/fax.tif"), letter = desk->WritePdf("letter.pdf", 2);
        QCOMPARE(RunInShell({"--out", fax, "--standard", letter, WritePicture("picture.png")}), 0);
        QVERIFY(ArePages(fax, 3, {1728, 1146}, 98));
        const QString missing = desk->Path("docs/missing.pdf");
        QCOMPARE(RunInShell({"--out", fax, missing}), 1);
        QVERIFY(ArePages(fax, 3, {1728, 1146}, 98)); // the one from before
        const QString pipe = desk->Path("pipe");
        QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        for (const QStringList &senseless : {QStringList{letter},
                                             {"--out", fax},
                                             {"--out", fax, "--threshold", "256", letter},
                                             {"--oops", letter},
                                             {"--out", fax, "--fitting", "tight", letter},
                                             {"--out", desk->Path("docs"), letter},
                                             {"--out", pipe, letter}})
            QCOMPARE(RunInShell(senseless), 2);
        QVERIFY(QFile::exists(pipe) && !QFileInfo(pipe).isFile()); // a device would be lost
        QVERIFY(desk->shared->Item().isEmpty());
        desk->shared.reset(); // nobody asks
        PrintTool tool(*desk);
        tool.Start();
        QVERIFY(tool.waitForFinished());
        QCOMPARE(tool.exitCode(), 2);
        QVERIFY(tool.Errors().contains("--help"));
        QVERIFY(desk->IsClean() && QDir(desk->Path("config")).isEmpty());
    }

    void interruptedShellLeavesNoFile()
    {
        PrintTool tool(*desk,
                       {"--out", desk->Path("Anna/OutputBox/fax.tif"), desk->WriteSlowPdf("slow.pdf")});
        tool.Start();
        QTRY_VERIFY((tool.waitForReadyRead(10), tool.Errors().contains("slow.pdf")));
        ::kill(pid_t(tool.processId()), SIGINT);
        QVERIFY(EndsSoon(tool));
        QCOMPARE(tool.exitCode(), 1);
        QVERIFY(desk->IsClean());
    }

private:
    QString WritePicture(const QString &name) const
    {
        QImage picture(300, 400, QImage::Format_Grayscale8);
        picture.fill(Qt::black);
        const QString path = desk->Path("docs/" + name);
        return picture.save(path) ? path : QString();
    }
    /// The file that the final text names; empty when it names none.
    QString Fax() const
    {
        static const QRegularExpression form("\\x01(tmp~[0-9A-F]{32}\\.tif)\r\n \\z");
        const QString name = form.match(desk->strFinal).captured(1);
        return name.isEmpty() ? QString() : desk->Path("Anna/OutputBox/" + name);
    }
    /// It takes half a second; a busy machine may need more, but the page that is being made takes minutes.
    static bool EndsSoon(PrintTool &tool) { return tool.waitForFinished(5000); }
    int RunInShell(const QStringList &arguments) const
    {
        PrintTool tool(*desk, arguments);
        tool.Start();
        return tool.waitForFinished(60000) ? tool.exitCode() : -1;
    }

    std::unique_ptr<PrintDesk> desk;
};

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (QCoreApplication::arguments().value(1) == "client")
        return ActAsClient(QCoreApplication::arguments());
    tst_PrintTool test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_PrintTool.moc"
