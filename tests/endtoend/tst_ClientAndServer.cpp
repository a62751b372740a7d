#include "core/Globals.h"
#include "core/ports/Timer.h"
#include "endtoend/FetchTest.h"
#include "fixtures/Profile.h"
#include "fixtures/TestTable.h"
#include "server/PasswordChange.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTimer>

namespace {

/// Six ticks of the watchdog in 1.5 s.
constexpr int lQuickTicks = 4;
const QStringList aAll{"first", "second", "third"};

} // namespace

/// The client's logic and the real server, also when server, connection, disk or user get in the way.
/// Whatever happens, no fax is half in the tables, none is lost, and the next run works.
class tst_ClientAndServer : public QObject
{
    Q_OBJECT

private slots:
    void faxesComeWholeAndOnlyOnce()
    {
        FetchTest test;
        QStringList files, titles;
        for (int i = 1; i <= 8; ++i) {
            titles.append(QString("fax%1").arg(i));
            files.append(test.MakeFax(titles.last() + ".tif", i, i % 2 ? 0 : 200000));
        }
        QVERIFY(test.Begin(files));
        test.client->desktop.mailbox.strFolder = "1001";
        test.client->desktop.mailbox.lRows = 8;
        QVERIFY(test.Fetch());
        QCOMPARE(test.WholeFaxes(), titles);
        QCOMPARE(test.States(), QStringList(8, "Completed"));
        QCOMPARE(Profile::Values("Select 'fax' || Pages From ReceiveFax Where FolderID='1001' And IsReaded=0 "
                                 "Order By Title"),
                 titles);
        QCOMPARE(test.client->progress.Text(), QString("Tasks were completed successfully."));
        QCOMPARE(test.client->desktop.mailbox.aCalls,
                 QStringList({"recount", "load 1001 2", "current row", "row 1"}));

        QVERIFY(test.Fetch());
        QCOMPARE(test.client->progress.Text(), QString("No new fax..."));
        QVERIFY(test.States().isEmpty());
        QCOMPARE(test.WholeFaxes(), titles);
        QVERIFY(test.client->prompts.Texts().isEmpty());
    }

    void changedPasswordCountsAtOnce()
    {
        FetchTest test;
        QVERIFY(test.Begin(test.ThreeFaxes()));
        ClientUnderTest &client = *test.client;
        PasswordChange window(
            client.ports, [&](auto old, auto next) { return client.runs.ChangePassword(old, next); },
            [&] { return client.session.IsConnected(); });
        QCOMPARE(window.ClickOK("wrong", "second", "second"), PasswordChange::resInvalidOld);
        QCOMPARE(window.ClickOK("anna", "second", "second"), PasswordChange::resChanged);
        QCOMPARE(client.prompts.Texts(),
                 (QStringList{"The password you gave is incorrect.", "Your new password has been saved."}));
        client.session.CancelTransfer();
        QVERIFY(test.Fetch()); // connects again
        QCOMPARE(test.WholeFaxes(), aAll);
        QVERIFY(!test.Restart()); // with the old password
        QCOMPARE(test.client->prompts.Texts(), QStringList{"User name or password incorrect"});
        QVERIFY(test.client->LogIn({test.server.Address(), "anna", "second"}));
    }

    void faultLeavesNoFaxBehind_data()
    {
        const TestTable<QStringList, QString, QStringList, QStringList> add{"states", "text", "stored",
                                                                            "storedByNextRun"};
        const QStringList completed(3, "Completed"), lost{"Completed", "Disconnected", "Disconnected"};
        const QStringList failed{"Completed", "Failed", "Completed"}, others{"first", "third"}, one{"first"};
        const QString complete = "Tasks were completed successfully.", away = "Disconnect from the server";
        add("on 7 #2 refuse 21", failed, complete, others, others);
        add("on 7 #2 fields 11", completed, complete, others, others);
        add("on 6 pieces 1 1\non 7 #2 pieces 3 0", completed, complete, aAll, aAll);
        add("on 6 once refuse 22", {}, "No new fax...", {}, aAll);
        add("on 6 once close-after 60", {}, away, {}, aAll);
        add("on 6 once delay 2500", {}, away, {}, aAll);
        add("on 7 #2 abort", lost, away, one, aAll);
        add("on 7 #2 close-after 9000", lost, away, one, aAll);
        add("on 7 #2 delay 2500", failed, complete, others, aAll);
        add("on 7 #2 stall-after 9000", failed, complete, others, aAll);
        add("on 7 #2 declare -5000", failed, complete, others, aAll);
        add("on 7 #2 declare +5000", failed, complete, others, aAll);
        add("on 7 #2 declare 100", failed, complete, others, aAll);
        add("on 17 once silence", completed, complete, aAll, aAll);
    }

    void faultLeavesNoFaxBehind()
    {
        FetchTest test;
        QVERIFY(test.Begin(test.ThreeFaxes(), QTest::currentDataTag(), lQuickTicks));
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
        QVERIFY(sinceClick.elapsed() < 5000); // sooner than the watchdog
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
        QCOMPARE(test.WholeFaxes(), QStringList());
        QCOMPARE(test.client->prompts.Texts().size(), 1);
        QVERIFY(test.client->prompts.Texts().first().startsWith("Failed to store a received fax"));

        QVERIFY(inItsPlace.remove() && QDir().mkpath(inbox));
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

QTEST_GUILESS_MAIN(tst_ClientAndServer)
#include "tst_ClientAndServer.moc"
