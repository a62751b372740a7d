#include "core/Globals.h"
#include "core/ports/Timer.h"
#include "endtoend/FetchTest.h"
#include "fixtures/Profile.h"
#include "server/Polling.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QTest>

namespace {

void LetPollingTick(Session &session)
{
    session.CheckFaxTimer().SetInterval(5); // instead of a second
    session.CheckFaxTimer().SetEnabled(true);
}

} // namespace

/// Fetching from the real server where nothing goes wrong.
class tst_FetchEndToEnd : public QObject
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
        QCOMPARE(test.client->progress.Text(), QString("Receive Complete"));
        QCOMPARE(test.client->desktop.mailbox.aCalls,
                 QStringList({"recount", "load 1001 2", "current row", "row 1"}));

        QVERIFY(test.Fetch());
        QCOMPARE(test.client->progress.Text(), QString("No new fax..."));
        QVERIFY(test.client->ProgressRows().isEmpty());
        QCOMPARE(test.WholeFaxes(), titles);
        QVERIFY(test.client->prompts.Texts().isEmpty());
    }

    void historyPutsEachKindInItsPlace()
    {
        FetchTest test;
        QVERIFY(test.Begin(
            {test.MakeFax("a.tif"), test.MakeFax("b.tif"), test.MakeFax("c.tif"), test.MakeFax("d.tif")}));
        QVERIFY(test.Fetch());
        const QStringList ids = test.client->StoredIds();
        QCOMPARE(ids.size(), 4);
        const QStringList kinds{"9", "3", "4", "2"};
        QString list = "on 10 long \"OK\\r\\n";
        for (int i = 0; i < 4; ++i)
            list += ids[i] + "\\0100\\0" + kinds[i] + "\\r\\n";
        QVERIFY(test.server.Stop());
        QVERIFY(test.server.Start((list + '"').toUtf8()));

        QVERIFY(test.Restart(1, true));
        QVERIFY(test.FetchHistory());
        const QStringList folders{"1001", "1005", "1006", "1007"};
        for (int i = 0; i < 4; ++i) {
            const QString sent = i == 0 ? QString() : folders[i], received = i == 0 ? folders[i] : QString();
            const QString where = QString(" Where Fax_ID='%1'").arg(ids[i]);
            QCOMPARE(Profile::Value("Select FolderID From ReceiveFax" + where), received);
            QCOMPARE(Profile::Value("Select FolderID From SendFax" + where), sent);
            const QString box = i == 0 ? Global().strInputBoxPath : Global().strOutputBoxPath;
            QVERIFY(QFileInfo(box + ids[i] + ".tif").size() > 100);
        }
        QCOMPARE(test.States(), QStringList(4, "Completed"));
        QVERIFY(test.FetchHistory());
        QCOMPARE(test.States(), QStringList(4, "Exists"));
    }

    void periodicFetchOfAHiddenWindowTellsTheNotifier()
    {
        FetchTest test;
        QVERIFY(test.Begin(test.ThreeFaxes()));
        ClientUnderTest &client = *test.client;
        const Polling polling(client.ports, client.session, client.download, client.desktop.forms, {});
        client.desktop.mainWindow.bVisible = false;
        Global().CheckFax = 1;
        LetPollingTick(client.session);
        FakeNotifier &notifier = client.desktop.notifier;
        QVERIFY(
            client.WaitUntil([&] { return !notifier.aMonitors.isEmpty() && !client.session.bIsSocketBusy; }));

        QStringList shown = notifier.aMonitors.first().split(',');
        shown.sort();
        QStringList stored = client.StoredIds();
        QCOMPARE(shown, stored.replaceInStrings(QRegularExpression("$"), ".tif"));
        QCOMPARE(test.WholeFaxes(), QStringList({"first", "second", "third"}));
        QVERIFY(!client.progress.IsLoaded());
        QVERIFY(client.desktop.mainWindow.bEnabled);

        // The next one finds nothing, and says nothing.
        QVERIFY(client.WaitUntil([&] { return client.session.lCheckTicks > 50; }));
        QVERIFY(client.WaitUntil([&] { return client.session.lCheckTicks < 50; }));
        QCOMPARE(notifier.aMonitors.size(), 1);
        QVERIFY(!client.progress.IsLoaded());
    }

    void idleConnectionIsClosedAndMadeAgain()
    {
        FetchTest test;
        const QStringList files = test.ThreeFaxes();
        QVERIFY(test.Begin(files.mid(0, 1)));
        ClientUnderTest &client = *test.client;
        const Polling polling(client.ports, client.session, client.download, client.desktop.forms, {});
        QVERIFY(test.Fetch());
        Global().DisconnectTime = 1;
        LetPollingTick(client.session);
        QVERIFY(client.WaitUntil([&] { return !client.session.IsConnected(); }));
        QVERIFY(client.session.bOnline);

        QVERIFY(test.server.Deliver("anna", files.mid(1)));
        QVERIFY(test.Fetch());
        QVERIFY(client.session.IsConnected());
        QCOMPARE(test.WholeFaxes(), QStringList({"first", "second", "third"}));
        QVERIFY(client.prompts.Texts().isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_FetchEndToEnd)
#include "tst_FetchEndToEnd.moc"
