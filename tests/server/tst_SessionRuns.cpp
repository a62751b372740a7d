#include "core/Globals.h"
#include "core/ports/Timer.h"
#include "fixtures/SessionBench.h"
#include "fixtures/TestTable.h"
#include "server/AddressSync.h"
#include "server/FaxSender.h"
#include "server/Polling.h"
#include "server/ReturnReceipts.h"
#include "server/RunScope.h"
#include "server/SessionRuns.h"
#include "server/wire/Frames.h"
#include "server/wire/clsClient.h"

#include <optional>

namespace {
class FakeSync final : public AddressSync
{
public:
    using AddressSync::AddressSync;
    void GetServerData() override
    {
        ++lCalls;
        if (onSync)
            onSync();
    }
    int lCalls = 0;
    std::function<void()> onSync;
};

class FakeUpload final : public FaxSender
{
public:
    bool GetSendFaxID(bool, const QString &, bool clearRows, bool) override
    {
        aCalls.append(clearRows);
        return true;
    }
    QList<bool> aCalls; ///< `clearRows` of each
};

struct Bench : SessionBench
{
    ReturnReceipts receipts{ports.ports, session, desktop.mailbox, desktop.mainWindow};
    FakeSync sync{ports.ports, {session, progress, receipts, desktop.addressTree}};
    FakeUpload upload;
    SessionRuns runs{ports.ports,
                     {session, progress, sync, upload, download, status, desktop.mainWindow, desktop.mailbox,
                      desktop.forms}};
    Polling polling{ports.ports, session, download, desktop.forms, {}};
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

    void synchronisationOwnsTheConnection()
    {
        Profile::Execute("Insert Into UserList(ID,LoginName) Values('u7','anna')");
        Global().strUserName = "Anna";
        bench->session.ServerVersions = QStringList{"old"};
        bench->session.bUserAbort = true; // from a window that was closed earlier
        Timer &checkFax = bench->session.CheckFaxTimer(), &markFax = bench->session.MarkFaxTimer();
        checkFax.SetEnabled(true);
        bench->sync.onSync = [&] {
            QVERIFY(bench->session.bIsSocketBusy && bench->session.ServerVersions.isEmpty());
            QVERIFY(!checkFax.IsEnabled() && !markFax.IsEnabled() && bench->desktop.mainWindow.bEnabled);
            QCOMPARE(bench->progress.ButtonTag(), QString("Cancel"));
        };
        bench->runs.SyncWithServer(true);
        QCOMPARE(bench->sync.lCalls, 1);
        QCOMPARE(bench->status.aChecks, QList<bool>{true});
        QCOMPARE(Global().strUserID, QString("u7"));
        QVERIFY(!bench->progress.IsLoaded() && checkFax.IsEnabled() && markFax.IsEnabled());
        const RunScope other(bench->session); // a second run does nothing
        bench->runs.SyncWithServer(true);
        QCOMPARE(bench->sync.lCalls, 1);
        bench->runs.mnuLogoutServer();
        QVERIFY(!bench->runs.ChangePassword("old", "new") && bench->session.bOnline);
        QCOMPARE(bench->ports.prompts.aBoxes.size(), 1);
        QCOMPARE(bench->Heard(), QStringList());
    }

    void cancelledSynchronisationLeavesAWindowForTheNextRun()
    {
        bench->sync.onSync = [this] {
            bench->progress.SetWindowMode(true, {});
            bench->progress.SetText("Synchronizing contacts...");
            bench->progress.ClickCancelOperate();
        };
        bench->runs.mnuSyncAddressBook();
        const Progress &progress = bench->progress;
        QVERIFY(progress.IsVisible() && progress.ButtonTag() == "Close");
        QCOMPARE(QStringList({progress.Text(), progress.Caption(), progress.FileHeader()}),
                 QStringList({"User abort.", "Velmar Client", "File"}));
    }

    void activation_data()
    {
        const TestTable<bool, bool, QString, QString> row{"online", "connected", "cutShort", "done"};
        // Done: synchronisations, uploads, states, composers, heard
        row("sends and receives", true, true, "", "1 1 2 1 6");
        row("synchronises only", true, false, "", "1 0 1 1 ");
        row("offline", false, true, "", "0 0 0 1 ");
        row("server refuses", true, true, "refused", "1 0 0 0 ");
        row("error", true, true, "error", "1 0 0 1 ");
        row("closed meanwhile", true, true, "closed", "1 1 1 0 "); // nothing is heard
    }

    void activation()
    {
        QFETCH(bool, online);
        QFETCH(QString, cutShort);
        QFETCH(bool, connected);
        Global().Connected = connected;
        bench->session.bAcceptReplies = false;
        Global().strFaxFileToOpen = Global().strUserFolder + "open me.tif";
        QVERIFY(WriteTestFile(Global().strFaxFileToOpen, "fax"));
        bench->session.bOnline = online;
        bench->sync.onSync = [&] {
            bench->session.bServerRefused = cutShort == "refused";
            if (cutShort == "error")
                Profile::Execute("Update Option Set lServerResendTimes= ,Company=''");
            if (cutShort == "closed") {
                bench->runs.LogOffAtClose();
                bench->ports.pump.Quit();
            } else if (cutShort.isEmpty()) {
                bench->SayLong("OK\r\n");
            }
        };
        bench->runs.ActivateFirst();
        const QString done =
            QString("%1 %2 %3 %4 %5")
                .arg(QString::number(bench->sync.lCalls), QString::number(bench->upload.aCalls.size()),
                     QString::number(bench->status.aChecks.size()),
                     QString::number(bench->desktop.forms.aComposers.size()), bench->Heard().join(' '));
        QTEST(done, "done");
        QCOMPARE(bench->desktop.mainWindow.lUnloaded, cutShort == "refused" ? 1 : 0);
        const QString place = bench->ports.prompts.Texts().join('|').section('\n', -1);
        QCOMPARE(place, cutShort == "error" ? "Form_Activate - frmMain" : "");
        if (cutShort.isEmpty()) {
            QCOMPARE(bench->desktop.mainWindow.bCommMenu, online);
            QCOMPARE(bench->desktop.mainWindow.strServerPanel, QString(online ? "127.0.0.1" : ""));
        }
        if (cutShort.isEmpty() || cutShort == "error") // or no fax would come in
            QVERIFY(bench->session.bAcceptReplies && bench->session.CheckFaxTimer().IsEnabled());
    }

    void loginFromTheMainWindow()
    {
        Global().Connected = true;
        bench->session.bOnline = false;
        bool succeeds = false;
        bench->desktop.forms.login = [&] {
            return bench->session.lPendingCommand == pndGreeting && succeeds;
        };
        bench->runs.mnuLoginServer();
        QVERIFY(!bench->session.bOnline && bench->sync.lCalls == 0 && bench->upload.aCalls.isEmpty());
        succeeds = true;
        bench->SayLong("OK\r\n").SayLong("OK\r\n");
        bench->runs.mnuLoginServer();
        QVERIFY(bench->session.bOnline && bench->desktop.mainWindow.bCommMenu);
        QCOMPARE(bench->upload.aCalls, QList<bool>({true, false})); // receives, sends, and both
        QCOMPARE(bench->sync.lCalls, 1);
        QCOMPARE(bench->desktop.mainWindow.strServerPanel, QString("127.0.0.1"));
    }

    void logOffAtClose_data()
    {
        const TestTable<bool, bool, int> row{"connected", "answered", "milliseconds"};
        row("answer", true, true, 1010);
        row("no answer", true, false, 5000);
        row("no way to connect", false, false, 5000);
    }

    void logOffAtClose()
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

    void logOffDuringARunEndsIt()
    {
        bench->Then([this] { bench->runs.LogOffAtClose(); });
        bench->download.ReceiveFaxes(false, false, true, true);
        QVERIFY(bench->ports.clock.lMilliseconds < 100);
        QCOMPARE(bench->Heard(), QStringList("6"));
    }

    void silenceOnTheNewPasswordClosesTheConnection() // or the window would take it for a refusal
    {
        QVERIFY(!bench->runs.ChangePassword("old", "new") && !bench->session.IsConnected());
        QCOMPARE(bench->Heard(),
                 QStringList("11 anna " + Frames::Md5Digest("old") + ' ' + Frames::Md5Digest("new")));
        QCOMPARE(bench->ports.prompts.Texts(), QStringList("Failed to connect to Velmar Server."));
    }

    void fetchesWhenTheMinutesAreOver()
    {
        Global().CheckFax = 2;
        Poll(119);
        QCOMPARE(bench->Heard(), QStringList());
        bench->desktop.forms.lCount = 2; // another window is open
        Poll(30);
        QCOMPARE(bench->Heard(), QStringList());
        bench->desktop.forms.lCount = 1;
        bench->Silence(1500).SayLong("OK\r\n");
        Poll(2);
        QCOMPARE(bench->Heard(), QStringList("6"));
        QVERIFY(!bench->progress.IsLoaded());
    }

    void neverFetches()
    {
        for (const int minutes : {0, 1, 2}) { // never, not while offline, and not while busy
            Global().CheckFax = minutes;
            bench->session.bOnline = minutes != 1;
            bench->session.bIsSocketBusy = minutes == 2;
            Poll(200);
            QVERIFY(bench->Heard().isEmpty() && bench->session.lCheckTicks == 0);
        }
        bench->session.bIsSocketBusy = false;
    }

    /// Neither the fetch nor the idle logout may come between a command and its reply.
    void commandUnderWayIsLeftAlone()
    {
        Global().DisconnectTime = 1;
        Poll(57);
        bench->session.BeginCommand(pndVersions).GetContactVersion();
        QCOMPARE(bench->session.WaitForServerReply(), WaitEnd::Silent);
        QCOMPARE(bench->Heard(), QStringList("3"));
    }

    void idleUserIsLoggedOutAndComesBackSilently()
    {
        Global().CheckFax = 2;
        Global().DisconnectTime = 1;
        Poll(60);
        QCOMPARE(bench->Heard(), QStringList());
        Poll(30);
        QCOMPARE(bench->Heard(), QStringList("2")); // once, though the server does not close
        QVERIFY(bench->session.bUserLogout && bench->session.bOnline);
        bench->ForgetHeard();
        Poll(29);
        bench->Silence(1500).AcceptConnection().SayLong("OK\r\n");
        Poll(50);
        QCOMPARE(bench->Heard(), QStringList({"1 anna " + Global().strPwdDigest, "6"}));
        QVERIFY(!bench->session.bUserLogout);
    }

private:
    /// So many seconds with the clock of the periodic fetch running.
    void Poll(int seconds)
    {
        bench->session.CheckFaxTimer().SetEnabled(true);
        bench->Live(seconds);
    }

    std::optional<Bench> bench;
};

QTEST_GUILESS_MAIN(tst_SessionRuns)
#include "tst_SessionRuns.moc"
