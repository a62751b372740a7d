#include "core/CSharedString.h"
#include "core/Globals.h"
#include "core/OutsideFile.h"
#include "core/Schema.h"
#include "core/SettingsFile.h"
#include "fixtures/Profile.h"
#include "fixtures/TrialServer.h"
#include "platform/SystemInstance.h"
#include "platform/SystemSharedBlocks.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <csignal>
#include <functional>

namespace {
constexpr quint32 lSeed = 20240131;
constexpr int lFaxes = 50;
constexpr int lKills = 12;
constexpr int lLongestWait = 30000;

bool WaitFor(const std::function<bool()> &condition)
{
    const QDeadlineTimer deadline(lLongestWait);
    while (!condition() && !deadline.hasExpired())
        QThread::usleep(300);
    return condition();
}

/// A copy of the program as users start it.
class Copy final : public QProcess
{
public:
    explicit Copy(const QStringList &arguments = {})
    {
        setProcessChannelMode(ForwardedErrorChannel);
        start(Program("VelmarClient"), arguments);
    }
    ~Copy() override
    {
        kill();
        waitForFinished();
    }
    static QString Program(const QString &name)
    {
        return QDir(qEnvironmentVariable("VELMAR_BIN_DIR")).filePath(name);
    }
    void Signal(int signal) { ::kill(static_cast<pid_t>(processId()), signal); }
    /// Runs events meanwhile.
    bool EndsWell()
    {
        return QTest::qWaitFor([this] { return state() == NotRunning; }, 20000) &&
               exitStatus() == NormalExit && exitCode() == 0;
    }
};

} // namespace

/// The program itself, as users start it, with an account that logs in by itself: started twice, closed, and
/// ended by SIGKILL again and again while it fetches.
class tst_Program : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        home = std::make_unique<QTemporaryDir>(); // nobody else may enter it, as a runtime folder needs
        for (const char *variable : {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "VELMAR_DATA_HOME"})
            qputenv(variable, home->path().toUtf8());
        server = std::make_unique<TrialServer>();
        QVERIFY(server->AddUser("anna", "anna"));
    }

    void secondCopyRaisesTheFirstAndHandsItsFileOver()
    {
        QVERIFY(server->Start());
        PrepareProfile();
        // Without a fetch at the start, whose window would stay open.
        QVERIFY(OpenClientDatabase(DatabaseFile()));
        Global().objDB->Execute("Update Option Set Connected=0");
        Global().objDB.reset();
        SystemSharedBlocks blocks;
        CSharedString handle, outsideFile;
        handle.Create(blocks, OutsideFile::processHandleName);
        outsideFile.Create(blocks, OutsideFile::outsideFileName);
        Copy first;
        // It shows its main window.
        QTRY_COMPARE_WITH_TIMEOUT(handle.Item(), QString::number(first.processId()), 30000);
        first.Signal(SIGSTOP); // it cannot take the file yet, nor is it asked
        SystemInstance instance;
        QSignalSpy raised(&instance, &Instance::RaiseRequested);
        handle.SetItem(QString::number(instance.PublishWindow()));
        const QString fax = server->MakeFax("a fax.tif");
        Copy second({fax});
        QVERIFY(second.EndsWell());
        QCOMPARE(outsideFile.Item(), fax);
        QTRY_COMPARE(raised.size(), 1);
        first.Signal(SIGCONT);
        QTRY_COMPARE_WITH_TIMEOUT(outsideFile.Item(), QString(), 30000);
        QCOMPARE(first.state(), QProcess::Running);
    }

    void faxesArriveOnceThoughFetchesAreKilled()
    {
        QStringList files;
        for (int i = 0; i < lFaxes; ++i) {
            files.append(server->MakeFax(QString("fax%1.tif").arg(i), 1, 40000));
            delivered.insert(QString("fax%1").arg(i), ReadTestFile(files.last()));
        }
        QVERIFY(server->Deliver("anna", files));
        QVERIFY(server->Start("on 7 pieces 4000 10\n")); // 100 ms a fax: a fetch outlasts the kills
        PrepareProfile();
        qInfo("The seed is %u.", lSeed);
        for (int i = 0; i < lKills; ++i) {
            KillOnce(Moment(i % 4));
            QVERIFY(!QTest::currentTestFailed());
        }
        qInfo() << "Left behind:" << leftBehind;
        QVERIFY2(leftBehind.contains("part of a file"), "no kill hit a file");

        Copy client;
        QVERIFY(OpenClientDatabase(DatabaseFile()));
        QVERIFY(WaitFor([] {
            const auto count = Global().objDB->SelectEx("Select Count(*) From ReceiveFax");
            return count->Next() && count->Number(0) == lFaxes;
        }));
        client.terminate(); // closes the main window, which stores its layout
        QVERIFY(client.EndsWell());
        QVERIFY(ReadIniValue("anna", "picPreview_Height", home->filePath("Velmar/FaxSetup.ini")).toInt() > 0);

        QStringList names;
        QMap<QString, QByteArray> stored;
        const auto rows = Global().objDB->SelectEx("Select Title,FileName From ReceiveFax Order By FileName");
        for (; rows->Next(); names.append(rows->Text(1)))
            stored.insert(rows->Text(0), ReadTestFile(Inbox().filePath(rows->Text(1))));
        QVERIFY(stored == delivered);
        QCOMPARE(Inbox().entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name),
                 names);
    }

private:
    /// What is seen on the disk before a kill is due.
    enum Moment { LoggedIn, FileBegun, FileWhole, RowBegun };

    void PrepareProfile() const
    {
        QCOMPARE(QProcess::execute(Copy::Program("VelmarDemo"), {"prepare", "--server", server->Address(),
                                                                 "--account", "anna", "--password", "anna"}),
                 0);
    }
    void KillOnce(Moment moment);
    /// Files in the inbox that have got so far.
    int FileCount(Moment moment) const;
    /// A login writes its choices into the profile, and so does each fax.
    QDateTime WriteTime() const { return QFileInfo(JournalFile()).lastModified(); }
    QString JournalFile() const { return DatabaseFile() + "-journal"; }
    QDir Inbox() const { return home->filePath("Velmar/anna/InputBox"); }
    QString DatabaseFile() const { return home->filePath("Velmar/anna/Database/MFax_Client.mfd"); }

    std::unique_ptr<QTemporaryDir> home;
    std::unique_ptr<TrialServer> server;
    QMap<QString, QByteArray> delivered; ///< bytes by title, all of one size
    QRandomGenerator random{lSeed};
    QMap<QString, int> leftBehind;
};

/// One start, which has to open the profile, log in and fetch on until the moment has come.
void tst_Program::KillOnce(Moment moment)
{
    const int microseconds = random.bounded(QList{300000, 60000, 3000, 1000}.at(moment));
    const int files = FileCount(std::min(moment, FileWhole)) + random.bounded(2);
    const QDateTime before = WriteTime();
    Copy client;
    const bool isReached =
        WaitFor([&] { return moment == LoggedIn ? WriteTime() > before : FileCount(moment) > files; });
    QThread::usleep(ulong(microseconds));
    client.kill();
    QVERIFY(client.waitForFinished(lLongestWait));
    QVERIFY2(isReached, qUtf8Printable(QString("moment %1").arg(moment)));
    QCOMPARE(client.exitCode(), SIGKILL);
    QVERIFY2(FileCount(FileWhole) < lFaxes, "the fetch was over before the kill");
    if (ReadTestFile(JournalFile()).startsWith("\xd9\xd5")) // the mark goes when the change is complete
        ++leftBehind["an unfinished row"];
    else if (FileCount(FileBegun) > FileCount(FileWhole))
        ++leftBehind["part of a file"];
    else if (FileCount(FileWhole) > FileCount(RowBegun))
        ++leftBehind["a file without its row"];
}

int tst_Program::FileCount(Moment moment) const
{
    const QFileInfoList files = Inbox().entryInfoList(QDir::Files);
    const QDateTime journal = WriteTime();
    return int(std::count_if(files.begin(), files.end(), [&](const QFileInfo &file) {
        const bool isWhole = file.size() == delivered.first().size();
        return moment == FileBegun || (isWhole && (moment == FileWhole || file.lastModified() <= journal));
    }));
}

QTEST_GUILESS_MAIN(tst_Program)
#include "tst_Program.moc"
