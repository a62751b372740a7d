#include "core/Globals.h"
#include "endtoend/FetchTest.h"
#include "fixtures/Profile.h"
#include "fixtures/TestTable.h"

#include <QDir>
#include <QTimer>

namespace {

/// Six ticks of the watchdog in 1.5 s.
constexpr int lQuickTicks = 4;
constexpr int lLarge = 40 * 1000 * 1000;
constexpr int lOverOneBlock = 2100 * 1000;

struct SendTest : FetchTest
{
    bool Begin(const QByteArray &script = {}, int timerFactor = 1)
    {
        return FetchTest::Begin({}, script, timerFactor);
    }
    void QueueThree()
    {
        for (const char *title : {"first", "second", "third"})
            Queue(title);
    }
    /// Calls it, once, when a part of the first fax has gone.
    void InTheMiddle(const std::function<void()> &act)
    {
        QObject::connect(
            &client->progress, &Progress::Changed, &client->session,
            [this, act, done = false]() mutable {
                if (!done && client->progress.Bar() >= 20 && client->progress.Bar() < 90) {
                    done = true;
                    act();
                }
            },
            Qt::QueuedConnection);
    }

    /// The folder of each fax, in the order of the titles; "?" behind it while it is open whether the server
    /// has it, "!" for a file that is not where its row says, or not whole.
    QString Folders() const
    {
        QStringList folders, names;
        const auto rows = Global().objDB->SelectEx(
            "Select Title,FolderID,FileName,ifnull(sSndReserve1,'')=Fax_ID From SendFax Order By Title");
        for (; rows->Next(); names.append(rows->Text(2))) {
            const QByteArray file = ReadTestFile(Global().strOutputBoxPath + rows->Text(2));
            folders.append(rows->Text(1) + (rows->Number(3) ? "?" : "") +
                           (file == delivered.value(rows->Text(0)) ? "" : "!"));
        }
        names.sort();
        if (QDir(Global().strOutputBoxPath).entryList(QDir::Files, QDir::Name) != names)
            folders.append("further files");
        return folders.join(' ');
    }
    /// What the server keeps for an account, in the order of the titles; "!" behind what is not whole.
    QString AtServer(const QString &column = "Title", const QString &login = "anna") const
    {
        clsDBcon database;
        database.OpenDB(server.DataFolder() + "/faxserver.db");
        const auto rows = database.SelectEx("Select F.Title,F.File," + column +
                                            " From Fax F Join Account A On F.Owner=A.ID Where A.Login='" +
                                            login + "' Order By Title");
        QStringList found;
        while (rows->Next()) {
            const QByteArray file = ReadTestFile(server.DataFolder() + "/faxes/" + rows->Text(1));
            found.append(rows->Text(2) + (file == delivered.value(rows->Text(0)) ? "" : "!"));
        }
        return found.join(' ');
    }
};

} // namespace

/// The client's logic and the real server on the road out. Whatever happens, each fax is in one folder, its
/// file is where its row says, and none goes twice without a question.
class tst_SendEndToEnd : public QObject
{
    Q_OBJECT

private slots:
    void faxReachesAllItsRecipients()
    {
        SendTest test;
        QVERIFY(test.server.AddUser("ben", "ben"));
        QVERIFY(test.server.Publish("contacts", {"c1\tCarl\t\t\t\t555-7\t\t\t\t\t"}));
        QVERIFY(test.Begin());
        QVERIFY(test.Synchronise());
        const QString ben = Profile::Value("Select ID From UserList Where LoginName='ben'");
        const QString local = test.Queue("now", {}, "-1", "Ben[" + ben + "];", "c1;");
        const QDateTime tomorrow = QDateTime::currentDateTime().addDays(1);
        test.Queue("tomorrow", {}, tomorrow.toString("yyyy-MM-dd\r\nHH:mm\r\n"));
        test.Queue("large", QByteArray(lOverOneBlock, 'x'));
        QVERIFY(test.Upload());
        QCOMPARE(test.States(), QStringList(3, "Completed"));
        QCOMPARE(test.Folders(), QString("1007 1005 1005")); // the large one is no picture
        QCOMPARE(test.AtServer(), QString("large now tomorrow"));
        QVERIFY(Profile::Value("Select Fax_ID From SendFax Where Title='now'") != local);
        QCOMPARE(test.AtServer("Contacts||Users||Typed").section(' ', 1, 1), "c1;" + ben + ";\"Ann\"<now>;");
        QCOMPARE(test.AtServer("F.ID").split(' '),
                 Profile::Values("Select Fax_ID From SendFax Order By Title"));

        QVERIFY(test.client->WaitUntil([&] { return test.AtServer("Title", "ben") == "now"; }));
    }

    void fault_data()
    {
        // Of three faxes: states, folders after the run and after a next one, in which the user agrees to
        // send again; what the server then has.
        const TestTable<QStringList, QString, int, QString, QString> add{"states", "folders", "boxes",
                                                                         "foldersInTheEnd", "atServer"};
        const QStringList completed(3, "Completed"), lost{"Completed", "Disconnected"};
        const QString sent = "1005 1005 1005", unclear = "1005 1007? 1005", waits = "1005 1003 1003";
        const QString all = "first second third", twice = "first second second third";
        add("on 8 keep-id", completed, sent, 0, sent, all);
        add("on 12 #2 short \"0123456789ABCDEF0123456789ABCDE\"", completed, unclear, 0, unclear, all);
        add("on 12 #2 silence", completed, unclear, 0, unclear, all);
        add("on 12 #2 refuse 23", completed, unclear, 0, unclear, "first third");
        add("on 12 #2 delay 2500", completed, unclear, 0, unclear, all);
        add("on 12 #2 abort", lost, "1005 1003? 1003", 1, sent, twice);
        add("on 8 #2 refuse 22", {"Completed", "Failed", "Completed"}, "1005 1003 1005", 1, sent, all);
        add("on 8 #2 delay 2500", completed, sent, 0, sent, all);
        add("on 8 #2 abort", lost, waits, 0, sent, all);
    }

    void fault()
    {
        SendTest test;
        QVERIFY(test.Begin(QTest::currentDataTag(), lQuickTicks));
        test.QueueThree();
        QVERIFY(test.Upload());
        QTEST(test.States(), "states");
        QTEST(test.Folders(), "folders");
        test.client->prompts.aAnswers = {mbAnswerYes};
        QVERIFY(test.Upload());
        QTEST(int(test.client->prompts.aBoxes.size()), "boxes");
        QTEST(test.Folders(), "foldersInTheEnd");
        QTEST(test.AtServer(), "atServer");
    }

    void lossOrCancelInTheMiddleOfAFileKeepsIt()
    {
        for (const bool cancelled : {true, false}) {
            SendTest test;
            QVERIFY(test.Begin());
            test.Queue("large", QByteArray(lLarge, 'x'));
            test.Queue("other");
            test.InTheMiddle(
                [&] { cancelled ? test.client->progress.ClickCancelOperate() : test.server.Kill(); });
            QVERIFY(test.Upload());
            QCOMPARE(test.States(), QStringList(cancelled ? "Canceled" : "Disconnected"));
            QCOMPARE(test.Folders(), QString("1003 1003"));
            const QStringList port{"--lines", "0", "--port", QString::number(test.server.Port())};
            QVERIFY(cancelled || test.server.Start({}, {}, port));
            QVERIFY(test.Upload());
            QCOMPARE(test.Folders(), QString("1007 1005"));
            QCOMPARE(test.AtServer(), QString("large other"));
            QVERIFY(test.client->prompts.aBoxes.isEmpty());
        }
    }

    void faxSentDuringAFetchWaitsForTheNextRun()
    {
        SendTest test;
        QVERIFY(test.FetchTest::Begin(test.ThreeFaxes(), "on 7 #2 delay 500"));
        const QString id = test.Queue("outgoing");
        QTimer::singleShot(200, &test.client->session,
                           [&] { QVERIFY(test.client->faxUpload.GetSendFaxID(true, id + ';', true, true)); });
        QVERIFY(test.Fetch());
        QCOMPARE(test.client->prompts.Texts().size(), 1);
        QCOMPARE(test.WholeFaxes().size(), 3);
        QCOMPARE(test.Folders(), QString("1003"));
        test.client->runs.mnuSendReceive();
        QCOMPARE(test.Folders(), QString("1005"));
        QCOMPARE(test.client->progress.Text(), QString("No new fax..."));
    }
};

QTEST_GUILESS_MAIN(tst_SendEndToEnd)
#include "tst_SendEndToEnd.moc"
