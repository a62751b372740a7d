#include "core/Globals.h"
#include "core/ports/Timer.h"
#include "fixtures/SessionBench.h"
#include "server/Polling.h"
#include "server/wire/clsClient.h"

#include <QTest>

#include <optional>

namespace {
struct Bench : SessionBench
{
    Bench() { session.CheckFaxTimer().SetEnabled(true); }

    QString strFaxFile;
    Polling polling{ports.ports, session, download, desktop.forms,
                    [this] { return std::exchange(strFaxFile, {}); }};
};
} // namespace

class tst_Polling : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench.emplace(); }
    void cleanup() { bench.reset(); }

    void fetchesWhenTheMinutesAreOver();
    void neverFetches();
    void fetchWaitsUntilOtherWindowsHaveClosed();
    void commandUnderWayIsLeftAlone();
    void idleUserIsLoggedOutAndComesBackSilently();
    void faxFileOpensWhenTheMainWindowIsAlone();

private:
    std::optional<Bench> bench;
};

void tst_Polling::fetchesWhenTheMinutesAreOver()
{
    Global().CheckFax = 2;
    bench->Live(119);
    QCOMPARE(bench->Heard(), QStringList());
    bench->Silence(1500).SayLong("OK\r\n");
    bench->Live(2);
    QCOMPARE(bench->Heard(), QStringList("6"));
    QVERIFY(!bench->progress.IsLoaded());
    bench->Live(118);
    QCOMPARE(bench->Heard(), QStringList("6"));
    bench->Silence(1500).SayLong("OK\r\n");
    bench->Live(4);
    QCOMPARE(bench->Heard(), QStringList({"6", "6"}));
}

void tst_Polling::neverFetches()
{
    const auto staysSilent = [this](int minutes, bool online, bool busy) {
        Global().CheckFax = minutes;
        bench->session.bOnline = online;
        bench->session.bIsSocketBusy = busy;
        bench->Live(200);
        return bench->Heard().isEmpty() && bench->session.lCheckTicks == 0;
    };
    QVERIFY(staysSilent(0, true, false));
    QVERIFY(staysSilent(1, false, false));
    QVERIFY(staysSilent(1, true, true));
}

void tst_Polling::fetchWaitsUntilOtherWindowsHaveClosed()
{
    bench->desktop.forms.lCount = 2;
    bench->Live(90);
    QCOMPARE(bench->Heard(), QStringList());
    bench->desktop.forms.lCount = 1;
    bench->Silence(1500).SayLong("OK\r\n");
    bench->Live(2);
    QCOMPARE(bench->Heard(), QStringList("6"));
}

/// Neither the fetch nor the idle logout may come between a command and its reply.
void tst_Polling::commandUnderWayIsLeftAlone()
{
    Global().DisconnectTime = 1;
    bench->Live(57);
    bench->session.BeginCommand(pndVersions).GetContactVersion();
    QCOMPARE(bench->session.WaitForServerReply(), WaitEnd::Silent);
    QCOMPARE(bench->Heard(), QStringList("3"));
}

void tst_Polling::idleUserIsLoggedOutAndComesBackSilently()
{
    Global().CheckFax = 2;
    Global().DisconnectTime = 1;
    bench->Live(60);
    QCOMPARE(bench->Heard(), QStringList());
    bench->Live(30);
    QCOMPARE(bench->Heard(), QStringList("2")); // once, though the server does not close
    QVERIFY(bench->session.bUserLogout && bench->session.bOnline);
    bench->ForgetHeard();
    bench->Live(29);
    bench->Silence(1500).AcceptConnection().SayLong("OK\r\n");
    bench->Live(50);
    QCOMPARE(bench->Heard(), QStringList({"1 anna " + Global().strPwdDigest, "6"}));
    QVERIFY(!bench->session.bUserLogout);
}

void tst_Polling::faxFileOpensWhenTheMainWindowIsAlone()
{
    bench->strFaxFile = "/tmp/fax.tif";
    bench->desktop.forms.lCount = 2;
    bench->Live(3);
    QCOMPARE(bench->desktop.forms.aComposers, QStringList());
    bench->desktop.forms.lCount = 1;
    bench->Live(3);
    QCOMPARE(bench->desktop.forms.aComposers, QStringList("/tmp/fax.tif"));
}

QTEST_GUILESS_MAIN(tst_Polling)
#include "tst_Polling.moc"
