#include "core/Globals.h"
#include "core/Schema.h"
#include "fixtures/TrialServer.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QMap>
#include <QProcess>
#include <QRandomGenerator>
#include <QTest>
#include <QThread>

#include <csignal>
#include <functional>

namespace {
constexpr quint32 lSeed = 20240131;
constexpr int lFaxes = 50;
constexpr int lKills = 20;
constexpr int lLongestWait = 30000;
const QByteArray script = "on 7 pieces 4000 10\n"; // 100 ms a fax: a fetch outlasts the kills

bool WaitFor(const std::function<bool()> &condition)
{
    const QDeadlineTimer deadline(lLongestWait);
    while (!condition() && !deadline.hasExpired())
        QThread::usleep(300);
    return condition();
}

QByteArray ReadFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
} // namespace

/// The program itself, ended by SIGKILL again and again while it fetches the same faxes.
class tst_KilledWhileFetching : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void everyFaxArrivesOnce();

private:
    /// What is seen on the disk before a kill is due.
    enum Moment { LoggedIn, FileBegun, FileWhole, RowBegun };

    void Start(QProcess &process, const QString &program, const QStringList &options = {}) const;
    void KillOnce(Moment moment);
    /// Files in the inbox that have got so far.
    int FileCount(Moment moment) const;
    /// A login writes the settings.
    QDateTime LoginTime() const { return QFileInfo(home.filePath("Velmar/FaxSetup.ini")).lastModified(); }
    QString JournalFile() const { return DatabaseFile() + "-journal"; }
    QDir Inbox() const { return home.filePath("Velmar/anna/InputBox"); }
    QString DatabaseFile() const { return home.filePath("Velmar/anna/Database/MFax_Client.mfd"); }

    QTemporaryDir home; ///< nobody else may enter it, as a runtime folder needs
    TrialServer server;
    QMap<QString, QByteArray> delivered; ///< bytes by title, all of one size
    QRandomGenerator random{lSeed};
    QMap<QString, int> leftBehind;
};

void tst_KilledWhileFetching::initTestCase()
{
    QStringList files;
    for (int i = 0; i < lFaxes; ++i) {
        files.append(server.MakeFax(QString("fax%1.tif").arg(i), 1, 40000));
        delivered.insert(QString("fax%1").arg(i), ReadFile(files.last()));
    }
    QVERIFY2(server.AddUser("anna", "anna") && server.Deliver("anna", files) && server.Start(script),
             qUtf8Printable(server.Problem()));
    QProcess demo;
    Start(demo, "VelmarDemo",
          {"prepare", "--server", server.Address(), "--account", "anna", "--password", "anna"});
    QVERIFY(demo.waitForFinished(lLongestWait));
    QCOMPARE(demo.exitCode(), 0);
}

void tst_KilledWhileFetching::everyFaxArrivesOnce()
{
    qInfo("The seed is %u.", lSeed);
    for (int i = 0; i < lKills; ++i) {
        KillOnce(Moment(i % 4));
        QVERIFY(!QTest::currentTestFailed());
    }
    qInfo() << "Left behind:" << leftBehind;
    QVERIFY2(leftBehind.contains("part of a file"), "no kill hit a file");

    QProcess client;
    Start(client, "VelmarClient");
    QVERIFY(OpenClientDatabase(DatabaseFile()));
    QVERIFY(WaitFor([] {
        const auto count = Global().objDB->SelectEx("Select Count(*) From ReceiveFax");
        return count->Next() && count->Number(0) == lFaxes;
    }));
    client.terminate();
    QVERIFY(client.waitForFinished(lLongestWait));
    QCOMPARE(client.exitCode(), 0);

    QStringList files;
    QMap<QString, QByteArray> stored;
    const auto rows = Global().objDB->SelectEx("Select Title,FileName From ReceiveFax Order By FileName");
    for (; rows->Next(); files.append(rows->Text(1)))
        stored.insert(rows->Text(0), ReadFile(Inbox().filePath(rows->Text(1))));
    QVERIFY(stored == delivered);
    QCOMPARE(Inbox().entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name), files);
}

/// One start, which has to open the profile, log in and fetch on until the moment has come.
void tst_KilledWhileFetching::KillOnce(Moment moment)
{
    const int microseconds = random.bounded(QList{300000, 60000, 3000, 1000}.at(moment));
    const int files = FileCount(std::min(moment, FileWhole)) + random.bounded(2);
    const QDateTime before = LoginTime();
    QProcess client;
    Start(client, "VelmarClient");
    const bool isReached =
        WaitFor([&] { return moment == LoggedIn ? LoginTime() > before : FileCount(moment) > files; });
    QThread::usleep(ulong(microseconds));
    client.kill();
    QVERIFY(client.waitForFinished(lLongestWait));
    QVERIFY2(isReached, qUtf8Printable(QString("moment %1").arg(moment)));
    QCOMPARE(client.exitCode(), SIGKILL);
    QVERIFY2(FileCount(FileWhole) < lFaxes, "the fetch was over before the kill");
    if (ReadFile(JournalFile()).startsWith("\xd9\xd5")) // the mark goes when the change is complete
        ++leftBehind["an unfinished row"];
    else if (FileCount(FileBegun) > FileCount(FileWhole))
        ++leftBehind["part of a file"];
    else if (FileCount(FileWhole) > FileCount(RowBegun))
        ++leftBehind["a file without its row"];
}

void tst_KilledWhileFetching::Start(QProcess &process, const QString &program,
                                    const QStringList &options) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "VELMAR_DATA_HOME"})
        environment.insert(name, home.path());
    process.setProcessEnvironment(environment);
    process.start(QDir(qEnvironmentVariable("VELMAR_BIN_DIR")).filePath(program), options);
    QVERIFY(process.waitForStarted(lLongestWait));
}

int tst_KilledWhileFetching::FileCount(Moment moment) const
{
    const QFileInfoList files = Inbox().entryInfoList(QDir::Files);
    const QDateTime journal = QFileInfo(JournalFile()).lastModified();
    return int(std::count_if(files.begin(), files.end(), [&](const QFileInfo &file) {
        const bool isWhole = file.size() == delivered.first().size();
        return moment == FileBegun || (isWhole && (moment == FileWhole || file.lastModified() <= journal));
    }));
}

QTEST_GUILESS_MAIN(tst_KilledWhileFetching)
#include "tst_KilledWhileFetching.moc"
