#include "compose/forms/SourceFileView.h"
#include "compose/forms/frmNewFax.h"
#include "core/FaxImage.h"
#include "core/Globals.h"
#include "core/ModelRoles.h"
#include "desktop/forms/frmMain.h"
#include "endtoend/ScaledTime.h"
#include "fakes/FakePorts.h"
#include "fixtures/AddressRows.h"
#include "fixtures/FaxFile.h"
#include "fixtures/PdfFile.h"
#include "fixtures/Profile.h"
#include "fixtures/TestTable.h"
#include "platform/DesktopShell.h"
#include "platform/QtEventPump.h"
#include "platform/SystemIds.h"
#include "platform/SystemPrinters.h"
#include "platform/SystemSharedBlocks.h"
#include "programs/client/ClientProgram.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QImage>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>
#include <QTreeView>

#include <csignal>
#include <optional>

#include <sys/resource.h>
#include <sys/wait.h>

namespace {

const QByteArray realTool = "exec \"$VELMAR_BIN_DIR\"/ZemPrint.exe";
constexpr int lLongestWait = 60000; // milliseconds

template <typename Widget>
Widget &Get(const QWidget *window, const QString &name)
{
    auto *found = window ? window->findChild<Widget *>(name) : nullptr;
    if (!found)
        qFatal("There is no %s.", qPrintable(name));
    return *found;
}

template <typename Window>
Window *FindWindow()
{
    for (QWidget *window : QApplication::topLevelWidgets()) {
        auto *found = qobject_cast<Window *>(window);
        if (found && found->isVisible())
            return found;
    }
    return nullptr;
}

void Click(const QWidget *window, const QString &button)
{
    QTest::mouseClick(&Get<QPushButton>(window, button), Qt::LeftButton);
}

/// The client's windows over a profile, with the real print tool beside it. Nobody is asked: boxes and file
/// dialogs are fakes.
struct Office
{
    Office()
    {
        const QString root = profile.Root();
        fakes.folders.strRoot = root;
        for (const char *folder : {"run", "tmp", "docs", "program"})
            QDir().mkpath(root + '/' + folder);
        QFile::setPermissions(root + "/run", QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(root + "/run"));
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(root + "/user"));
        qputenv("TMPDIR", QFile::encodeName(root + "/tmp"));
        const QString programs = qEnvironmentVariable("VELMAR_BIN_DIR");
        if (!QFile::copy(programs + "/Header/Detailed.GNI", Global().strHeaderPath + "Detailed.GNI"))
            qFatal("The print tool is not built.");
        UseTool(realTool);
        qputenv("DOCS", QFile::encodeName(root + "/docs"));
        qputenv("OUTBOX", QFile::encodeName(Global().strOutputBoxPath));
        Global().strUserID = "7";
        Global().Company = "Harbour Freight";
        program.MarkOnline(false, false);
        program.ShowMainWindow();
    }
    ~Office() { qunsetenv("TMPDIR"); }

    QString Tool() const { return profile.Root() + "/program/ZemPrint.exe"; }
    /// A shell script in the place of the print tool.
    void UseTool(const QByteArray &script) const
    {
        if (!WriteTestFile(Tool(), "#!/bin/sh\n" + script + '\n') ||
            !QFile::setPermissions(Tool(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner))
            qFatal("no tool");
    }
    QString Write(const QString &name, const QByteArray &bytes) const
    {
        const QString path = profile.Root() + "/docs/" + name;
        if (!WriteTestFile(path, bytes))
            qFatal("no file");
        return path;
    }
    void AddFiles(const QStringList &files)
    {
        fakes.fileDialogs.aChosen = {files};
        Click(Composer(), "btnAddFile");
    }
    /// The main window.
    static frmMain *Main() { return FindWindow<frmMain>(); }
    static frmNewFax *Composer() { return FindWindow<frmNewFax>(); }
    static void Run(const char *command) { Get<QAction>(Main(), command).trigger(); }
    /// Selects a folder and its first fax.
    static void SelectFirstOf(const QString &folder)
    {
        auto &tree = Get<QTreeView>(Main(), "tvFolder");
        const QModelIndex root = tree.model()->index(0, 0);
        tree.setCurrentIndex(
            tree.model()->match(root, KeyRole, folder, 1, Qt::MatchExactly | Qt::MatchRecursive).value(0));
        auto &grid = Get<QTreeView>(Main(), "grdFaxList");
        grid.setCurrentIndex(grid.model()->index(0, 0));
    }
    static QStringList Outbox() { return FilesIn(Global().strOutputBoxPath); }
    QStringList Temporary() const { return FilesIn(profile.Root() + "/tmp"); }
    static QStringList FilesIn(const QString &folder)
    {
        return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }

    Profile profile;
    FakePorts fakes;
    QtEventPump pump;
    ScaledTimers timers{1};
    ScaledClock clock{10};
    SystemIds ids;
    DesktopShell shell{fakes.folders};
    SystemSharedBlocks blocks;
    SystemPrinters printers{fakes.folders};
    Ports ports{
        pump,        timers, clock,          ids,           fakes.message,     fakes.folders,     shell,
        fakes.sound, blocks, fakes.instance, fakes.sockets, fakes.fileDialogs, fakes.fontDialogs, printers};
    ClientProgram program{ports, pump};
};

/// Where a page has ink: header, top, middle and bottom of the text, footer.
QString InkOf(const QString &path, int page)
{
    const int height = FaxPages(path).Page(page).lHeight;
    const QList<std::pair<QChar, QRect>> parts{{'h', {0, 0, 1728, height * 8 / 100}},
                                               {'t', {0, height * 9 / 100, 1728, height * 25 / 100}},
                                               {'m', {0, height * 42 / 100, 1728, height * 20 / 100}},
                                               {'b', {0, height * 70 / 100, 1728, height * 20 / 100}},
                                               {'f', {0, height * 94 / 100, 1728, height * 6 / 100}}};
    QString ink;
    for (const auto &[name, where] : parts)
        ink += HasInk(path, page, where) ? name : QChar('-');
    return ink;
}

QStringList InkOfPages(const QString &path)
{
    QStringList pages;
    for (int page = 0; page < FaxImage::GetPageCount(path); ++page)
        pages.append(InkOf(path, page));
    return pages;
}

bool HasChildren()
{
    siginfo_t child;
    return waitid(P_ALL, 0, &child, WEXITED | WNOHANG | WNOWAIT) == 0;
}

const QByteArray boxInTheMiddle = "200 350 200 120 re f";

} // namespace

/// Faxes from the composer's window to the queue, with the real print tool, database and files.
class tst_ComposedFax final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { signal(SIGXFSZ, SIG_IGN); }
    void init() { office.emplace(); }
    void cleanup()
    {
        office.reset();
        // The tool outlives its last word a little.
        QTRY_VERIFY_WITH_TIMEOUT(!HasChildren(), lLongestWait);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void editedDraftBecomesAFaxInTheQueue();
    void fiftyOneFilesBecomeAFax();
    void faultLeavesTheDraftAsItWas_data();
    void faultLeavesTheDraftAsItWas();

private:
    std::optional<Office> office;
};

void tst_ComposedFax::editedDraftBecomesAFaxInTheQueue()
{
    AddressRows::AddUser(office->profile, "U1", "bert", "Bert");
    AddressRows::AddContact(office->profile, "C1", "\"Cora\"", "99", "1");
    Global().lServerTryInterval = 5;
    const QString pdf = office->Write("plan, of two.pdf", PdfOf(2, boxInTheMiddle));
    const QString letter = office->Write("it's a letter.rtf", "{\\rtf1\\ansi\\fs96 OFFICE\\par}");
    const QString picture = office->profile.Root() + "/docs/picture.png";
    QImage image(850, 1100, QImage::Format_RGB32);
    image.fill(Qt::white);
    for (int y = 850; y < 950; ++y)
        std::fill_n(reinterpret_cast<QRgb *>(image.scanLine(y)), image.width(), qRgb(0, 0, 0));
    QVERIFY(image.save(picture));

    Office::Run("mnuNewFax");
    QWidget *window = Office::Composer();
    QVERIFY(window && !Office::Main()->isEnabled());
    Get<QPlainTextEdit>(window, "txtReceive").setPlainText("Bert[bert]; Cora<99>");
    Get<QLineEdit>(window, "txtSubject").setText("draft");
    Get<QPlainTextEdit>(window, "txtMemo").setPlainText("Anna's memo");
    Get<QComboBox>(window, "cmbHeader").setCurrentText("*Detailed");
    office->AddFiles({letter, pdf});
    QTimer::singleShot(0, [] {
        QWidget *options = QApplication::activeModalWidget();
        Get<QAbstractButton>(options, "optImportance_0").click();
        Get<QAbstractButton>(options, "optReSend").click();
        Get<QLineEdit>(options, "txtDelay").setText("7");
        Click(options, "btnOK");
    });
    Click(window, "btnOption");
    Click(window, "btnSave");
    const QString id = Profile::Value("Select Fax_ID from SendFax");
    QCOMPARE(Profile::Value("Select folderID||'|'||FileName||'|'||Pages from SendFax"), "1002||0");
    window->close();
    QTRY_VERIFY(!Office::Composer());
    QVERIFY(Office::Main()->isEnabled());

    Office::SelectFirstOf("1002");
    QTest::keyClick(&Get<QTreeView>(Office::Main(), "grdFaxList"), Qt::Key_Return);
    window = Office::Composer();
    QVERIFY(window);
    QCOMPARE(window->windowTitle(), "Edit fax");
    QCOMPARE(Get<QLineEdit>(window, "txtSubject").text(), "draft");
    Get<QLineEdit>(window, "txtSubject").setText("It's final");
    Get<QPlainTextEdit>(window, "txtReceive").appendPlainText("; O'Neil <555>");
    office->AddFiles({picture});
    Click(window, "btnUp"); // between letter and plan
    Click(window, "btnSend");
    QTRY_VERIFY(!Office::Composer());
    QCOMPARE(office->fakes.prompts.Texts(), QStringList());

    const QString fax = Global().strOutputBoxPath + id + ".tif";
    const QString files = QStringList{letter, picture, pdf, ""}.join(',').replace("'", "~$@~");
    const QString row =
        "Fax_ID=" + id + "|FileName=" + id + ".tif|FileList=" + files +
        "|Pages=4|FolderID=1003|Title=It~$@~s final|ReMark=Anna~$@~s memo|Header=*Detailed|User_ID=7"
        "|ReceiverName=\"Bert[bert]\";\"Cora\"<99>;\"O~$@~Neil \"<555>;|InnerReceiver=Bert[U1];"
        "|OuterReceiver=C1;|TempReceiver=\"O~$@~Neil \"<555>;|FaxLevel=0|TimingSend=-1|busyResend=3"
        "|IsDontRetry=False|RetryInterval=7|ResendTimes=-5|Resolution=1|Deepness=150|IsImmediately=False"
        "|IsTransmit=0|IsReaded=0|RecyleID=";
    for (const QString &column : row.split('|')) {
        const QString name = column.section('=', 0, 0);
        QCOMPARE(name + '=' + Profile::Values("Select " + name + " from SendFax").join('&'), column);
    }
    const QRegularExpression time("^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d$");
    QVERIFY(time.match(Profile::Value("Select ModifyTime from SendFax")).hasMatch());

    QCOMPARE(Office::Outbox(), {id + ".tif"});
    QCOMPARE(office->Temporary(), QStringList());
    QCOMPARE(InkOfPages(fax), QStringList({"ht--f", "h--bf", "h-m-f", "h-m-f"}));
    Office::SelectFirstOf("1003");
    QVERIFY(Get<QTreeView>(Office::Main(), "grdFaxList").currentIndex().isValid());

    Office::Run("mnuNewFax");
    window = Office::Composer();
    Get<QPlainTextEdit>(window, "txtReceive").setPlainText("1");
    office->AddFiles({pdf});
    Click(window, "btnSend");
    const QString plain = Profile::Value("Select FileName from SendFax Where Header='<None>'");
    QCOMPARE(InkOfPages(Global().strOutputBoxPath + plain), QStringList({"--m--", "--m--"}));
}

void tst_ComposedFax::fiftyOneFilesBecomeAFax()
{
    QStringList files;
    for (int i = 0; i < 51; ++i)
        files.append(office->Write(QString("%1.pdf").arg(i), PdfOf(1, boxInTheMiddle)));
    Office::Run("mnuNewFax");
    QWidget *window = Office::Composer();
    Get<QPlainTextEdit>(window, "txtReceive").setPlainText("1");
    office->AddFiles(files);
    QCOMPARE(Get<SourceFileView>(window, "lstFile").topLevelItemCount(), 50);
    office->AddFiles({files.last()});
    QCOMPARE(office->fakes.prompts.Texts(),
             QStringList({"Too many files in the file list.", "Too many files in file list..."}));
    Click(window, "btnSend");
    QCOMPARE(Profile::Value("Select Pages from SendFax Where FolderID='1003'"), "51");
    QCOMPARE(office->Temporary(), QStringList());
}

void tst_ComposedFax::faultLeavesTheDraftAsItWas_data()
{
    const QByteArray limit = "--fsize=0:";
    const TestTable<QByteArray, QString> row{"tool", "text"};
    row("file gone", "rm \"$DOCS\"/letter.pdf; " + realTool, "Converting letter.pdf failed.");
    row("tool dies", "kill -9 $$", "Unknow error or Zem Fax Printer doesn't exist.");
    row("tool dies at work",
        "\"$VELMAR_BIN_DIR\"/ZemPrint.exe & for i in $(seq 300); do sleep 0.1; ls \"$OUTBOX\"/*.part "
        ">/dev/null 2>&1 && "
        "break; "
        "done; kill -9 $!",
        "Unknow error or Zem Fax Printer doesn't exist.");
    row("tool is silent", "touch \"$DOCS\"/cancel; exec sleep 300", "");
    row("disk full as it converts", "prlimit --pid $$ " + limit + "; " + realTool, "failed.");
    row("disk full as it saves", "prlimit --pid $PPID " + limit + "; " + realTool, "Saving fax failed.");
}

/// And it can be sent when the fault is mended.
void tst_ComposedFax::faultLeavesTheDraftAsItWas()
{
    QFETCH(QByteArray, tool);
    QFETCH(QString, text);
    const QByteArray page = PdfOf(1, boxInTheMiddle);
    const QString letter = office->Write("letter.pdf", page);
    const QByteArray slow = PdfOf(1, "/G gs " + QByteArray("0 0 595 842 re f\n").repeated(200000));
    const QString plan = office->Write("plan.pdf", tool.contains(".part") ? slow : page);
    QVERIFY(FaxFile().Write(Global().strOutputBoxPath + "D.tif"));
    office->profile.InsertSentFax("D", {{"FolderID", "1002"}, {"FileList", letter + ',' + plan + ','}});
    const auto stored = [] {
        return Profile::Values("Select Fax_ID||FolderID||FileName||FileList||Pages||Title from SendFax") +
               Office::Outbox().filter(QRegularExpression("^(?!tmp~)")) +
               QStringList(ReadTestFile(Global().strOutputBoxPath + "D.tif").toHex());
    };
    const QStringList before = stored();

    office->program.EditDraft("D");
    QWidget *window = Office::Composer();
    Get<QLineEdit>(window, "txtSubject").setText("changed");
    Get<QPlainTextEdit>(window, "txtReceive").setPlainText("2");
    office->UseTool(tool);
    QTimer cancel;
    connect(&cancel, &QTimer::timeout, this, [&] {
        if (QFile::remove(office->profile.Root() + "/docs/cancel"))
            Click(window, "btnCancel");
    });
    cancel.start(50);
    Click(window, "btnSend");
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_FSIZE, &limit);
    const QStringList told = office->fakes.prompts.Texts()
                             << Get<QPlainTextEdit>(window, "txtStatu").toPlainText();
    QVERIFY(told.join('\n').contains(text));
    QCOMPARE(stored(), before);
    QTRY_VERIFY_WITH_TIMEOUT(!HasChildren(), lLongestWait);

    if (Get<QWidget>(window, "picProcess").isVisible())
        Click(window, "btnCancel");
    QTRY_VERIFY(Get<QWidget>(window, "btnSend").isEnabled());
    office->Write("letter.pdf", page);
    office->Write("plan.pdf", page);
    office->UseTool(realTool);
    Click(window, "btnSend");
    QCOMPARE(Profile::Value("Select Fax_ID||FolderID||FileName||Pages||Title from SendFax"),
             "D1003D.tif2changed");
    // A rendering that could not be saved stays until the main window closes.
    QCOMPARE(Office::Outbox().filter(QRegularExpression("^(?!tmp~\\w{32}\\.tif$)")), {"D.tif"});
    QCOMPARE(office->Temporary(), QStringList());
}

QTEST_MAIN(tst_ComposedFax)
#include "tst_ComposedFax.moc"
