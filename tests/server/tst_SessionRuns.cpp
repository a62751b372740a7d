#include "core/Globals.h"
#include "core/ports/Timer.h"
#include "fixtures/SessionBench.h"
#include "server/AddressSync.h"
#include "server/FaxDownload.h"
#include "server/FaxUpload.h"
#include "server/RunScope.h"
#include "server/SessionRuns.h"
#include "server/wire/Frames.h"
#include "server/wire/clsClient.h"

#include <QTest>

#include <optional>

namespace {
class FakeSync final : public AddressSync
{
public:
    void GetServerData() override
    {
        ++lCalls;
        if (onSync)
            onSync();
    }
    int lCalls = 0;
    std::function<void()> onSync;
};

class FakeUpload final : public FaxUpload
{
public:
    bool GetSendFaxID(bool, const QString &, bool clearRows, bool) override
    {
        aCalls.append(clearRows);
        if (onUpload)
            onUpload();
        return true;
    }
    QList<bool> aCalls; ///< `clearRows` of each
    std::function<void()> onUpload;
};

struct Bench : SessionBench
{
    FakeSync sync;
    FakeUpload upload;
    FaxDownload download{
        ports.ports,
        {session, progress, status, desktop.printing, desktop.notifier, desktop.mainWindow, desktop.mailbox}};
    SessionRuns runs{ports.ports,
                     {session, progress, sync, upload, download, status, desktop.mainWindow, desktop.mailbox,
                      desktop.forms}};
};
} // namespace

class tst_SessionRuns : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench.emplace(); }
    void cleanup()
    {
        QVERIFY(!bench->ports.pump.IsStuck());
        QVERIFY(!bench->session.bIsSocketBusy);
        bench.reset();
    }

    void synchronisationOwnsTheConnection();
    void cancelledSynchronisationStopsThere();
    void activationOnline_data();
    void activationOnline();
    void activationOfflineAsksNothing();
    void refusedServerEndsTheProgram();
    void failedActivationStillPolls();
    void sendAndReceiveStopsAtCancel();
    void loginFromTheMainWindow_data();
    void loginFromTheMainWindow();
    void logOffAtCloseWaitsForTheAnswer();
    void logOffAtCloseTakesFiveSecondsAtMost_data();
    void logOffAtCloseTakesFiveSecondsAtMost();
    void logOffDuringARunEndsIt();
    void password_data();
    void password();
    void passwordDuringARunIsNotSent();

private:
    std::optional<Bench> bench;
};

void tst_SessionRuns::synchronisationOwnsTheConnection()
{
    Profile::Execute("Insert Into UserList(ID,LoginName) Values('u7','anna')");
    Global().strUserName = "Anna";
    bench->session.ServerVersions = QStringList{"old"};
    bench->session.bUserAbort = true; // from a window that was closed earlier
    bool wasBusy = false;
    QString buttonTag;
    bench->sync.onSync = [&] {
        wasBusy = bench->session.bIsSocketBusy;
        buttonTag = bench->progress.ButtonTag();
        QVERIFY(bench->session.ServerVersions.isEmpty());
    };
    bench->runs.SyncWithServer(true);
    QVERIFY(wasBusy);
    QCOMPARE(buttonTag, QString("Cancel"));
    QCOMPARE(bench->status.aChecks, QList<bool>{true});
    QCOMPARE(Global().strUserID, QString("u7"));
    QVERIFY(!bench->progress.IsLoaded());
}

void tst_SessionRuns::cancelledSynchronisationStopsThere()
{
    bench->sync.onSync = [this] {
        bench->progress.SetWindowMode(true, {});
        bench->progress.ClickCancelOperate();
    };
    bench->runs.SyncWithServer(false);
    QVERIFY(bench->status.aChecks.isEmpty());
    QVERIFY(!bench->session.IsConnected());
    QVERIFY(bench->progress.IsLoaded());
    QVERIFY(!bench->progress.IsSyncMode());
    QCOMPARE(bench->progress.ButtonTag(), QString("Close"));
}

void tst_SessionRuns::activationOnline_data()
{
    QTest::addColumn<bool>("connected");
    QTest::newRow("sends and receives") << true;
    QTest::newRow("synchronises only") << false;
}

void tst_SessionRuns::activationOnline()
{
    QFETCH(bool, connected);
    Global().Connected = connected;
    Global().MarkFax = 5;
    Global().strFaxFileToOpen = Global().strUserFolder + "open me.tif";
    QVERIFY(WriteTestFile(Global().strFaxFileToOpen, "fax"));
    bench->session.bAcceptReplies = false;
    if (connected)
        bench->SayLong("OK\r\n");
    bench->runs.ActivateFirst();
    QVERIFY(bench->session.bAcceptReplies);
    QCOMPARE(bench->sync.lCalls, 1);
    QCOMPARE(bench->upload.aCalls, connected ? QList<bool>{false} : QList<bool>{});
    QCOMPARE(bench->Heard(), connected ? QStringList("6") : QStringList());
    QCOMPARE(bench->status.aChecks.size(), connected ? 2 : 1);
    QCOMPARE(bench->session.MarkFaxTimer().Interval(), 5000);
    QVERIFY(bench->desktop.mainWindow.bCommMenu);
    QCOMPARE(bench->desktop.mainWindow.strServerPanel, QString("127.0.0.1"));
    QCOMPARE(bench->desktop.forms.aComposers, QStringList(Global().strFaxFileToOpen));
    QVERIFY(bench->desktop.mailbox.aCalls.contains("recount"));
    QVERIFY(bench->session.CheckFaxTimer().IsEnabled());
}

void tst_SessionRuns::activationOfflineAsksNothing()
{
    bench->session.bOnline = false;
    bench->desktop.mainWindow.bCommMenu = true;
    Global().Connected = true;
    Global().strFaxFileToOpen = "/no/such/file.tif";
    bench->runs.ActivateFirst();
    QCOMPARE(bench->sync.lCalls, 0);
    QVERIFY(!bench->desktop.mainWindow.bCommMenu);
    QVERIFY(bench->desktop.forms.aComposers.isEmpty());
    QVERIFY(bench->session.CheckFaxTimer().IsEnabled());
}

void tst_SessionRuns::refusedServerEndsTheProgram()
{
    Global().Connected = true;
    bench->sync.onSync = [this] { bench->session.bServerRefused = true; };
    bench->runs.ActivateFirst();
    QCOMPARE(bench->desktop.mainWindow.lUnloaded, 1);
    QVERIFY(bench->upload.aCalls.isEmpty());
    QVERIFY(bench->status.aChecks.isEmpty());
    QVERIFY(!bench->session.CheckFaxTimer().IsEnabled());
}

void tst_SessionRuns::failedActivationStillPolls()
{
    bench->sync.onSync = [] { Profile::Execute("Update Option Set lServerResendTimes= ,Company=''"); };
    bench->runs.ActivateFirst();
    QCOMPARE(bench->ports.prompts.aBoxes.size(), 1);
    QVERIFY(bench->ports.prompts.Texts().constFirst().endsWith("Form_Activate - frmMain"));
    QVERIFY(bench->session.CheckFaxTimer().IsEnabled());
    QVERIFY(!bench->progress.IsLoaded());
}

void tst_SessionRuns::sendAndReceiveStopsAtCancel()
{
    bench->upload.onUpload = [this] { bench->session.bUserAbort = true; };
    bench->runs.mnuSendReceive();
    QCOMPARE(bench->Heard(), QStringList());
    QVERIFY(bench->status.aChecks.isEmpty());
}

void tst_SessionRuns::loginFromTheMainWindow_data()
{
    QTest::addColumn<bool>("succeeds");
    QTest::addColumn<bool>("connected");
    QTest::addColumn<QList<bool>>("uploads");
    QTest::newRow("refused") << false << true << QList<bool>{};
    QTest::newRow("synchronises only") << true << false << QList<bool>{};
    QTest::newRow("receives, sends, and both") << true << true << QList<bool>{true, false};
}

void tst_SessionRuns::loginFromTheMainWindow()
{
    QFETCH(bool, succeeds);
    QFETCH(bool, connected);
    Global().Connected = connected;
    bench->session.bOnline = false;
    int pendingAtLogin = 0;
    bench->desktop.forms.login = [&] {
        pendingAtLogin = bench->session.lPendingCommand;
        return succeeds;
    };
    bench->SayLong("OK\r\n").SayLong("OK\r\n");
    bench->runs.mnuLoginServer();
    QCOMPARE(pendingAtLogin, int(pndGreeting));
    QCOMPARE(bench->session.bOnline, succeeds);
    QCOMPARE(bench->desktop.mainWindow.bCommMenu, succeeds);
    QTEST(bench->upload.aCalls, "uploads");
    QCOMPARE(bench->sync.lCalls, succeeds ? 1 : 0);
    QCOMPARE(bench->desktop.mainWindow.strServerPanel, QString(succeeds ? "127.0.0.1" : ""));
}

void tst_SessionRuns::logOffAtCloseWaitsForTheAnswer()
{
    bench->Silence(1000).SayShort("OK");
    bench->runs.LogOffAtClose();
    QCOMPARE(bench->Heard(), QStringList("2"));
    QVERIFY(bench->ports.clock.lMilliseconds < 1100);
    QCOMPARE(bench->Socket().State(), Socket::sckClosed);
}

void tst_SessionRuns::logOffAtCloseTakesFiveSecondsAtMost_data()
{
    QTest::addColumn<bool>("connected");
    QTest::newRow("no answer") << true;
    QTest::newRow("no way to connect") << false;
}

void tst_SessionRuns::logOffAtCloseTakesFiveSecondsAtMost()
{
    QFETCH(bool, connected);
    if (!connected)
        bench->Socket().CloseByServer();
    bench->runs.LogOffAtClose();
    QCOMPARE(bench->ports.clock.lMilliseconds, 5000);
    QCOMPARE(bench->Socket().State(), Socket::sckClosed);
}

void tst_SessionRuns::logOffDuringARunEndsIt()
{
    bench->Then([this] { bench->runs.LogOffAtClose(); });
    bench->download.ReceiveFaxes(false, false, true, true);
    QVERIFY(bench->ports.clock.lMilliseconds < 100);
    QCOMPARE(bench->Heard(), QStringList("6"));
}

void tst_SessionRuns::password_data()
{
    QTest::addColumn<QByteArray>("answer"); // empty for silence
    QTest::addColumn<bool>("changed");
    QTest::addColumn<bool>("connected");
    QTest::addColumn<QString>("message");
    QTest::newRow("taken") << QByteArray("OK\r\n") << true << true << "Your new password has been saved.";
    QTest::newRow("refused") << QByteArray("ERR\r\n1\r\n") << false << true << "";
    // Closed, or the window would take the silence for a refusal.
    QTest::newRow("silence") << QByteArray() << false << false << "Failed to connect to Velmar Server.";
}

void tst_SessionRuns::password()
{
    QFETCH(QByteArray, answer);
    QFETCH(QString, message);
    if (!answer.isEmpty())
        bench->SayShort(answer);
    const bool changed = bench->runs.ChangePassword("old", "new");
    QTEST(changed, "changed");
    QTEST(bench->session.IsConnected(), "connected");
    QCOMPARE(bench->Heard(),
             QStringList("11 anna " + Frames::Md5Digest("old") + ' ' + Frames::Md5Digest("new")));
    QCOMPARE(bench->ports.prompts.Texts().join('|'), message);
}

void tst_SessionRuns::passwordDuringARunIsNotSent()
{
    RunScope run(bench->session);
    QVERIFY(!bench->runs.ChangePassword("old", "new"));
    QCOMPARE(bench->Heard(), QStringList());
    QCOMPARE(bench->ports.prompts.aBoxes.size(), 1);
}

QTEST_GUILESS_MAIN(tst_SessionRuns)
#include "tst_SessionRuns.moc"
