#include "fixtures/FaxFile.h"
#include "fixtures/MailboxTest.h"
#include "fixtures/TestTable.h"

class tst_ShownMailbox : public QObject, private MailboxTest
{
    Q_OBJECT

private slots:
    void init()
    {
        SetUp(QDate(2026, 3, 15));
        Global().SwitchTo = true;
    }
    void cleanup()
    {
        const QStringList boxes = fakes->prompts.Texts();
        TearDown();
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

    void statusCountsAsTheTableDoes()
    {
        int fax = 0;
        const QStringList folders{"1001", "1002", "1003", "1005", "1006", "1007", "1008"};
        for (const QString &folder : folders) {
            for (const char *state : {"0", "0", "1", "-1", "False", ""}) {
                const QString id = QString::number(++fax);
                const QString time = QString(fax % 2 ? "2024" : "2001") + "-05-05"; // not in the range below
                const Profile::Columns columns{
                    {"folderID", folder}, {"isReaded", state}, {"RecyleID", folder == "1008" ? folder : ""}};
                for (const char *column : {"receiveTime", "ModifyTime"}) {
                    Profile::Columns all = columns;
                    all.insert(column, time);
                    *column == 'r' ? profile->InsertReceivedFax("R" + id, all)
                                   : profile->InsertSentFax("S" + id, all);
                }
            }
        }
        mailbox->LoadFaxFolderTree();
        for (const int year : {0, int(mailbox->Dates().Years().indexOf("2024"))}) {
            for (const QString &folder : folders) {
                mailbox->SelectFolder(folder);
                mailbox->SelectYear(year);
                const long unread =
                    FolderTree::GetNotReadCount(*mailbox->SelectedNode(), mailbox->Dates().Text());
                QVERIFY(unread > 0);
                QVERIFY2(mailbox->StatusText().endsWith("Unread : " + QString::number(unread)),
                         qPrintable(folder));
                mailbox->SelectFolder(folder); // its year stays
                QVERIFY2(mailbox->StatusText().endsWith("Unread: " + QString::number(unread)),
                         qPrintable(folder));
            }
        }
    }

    void newFaxesOnTopLeaveTheReaderAlone()
    {
        QVERIFY(FaxFile{.lPages = 2}.Write(Global().strInputBoxPath + "A.tif"));
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
        mailbox->SelectYear(2);
        QCOMPARE(mailbox->RowCount(), 1);
        QVERIFY(!mailbox->ListNarrowing().firstDay.isValid()); // the list is not of that year
        mailbox->SelectFolder("1008");
        QCOMPARE(mailbox->ListNarrowing().lastDay, QDate(2025, 12, 31));
    }

    void savedFaxesChangeTheListTheyAreIn_data()
    {
        // The rows after NEW came into the folder and B got another title, and the fax on show.
        const TestTable<QString, int, bool, QString, QString, QString> row{"folder", "kind", "isNew",
                                                                           "id",     "rows", "shown"};
        row("new draft", "1002", 0, true, "", "NEW C B A", "B");
        row("edited draft", "1002", 0, false, "B", "C B! A", "B");
        row("draft under a new id", "1002", 0, false, "NEW", "NEW C B! A", "NEW");
        row("draft sent", "1002", 1, false, "B", "C A", "A");
        row("last draft sent", "1002", 1, false, "A", "C B", "B");
        row("new fax sent", "1002", 1, true, "", "C B A", "B");
        row("into Outgoing", "1003", 1, true, "", "NEW C B A", "B");
        row("out of Outgoing", "1003", 2, false, "B", "C A", "A");
        row("into Sending", "1005", 2, false, "NEW", "NEW C B A", "B");
        row("filter", "1003", 3, false, " and Fax_ID<'C'", "B! A", "B");
        row("filter for all folders", "1003", 3, true, " and title='Offer'", "NEW C ELSEWHERE A", "NEW");
    }

    void savedFaxesChangeTheListTheyAreIn()
    {
        QFETCH(QString, folder);
        QFETCH(int, kind);
        QFETCH(bool, isNew);
        QFETCH(QString, id);
        const auto insert = [&](const QString &name, const QString &where, int day) {
            const QString time = QString("2026-01-0%1 00:00:00").arg(day);
            profile->InsertSentFax(
                name, {{"folderID", where}, {"ModifyTime", time}, {"SendTime", time}, {"isReaded", "0"}});
        };
        insert("A", folder, 1);
        insert("ELSEWHERE", "1006", 2);
        insert("B", folder, 3);
        insert("C", folder, 4);
        mailbox->LoadFaxFolderTree();
        mailbox->SelectFolder(folder);
        mailbox->SelectRow(2);
        insert("NEW", folder, 5);
        Profile::Execute("UPDATE SendFax SET title='Changed' WHERE Fax_ID='B'");
        mailbox->NotifySaveFax(kind, isNew, id);
        QStringList rows;
        for (int row = 1; row <= mailbox->RowCount(); ++row) {
            const FaxRow &fax = mailbox->List().Row(row);
            rows.append(fax.ID() + (fax.Cell(5) == "Changed" ? "!" : ""));
        }
        QTEST(rows.join(' '), "rows");
        QTEST(mailbox->SelectedFaxes().join(','), "shown");
        QCOMPARE(mailbox->List().Row(mailbox->SelectedRow()).ID(), mailbox->SelectedFaxes().first());
        if (kind != 3)
            QCOMPARE(mailbox->SelectedNode()->lUnread, 4);
    }

    void faxKeepsItsPlaceUnderAnotherId()
    {
        profile->InsertSentFax("A", {{"folderID", "1002"}});
        profile->InsertSentFax("B", {{"folderID", "1002"}});
        mailbox->LoadFaxFolderTree();
        mailbox->SelectFolder("1002");
        mailbox->SelectRow(mailbox->List().RowOf("A"));
        Profile::Execute("UPDATE SendFax SET Fax_ID='C' WHERE Fax_ID='A'");
        mailbox->ChangeFaxID("A", "C");
        QCOMPARE(mailbox->SelectedFaxes(), {"C"});
        QCOMPARE(mailbox->SelectedRow(), mailbox->List().RowOf("C"));
        mailbox->NotifySaveFax(1, false, "C");
        QCOMPARE(mailbox->RowCount(), 1);
    }

    void savedFaxesChangeTheSummary()
    {
        Global().SwitchTo = false;
        mailbox->NotifySaveFax(0, true, ""); // no folder is selected yet
        mailbox->LoadFaxFolderTree();
        profile->InsertSentFax("A", {{"folderID", "1002"}});
        mailbox->NotifySaveFax(0, true, "");
        QCOMPARE(mailbox->List().Row(2).Cell(4), "1");
        mailbox->NotifySaveFax(1, false, "");
        QCOMPARE(mailbox->RowCount(), 5);
    }

    void sentFaxTakesTheFirstRowAlong()
    {
        profile->InsertSentFax("A");
        profile->InsertSentFax("B", {{"ModifyTime", "2024-02-01 09:00:00"}});
        profile->InsertSentFax("C", {{"folderID", "1006"}});
        mailbox->LoadFaxFolderTree();
        mailbox->SelectFolder("1003");
        QVERIFY(mailbox->DropFirstWaiting());
        QCOMPARE(mailbox->SelectedFaxes(), QStringList("A"));
        QVERIFY(mailbox->DropFirstWaiting() && mailbox->RowCount() == 0 && mailbox->DropFirstWaiting());
        mailbox->SelectFolder("1006");
        QVERIFY(!mailbox->DropFirstWaiting() && mailbox->RowCount() == 1);
    }

    void sentFaxesAreFollowed_data()
    {
        const TestTable<QString, QString, QString, QString, QString> row(
            {"change", "ids", "hidden", "rows", "selected"});
        const auto move = [](const char *id) {
            return QString("UPDATE SendFax SET FolderID='1007' WHERE Fax_ID='%1'").arg(id);
        };
        const QString all = "UPDATE SendFax SET FolderID='1007'";
        row("one arrives", "UPDATE SendFax SET FolderID='1006' WHERE Fax_ID='E'", "E", "", "E D C B A", "B");
        row("one above leaves", move("D"), "D", "", "C B A", "B");
        row("the shown one leaves", move("B"), "B", "", "D C A", "A");
        row("the others leave", all + " WHERE Fax_ID<>'B'", "A,C,D,E", "", "B", "B");
        row("all leave", all, "A,B,C,D", "", "", "");
        row("one is hidden", "", "", "C", "D B A", "B");
        row("result changes", "UPDATE SendFax SET Result='new'", "B,A,X", "", "D C B! A!", "B");
        row("not named", all, "A", "", "D C B", "B");
        row("hostile", all, "x') or ('1'='1,A", "", "D C B", "B");
        row("out of range", "UPDATE SendFax SET ModifyTime='2020'", "C", "", "D B A", "B");
    }
    void sentFaxesAreFollowed()
    {
        int day = 0;
        for (const char *id : {"A", "B", "C", "D", "E"}) {
            const QString time = QString("2026-01-0%1 00:00:00").arg(++day);
            profile->InsertSentFax(
                id, {{"folderID", day < 5 ? "1006" : "1005"}, {"ModifyTime", time}, {"SendTime", time}});
        }
        QVERIFY(FaxFile().Write(Global().strOutputBoxPath + "B.tif"));
        mailbox->LoadFaxFolderTree();
        mailbox->SelectFolder("1006");
        mailbox->SelectYear(1);
        mailbox->SelectRow(3);
        QFETCH(const QString, change);
        if (!change.isEmpty())
            Profile::Execute(change);
        QFETCH(const QString, ids);
        QFETCH(const QString, hidden);
        mailbox->FollowFaxes(ids.split(',', Qt::SkipEmptyParts), hidden.split(',', Qt::SkipEmptyParts));
        QStringList rows;
        for (int row = 1; row <= mailbox->RowCount(); ++row)
            rows.append(mailbox->List().Row(row).ID() +
                        (mailbox->List().Row(row).Cell(7) == "new" ? "!" : ""));
        QTEST(rows.join(' '), "rows");
        QTEST(mailbox->SelectedFaxes().join(' '), "selected");
        const int shown = mailbox->SelectedRow();
        QCOMPARE(shown > 0 ? mailbox->List().Row(shown).ID() : "", mailbox->SelectedFaxes().join(' '));
        QCOMPARE(mailbox->Preview().HasImage(), mailbox->SelectedFaxes() == QStringList("B"));
    }

    void lastFaxTakenOutEmptiesThePreview()
    {
        profile->InsertReceivedFax("A");
        mailbox->LoadFaxFolderTree();
        mailbox->DeleteSpecItemFromGrid("A", false);
        QCOMPARE(mailbox->SelectedRow(), 0);
        mailbox->ReloadCurrentFolder(true);
        mailbox->DeleteSpecItemFromGrid("A", true);
        QCOMPARE(mailbox->RowCount() + mailbox->SelectedFaxes().size(), 0);
        mailbox->DeleteSpecItemFromGrid("A", true);
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
        profile->InsertReceivedFax("C", {{"receiveTime", "2026-04-10 00:00:00"}, {"isReaded", "0"}});
        mailbox->RefreshFolderUnreadCounts(); // in the order of a fetch
        mailbox->LoadGridItem("1001", 2, {}, false, true);
        QCOMPARE(mailbox->StatusText(), "Total Faxes : 3  Unread : 3");
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
        dates.SetToday(QDate(2027, 1, 1)); // the program still runs
        QVERIFY(dates.IsMonthEnabled(11));
        QCOMPARE(dates.YearText(), "2026");
        dates.SelectYear(2);
        QCOMPARE(dates.Text(), " between '2025-01-01' and '2026-01-01' ");
        dates.ClickMonth(11);
        QCOMPARE(dates.Text(), " between '2025-12-01' and  '2026-01-01'");
    }
};

QTEST_GUILESS_MAIN(tst_ShownMailbox)
#include "tst_ShownMailbox.moc"
