#include "compose/Composer.h"
#include "core/FaxImage.h"
#include "core/Globals.h"
#include "fakes/FakeDesktop.h"
#include "fakes/FakePorts.h"
#include "fixtures/FaxFile.h"
#include "fixtures/Profile.h"
#include "fixtures/TestTable.h"
#include "server/FaxSender.h"

#include <QDir>

#include <optional>

namespace {

/// A window that holds what the test types.
class FakeWindow final : public ComposerWindow
{
public:
    DraftFields Fields() const override { return fields; }
    void ShowFields(const DraftFields &shown) override { fields = shown; }
    void ShowReceivers(const QString &receivers) override { fields.strReceive = receivers; }
    void ShowFiles() override {}
    void FocusReceivers() override { ++lFocused; }
    void Hide() override { bHidden = true; }
    void Unload() override { bUnloaded = true; }
    bool AskOptions(QString &sendOption, int fixedResolution) override
    {
        aFixed.append(fixedResolution);
        sendOption = strOption;
        return !strOption.isEmpty();
    }

    DraftFields fields;
    QString strOption;
    QList<int> aFixed;
    int lFocused = 0;
    bool bHidden = false;
    bool bUnloaded = false;
};

class FakeUpload final : public FaxSender
{
public:
    bool GetSendFaxID(bool, const QString &idList, bool, bool) override
    {
        aSent.append(idList);
        return true;
    }
    QStringList aSent;
};

struct Bench
{
    Bench()
    {
        ports.folders.strRoot = profile.Root();
        desktop.forms.lCount = 2;
        strDocument = profile.Root() + "/offer, second.pdf";
        QDir().mkpath(profile.Root() + "/program");
        if (!WriteTestFile(profile.Root() + "/program/ZemPrint.exe", "x") ||
            !WriteTestFile(strDocument, "x") ||
            !WriteTestFile(profile.Root() + "/program/VelmarBrowser.exe", "x"))
            qFatal("no files");
    }

    void Open(const ComposerStart &start = {})
    {
        window.emplace();
        composer.emplace(ports.ports,
                         ComposerParts{desktop.mailbox, desktop.mainWindow, upload, desktop.forms, turn,
                                       [this] { return bOnline; }, [] { return false; }},
                         *window);
        composer->Form_Load(start);
        tool.Create(ports.blocks, PrintConversation::SharedName);
    }
    /// A draft "D" of these columns with that rendering, to the number 1.
    void OpenDraft(const Profile::Columns &columns, const QString &rendering = "D.tif")
    {
        if (!FaxFile().Write(Global().strOutputBoxPath + rendering))
            qFatal("no fax");
        Profile::Columns row{{"folderID", "1002"}, {"fileName", rendering}};
        row.insert(columns);
        profile.InsertSentFax("D", row);
        ReopenDraft();
    }
    void ReopenDraft()
    {
        ComposerStart start;
        start.strFaxID = "D";
        Open(start);
        window->fields.strReceive = "1";
    }
    /// The tool, once it is started, leaves a fax of that many pages.
    void LetToolMake(int pages)
    {
        ports.pump.After(150).Then([this, pages] {
            strRequest = tool.Item();
            FaxFile file;
            file.lPages = pages;
            if (!file.Write(Global().strOutputBoxPath + "tmp~9.tif"))
                qFatal("no fax");
            tool.SetItem("All done." + QString(QChar(1)) + "tmp~9.tif\r\n ");
            ports.shell.program.bRunning = false;
        });
    }
    static QStringList Outbox() { return QDir(Global().strOutputBoxPath).entryList(QDir::Files, QDir::Name); }
    static QString Column(const QString &column)
    {
        return Profile::Value(QString("Select %1 from SendFax").arg(column));
    }

    Profile profile;
    FakePorts ports;
    FakeDesktop desktop;
    FakeUpload upload;
    ConversionTurn turn;
    std::optional<FakeWindow> window;
    std::optional<Composer> composer;
    CSharedString tool;
    QString strDocument;
    QString strRequest;
    bool bOnline = true;
};

const QString firstID(31, '0');

} // namespace

/// A composer from its opening to its end, over a real profile, with a print tool that the test plays.
class tst_Composer final : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench.emplace(); }
    void cleanup()
    {
        QVERIFY(!bench->ports.pump.IsStuck());
        bench.reset();
    }

    void sendingAsksForFilesAndRecipients_data()
    {
        const TestTable<QString, bool, QString> row{"receivers", "hasFile", "text"};
        const QString noRecipient = "You must specify a recipient at least.";
        row("no file", "1", false, "There's no content to Fax, please add a faxing file first.");
        row("nobody", "", true, noRecipient);
        row("only quotes", "\"\"", true, noRecipient);
        row("half a number", "Anna <5", true, noRecipient);
        row("dropped by normalisation", "a<1>[b]", true, "You must specify some recipients for the fax.");
    }
    void sendingAsksForFilesAndRecipients()
    {
        QFETCH(bool, hasFile);
        QFETCH(QString, receivers);
        bench->Open();
        bench->window->fields.strReceive = receivers;
        if (hasFile)
            bench->composer->AddFiles({bench->strDocument});
        bench->LetToolMake(1);
        bench->composer->btnSend_Click();
        QTEST(bench->ports.prompts.Texts().value(0), "text");
        QCOMPARE(Profile::Value("Select Count(*) from SendFax"), "0");
        QVERIFY(!bench->window->bUnloaded);
    }

    void sentFaxHasItsRowItsFileAndGoesOut()
    {
        bench->Open();
        bench->window->fields = {"12345", "It's here", "memo", "*Detailed", {}, true};
        bench->composer->AddFiles({bench->strDocument});
        bench->LetToolMake(3);
        bench->composer->btnSend_Click();

        const QString id = firstID + '1';
        const PrintRequest request = PrintRequest::Parse(bench->strRequest);
        QCOMPARE(request.strHeader, "*Detailed");
        QCOMPARE(request.strRecipients, "12345");
        QCOMPARE(Bench::Column("Fax_ID||'|'||FileName||'|'||Pages||'|'||folderID||'|'||Header||'|'||Title"),
                 id + '|' + id + ".tif|3|1003|*Detailed|It~$@~s here");
        QCOMPARE(Bench::Column("IsImmediately||'|'||TempReceiver"), "True|\"12345\"<12345>;");
        QCOMPARE(Bench::Outbox(), {id + ".tif"});
        QCOMPARE(bench->desktop.mailbox.aCalls.value(0), "saved 1 new ");
        QCOMPARE(bench->upload.aSent, {id + ';'});
        QVERIFY(bench->window->bHidden && bench->window->bUnloaded && bench->desktop.mainWindow.bEnabled);
    }

    void draftComesBackAsItWas()
    {
        bench->Open();
        bench->window->fields = {"Anna <555>;", "Subject", "a 'memo'", "<None>", {}, true};
        bench->composer->AddFiles({bench->strDocument});
        bench->composer->btnSave_Click();
        QCOMPARE(Bench::Column("folderID||'|'||FileName||'|'||Pages"), "1002||0");
        const QString saved = bench->composer->FaxID();

        ComposerStart start;
        start.strFaxID = saved;
        bench->Open(start);
        QCOMPARE(bench->window->fields.strReceive, "\"Anna \"<555>");
        QVERIFY(bench->window->fields.bSend);
        QVERIFY(bench->composer->Form_QueryUnload()); // nothing has changed
        bench->composer->btnSave_Click();
        QCOMPARE(Profile::Values("Select Fax_ID from SendFax"), {saved});
    }

    void missingFilesAreNamedAndLeftOut()
    {
        bench->OpenDraft({{"fileList", "/gone.pdf," + bench->strDocument + ','}});
        QCOMPARE(
            bench->ports.prompts.Texts(),
            {"The files below do not exist anymore, and will be remove from the list: \r\n/gone.pdf\r\n"});
        QCOMPARE(bench->composer->Files().aFiles, {bench->strDocument});
    }

    void faxThatWasSentBeforeGetsAnotherId()
    {
        bench->OpenDraft({{"fileList", ""}, {"result", "x"}});
        bench->composer->btnSave_Click();
        const QString id = firstID + '1';
        QCOMPARE(Bench::Column("Fax_ID||'|'||FileName||'|'||Result"), id + '|' + id + ".tif|");
        QCOMPARE(bench->composer->Files().aFiles, {Global().strOutputBoxPath + id + ".tif"});
        QCOMPARE(Bench::Outbox(), {id + ".tif"});
        QCOMPARE(bench->desktop.mailbox.aCalls, QStringList({"D became " + id, "saved 0 old " + id}));
    }

    void newRenderingTakesThePlaceOfTheOld()
    {
        bench->OpenDraft({{"fileList", bench->strDocument + ','}}, "old name.tif");
        bench->composer->OnHeaderChanged();
        bench->LetToolMake(2);
        bench->composer->btnSend_Click();
        QCOMPARE(Bench::Column("FileName||'|'||Pages||'|'||folderID"), "D.tif|2|1003");
        QCOMPARE(Bench::Outbox(), {"D.tif"});
    }

    void failedSavePutsTheOldRenderingBack()
    {
        const QString old = Global().strOutputBoxPath + "D.tif";
        bench->OpenDraft({{"fileList", ""}});
        bench->composer->AddFiles({bench->strDocument});
        Profile::Execute(
            "Create trigger full before update on SendFax begin select raise(abort, 'disk'); end");
        bench->LetToolMake(2);
        bench->composer->btnSend_Click();
        QCOMPARE(bench->ports.prompts.Texts().size(), 2);
        QCOMPARE(Bench::Outbox(), QStringList({"D.tif", "tmp~9.tif"}));
        QCOMPARE(FaxImage::GetPageCount(old), 1);

        Profile::Execute("Drop trigger full");
        bench->composer->btnSave_Click();
        QCOMPARE(Bench::Outbox(), {"D.tif"});
        QCOMPARE(FaxImage::GetPageCount(old), 2);
        QCOMPARE(bench->composer->Files().aFiles, {old}); // the pages of both, not twice those of the first
    }

    void outdatedRenderingIsNeverSent()
    {
        bench->OpenDraft({{"fileList", bench->strDocument + ','}});
        bench->composer->OnHeaderChanged();
        bench->ports.printers.aNames.clear();
        bench->composer->btnPreview_Click(); // cannot begin
        bench->composer->btnSend_Click();
        QCOMPARE(Bench::Column("folderID"), "1002");

        bench->ports.printers.aNames = {"Zem Fax Printer"};
        bench->ReopenDraft();
        QVERIFY(QFile::remove(Global().strOutputBoxPath + "D.tif"));
        bench->LetToolMake(2);
        bench->composer->btnSend_Click();
        QCOMPARE(Bench::Column("FileName||'|'||Pages||'|'||folderID"), "D.tif|2|1003");
    }

    void failedSaveLeavesAllAsItWas()
    {
        bench->Open();
        bench->window->fields.strReceive = "1";
        bench->composer->AddFiles({bench->strDocument});
        Profile::Execute(
            "Create trigger full before insert on SendFax begin select raise(abort, 'disk'); end");
        bench->LetToolMake(1);
        bench->composer->btnSend_Click();
        QVERIFY(bench->ports.prompts.Texts().value(0).startsWith("Error In SaveFax :"));
        QCOMPARE(bench->ports.prompts.Texts().value(1), "Saving fax failed.");
        QCOMPARE(Bench::Outbox(), {"tmp~9.tif"});
        QVERIFY(!bench->window->bUnloaded && bench->composer->FaxID().isEmpty());

        Profile::Execute("Drop trigger full");
        bench->composer->btnSave_Click();
        QCOMPARE(Bench::Outbox(), {firstID + "2.tif"});
        QCOMPARE(Bench::Column("FileName"), firstID + "2.tif");
    }

    void draftWhoseRowIsGoneIsKept()
    {
        bench->Open();
        bench->window->fields.strReceive = "1";
        bench->composer->btnSave_Click();
        Profile::Execute("Delete from SendFax");
        bench->composer->btnSave_Click();
        QCOMPARE(Profile::Value("Select Count(*) from SendFax"), "1");
        bench->ReopenDraft(); // it was deleted meanwhile
        bench->composer->btnSave_Click();
        QCOMPARE(Profile::Value("Select Count(*) from SendFax Where Fax_ID<>'D'"), "2");
    }

    void closingAsksAboutChanges()
    {
        bench->Open();
        QVERIFY(!bench->desktop.mainWindow.bEnabled);
        bench->window->fields.strReceive = "1";
        bench->composer->OnHeaderChanged();
        bench->ports.prompts.aAnswers = {mbAnswerCancel, mbAnswerOK, mbAnswerYes};
        QVERIFY(!bench->composer->Form_QueryUnload());
        QVERIFY(!bench->composer->Form_QueryUnload()); // as while another box stands
        QVERIFY(bench->desktop.mainWindow.bEnabled);
        QCOMPARE(Profile::Value("Select Count(*) from SendFax"), "0");
        QVERIFY(bench->composer->Form_QueryUnload());
        QCOMPARE(bench->ports.prompts.Texts().last(), "The fax has been changed, save it now?");
        QCOMPARE(bench->ports.prompts.aBoxes.last().lFlags & 15, mbYesNoCancel);
        QCOMPARE(Profile::Value("Select Count(*) from SendFax"), "1");
    }

    void unchangedFaxIsShownWithoutAConversion()
    {
        bench->Open();
        bench->composer->AddFiles({bench->strDocument});
        bench->LetToolMake(1);
        bench->composer->btnPreview_Click();
        QCOMPARE(bench->composer->RenderedPages(), 1);
        QCOMPARE(bench->ports.shell.aCalls.size(), 1);
        bench->composer->btnPreview_Click(); // nothing has changed: the viewer, without a conversion
        QCOMPARE(bench->ports.shell.aStarted.size(), 1);
        QCOMPARE(bench->ports.shell.aCalls.size(), 2);
    }

    void filesMoveWithTheirSelection()
    {
        SourceFiles files;
        files.AddChosen({"a", "b", "c", "d"});
        QVERIFY(!files.CanMove(1) && files.Move(-1));
        QCOMPARE(files.aFiles.join(""), "abdc");
        files.MoveBefore({0, 3}, 2);
        QCOMPARE(files.aFiles.join(""), "bacd");
        QCOMPARE(files.aSelected, QList<int>({1, 2}));
        files.MoveBefore({0}, 4);
        QCOMPARE(files.aFiles.join(""), "acdb");
        files.aSelected = {0, 3};
        files.RemoveSelected();
        QCOMPARE(files.aFiles.join(""), "cd");
        QCOMPARE(files.aSelected, QList<int>({0}));
    }

    void separatorsInNamesReachTheToolAsLinks()
    {
        const QString path = bench->profile.Root() + "/a|b\nc.pdf";
        QVERIFY(WriteTestFile(path, "contents"));
        bench->Open();
        bench->composer->AddFiles({path, bench->strDocument});
        QByteArray seen;
        bench->ports.pump.Then(
            [&] { seen = ReadTestFile(PrintRequest::Parse(bench->tool.Item()).aFiles.value(0)); });
        bench->LetToolMake(1);
        bench->composer->btnPreview_Click();
        QCOMPARE(seen, "contents");
        QCOMPARE(PrintRequest::Parse(bench->strRequest).aFiles.value(1), bench->strDocument);
        QVERIFY(!QFile::exists(PrintRequest::Parse(bench->strRequest).aFiles.value(0))); // the link is gone
    }

    void readyFaxFixesTheResolution()
    {
        const QString ready = bench->profile.Root() + "/ready.tif";
        QVERIFY(FaxFile().Write(ready)); // 98 dpi
        ComposerStart start;
        start.strOutsideFile = ready;
        bench->Open(start);
        QCOMPARE(bench->composer->Files().aFiles, {'*' + ready});
        bench->composer->btnOption_Click();
        QCOMPARE(bench->window->aFixed, {1});
        bench->window->fields.strReceive = "1";
        bench->composer->btnSave_Click();
        QVERIFY(bench->ports.prompts.Texts().value(0).startsWith("A draft does not keep ready fax files."));
        bench->LetToolMake(1);
        bench->composer->btnPreview_Click();
        QCOMPARE(PrintRequest::Parse(bench->strRequest).lResolution, 0);
        bench->composer->btnSave_Click(); // now the draft has its pages
        QCOMPARE(bench->ports.prompts.Texts().size(), 1);
    }

private:
    std::optional<Bench> bench;
};

QTEST_GUILESS_MAIN(tst_Composer)
#include "tst_Composer.moc"
