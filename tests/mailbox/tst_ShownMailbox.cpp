#include "core/Globals.h"
#include "fakes/FakePorts.h"
#include "fixtures/FaxFile.h"
#include "fixtures/Profile.h"
#include "mailbox/ShownMailbox.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

class tst_ShownMailbox : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void firstFolderFollowsTheOption();
    void sentLeadsToItsFirstBranch();
    void folderShowsItsNewestFax();
    void emptyFolderShowsNothing();
    void newFaxesOnTopLeaveTheReaderAlone();
    void reloadSelectsTheNewest();
    void refreshLeavesTheRecycleBin();
    void tableOfABinRowIsItsOwn();
    void unreadCountFollowsTheList();
    void statusTextsDifferInTheirBlanks();
    void bulkChangesAreNotFollowed();
    void brokenTableEndsInABox();
    void datesNarrowListAndCounts();
    void anotherFolderReleasesTheMonthOnly();

    void monthsOfTheCurrentYear();
    void rangesEndOnTheDayAfter_data();
    void rangesEndOnTheDayAfter();
    void monthWithoutYearDoesNothing();

private:
    std::unique_ptr<Profile> profile;
    std::unique_ptr<FakePorts> fakes;
    std::unique_ptr<ShownMailbox> mailbox;
};

void tst_ShownMailbox::init()
{
    profile = std::make_unique<Profile>();
    fakes = std::make_unique<FakePorts>();
    fakes->clock.now = QDateTime(QDate(2026, 3, 15), QTime(12, 0));
    mailbox = std::make_unique<ShownMailbox>(fakes->message, fakes->clock);
    Global().SwitchTo = true;
}

void tst_ShownMailbox::cleanup()
{
    const QStringList boxes = fakes->prompts.Texts();
    mailbox.reset();
    fakes.reset();
    profile.reset();
    QCOMPARE(boxes, QStringList());
}

void tst_ShownMailbox::firstFolderFollowsTheOption()
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

void tst_ShownMailbox::sentLeadsToItsFirstBranch()
{
    profile->InsertSentFax("S", {{"folderID", "1005"}});
    mailbox->LoadFaxFolderTree();
    const QSignalSpy selected(mailbox.get(), &ShownMailbox::FolderSelected);
    mailbox->SelectFolder("1004");
    QCOMPARE(mailbox->SelectedFolder(), "1005");
    QCOMPARE(selected.size(), 1);
    QCOMPARE(mailbox->RowCount(), 1);
    QCOMPARE(mailbox->GetFaxTable(), 1);
}

void tst_ShownMailbox::folderShowsItsNewestFax()
{
    profile->InsertReceivedFax("OLD", {{"receiveTime", "2026-01-01 00:00:00"}});
    profile->InsertReceivedFax("NEW", {{"receiveTime", "2026-01-02 00:00:00"}, {"fileName", "NEW.tif"}});
    QVERIFY(FaxFile().Write(Global().strInputBoxPath + "NEW.tif"));
    const QSignalSpy rows(mailbox.get(), &ShownMailbox::RowSelected);
    mailbox->LoadFaxFolderTree();
    QCOMPARE(mailbox->SelectedFaxes(), QStringList("NEW"));
    QCOMPARE(rows.last().first(), 1);
    QCOMPARE(mailbox->Preview().Texts().strFileName, "NEW.tif");
}

void tst_ShownMailbox::emptyFolderShowsNothing()
{
    profile->InsertReceivedFax("A", {{"fileName", "A.tif"}});
    QVERIFY(FaxFile().Write(Global().strInputBoxPath + "A.tif"));
    mailbox->LoadFaxFolderTree();
    QVERIFY(mailbox->Preview().HasImage());
    mailbox->SelectFolder("1002");
    QCOMPARE(mailbox->SelectedRow(), 0);
    QVERIFY(!mailbox->Preview().HasImage());
    QVERIFY(!mailbox->Preview().IsFitWidth());
}

void tst_ShownMailbox::newFaxesOnTopLeaveTheReaderAlone()
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

void tst_ShownMailbox::reloadSelectsTheNewest()
{
    profile->InsertReceivedFax("A", {{"receiveTime", "2026-01-01 00:00:00"}});
    mailbox->LoadFaxFolderTree();
    profile->InsertReceivedFax("B", {{"receiveTime", "2026-01-02 00:00:00"}});
    mailbox->ReloadCurrentFolder(true);
    QCOMPARE(mailbox->SelectedFaxes(), QStringList("B"));
}

void tst_ShownMailbox::refreshLeavesTheRecycleBin()
{
    profile->InsertReceivedFax("A", {{"RecyleID", "1008"}});
    mailbox->LoadFaxFolderTree();
    mailbox->SelectFolder("1008");
    Profile::Execute("DELETE FROM ReceiveFax");
    mailbox->ReloadCurrentFolder(true);
    QCOMPARE(mailbox->RowCount(), 1);
}

void tst_ShownMailbox::tableOfABinRowIsItsOwn()
{
    profile->InsertReceivedFax("R", {{"RecyleID", "1008"}});
    profile->InsertSentFax("S", {{"RecyleID", "1008"}});
    mailbox->LoadFaxFolderTree();
    mailbox->SelectFolder("1008");
    QCOMPARE(mailbox->GetFaxTable(), 0);
    mailbox->SelectRow(2);
    QCOMPARE(mailbox->GetFaxTable(), 1);
    mailbox->SelectFaxes({}, {});
    QCOMPARE(mailbox->GetFaxTable(), 0);
}

void tst_ShownMailbox::unreadCountFollowsTheList()
{
    profile->InsertReceivedFax("A", {{"isReaded", "0"}});
    profile->InsertReceivedFax("B", {{"isReaded", "1"}});
    mailbox->LoadFaxFolderTree();
    mailbox->SetFolderTreeText(-1, nullptr);
    QCOMPARE(mailbox->SelectedNode()->lUnread, 1);
    mailbox->SetFolderTreeText(5, mailbox->Folders().Find("1002"));
    QCOMPARE(mailbox->Folders().Find("1002")->lUnread, 5);
}

void tst_ShownMailbox::statusTextsDifferInTheirBlanks()
{
    profile->InsertReceivedFax("A", {{"isReaded", "0"}});
    mailbox->LoadFaxFolderTree();
    QCOMPARE(mailbox->StatusText(), "Total Faxes: 1  Unread: 1");
    mailbox->RefreshFolderUnreadCounts();
    QCOMPARE(mailbox->StatusText(), "Total Faxes : 1  Unread : 1");
}

void tst_ShownMailbox::bulkChangesAreNotFollowed()
{
    mailbox->LoadFaxFolderTree();
    mailbox->SetReloading(true);
    mailbox->SelectFolder("1002");
    QCOMPARE(mailbox->SelectedFolder(), "1001");
    mailbox->SetReloading(false);
    mailbox->SelectFolder("1002");
    QCOMPARE(mailbox->SelectedFolder(), "1002");
}

void tst_ShownMailbox::brokenTableEndsInABox()
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

void tst_ShownMailbox::datesNarrowListAndCounts()
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
    QCOMPARE(mailbox->RowCount(), 2);
    mailbox->SelectYear(0);
    QCOMPARE(mailbox->labFolderTip(), "    Incoming    ");
}

void tst_ShownMailbox::anotherFolderReleasesTheMonthOnly()
{
    mailbox->LoadFaxFolderTree();
    mailbox->SelectYear(1);
    mailbox->ClickMonth(1);
    const QString range = mailbox->Dates().Text();
    mailbox->SelectFolder("1002");
    QVERIFY(!mailbox->Dates().IsMonthPressed(1));
    QCOMPARE(mailbox->Dates().Text(), range);
}

void tst_ShownMailbox::monthsOfTheCurrentYear()
{
    DateFilter dates(QDate(2026, 3, 15));
    QCOMPARE(dates.Years().size(), 11);
    QCOMPARE(dates.Years().mid(0, 2), QStringList({"All faxes", "2026"}));
    QCOMPARE(dates.Years().last(), "2017");
    dates.SelectYear(1);
    QVERIFY(dates.IsMonthEnabled(2));
    QVERIFY(!dates.IsMonthEnabled(3));
    dates.ClickMonth(3);
    QVERIFY(!dates.IsMonthPressed(3));
    dates.SelectYear(2);
    QVERIFY(dates.IsMonthEnabled(11));
}

void tst_ShownMailbox::rangesEndOnTheDayAfter_data()
{
    QTest::addColumn<int>("year");
    QTest::addColumn<int>("month");
    QTest::addColumn<QString>("range");
    QTest::newRow("all") << 0 << -1 << "";
    QTest::newRow("year") << 2 << -1 << " between '2025-01-01' and '2026-01-01' ";
    QTest::newRow("month") << 2 << 1 << " between '2025-02-01' and  '2025-03-01'";
    QTest::newRow("December") << 2 << 11 << " between '2025-12-01' and  '2026-01-01'";
}

void tst_ShownMailbox::rangesEndOnTheDayAfter()
{
    QFETCH(int, year);
    QFETCH(int, month);
    DateFilter dates(QDate(2026, 3, 15));
    dates.SelectYear(year);
    if (month >= 0)
        dates.ClickMonth(month);
    QTEST(dates.Text(), "range");
}

void tst_ShownMailbox::monthWithoutYearDoesNothing()
{
    DateFilter dates(QDate(2026, 3, 15));
    QVERIFY(!dates.IsMonthEnabled(0));
    dates.ClickMonth(0);
    QCOMPARE(dates.Text(), "");
    QCOMPARE(dates.MonthCaption(0), "");
}

QTEST_GUILESS_MAIN(tst_ShownMailbox)
#include "tst_ShownMailbox.moc"
