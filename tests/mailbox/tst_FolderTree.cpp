#include "core/ModelRoles.h"
#include "fixtures/Profile.h"
#include "mailbox/FolderTree.h"
#include "mailbox/FolderTreeModel.h"

#include <QAbstractItemModelTester>
#include <QTest>

#include <memory>

namespace {

void InsertFolder(Profile &profile, const QString &id, const QString &parent, const QString &type,
                  const QString &name = "Folder")
{
    profile.InsertRow("FaxFolder", {{"Folder_ID", id},
                                    {"Folder_Name", name},
                                    {"Folder_Type", type},
                                    {"parentID", parent},
                                    {"isSystem", "0"}});
}

QStringList ChildKeys(const FolderNode *node)
{
    QStringList keys;
    for (const FolderNode *child : node->aChildren)
        keys.append(child->strKey);
    return keys;
}

} // namespace

class tst_FolderTree : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        profile = std::make_unique<Profile>();
        tree = std::make_unique<FolderTree>();
    }
    void cleanup()
    {
        tree.reset();
        profile.reset();
    }

    void userFoldersFollowInTheOrderOfTheTable()
    {
        InsertFolder(*profile, "B", "1001", "1", "Sam~$@~s");
        InsertFolder(*profile, "A", "1001", "1");
        InsertFolder(*profile, "TOP", "1000", "0");
        InsertFolder(*profile, "BELOW", "B", "1");
        tree->LoadFaxFolderTree();
        QCOMPARE(ChildKeys(tree->Root()), QStringList({"1001", "1002", "1003", "1004", "1008", "TOP"}));
        QCOMPARE(ChildKeys(tree->Find("1004")), QStringList({"1005", "1006", "1007"}));
        QCOMPARE(tree->Find("1002")->strText, "Draft"); // the row's own name ends in a blank
        QCOMPARE(ChildKeys(tree->Find("1001")), QStringList({"B", "A"}));
        QCOMPARE(ChildKeys(tree->Find("B")), QStringList({"BELOW"}));
        QCOMPARE(tree->Find("B")->strText, "Sam's");
        QCOMPARE(tree->Find("BELOW")->Family, FolderFamily::Received);
    }

    void circlesAndOrphansStayInvisible()
    {
        InsertFolder(*profile, "LOOP1", "LOOP2", "1");
        InsertFolder(*profile, "LOOP2", "LOOP1", "1");
        InsertFolder(*profile, "SELF", "SELF", "1");
        InsertFolder(*profile, "ORPHAN", "GONE", "1");
        InsertFolder(*profile, "TWICE", "1001", "1");
        InsertFolder(*profile, "TWICE", "1002", "2");
        InsertFolder(*profile, "1000", "1001", "0"); // the root below itself
        tree->LoadFaxFolderTree();
        QCOMPARE(tree->Count(), 10);
        QCOMPARE(tree->Find("TWICE")->parent->strKey, "1001");
        QVERIFY(!tree->Root()->parent);
    }

    void deepChainLoads()
    {
        Profile::Execute("BEGIN");
        QString parent = "1001";
        for (int i = 0; i < 20000; ++i) {
            const QString id = "F" + QString::number(i);
            Profile::Execute("INSERT INTO FaxFolder VALUES('" + id + "','n','1','" + parent + "','0')");
            parent = id;
        }
        Profile::Execute("COMMIT");
        tree->LoadFaxFolderTree();
        QCOMPARE(tree->Count(), 20009);
        QCOMPARE(tree->CollectSubtreeFolderIds(tree->Find("F19998")), ",'F19999'");
    }

    void branchIsFoundUpwards()
    {
        InsertFolder(*profile, "DEEP", "1007", "6");
        tree->LoadFaxFolderTree();
        QCOMPARE(GetNodeParentKey(tree->Find("DEEP")), "1007");
        QCOMPARE(GetNodeParentKey(tree->Find("1006")), "1006");
        QCOMPARE(GetNodeParentKey(tree->Find("1004")), "");
        QCOMPARE(GetListMode(FolderFamily::Sended, "1006"), 6);
        QCOMPARE(GetListMode(FolderFamily::Sended, ""), -1);
    }

    void subtreeIdsAreAddedToTheList()
    {
        InsertFolder(*profile, "A", "1001", "1");
        InsertFolder(*profile, "AA", "A", "1");
        InsertFolder(*profile, "B", "1001", "1");
        tree->LoadFaxFolderTree();
        QCOMPARE(tree->CollectSubtreeFolderIds(tree->Find("1001")), ",'A','AA','B'");
        QCOMPARE(tree->CollectSubtreeFolderIds(tree->Find("A")), ",'A','AA','B','AA'");
        tree->FolderIdList.clear();
        QCOMPARE(tree->CollectSubtreeFolderIds(tree->Find("AA")), "");
    }

    void recountFillsEveryFolder()
    {
        profile->InsertReceivedFax("R1", {{"isReaded", "0"}});
        profile->InsertReceivedFax("R2", {{"isReaded", "1"}});
        profile->InsertReceivedFax("R3", {{"isReaded", "0"}, {"RecyleID", "1008"}});
        profile->InsertReceivedFax("R4", {{"isReaded", "0"}, {"folderID", "GONE"}});
        profile->InsertSentFax("S1", {{"isReaded", "0"}, {"folderID", "1006"}});
        profile->InsertSentFax("S2", {{"isReaded", "0"}, {"RecyleID", "1008"}});
        tree->LoadFaxFolderTree();
        tree->SetUnread(tree->Find("1002"), 7);
        tree->RefreshFolderUnreadCounts({});
        QCOMPARE(tree->Find("1001")->lUnread, 1);
        QCOMPARE(tree->Find("1002")->lUnread, 0);
        QCOMPARE(tree->Find("1006")->lUnread, 1);
        QCOMPARE(tree->Find("1008")->lUnread, 2); // one of each table
    }

    void recountKeepsToTheDates()
    {
        profile->InsertReceivedFax("R1", {{"isReaded", "0"}, {"receiveTime", "2026-03-31 23:59:59"}});
        profile->InsertReceivedFax("R2", {{"isReaded", "0"}, {"receiveTime", "2026-04-01 00:00:01"}});
        profile->InsertReceivedFax(
            "R3", {{"isReaded", "0"}, {"receiveTime", "2026-03-01 09:00:00"}, {"RecyleID", "1008"}});
        profile->InsertSentFax("S1", {{"isReaded", "0"}, {"ModifyTime", "2026-03-05 09:00:00"}});
        profile->InsertSentFax("S2", {{"isReaded", "0"}, {"ModifyTime", "2025-03-05 09:00:00"}});
        const QString march = " between '2026-03-01' and  '2026-04-01'";
        tree->LoadFaxFolderTree();
        tree->RefreshFolderUnreadCounts(march);
        QCOMPARE(tree->Find("1001")->lUnread, 1);
        QCOMPARE(tree->Find("1003")->lUnread, 1);
        QCOMPARE(tree->Find("1008")->lUnread, 1);
        QCOMPARE(FolderTree::GetNotReadCount(*tree->Find("1001"), march), 1);
        QCOMPARE(FolderTree::GetNotReadCount(*tree->Find("1003"), march), 1);
    }

    void modelFollowsTheTree()
    {
        InsertFolder(*profile, "A", "1001", "1", "Letters");
        FolderTreeModel model(*tree);
        const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        tree->LoadFaxFolderTree();
        const QModelIndex letters = model.IndexOf(tree->Find("A"));
        QCOMPARE(letters.parent(), model.IndexOf(tree->Find("1001")));
        QCOMPARE(letters.data(KeyRole), "A");
        QCOMPARE(letters.data(ImageKeyRole), "imgReceived");
        tree->SetUnread(tree->Find("A"), 3);
        QCOMPARE(letters.data(CountRole), 3);
        QCOMPARE(letters.data(Qt::DisplayRole), "Letters"); // the count is no part of the text
        QCOMPARE(letters.data(Qt::AccessibleTextRole), "Letters, 3 unread");
    }

private:
    std::unique_ptr<Profile> profile;
    std::unique_ptr<FolderTree> tree;
};

QTEST_GUILESS_MAIN(tst_FolderTree)
#include "tst_FolderTree.moc"
