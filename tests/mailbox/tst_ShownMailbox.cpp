#include "core/Globals.h"
#include "fakes/FakePorts.h"
#include "fixtures/FaxFile.h"
#include "fixtures/Profile.h"
#include "mailbox/ShownMailbox.h"

#include <QTest>

#include <memory>

class tst_ShownMailbox : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        profile = std::make_unique<Profile>();
        fakes = std::make_unique<FakePorts>();
        fakes->clock.now = QDateTime(QDate(2026, 3, 15), QTime(12, 0));
        mailbox = std::make_unique<ShownMailbox>(fakes->message, fakes->clock);
        Global().SwitchTo = true;
    }

    void cleanup()
    {
        const QStringList boxes = fakes->prompts.Texts();
        mailbox.reset();
        fakes.reset();
        profile.reset();
        QCOMPARE(boxes, QStringList());
    }

    void firstFolderFollowsTheOption()
    {
        mailbox->LoadFaxFolderTree();
        QCOMPARE(mailbox->SelectedFolder(), "1001");
        QCOMPARE(mailbox->List().Layout(), 1);
        Global().SwitchTo = false;
        mailbox->LoadFaxFolderTree();
        QCOMPARE(mailbox->SelectedFolder(), "1000");
        QCOMPARE(mailbox->RowCount(), 5);
        QCOMPARE(mailbox->StatusText(), "");
        QCOMPARE(mailbox->SelectedFaxes(), QStringList());
    }

    void newFaxesOnTopLeaveTheReaderAlone()
    {
        FaxFile file;
        file.lPages = 2;
        QVERIFY(file.Write(Global().strInputBoxPath + "A.tif"));
        profile->InsertReceivedFax("A", {{"receiveTime", "2026-01-01 00:00:00"}, {"fileName", "A.tif"}});
        mailbox->LoadFaxFolderTree();
        mailbox->Preview().NextPage();
        profile->InsertReceivedFax("B", {{"receiveTime", "2026-01-02 00:00:00"}});
        mailbox->LoadGridItem("1001", 2, {}, false, false);
        QCOMPARE(mailbox->SelectedRow(), 2);
        QCOMPARE(mailbox->SelectedFaxes(), QStringList("A"));
        QCOMPARE(mailbox->Preview().PageText(), "2 / 2");
        mailbox->SelectCurrentRow(); // asks for the fax anew
        QCOMPARE(mailbox->Preview().PageText(), "1 / 2");
    }

    void refreshLeavesTheRecycleBin()
    {
        profile->InsertReceivedFax("A", {{"RecyleID", "1008"}});
        mailbox->LoadFaxFolderTree();
        mailbox->SelectFolder("1008");
        Profile::Execute("DELETE FROM ReceiveFax");
        mailbox->ReloadCurrentFolder(true);
        QCOMPARE(mailbox->RowCount(), 1);
        QCOMPARE(mailbox->GetFaxTable(), 0);
    }

    void bulkChangesAreNotFollowed()
    {
        mailbox->LoadFaxFolderTree();
        mailbox->SetReloading(true);
        mailbox->SelectFolder("1002");
        QCOMPARE(mailbox->SelectedFolder(), "1001");
        mailbox->SetReloading(false);
        mailbox->SelectFolder("1002");
        QCOMPARE(mailbox->SelectedFolder(), "1002");
    }

    void brokenTableEndsInABox()
    {
        profile->InsertReceivedFax("A");
        mailbox->LoadFaxFolderTree();
        Profile::Execute("DROP TABLE ReceiveFax");
        mailbox->LoadGridItem("1001", 2, {}, false, true);
        QCOMPARE(fakes->prompts.aBoxes.size(), 1);
        QVERIFY(fakes->prompts.aBoxes.first().strText.contains("no such table"));
        QCOMPARE(mailbox->RowCount(), 1); // what stood there still stands
        fakes->prompts.aBoxes.clear();
    }

    void datesNarrowListAndCounts()
    {
        profile->InsertReceivedFax("A", {{"receiveTime", "2026-02-10 00:00:00"}, {"isReaded", "0"}});
        profile->InsertReceivedFax("B", {{"receiveTime", "2026-03-10 00:00:00"}, {"isReaded", "0"}});
        mailbox->LoadFaxFolderTree();
        mailbox->SelectYear(1);
        QCOMPARE(mailbox->RowCount(), 2);
        mailbox->ClickMonth(1);
        QCOMPARE(mailbox->SelectedFaxes(), QStringList("A"));
        QCOMPARE(mailbox->SelectedNode()->lUnread, 1);
        QCOMPARE(mailbox->StatusText(), "Total Faxes : 1  Unread : 1");
        QCOMPARE(mailbox->labFolderTip(),
                 "    Incoming  2026  " + QLocale().standaloneMonthName(2, QLocale::ShortFormat));
        mailbox->ClickMonth(1);
        QCOMPARE(mailbox->StatusText(), "Total Faxes : 2  Unread : 2");
        QCOMPARE(mailbox->RowCount(), 2);
        mailbox->SelectYear(0);
        QCOMPARE(mailbox->labFolderTip(), "    Incoming    ");
    }

    void rangesEndOnTheDayAfter()
    {
        DateFilter dates(QDate(2026, 3, 15));
        QCOMPARE(dates.Years().mid(0, 2), QStringList({"All faxes", "2026"}));
        QCOMPARE(dates.Years().last(), "2017");
        dates.ClickMonth(0); // no year, no month
        QCOMPARE(dates.Text(), "");
        dates.SelectYear(1);
        QVERIFY(dates.IsMonthEnabled(2) && !dates.IsMonthEnabled(3));
        dates.SelectYear(2);
        QCOMPARE(dates.Text(), " between '2025-01-01' and '2026-01-01' ");
        dates.ClickMonth(11);
        QCOMPARE(dates.Text(), " between '2025-12-01' and  '2026-01-01'");
    }

private:
    std::unique_ptr<Profile> profile;
    std::unique_ptr<FakePorts> fakes;
    std::unique_ptr<ShownMailbox> mailbox;
};

QTEST_GUILESS_MAIN(tst_ShownMailbox)
#include "tst_ShownMailbox.moc"
