#include "core/Globals.h"
#include "core/ports/Timer.h"
#include "fixtures/SessionBench.h"
#include "server/FaxDownload.h"
#include "server/Polling.h"
#include "server/wire/clsClient.h"

#include <QTest>

#include <optional>

class tst_Polling : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void fetchesWhenTheMinutesAreOver();
    void neverFetches_data();
    void neverFetches();
    void fetchWaitsUntilOtherWindowsHaveClosed();
    void fetchLeavesACommandUnderWayAlone();
    void logsOutOnceWhenIdle();
    void idleUserComesBackBySilentReconnection();
    void faxFileOpensWhenTheMainWindowIsAlone();

private:
    /// Seconds of the program's life in its event loop.
    void Live(int seconds)
    {
        for (int i = 0; i < seconds * 100; ++i)
            bench->ports.pump.RunSlice(10);
    }

    std::optional<SessionBench> bench;
    std::unique_ptr<FaxDownload> download;
    std::unique_ptr<Polling> polling;
    QString strFaxFile;
};

void tst_Polling::init()
{
    bench.emplace();
    FakeDesktop &desktop = bench->desktop;
    download = std::make_unique<FaxDownload>(
        bench->ports.ports, DownloadRooms{bench->session, bench->progress, bench->status, desktop.printing,
                                          desktop.notifier, desktop.mainWindow, desktop.mailbox});
    strFaxFile.clear();
    polling = std::make_unique<Polling>(bench->ports.ports, bench->session, *download, desktop.forms,
                                        [this] { return std::exchange(strFaxFile, {}); });
    bench->session.CheckFaxTimer().SetEnabled(true);
}

void tst_Polling::cleanup()
{
    polling.reset();
    download.reset();
    bench.reset();
}

void tst_Polling::fetchesWhenTheMinutesAreOver()
{
    Global().CheckFax = 2;
    Live(119);
    QCOMPARE(bench->Heard(), QStringList());
    bench->Silence(1500).SayLong("OK\r\n");
    Live(2);
    QCOMPARE(bench->Heard(), QStringList("6"));
    QVERIFY(!bench->progress.IsLoaded());
    QVERIFY(bench->session.CheckFaxTimer().IsEnabled());
    Live(118);
    QCOMPARE(bench->Heard(), QStringList("6"));
    bench->Silence(1500).SayLong("OK\r\n");
    Live(4);
    QCOMPARE(bench->Heard(), QStringList({"6", "6"}));
}

void tst_Polling::neverFetches_data()
{
    QTest::addColumn<int>("minutes");
    QTest::addColumn<bool>("online");
    QTest::addColumn<bool>("busy");
    QTest::newRow("never") << 0 << true << false;
    QTest::newRow("offline") << 1 << false << false;
    QTest::newRow("during a run") << 1 << true << true;
}

void tst_Polling::neverFetches()
{
    QFETCH(int, minutes);
    QFETCH(bool, online);
    QFETCH(bool, busy);
    Global().CheckFax = minutes;
    bench->session.bOnline = online;
    bench->session.bIsSocketBusy = busy;
    Live(200);
    QCOMPARE(bench->Heard(), QStringList());
    QCOMPARE(bench->session.lCheckTicks, 0);
}

void tst_Polling::fetchWaitsUntilOtherWindowsHaveClosed()
{
    bench->desktop.forms.lCount = 2;
    Live(90);
    QCOMPARE(bench->Heard(), QStringList());
    bench->desktop.forms.lCount = 1;
    bench->Silence(1500).SayLong("OK\r\n");
    Live(2);
    QCOMPARE(bench->Heard(), QStringList("6"));
}

void tst_Polling::fetchLeavesACommandUnderWayAlone()
{
    bench->session.SetHandler(pndVersions,
                              [this](const ClientReply &) { bench->session.SignalServerReply(); });
    Live(57);
    bench->session.lIdleTicks = 57;
    Global().DisconnectTime = 1;
    bench->session.BeginCommand(pndVersions).GetContactVersion();
    QCOMPARE(bench->session.WaitForServerReply(), WaitEnd::Silent);
    QCOMPARE(bench->Heard(), QStringList("3"));
}

void tst_Polling::logsOutOnceWhenIdle()
{
    Global().CheckFax = 0;
    Global().DisconnectTime = 1;
    Live(60);
    QCOMPARE(bench->Heard(), QStringList());
    Live(1);
    QCOMPARE(bench->Heard(), QStringList("2"));
    QVERIFY(bench->session.bUserLogout);
    QCOMPARE(bench->session.lPendingCommand, int(pndLogOut));
    Live(30); // a server that does not close
    QCOMPARE(bench->Heard(), QStringList("2"));
}

void tst_Polling::idleUserComesBackBySilentReconnection()
{
    Global().DisconnectTime = 1;
    Global().CheckFax = 2;
    Live(61);
    bench->SayShort("OK").Close();
    Live(1);
    QVERIFY(!bench->session.IsConnected());
    QVERIFY(bench->session.bOnline);
    bench->ForgetHeard();
    Live(57);
    bench->Silence(1500).AcceptConnection().SayLong("OK\r\n");
    Live(3);
    QCOMPARE(bench->Heard(), QStringList({"1 anna " + Global().strPwdDigest, "6"}));
    QVERIFY(!bench->session.bUserLogout);
}

void tst_Polling::faxFileOpensWhenTheMainWindowIsAlone()
{
    strFaxFile = "/tmp/fax.tif";
    bench->desktop.forms.lCount = 2;
    Live(3);
    QCOMPARE(bench->desktop.forms.aComposers, QStringList());
    QCOMPARE(strFaxFile, QString("/tmp/fax.tif"));
    bench->desktop.forms.lCount = 1;
    Live(3);
    QCOMPARE(bench->desktop.forms.aComposers, QStringList("/tmp/fax.tif"));
}

QTEST_GUILESS_MAIN(tst_Polling)
#include "tst_Polling.moc"
