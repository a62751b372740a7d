#include "core/Globals.h"
#include "endtoend/FetchTest.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTest>
#include <QTimer>

namespace {

/// Six ticks of the watchdog in 1.5 s.
constexpr int lQuickTicks = 4;
const QStringList aAll{"first", "second", "third"};

} // namespace

/// Fetching from the real server when server, connection, disk or user get in the way. Whatever happens, no
/// fax is half in the tables, none is lost, and the next run works.
class tst_FetchFaults : public QObject
{
    Q_OBJECT

private slots:
    void faultLeavesNoFaxBehind_data()
    {
        QTest::addColumn<QByteArray>("script");
        QTest::addColumn<QStringList>("states");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("stored");
        QTest::addColumn<QStringList>("storedByNextRun");
        const QStringList completed(3, "Completed"), lost{"Completed", "Disconnected", "Disconnected"};
        const QStringList failed{"Completed", "Failed", "Completed"}, others{"first", "third"}, one{"first"};
        const QString complete = "Receive Complete", away = "Disconnect from the server";
        const auto row = [](const QByteArray &script, const QStringList &states, const QString &text,
                            const QStringList &stored, const QStringList &storedByNextRun) {
            QTest::newRow(script.constData()) << script << states << text << stored << storedByNextRun;
        };
        row("on 7 #2 refuse 21", failed, complete, others, others);
        row("on 7 #2 fields 11", completed, complete, others, others);
        row("on 6 pieces 1 1\non 7 #2 pieces 3 0", completed, complete, aAll, aAll);
        row("on 6 once refuse 22", {}, "No new fax...", {}, aAll);
        row("on 6 once close-after 60", {}, away, {}, aAll);
        row("on 6 once delay 2500", {}, away, {}, aAll);
        row("on 7 #2 abort", lost, away, one, aAll);
        row("on 7 #2 close-after 9000", lost, away, one, aAll);
        row("on 7 #2 delay 2500", failed, complete, others, aAll);
        row("on 7 #2 stall-after 9000", failed, complete, others, aAll);
        row("on 7 #2 declare -5000", failed, complete, others, aAll);
        row("on 7 #2 declare +5000", failed, complete, others, aAll);
        row("on 7 #2 declare 100", failed, complete, others, aAll);
        row("on 17 once silence", completed, complete, aAll, aAll);
    }

    void faultLeavesNoFaxBehind()
    {
        QFETCH(QByteArray, script);
        FetchTest test;
        QVERIFY(test.Begin(test.ThreeFaxes(), script, lQuickTicks));
        QVERIFY(test.Fetch());
        QTEST(test.States(), "states");
        QTEST(test.client->progress.Text(), "text");
        QTEST(test.WholeFaxes(), "stored");

        QVERIFY(test.Fetch());
        QVERIFY(test.client->session.IsConnected());
        QTEST(test.WholeFaxes(), "storedByNextRun");
        QVERIFY(test.Fetch());
        QCOMPARE(test.client->progress.Text(), QString("No new fax..."));
    }

    void cancelEndsTheFileAtOnce()
    {
        FetchTest test;
        QVERIFY(test.Begin(test.ThreeFaxes(), "on 7 #2 stall-after 9000"));
        QElapsedTimer sinceClick;
        QTimer user;
        connect(&user, &QTimer::timeout, this, [&] {
            if (test.client->progress.Current() != 2 || test.client->progress.Bar() <= 34)
                return;
            user.stop();
            sinceClick.start();
            test.client->progress.ClickCancelOperate();
        });
        user.start(10);
        QVERIFY(test.Fetch());
        QVERIFY(sinceClick.isValid());
        QVERIFY(sinceClick.elapsed() < 2000);
        QCOMPARE(test.States(), QStringList({"Completed", "Canceled"}));
        QCOMPARE(test.client->progress.Text(), QString("User abort."));
        QCOMPARE(test.WholeFaxes(), QStringList("first"));

        QVERIFY(test.Fetch());
        QCOMPARE(test.States(), QStringList({"Exists", "Completed", "Completed"}));
        QCOMPARE(test.WholeFaxes(), aAll);
    }

    void inboxThatCannotBeWrittenKeepsTheFaxesAtTheServer()
    {
        FetchTest test;
        QVERIFY(test.Begin(test.ThreeFaxes()));
        const QString inbox = QDir::cleanPath(Global().strInputBoxPath);
        QVERIFY(QDir(inbox).removeRecursively());
        QFile inItsPlace(inbox);
        QVERIFY(inItsPlace.open(QIODevice::WriteOnly));
        QVERIFY(test.Fetch());
        QCOMPARE(test.States(), QStringList({"Disconnected", "Disconnected"}));
        QCOMPARE(test.client->StoredIds(), QStringList());
        QCOMPARE(test.client->prompts.Texts().size(), 1);
        QVERIFY(test.client->prompts.Texts().first().startsWith("Failed to store a received fax"));

        QVERIFY(inItsPlace.remove() && QDir().mkpath(inbox));
        QVERIFY(test.Fetch());
        QCOMPARE(test.WholeFaxes(), aAll);
    }

    void databaseThatRefusesRowsKeepsTheFaxesAtTheServer()
    {
        FetchTest test;
        QVERIFY(test.Begin(test.ThreeFaxes()));
        Global().objDB->Execute("Create Trigger Full Before Insert On ReceiveFax When NEW.Title<>'first' "
                                "Begin Select Raise(Abort,'the disk is full'); End");
        QVERIFY(test.Fetch());
        QCOMPARE(test.States(), QStringList({"Completed", "Failed", "Failed"}));
        QCOMPARE(test.WholeFaxes(), QStringList("first"));
        QCOMPARE(test.client->prompts.Texts().size(), 1);
        QVERIFY(test.client->prompts.Texts().first().contains("the disk is full"));

        Global().objDB->Execute("Drop Trigger Full");
        QVERIFY(test.Fetch());
        QCOMPARE(test.WholeFaxes(), aAll);
    }

    void serverThatWasAwayIsFoundAgain()
    {
        FetchTest test;
        QVERIFY(test.Begin(test.ThreeFaxes()));
        test.server.Kill();
        QVERIFY(test.client->WaitUntil([&] { return !test.client->session.IsConnected(); }));
        QVERIFY(test.Fetch());
        QCOMPARE(test.client->progress.Text(), QString("Failed to connect to Velmar Server..."));
        const QString port = QString::number(test.server.Port());
        QVERIFY(test.server.Start({}, {}, {"--port", port}));
        QVERIFY(test.Fetch());
        QCOMPARE(test.WholeFaxes(), aAll);
    }
};

QTEST_GUILESS_MAIN(tst_FetchFaults)
#include "tst_FetchFaults.moc"
