#include "compose/ForwardFax.h"
#include "core/Globals.h"
#include "endtoend/FetchTest.h"
#include "fixtures/Profile.h"
#include "fixtures/TestTable.h"
#include "server/FaxHistory.h"
#include "server/HistoryRange.h"
#include "server/SentFaxCommands.h"

namespace {

const QStringList aAtOnce{"--lines", "8", "--line-seconds", "0"};
const QStringList aForEver{"--lines", "8", "--line-seconds", "3600"};

struct FollowTest : FetchTest
{
    bool Begin(const QStringList &lines, const QStringList &files = {})
    {
        return server.AddUser("anna", "anna") && server.AddUser("ben", "ben") &&
               (files.isEmpty() || server.Deliver("anna", files)) && server.Start({}, {}, lines) && Restart();
    }
    /// Asks for the states again and again until there are so many faxes in "Sending"; false after 20 s.
    bool Follow(int left)
    {
        for (int i = 0; i < 200 && InSending() != left; ++i) {
            client->WaitUntil([] { return false; }, 100);
            client->faxStatus.CheckFaxState(false);
        }
        return InSending() == left && !client->session.bIsSocketBusy;
    }
    static int InSending()
    {
        return Profile::Value("Select count(*) From SendFax Where FolderID='1005'").toInt();
    }
    /// Of each sent fax, in the order of their titles.
    static QStringList Sent(const QString &columns)
    {
        return Profile::Values("Select " + columns + " From SendFax Order By Title");
    }
    StatusRooms Rooms()
    {
        return {client->session, client->progress, client->desktop.mainWindow, client->desktop.mailbox};
    }
    /// What the window of the history asks for; the faxes by table and folder then.
    QString GetHistory(const HistoryRequest &request)
    {
        FaxHistory(client->ports, client->session, client->download)
            .mnuGetHistory(request.Text(QDate::currentDate()));
        return Profile::Values("Select 'R'||FolderID||' x'||count(*) From ReceiveFax Group By FolderID Union "
                               "Select 'S'||FolderID||' x'||count(*) From SendFax Group By FolderID")
            .join(' ');
    }
};

} // namespace

/// What becomes of faxes that the real server has got.
class tst_FollowEndToEnd : public QObject
{
    Q_OBJECT

private slots:
    void eachFaxEndsInItsFolder()
    {
        FollowTest test;
        QVERIFY(test.Begin(aAtOnce));
        for (const char *number : {"5500", "5901", "5902", "5904", "5907", "5908", "5910"})
            test.Queue(number);
        test.Queue("5999", "no fax");
        QVERIFY(test.Upload());
        QVERIFY(test.Follow(1));
        QCOMPARE(test.Sent("Title||' '||FolderID||' '||Result"),
                 QStringList({"5500 1006 Sucessfully", "5901 1006 Sucessfully",
                              "5902 1007 Attempt limit reached", "5904 1007 Send failed",
                              "5907 1007 Insufficient privileges", "5908 1007 Deleted by administrator",
                              "5910 1005 Sending", "5999 1007 Invalid fax file"}));
        const QStringList details =
            Profile::Value("Select ResultDetailed From SendFax Where Title='5904'").split(QChar(2));
        QCOMPARE(details.size(), 6);
        QCOMPARE(details.mid(1, 3), QStringList({"", "2;", "\"Ann\"<5904>;"}));
        QCOMPARE(details.first(), Profile::Value("Select EndTime From SendFax Where Title='5904'"));
        QVERIFY(test.client->prompts.aBoxes.isEmpty());
    }

    void cancelledFaxIsNotSent()
    {
        FollowTest test;
        QVERIFY(test.Begin(aForEver));
        test.Queue("5500");
        test.Queue("5600");
        QVERIFY(test.Upload());
        QCOMPARE(FollowTest::InSending(), 2);
        const QStringList ids = FollowTest::Sent("Fax_ID");
        SentFaxCommands(test.client->ports, test.Rooms()).mnuCancelSend(ids.mid(0, 1));
        QVERIFY(test.client->prompts.aBoxes.isEmpty());
        test.client->faxStatus.CheckFaxState(false);
        QCOMPARE(FollowTest::Sent("FolderID||RecyleID||' '||Result"),
                 QStringList({"10021008 Sending", "1005 Sending"}));
        Profile::Execute("Update SendFax Set FolderID='1005',RecyleID=''"); // and what does the server say?
        test.client->faxStatus.CheckFaxState(false);
        QCOMPARE(FollowTest::Sent("FolderID||' '||Result"),
                 QStringList({"1007 Deleted by administrator", "1005 Sending"}));
    }

    void failedFaxIsSentAgain()
    {
        FollowTest test;
        QVERIFY(test.Begin(aAtOnce));
        test.Queue("5903"); // answers the second time
        test.Queue("5908"); // removed for good
        QVERIFY(test.Upload());
        QVERIFY(test.Follow(0));
        QCOMPARE(FollowTest::Sent("FolderID"), QStringList(2, "1007"));
        SentFaxCommands(test.client->ports, test.Rooms()).mnuResendError(FollowTest::Sent("Fax_ID"));
        QCOMPARE(test.client->prompts.Texts().size(), 1);
        QVERIFY(test.client->prompts.Texts().first().contains("1 of 2"));
        QVERIFY(test.Follow(0));
        QCOMPARE(FollowTest::Sent("FolderID||' '||Result"),
                 QStringList({"1006 Sucessfully", "1007 Deleted by administrator"}));
    }

    void receivedFaxesAreForwarded()
    {
        FollowTest test;
        QVERIFY(test.Begin(aAtOnce, test.ThreeFaxes()));
        QVERIFY(test.Fetch());
        const QStringList stored = Profile::Values("Select Fax_ID From ReceiveFax");
        for (const QStringList &ids : {stored.mid(0, 1), stored}) {
            ForwardFax forward(test.client->ports, {test.client->desktop.mainWindow,
                                                    test.client->desktop.mailbox, test.client->faxUpload});
            QVERIFY(forward.Begin(ids, false));
            QVERIFY(forward.ClickOK({}, {"Forwarded", 1, "5500"}));
            forward.Send();
        }
        QVERIFY(test.Follow(0));
        QCOMPARE(FollowTest::Sent("FolderID||' '||originalSender"),
                 QStringList(4, "1006 " + Profile::Value("Select Sender From ReceiveFax")));
        for (const QString &file : FollowTest::Sent("FileName"))
            QVERIFY(test.delivered.values().contains(ReadTestFile(Global().strOutputBoxPath + file)));
    }

    void historyBringsBackWhatTheRangeHolds()
    {
        FollowTest test;
        QVERIFY(test.Begin(aAtOnce, test.ThreeFaxes()));
        QVERIFY(test.Fetch());
        test.Queue("5500");
        test.Queue("5904");
        QVERIFY(test.Upload());
        QVERIFY(test.Follow(0));
        test.home.remove(); // on another machine
        QVERIFY(test.Restart());
        const QDate today = QDate::currentDate();
        const auto days = [&](int from, int to) {
            return HistoryRange{today.addDays(from), today.addDays(to)};
        };
        QCOMPARE(test.GetHistory({false, days(-3, -2)}), QString());
        QCOMPARE(test.client->progress.Text(), QString("Cannot find any Fax history..."));
        QCOMPARE(test.GetHistory({false, days(-1, 1), true, false, true, false}), QString("S1007 x1"));
        QCOMPARE(test.GetHistory({false, days(-1, 1), false, true, false, true}),
                 QString("R1001 x3 S1006 x1 S1007 x1"));
        QCOMPARE(test.GetHistory({true, {}}), QString("R1001 x3 S1006 x1 S1007 x1"));
        QCOMPARE(test.States(), QStringList(5, "Exists"));
    }
};

QTEST_GUILESS_MAIN(tst_FollowEndToEnd)
#include "tst_FollowEndToEnd.moc"
