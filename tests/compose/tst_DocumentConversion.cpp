#include "compose/DocumentConversion.h"
#include "core/Globals.h"
#include "core/PrinterProgress.h"
#include "fakes/FakePorts.h"
#include "fixtures/FaxFile.h"
#include "fixtures/Profile.h"
#include "fixtures/TestTable.h"

#include <QDir>
#include <QSignalSpy>

#include <optional>

namespace {

/// A composer's conversion, and a print tool that the test plays.
struct Bench
{
    Bench()
    {
        ports.folders.strRoot = profile.Root();
        QDir().mkpath(profile.Root() + "/program");
        if (!WriteTestFile(profile.Root() + "/program/ZemPrint.exe", "x") ||
            !FaxFile().Write(Global().strOutputBoxPath + "tmp~1.tif"))
            qFatal("no files");
        request.aFiles = {"/a.pdf"};
        request.strUserFolder = Global().strUserFolder;
        conversion.Open();
        tool.Create(ports.blocks, PrintConversation::SharedName);
    }

    /// The tool writes after a while; a text without more to come ends it.
    Bench &Say(const QString &text, bool ends = false)
    {
        ports.pump.After(150).Then([this, text, ends] {
            tool.SetItem(text);
            ports.shell.program.bRunning = !ends;
        });
        return *this;
    }
    Bench &Click()
    {
        ports.pump.After(150).Then([this] { conversion.btnCancel_Click(); });
        return *this;
    }
    Bench &See(QStringList &seen)
    {
        ports.pump.After(150).Then([this, &seen] { seen.append(conversion.Shown().strStatus); });
        return *this;
    }

    Profile profile;
    FakePorts ports;
    PrintRequest request;
    ConversionTurn turn;
    DocumentConversion conversion{ports.ports, turn};
    QSignalSpy rendered{&conversion, &DocumentConversion::Rendered};
    QSignalSpy viewed{&conversion, &DocumentConversion::ViewRequested};
    CSharedString tool;
};

QString Done(const QString &name)
{
    return "All done." + QString(QChar(1)) + name + "\r\n ";
}

} // namespace

/// The conversation with the print tool, which the test plays.
class tst_DocumentConversion final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench.emplace(); }
    void cleanup()
    {
        QVERIFY(!bench->ports.pump.IsStuck());
        QVERIFY(!bench->turn.bTaken && !bench->conversion.IsRunning());
        bench.reset();
    }

    void refusesWhatCannotBegin_data()
    {
        const TestTable<QString, QString> row{"lacking", "text"};
        row("file", "file", "There's no content to Fax, please press Add files button to add a file.");
        row("tool", "tool", "Cannot find ZemPrint.exe, please reinstall Velmar Client.");
        row("printer", "printer", "Cannot find Zem Fax Printer, please reinstall Velmar Client.");
    }
    void refusesWhatCannotBegin()
    {
        QFETCH(QString, lacking);
        if (lacking == "file")
            bench->request.aFiles.clear();
        if (lacking == "tool")
            QVERIFY(QFile::remove(bench->profile.Root() + "/program/ZemPrint.exe"));
        if (lacking == "printer")
            bench->ports.printers.aNames.clear();
        QVERIFY(!bench->conversion.PrintFile(bench->request, false));
        QTEST(bench->ports.prompts.Texts().join('|'), "text");
        QVERIFY(bench->ports.shell.aStarted.isEmpty() && !bench->conversion.Shown().bVisible);
    }

    void successShowsTheFaxByItself()
    {
        QStringList seen;
        bench->Say("Converting a.pdf").See(seen).Say("page 1, of 2").See(seen).Say(Done("tmp~1.tif"), true);
        QVERIFY(bench->conversion.PrintFile(bench->request, false));
        QCOMPARE(seen,
                 QStringList({"Converting a.pdf", "Converting a.pdf"})); // one with a comma is not shown
        QCOMPARE(bench->ports.shell.aStarted, {bench->profile.Root() + "/program/ZemPrint.exe"});
        QCOMPARE(bench->rendered.value(0).value(0).toString(), Global().strOutputBoxPath + "tmp~1.tif");
        QCOMPARE(bench->viewed.size(), 1);
        QCOMPARE(bench->tool.Item(), QString());
        QVERIFY(!bench->conversion.Shown().bVisible);
    }

    void successWhileSendingStaysOnShow()
    {
        bench->Say("Converting a.pdf").Say(Done("tmp~1.tif"), true);
        QVERIFY(bench->conversion.PrintFile(bench->request, true));
        QCOMPARE(bench->viewed.size(), 0);
        const DocumentConversion::Panel &panel = bench->conversion.Shown();
        QCOMPARE(panel.strStatus, "Converting a.pdf\r\nPrinting completed.");
        QCOMPARE(panel.strCaption, "&Close");
        QVERIFY(panel.bVisible && !panel.bBusyPointer && panel.lTag == DocumentConversion::tagFinish);
    }

    void failureStaysOnShowUntilItIsClosed_data()
    {
        const TestTable<QString, QString> row{"reply", "status"};
        row("error", "Error", "Unknow error or Zem Fax Printer doesn't exist.");
        row("failed", "a.pdf is damaged: failed.", "a.pdf is damaged: failed.");
        row("no text at its end", "Converting a.pdf", "Unknow error or Zem Fax Printer doesn't exist.");
        row("file elsewhere", Done("../Database/x.tif"), "The print tool has left no fax in the outbox.");
        row("no file", Done("tmp~2.tif"), "The print tool has left no fax in the outbox.");
    }
    void failureStaysOnShowUntilItIsClosed()
    {
        QFETCH(QString, reply);
        bench->Say(reply, true);
        QVERIFY(!bench->conversion.PrintFile(bench->request, false));
        QTEST(bench->conversion.Shown().strStatus, "status");
        QVERIFY(bench->conversion.Shown().bVisible && bench->rendered.isEmpty());
        bench->conversion.btnCancel_Click();
        QVERIFY(!bench->conversion.Shown().bVisible && bench->conversion.bPrintFailed);
    }

    void toolThatDoesNotStartCounts()
    {
        bench->ports.shell.bStarts = false;
        QVERIFY(!bench->conversion.PrintFile(bench->request, false));
        QCOMPARE(bench->conversion.Shown().strStatus, "Unknow error or Zem Fax Printer doesn't exist.");
    }

    void cancelTellsTheToolAndWaitsForIt()
    {
        QString heard;
        bench->Say("Converting a.pdf").Click();
        bench->ports.pump.After(2000).Then([&] {
            heard = bench->tool.Item();
            bench->ports.shell.program.bRunning = false;
        });
        QVERIFY(!bench->conversion.PrintFile(bench->request, false));
        QCOMPARE(heard, "closewindow");
        QVERIFY(!bench->ports.shell.program.bKilled && !bench->conversion.Shown().bVisible);
        QCOMPARE(bench->conversion.Shown().strCaption, "&Cancel");
    }

    void toolThatDoesNotListenIsEndedAfterTenSeconds()
    {
        QVERIFY(SetPrinterStatus(bench->ports.folders, printerBusy));
        bench->Click();
        const qint64 start = bench->ports.clock.Milliseconds();
        QVERIFY(!bench->conversion.PrintFile(bench->request, false));
        const qint64 taken = bench->ports.clock.Milliseconds() - start;
        QVERIFY2(taken >= 10000 && taken < 11000, qPrintable(QString::number(taken)));
        QVERIFY(bench->ports.shell.program.bKilled);
        QCOMPARE(GetPrinterStatus(bench->ports.ports), int(printerFailed));
    }

    void clickDuringThePauseOpensOneViewer()
    {
        bench->Say(Done("tmp~1.tif"), true).Click();
        QVERIFY(bench->conversion.PrintFile(bench->request, false));
        QCOMPARE(bench->viewed.size(), 1);
        QVERIFY(!bench->conversion.bPrintFailed);
    }

    void anotherComposerWaitsItsTurn()
    {
        DocumentConversion other(bench->ports.ports, bench->turn);
        bool isOtherDone = false;
        QString heldBack;
        bench->Say("Converting a.pdf");
        bench->ports.pump.Then([&] {
            other.Open();
            heldBack = bench->tool.Item(); // the conversation that is under way is left alone
            PrintRequest second = bench->request;
            second.aFiles = {"/b.pdf"};
            isOtherDone = other.PrintFile(second, true);
        });
        bench->ports.pump.After(150).Then(
            [&] { QVERIFY(other.Shown().strStatus.startsWith("Another fax")); });
        bench->Say(Done("tmp~1.tif"), true);
        bench->Say("Converting b.pdf").Say(Done("tmp~1.tif"), true);
        QVERIFY(bench->conversion.PrintFile(bench->request, true));
        QCOMPARE(heldBack, "Converting a.pdf");
        QVERIFY(isOtherDone);
        QCOMPARE(bench->ports.shell.aStarted.size(), 2);
    }

    void programsEndStopsTheTool()
    {
        bench->Say("Converting a.pdf");
        bench->ports.pump.After(150).Then([&] { bench->ports.pump.Quit(); });
        QVERIFY(!bench->conversion.PrintFile(bench->request, false));
        QCOMPARE(bench->tool.Item(), "closewindow");
    }

private:
    std::optional<Bench> bench;
};

QTEST_GUILESS_MAIN(tst_DocumentConversion)
#include "tst_DocumentConversion.moc"
