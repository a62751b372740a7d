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
    Polling polling{ports.ports, session, download, desktop.forms, {}};
};
} // namespace

class tst_Polling : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench.emplace(); }
    void cleanup() { bench.reset(); }

    void fetchesWhenTheMinutesAreOver()
    {
        Global().CheckFax = 2;
        bench->Live(119);
        QCOMPARE(bench->Heard(), QStringList());
        bench->Silence(1500).SayLong("OK\r\n");
        bench->Live(2);
        QCOMPARE(bench->Heard(), QStringList("6"));
        QVERIFY(!bench->progress.IsLoaded());
    }

    void neverFetches()
    {
        for (const int minutes : {0, 1, 2}) { // never, not while offline, and not while busy
            Global().CheckFax = minutes;
            bench->session.bOnline = minutes != 1;
            bench->session.bIsSocketBusy = minutes == 2;
            bench->Live(200);
            QVERIFY(bench->Heard().isEmpty() && bench->session.lCheckTicks == 0);
        }
    }

    void fetchWaitsUntilOtherWindowsHaveClosed()
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
    void commandUnderWayIsLeftAlone()
    {
        Global().DisconnectTime = 1;
        bench->Live(57);
        bench->session.BeginCommand(pndVersions).GetContactVersion();
        QCOMPARE(bench->session.WaitForServerReply(), WaitEnd::Silent);
        QCOMPARE(bench->Heard(), QStringList("3"));
    }

    void idleUserIsLoggedOutAndComesBackSilently()
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

private:
    std::optional<Bench> bench;
};

QTEST_GUILESS_MAIN(tst_Polling)
#include "tst_Polling.moc"
