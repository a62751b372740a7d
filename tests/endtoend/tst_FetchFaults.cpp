#include "core/Globals.h"
#include "endtoend/FetchTest.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTest>
#include <QTimer>

/// Fetching from the real server when server, connection, disk or user get in the way. Whatever happens, no
/// fax is half in the tables, none is lost, and the next run works.
class tst_FetchFaults : public QObject
{
    Q_OBJECT

private slots:
    void faultLeavesNoFaxBehind_data();
    void faultLeavesNoFaxBehind();
    void cancelEndsTheFileAtOnce();
    void inboxThatCannotBeWrittenKeepsTheFaxesAtTheServer();
    void databaseThatRefusesRowsKeepsTheFaxesAtTheServer();
    void serverThatWasAwayIsFoundAgain();
};

namespace {

/// Six ticks of the watchdog in 1.5 s.
constexpr int lQuickTicks = 4;
const QStringList aAll{"first", "second", "third"};
const QStringList aWithoutSecond{"first", "third"};

const QString strComplete = "Receive Complete";
const QString strLost = "Disconnect from the server";

} // namespace

void tst_FetchFaults::faultLeavesNoFaxBehind_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QStringList>("states");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("stored");
    QTest::addColumn<QStringList>("storedByNextRun");

    const QStringList completed{"Completed", "Completed", "Completed"};
    const QStringList secondFailed{"Completed", "Failed", "Completed"};
    const QStringList secondLost{"Completed", "Disconnected", "Disconnected"};
    const QStringList one{"first"};

    QTest::newRow("refused fax") << QByteArray("on 7 #2 refuse 21") << secondFailed << strComplete
                                 << aWithoutSecond << aWithoutSecond;
    QTest::newRow("short fax reply") << QByteArray("on 7 #2 fields 11") << completed << strComplete
                                     << aWithoutSecond << aWithoutSecond;
    QTest::newRow("single bytes") << QByteArray("on 6 pieces 1 1\non 7 #2 pieces 3 0") << completed
                                  << strComplete << aAll << aAll;
    QTest::newRow("refused list") << QByteArray("on 6 once refuse 22") << QStringList()
                                  << QString("No new fax...") << QStringList() << aAll;
    QTest::newRow("list cut off") << QByteArray("on 6 once close-after 60") << QStringList() << strLost
                                  << QStringList() << aAll;
    QTest::newRow("late list") << QByteArray("on 6 once delay 2500") << QStringList() << strLost
                               << QStringList() << aAll;
    QTest::newRow("reset") << QByteArray("on 7 #2 abort") << secondLost << strLost << one << aAll;
    QTest::newRow("file cut off") << QByteArray("on 7 #2 close-after 9000") << secondLost << strLost << one
                                  << aAll;
    QTest::newRow("late file") << QByteArray("on 7 #2 delay 2500") << secondFailed << strComplete
                               << aWithoutSecond << aAll;
    QTest::newRow("late rest of a file")
        << QByteArray("on 7 #2 stall-after 9000") << secondFailed << strComplete << aWithoutSecond << aAll;
    QTest::newRow("longer than declared")
        << QByteArray("on 7 #2 declare -5000") << secondFailed << strComplete << aWithoutSecond << aAll;
    QTest::newRow("shorter than declared")
        << QByteArray("on 7 #2 declare +5000") << secondFailed << strComplete << aWithoutSecond << aAll;
    QTest::newRow("first block too long")
        << QByteArray("on 7 #2 declare 100") << secondFailed << strComplete << aWithoutSecond << aAll;
    QTest::newRow("no acknowledgement")
        << QByteArray("on 17 once silence") << completed << strComplete << aAll << aAll;
}

void tst_FetchFaults::faultLeavesNoFaxBehind()
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

void tst_FetchFaults::cancelEndsTheFileAtOnce()
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

void tst_FetchFaults::inboxThatCannotBeWrittenKeepsTheFaxesAtTheServer()
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

void tst_FetchFaults::databaseThatRefusesRowsKeepsTheFaxesAtTheServer()
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

void tst_FetchFaults::serverThatWasAwayIsFoundAgain()
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

QTEST_GUILESS_MAIN(tst_FetchFaults)
#include "tst_FetchFaults.moc"
