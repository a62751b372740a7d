#include "core/Globals.h"
#include "core/ports/Timer.h"
#include "fixtures/SessionBench.h"
#include "server/AddressSync.h"
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
    void activation_data();
    void activation();
    void activationThatIsCutShort_data();
    void activationThatIsCutShort();
    void sendAndReceiveStopsAtCancel();
    void loginFromTheMainWindow_data();
    void loginFromTheMainWindow();
    void logOffAtClose_data();
    void logOffAtClose();
    void logOffDuringARunEndsIt();
    void password_data();
    void password();

private:
    std::optional<Bench> bench;
};

void tst_SessionRuns::synchronisationOwnsTheConnection()
{
    Profile::Execute("Insert Into UserList(ID,LoginName) Values('u7','anna')");
    Global().strUserName = "Anna";
    bench->session.ServerVersions = QStringList{"old"};
    bench->session.bUserAbort = true; // from a window that was closed earlier
    bench->sync.onSync = [&] {
        QVERIFY(bench->session.bIsSocketBusy && bench->session.ServerVersions.isEmpty());
        QCOMPARE(bench->progress.ButtonTag(), QString("Cancel"));
    };
    bench->runs.SyncWithServer(true);
    QCOMPARE(bench->sync.lCalls, 1);
    QCOMPARE(bench->status.aChecks, QList<bool>{true});
    QCOMPARE(Global().strUserID, QString("u7"));
    QVERIFY(!bench->progress.IsLoaded());
    const RunScope other(bench->session); // a second run does nothing
    bench->runs.SyncWithServer(true);
    QCOMPARE(bench->sync.lCalls, 1);
    bench->runs.mnuLogoutServer();
    QVERIFY(!bench->runs.ChangePassword("old", "new") && bench->session.bOnline);
    QCOMPARE(bench->ports.prompts.aBoxes.size(), 1);
    QCOMPARE(bench->Heard(), QStringList());
}

void tst_SessionRuns::cancelledSynchronisationStopsThere()
{
    bench->sync.onSync = [this] {
        bench->progress.SetWindowMode(true, {});
        bench->progress.ClickCancelOperate();
    };
    bench->runs.SyncWithServer(false);
    QVERIFY(bench->status.aChecks.isEmpty() && !bench->session.IsConnected());
    QVERIFY(bench->progress.IsLoaded() && !bench->progress.IsSyncMode());
    QCOMPARE(bench->progress.ButtonTag(), QString("Close"));
}

void tst_SessionRuns::activation_data()
{
    QTest::addColumn<bool>("online");
    QTest::addColumn<bool>("connected");
    QTest::addColumn<QString>("done"); // synchronisations, uploads, states, heard
    QTest::newRow("sends and receives") << true << true << "1 1 2 6";
    QTest::newRow("synchronises only") << true << false << "1 0 1 ";
    QTest::newRow("offline") << false << true << "0 0 0 ";
}

void tst_SessionRuns::activation()
{
    QFETCH(bool, online);
    QFETCH(bool, connected);
    Global().Connected = connected;
    Global().MarkFax = 5;
    Global().strFaxFileToOpen = Global().strUserFolder + "open me.tif";
    QVERIFY(WriteTestFile(Global().strFaxFileToOpen, "fax"));
    bench->session.bAcceptReplies = false;
    bench->session.bOnline = online;
    if (online && connected)
        bench->SayLong("OK\r\n");
    bench->runs.ActivateFirst();
    QTEST(QString("%1 %2 %3 %4")
              .arg(QString::number(bench->sync.lCalls), QString::number(bench->upload.aCalls.size()),
                   QString::number(bench->status.aChecks.size()), bench->Heard().join(' ')),
          "done");
    QCOMPARE(bench->session.MarkFaxTimer().Interval(), 5000);
    QCOMPARE(bench->desktop.mainWindow.bCommMenu, online);
    QCOMPARE(bench->desktop.mainWindow.strServerPanel, QString(online ? "127.0.0.1" : ""));
    QCOMPARE(bench->desktop.forms.aComposers, QStringList(Global().strFaxFileToOpen));
    QVERIFY(bench->desktop.mailbox.aCalls.contains("recount"));
    QVERIFY(bench->session.bAcceptReplies && bench->session.CheckFaxTimer().IsEnabled());
}

void tst_SessionRuns::activationThatIsCutShort_data()
{
    QTest::addColumn<QString>("how");
    for (const char *how : {"server refused", "error", "closed"})
        QTest::newRow(how) << how;
}

void tst_SessionRuns::activationThatIsCutShort()
{
    QFETCH(QString, how);
    Global().Connected = true;
    Global().strFaxFileToOpen = Global().strUserFolder + "open me.tif";
    QVERIFY(WriteTestFile(Global().strFaxFileToOpen, "fax"));
    bench->sync.onSync = [&] {
        bench->session.bServerRefused = how == "server refused";
        if (how == "closed") {
            bench->runs.LogOffAtClose();
            bench->ports.pump.Quit();
        }
        if (how == "error")
            Profile::Execute("Update Option Set lServerResendTimes= ,Company=''");
    };
    bench->runs.ActivateFirst();
    QCOMPARE(bench->Heard(), QStringList());
    QVERIFY(!bench->progress.IsVisible());
    QCOMPARE(bench->desktop.mainWindow.lUnloaded, how == "server refused" ? 1 : 0);
    QCOMPARE(bench->desktop.forms.aComposers.size(), how == "error" ? 1 : 0);
    const QString place = bench->ports.prompts.Texts().join('|').section('\n', -1);
    QCOMPARE(place, how == "error" ? "Form_Activate - frmMain" : "");
    QVERIFY(how != "error" || bench->session.CheckFaxTimer().IsEnabled()); // or no fax would come in
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
    bench->desktop.forms.login = [&] { return bench->session.lPendingCommand == pndGreeting && succeeds; };
    bench->SayLong("OK\r\n").SayLong("OK\r\n");
    bench->runs.mnuLoginServer();
    QCOMPARE(bench->session.bOnline, succeeds);
    QCOMPARE(bench->desktop.mainWindow.bCommMenu, succeeds);
    QTEST(bench->upload.aCalls, "uploads");
    QCOMPARE(bench->sync.lCalls, succeeds ? 1 : 0);
    QCOMPARE(bench->desktop.mainWindow.strServerPanel, QString(succeeds ? "127.0.0.1" : ""));
}

void tst_SessionRuns::logOffAtClose_data()
{
    QTest::addColumn<bool>("connected");
    QTest::addColumn<bool>("answered");
    QTest::addColumn<int>("milliseconds");
    QTest::newRow("answer") << true << true << 1010;
    QTest::newRow("no answer") << true << false << 5000;
    QTest::newRow("no way to connect") << false << false << 5000;
}

void tst_SessionRuns::logOffAtClose()
{
    QFETCH(bool, connected);
    QFETCH(bool, answered);
    if (!connected)
        bench->Socket().CloseByServer();
    bench->Silence(500).Then([this] { bench->runs.mnuSendReceive(); }); // a click in the meantime
    bench->Silence(answered ? 490 : 9000).SayShort("OK");
    bench->runs.LogOffAtClose();
    QCOMPARE(bench->Heard(), connected ? QStringList("2") : QStringList());
    QTEST(int(bench->ports.clock.lMilliseconds), "milliseconds");
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

QTEST_GUILESS_MAIN(tst_SessionRuns)
#include "tst_SessionRuns.moc"
