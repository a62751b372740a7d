#include "core/Globals.h"
#include "core/ports/Timer.h"
#include "endtoend/FetchTest.h"
#include "server/Polling.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QTest>

/// Fetching from the real server where nothing goes wrong.
class tst_FetchEndToEnd : public QObject
{
    Q_OBJECT

private slots:
    void faxesComeWholeAndOnlyOnce();
    void storedFaxIsNotFetchedAgain();
    void historyPutsEachKindInItsPlace();
    void periodicFetchOfAHiddenWindowTellsTheNotifier();
    void idleConnectionIsClosedAndMadeAgain();
};

namespace {

struct StoredFax
{
    QString strTable, strFolderID, strPath;
};

/// Where the fax of this id went; empty when it is nowhere, or in both tables.
StoredFax Find(const QString &id)
{
    QList<StoredFax> found;
    for (const QString &table : {QString("ReceiveFax"), QString("SendFax")}) {
        const auto row = Global().objDB->SelectEx(
            QString("Select FolderID,FileName From %1 Where Fax_ID='%2'").arg(table, id));
        const QString folder = table == "SendFax" ? Global().strOutputBoxPath : Global().strInputBoxPath;
        while (row->Next())
            found.append({table, row->Text(0), folder + row->Text(1)});
    }
    return found.size() == 1 ? found.first() : StoredFax();
}

void LetPollingTick(Session &session)
{
    session.CheckFaxTimer().SetInterval(5); // instead of a second
    session.CheckFaxTimer().SetEnabled(true);
}

} // namespace

void tst_FetchEndToEnd::faxesComeWholeAndOnlyOnce()
{
    FetchTest test;
    QStringList files, titles, completed;
    for (int i = 1; i <= 8; ++i) {
        titles.append(QString("fax%1").arg(i));
        completed.append("Completed");
        files.append(test.MakeFax(titles.last() + ".tif", i, i % 2 ? 0 : 200000));
    }
    QVERIFY(test.Begin(files));
    test.client->desktop.mailbox.strFolder = "1001";
    test.client->desktop.mailbox.lRows = 8;
    QVERIFY(test.Fetch());

    QCOMPARE(test.WholeFaxes(), titles);
    QCOMPARE(test.States(), completed);
    const QStringList rows = test.client->ProgressRows();
    for (const QString &id : test.client->StoredIds())
        QVERIFY(rows.contains("InputBox/" + id + ".tif Completed"));
    const auto row = Global().objDB->SelectEx("Select Title,Pages,IsReaded,FolderID From ReceiveFax");
    while (row->Next()) {
        QCOMPARE("fax" + row->Text(1), row->Text(0));
        QCOMPARE(row->Number(2), 0);
        QCOMPARE(row->Text(3), QString("1001"));
    }
    QCOMPARE(test.client->progress.Text(), QString("Receive Complete"));
    QCOMPARE(test.client->progress.Bar(), 100);
    QVERIFY(test.client->progress.IsVisible());
    QCOMPARE(test.client->desktop.mailbox.aCalls,
             QStringList({"recount", "load 1001 2", "current row", "row 1"}));
    QVERIFY(test.client->desktop.notifier.aMonitors.isEmpty());

    QVERIFY(test.Fetch());
    QCOMPARE(test.client->progress.Text(), QString("No new fax..."));
    QVERIFY(test.client->ProgressRows().isEmpty());
    QCOMPARE(test.WholeFaxes(), titles);
    test.client->progress.ClickCancelOperate();
    QVERIFY(!test.client->progress.IsLoaded());
    QVERIFY(test.client->prompts.Texts().isEmpty());
}

void tst_FetchEndToEnd::storedFaxIsNotFetchedAgain()
{
    FetchTest test;
    QVERIFY(test.Begin(test.ThreeFaxes(), "on 7 #4+ refuse 21")); // a fourth request would read "Failed"
    QVERIFY(test.Fetch());
    QVERIFY(test.FetchHistory());
    QCOMPARE(test.States(), QStringList({"Exists", "Exists", "Exists"}));
    QCOMPARE(test.client->progress.Text(), QString("Receive Complete"));
    QCOMPARE(test.WholeFaxes(), QStringList({"first", "second", "third"}));
}

void tst_FetchEndToEnd::historyPutsEachKindInItsPlace()
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
    const QStringList tables{"ReceiveFax", "SendFax", "SendFax", "SendFax"};
    const QStringList folders{"1001", "1005", "1006", "1007"};
    for (int i = 0; i < 4; ++i) {
        const StoredFax fax = Find(ids[i]);
        QCOMPARE(fax.strTable, tables[i]);
        QCOMPARE(fax.strFolderID, folders[i]);
        QVERIFY(QFileInfo(fax.strPath).size() > 100);
        const QString folder = i == 0 ? "InputBox/" : "Outputbox/";
        QCOMPARE(test.client->ProgressRows().value(i), folder + ids[i] + ".tif Completed");
    }
    QVERIFY(test.FetchHistory());
    QCOMPARE(test.States(), QStringList({"Exists", "Exists", "Exists", "Exists"}));
}

void tst_FetchEndToEnd::periodicFetchOfAHiddenWindowTellsTheNotifier()
{
    FetchTest test;
    QVERIFY(test.Begin(test.ThreeFaxes()));
    ClientUnderTest &client = *test.client;
    const Polling polling(client.ports, client.session, client.download, client.desktop.forms, {});
    client.desktop.mainWindow.bVisible = false;
    Global().CheckFax = 1;
    LetPollingTick(client.session);
    FakeNotifier &notifier = client.desktop.notifier;
    QVERIFY(client.WaitUntil([&] { return !notifier.aMonitors.isEmpty() && !client.session.bIsSocketBusy; }));

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

void tst_FetchEndToEnd::idleConnectionIsClosedAndMadeAgain()
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

QTEST_GUILESS_MAIN(tst_FetchEndToEnd)
#include "tst_FetchEndToEnd.moc"
