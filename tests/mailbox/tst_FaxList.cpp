#include "core/ModelRoles.h"
#include "fixtures/Profile.h"
#include "fixtures/TestTable.h"
#include "mailbox/FaxList.h"
#include "mailbox/FaxListModel.h"

#include <QAbstractItemModelTester>

#include <memory>
#include <tuple>

class tst_FaxList : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        profile = std::make_unique<Profile>();
        list = std::make_unique<FaxList>();
    }
    void cleanup()
    {
        list.reset();
        profile.reset();
    }

    void cellsOfTheModes_data()
    {
        const TestTable<int, QString, QStringList> row{"mode", "folder", "cells"}; // from column 4 on
        row("draft", 1, "1002", {"Ann;Bob", "It's", "2", "03/04/2026 05:06:07", "a.doc,b.doc"});
        row("outgoing", 4, "1003", {"Ann;Bob", "It's", "2", "x.tif"});
        const QStringList sent{"Ann;Bob", "It's", "2", "Busy", "03/05/2026 05:06:07", "C:\\out\\x.tif"};
        row("sending", 5, "1005", sent);
        row("undelivered", 7, "1007", sent);
    }

    void cellsOfTheModes()
    {
        QFETCH(int, mode);
        QFETCH(QString, folder);
        profile->InsertSentFax("S1", {{"folderID", folder},
                                      {"ReceiverName", "Ann;Bob;"},
                                      {"title", "It~$@~s"},
                                      {"pages", "2"},
                                      {"ModifyTime", "2026-03-04 05:06:07"},
                                      {"SendTime", "2026-03-05 05:06:07"},
                                      {"fileList", "a.doc,b.doc,"},
                                      {"fileName", "C:\\out\\x.tif"},
                                      {"result", QString("Busy") + QChar(2) + "more"}});
        Load(mode, folder);
        QCOMPARE(list->RowCount(), 1);
        QTEST(Cells(1, colFirstText), "cells");
    }

    void rowIsReadAgain()
    {
        for (const auto &[mode, table, titleColumn] : {std::tuple(1, "SendFax", 5),
                                                       {2, "ReceiveFax", 6},
                                                       {3, "SendFax", 5},
                                                       {3, "ReceiveFax", 5},
                                                       {4, "SendFax", 5},
                                                       {7, "SendFax", 5}}) {
            const Profile::Columns columns{{"folderID", mode == 3 ? "" : "1001"},
                                           {"RecyleID", mode == 3 ? "1001" : ""}};
            if (*table == 'S') {
                profile->InsertSentFax("A", columns);
            } else {
                profile->InsertReceivedFax("A", columns);
                Profile::Execute("UPDATE ReceiveFax SET FirstReader='Carl'");
            }
            Load(mode, "1001");
            QStringList wanted = Cells(1, colFirstText);
            wanted[titleColumn - colFirstText] = "It's";
            Profile::Execute(QString("UPDATE %1 SET title='It~$@~s', faxLevel='2'").arg(table));
            list->ReloadRow(1, "A", mode);
            QCOMPARE(list->Row(1).Level(), 2);
            QCOMPARE(Cells(1, colFirstText), wanted);
            Profile::Execute(QString("DELETE FROM %1").arg(table));
            list->ReloadRow(1, "A", mode);
            QCOMPARE(list->Row(1).ID(), "A");
        }
    }

    void textsOfUsualLengthsAreKept()
    {
        for (const int length : {0, 1, 254, 255, 256, 30000}) {
            const QString title(length, QChar(0xe4));
            Profile::Execute("DELETE FROM ReceiveFax");
            profile->InsertReceivedFax("A", {{"title", title}, {"pages", "7"}});
            Load(2, "1001");
            QCOMPARE(list->Row(1).Cell(6), title);
            QCOMPARE(list->Row(1).Cell(7), "7"); // stands behind it
        }
    }

    void additionKeepsWhatIsListed()
    {
        profile->InsertReceivedFax("A", {{"receiveTime", "2026-01-02 00:00:00"}});
        Load(2, "1001");
        // Older than what is listed, and yet on top: additions do not sort the list anew.
        profile->InsertReceivedFax("B", {{"receiveTime", "2026-01-01 00:00:00"}});
        Profile::Execute("UPDATE ReceiveFax SET title='changed' WHERE Fax_ID='A'");
        Load(2, "1001", false);
        QCOMPARE(ShownIds(), QStringList({"B", "A"}));
        QVERIFY(list->Row(2).Cell(6) != "changed");
        Load(2, "1001", true);
        QCOMPARE(ShownIds(), QStringList({"A", "B"}));
        QCOMPARE(list->Row(1).Cell(6), "changed");
    }

    void dateRangeAndFilterNarrowTheList()
    {
        profile->InsertReceivedFax("A", {{"receiveTime", "2026-03-31 12:00:00"}, {"title", "Bill"}});
        profile->InsertReceivedFax("B", {{"receiveTime", "2026-04-01 12:00:00"}, {"title", "Bill"}});
        profile->InsertReceivedFax("C", {{"receiveTime", "2026-03-30 12:00:00"}, {"title", "Note"}});
        list->LoadFaxes(
            {"1001", 2, " and title='Bill' ", false, {}, " between '2026-03-01' and  '2026-04-01'"}, true);
        QCOMPARE(ShownIds(), QStringList({"A"}));
    }

    void allFoldersDropsTheFolder()
    {
        profile->InsertSentFax("A", {{"folderID", "1005"}});
        profile->InsertSentFax("B", {{"folderID", "1002"}});
        profile->InsertSentFax("C", {{"folderID", "1002"}, {"RecyleID", "1008"}});
        list->LoadFaxes({"1005", 5, {}, true, {}, {}}, true);
        QCOMPARE(list->RowCount(), 2);
        QCOMPARE(list->RowOf("C"), 0);
    }

    void recycleBinMixesBothTables()
    {
        profile->InsertReceivedFax("R", {{"RecyleID", "1008"},
                                         {"sender", "Ann"},
                                         {"title", "Bill"},
                                         {"pages", "3"},
                                         {"receiveTime", "2026-01-01 00:00:00"},
                                         {"reSender", "Bob"},
                                         {"fileName", "r.tif"}});
        profile->InsertSentFax(
            "S", {{"RecyleID", "1008"}, {"title", "Offer"}, {"pages", "1"}, {"fileName", "out/s.tif"}});
        Load(3, "1008");
        QCOMPARE(ShownIds(), QStringList({"R", "S"}));
        // Each value from the title on stands one column left of its caption; column 10 tells the table.
        QCOMPARE(Cells(1, colFirstText),
                 QStringList({"Ann", "Bill", "3", "01/01/2026 00:00:00", "Bob", "r.tif", "0"}));
        QCOMPARE(Cells(2, colFirstText), QStringList({"", "Offer", "1", "", "", "s.tif", "1"}));
        profile->InsertReceivedFax("OLD", {{"RecyleID", "1008"}, {"receiveTime", "2025-12-01 00:00:00"}});
        list->SetLayout(5);
        Load(3, "1008");
        list->SortBy(7); // as times, though its caption is another
        QCOMPARE(ShownIds(), QStringList({"S", "OLD", "R"}));
    }

    void levelsAndReadStateShow()
    {
        struct Case
        {
            QString strLevel, strReaded, strLevelImage, strReadImage;
            quint32 lColor; // 1 for none
        };
        for (const Case &c :
             {Case{"0", "0", "imgLevel", "imgNotRead", 0xff0000},
              Case{"2", "1", "imgLowLevel", "imgReaded", 0x969696}, Case{"1", "-1", "", "imgReaded", 1},
              Case{"", "False", "", "imgNotRead", 1}, Case{"high", "1", "", "imgReaded", 1}}) {
            profile->InsertSentFax(
                "S" + c.strLevel,
                {{"folderID", "1002"}, {"faxLevel", c.strLevel}, {"isReaded", c.strReaded}});
            Load(1, "1002");
            const FaxRow &row = list->Row(list->RowOf("S" + c.strLevel));
            QCOMPARE(row.LevelImageKey(), c.strLevelImage);
            QCOMPARE(row.ReadImageKey(), c.strReadImage);
            QCOMPARE(row.TextColor().value_or(1), c.lColor);
        }
        QCOMPARE(list->UnreadCount(), 2);
    }

    void columnsSortByTheirKind()
    {
        profile->InsertReceivedFax(
            "A", {{"sender", "Zoe"}, {"pages", "9"}, {"receiveTime", "2026-01-02 00:00:00"}});
        profile->InsertReceivedFax(
            "B", {{"sender", "ann"}, {"pages", "10"}, {"receiveTime", "2025-12-01 00:00:00"}});
        profile->InsertReceivedFax(
            "C", {{"sender", "Bob"}, {"pages", ""}, {"receiveTime", "2026-02-01 00:00:00"}});
        list->SetLayout(1);
        Load(2, "1001");
        FaxListModel model(*list);
        const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        const QPersistentModelIndex selected(model.index(0, 3));
        QCOMPARE(ShownIds().join(""), "CAB"); // the newest first
        for (const auto &[column, ascending, descending] :
             {std::tuple{4, "BCA", "ACB"}, {7, "CAB", "BAC"}, {8, "BAC", "CAB"}}) {
            list->SortBy(column);
            QCOMPARE(ShownIds().join(""), ascending);
            QCOMPARE(list->HeaderImageKey(column), "imgSortUp");
            list->SortBy(column);
            QCOMPARE(ShownIds().join(""), descending);
            QCOMPARE(list->HeaderImageKey(column), "imgSortDown");
            QCOMPARE(selected.data(), "Bob"); // moves with its fax
        }
        list->SortBy(colLevel); // has no order
        QCOMPARE(ShownIds().join(""), "CAB");
    }

    void summaryCountsSubtrees()
    {
        profile->InsertReceivedFax("R1", {{"isReaded", "0"}});
        profile->InsertReceivedFax("R2", {{"folderID", "SUB"}, {"isReaded", "1"}});
        profile->InsertSentFax("S1", {{"folderID", "1003"}, {"isReaded", "1"}});
        profile->InsertSentFax("S2", {{"folderID", "1003"}, {"isReaded", "0"}, {"RecyleID", "1008"}});
        profile->InsertSentFax("S3", {{"folderID", "1006"}, {"isReaded", "0"}});
        list->LoadSummary({",'SUB'", "", ",'1005','1006','1007'", ""}, {});
        QStringList rows;
        for (int row = 1; row <= list->RowCount(); ++row)
            rows.append(Cells(row, colIsReaded).join('|'));
        // The total of Outgoing counts the recycled fax as well.
        QCOMPARE(rows, QStringList({"Incoming Fax|1|2", "Draft Fax|0|0", "Sent Fax|1|1", "Outgoing fax|0|2",
                                    "Recycle bin|1|1"}));
        QCOMPARE(list->Row(1).ReadImageKey(), "");
    }

    void modelShowsRowsReversed()
    {
        FaxListModel model(*list);
        const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        list->SetLayout(1);
        profile->InsertReceivedFax(
            "A", {{"receiveTime", "2026-01-01 00:00:00"}, {"isReaded", "0"}, {"faxLevel", "0"}});
        Load(2, "1001");
        profile->InsertReceivedFax("B", {{"receiveTime", "2026-01-02 00:00:00"}, {"isReaded", "1"}});
        Load(2, "1001", false);
        QCOMPARE(model.rowCount(), 2);
        QCOMPARE(model.columnCount(), 11);
        QCOMPARE(model.index(0, 0).data(KeyRole), "B");
        const QModelIndex unread = model.index(1, colIsReaded - 1);
        QCOMPARE(unread.data(ImageKeyRole), "imgNotRead");
        QCOMPARE(unread.data(Qt::AccessibleTextRole), "Unread");
        QCOMPARE(unread.data(BoldRole), true);
        QCOMPARE(model.index(1, colLevel - 1).data(Qt::AccessibleTextRole), "Urgent");
        QCOMPARE(unread.data(ColorRole).toUInt(), 0xff0000u);
        QCOMPARE(model.headerData(7, Qt::Horizontal, ImageKeyRole), "imgSortDown");
        QCOMPARE(model.headerData(1, Qt::Horizontal, Qt::ToolTipRole), "Read");
        list->Remove({"B"});
        QCOMPARE(model.index(0, 0).data(KeyRole), "A");
        list->SetLayout(4);
        QCOMPARE(model.rowCount(), 0);
        QCOMPARE(model.headerData(3, Qt::Horizontal, Qt::DisplayRole), "Recipient");
    }

    void longAndWildTextsStayOneShortLine()
    {
        const QString wild = QString("<b>a\r\nb\x1b") + QChar(0x202e) + "c";
        profile->InsertReceivedFax("A", {{"title", wild}, {"sender", QString(1 << 20, 'W')}});
        Profile::Execute("UPDATE ReceiveFax SET pages=NULL, receiveTime=X'00FF', faxLevel=NULL");
        list->SetLayout(1);
        Load(2, "1001");
        const FaxListModel model(*list);
        QCOMPARE(model.index(0, 5).data(), "<b>a  b  c");
        QCOMPARE(model.index(0, 3).data().toString().size(), 501);
        QCOMPARE(model.index(0, 6).data(), "");
        QCOMPARE(list->Row(1).Cell(6), wild); // whole for those who work with it
    }

    void faxesAreTakenOutAtOnce()
    {
        Profile::Execute("BEGIN");
        for (int i = 0; i < 300; ++i)
            profile->InsertReceivedFax("F" + QString::number(i),
                                       {{"receiveTime", QString::number(1000 + i)}});
        Profile::Execute("COMMIT");
        FaxListModel model(*list);
        const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        list->SetLayout(1);
        Load(2, "1001");
        QCOMPARE(list->Remove({"F298", "F297", "F290", "F5", "elsewhere"}), 2);
        QCOMPARE(ShownIds().size(), 296);
        QCOMPARE(ShownIds().mid(0, 3), QStringList({"F299", "F296", "F295"}));
        QSet<QString> odd;
        for (int i = 1; i < 300; i += 2)
            odd.insert("F" + QString::number(i));
        QCOMPARE(list->Remove(odd), 1); // in many places of the list
        QCOMPARE(ShownIds().mid(0, 3), QStringList({"F296", "F294", "F292"}));
        QCOMPARE(model.rowCount(), 148);
        QCOMPARE(list->RowOf("F0"), 148);
        QCOMPARE(list->Remove(odd), 0);
    }

    void orderOutlivesAReload()
    {
        profile->InsertReceivedFax("A", {{"sender", "Ann"}, {"receiveTime", "2026-01-01 00:00:00"}});
        profile->InsertReceivedFax("B", {{"sender", "Bob"}, {"receiveTime", "2026-01-02 00:00:00"}});
        list->SetLayout(1);
        Load(2, "1001");
        list->SortBy(4);
        QCOMPARE(ShownIds(), QStringList({"A", "B"}));
        Load(2, "1001");
        QCOMPARE(ShownIds(), QStringList({"A", "B"}));
        list->SetLayout(1);
        Load(2, "1001");
        QCOMPARE(ShownIds(), QStringList({"B", "A"}));
        QCOMPARE(list->HeaderImageKey(8), "imgSortDown");
    }

private:
    void Load(int mode, const QString &key, bool clearFirst = true)
    {
        list->LoadFaxes({key, mode, {}, false, {}, {}}, clearFirst);
    }
    /// Texts from a column on, up to the last one that is not empty.
    QStringList Cells(int row, int firstColumn) const
    {
        QStringList cells;
        for (int column = firstColumn; column <= colFaxTable; ++column)
            cells.append(list->Row(row).Cell(column));
        while (!cells.isEmpty() && cells.last().isEmpty())
            cells.removeLast();
        return cells;
    }
    QStringList ShownIds() const
    {
        QStringList ids;
        for (int row = 1; row <= list->RowCount(); ++row)
            ids.append(list->Row(row).ID());
        return ids;
    }

    std::unique_ptr<Profile> profile;
    std::unique_ptr<FaxList> list;
};

QTEST_GUILESS_MAIN(tst_FaxList)
#include "tst_FaxList.moc"
