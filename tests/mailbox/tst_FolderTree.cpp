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

    void newProfileShowsTheSystemFolders();
    void userFoldersFollowInTheOrderOfTheTable();
    void folderWithoutFamilyKeepsTheOneBefore();
    void circlesAndOrphansStayInvisible();
    void deepChainLoads();
    void branchIsFoundUpwards();
    void textForRenamingEndsAtTheLastBracket();
    void subtreeIdsAreAddedToTheList();
    void recountFillsEveryFolder();
    void recountKeepsToTheDates();
    void countOfOneFolderDependsOnItsFamily();
    void modelFollowsTheTree();

private:
    std::unique_ptr<Profile> profile;
    std::unique_ptr<FolderTree> tree;
};

void tst_FolderTree::newProfileShowsTheSystemFolders()
{
    tree->LoadFaxFolderTree();
    QCOMPARE(tree->Root()->strText, "My Faxes");
    QCOMPARE(ChildKeys(tree->Root()), QStringList({"1001", "1002", "1003", "1004", "1008"}));
    QCOMPARE(ChildKeys(tree->Find("1004")), QStringList({"1005", "1006", "1007"}));
    QCOMPARE(tree->Find("1002")->strText, "Draft"); // the row's own name ends in a blank
    QCOMPARE(tree->Find("1008")->strText, "Recycle bin");
    const QStringList keys{"1000", "1001", "1002", "1003", "1004", "1005", "1006", "1007", "1008"};
    QStringList images;
    for (const QString &key : keys)
        images.append(GetFamilyImageKey(tree->Find(key)->Family));
    QCOMPARE(images, QStringList({"imgFolderRoot", "imgReceived", "imgSketchup", "imgWaitSend", "imgSended",
                                  "imgSended", "imgSended", "imgSended", "imgRecyle"}));
}

void tst_FolderTree::userFoldersFollowInTheOrderOfTheTable()
{
    InsertFolder(*profile, "B", "1001", "1", "Sam~$@~s");
    InsertFolder(*profile, "A", "1001", "1");
    InsertFolder(*profile, "TOP", "1000", "0");
    InsertFolder(*profile, "BELOW", "B", "1");
    tree->LoadFaxFolderTree();
    QCOMPARE(ChildKeys(tree->Find("1001")), QStringList({"B", "A"}));
    QCOMPARE(ChildKeys(tree->Find("B")), QStringList({"BELOW"}));
    QCOMPARE(tree->Root()->aChildren.last()->strKey, "TOP");
    QCOMPARE(tree->Find("B")->strText, "Sam's");
    QCOMPARE(tree->Find("BELOW")->Family, FolderFamily::Received);
}

void tst_FolderTree::folderWithoutFamilyKeepsTheOneBefore()
{
    InsertFolder(*profile, "X", "1002", "3");
    InsertFolder(*profile, "Y", "1001", "7");
    InsertFolder(*profile, "Z", "Y", "99");
    tree->LoadFaxFolderTree();
    QCOMPARE(tree->Find("X")->Family, FolderFamily::Draft);
    QCOMPARE(tree->Find("Z")->Family, FolderFamily::Recyle);
}

void tst_FolderTree::circlesAndOrphansStayInvisible()
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

void tst_FolderTree::deepChainLoads()
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

void tst_FolderTree::branchIsFoundUpwards()
{
    InsertFolder(*profile, "DEEP", "1007", "6");
    tree->LoadFaxFolderTree();
    QCOMPARE(GetNodeParentKey(tree->Find("DEEP")), "1007");
    QCOMPARE(GetNodeParentKey(tree->Find("1006")), "1006");
    QCOMPARE(GetNodeParentKey(tree->Find("1004")), "");
    QCOMPARE(GetListMode(FolderFamily::Sended, "1006"), 6);
    QCOMPARE(GetListMode(FolderFamily::Sended, ""), -1);
}

void tst_FolderTree::textForRenamingEndsAtTheLastBracket()
{
    FolderNode node;
    node.strText = "Plans (2024) (old)";
    QCOMPARE(GetTreeItemText(&node), "Plans (2024) ");
    node.strText = "Plans";
    QCOMPARE(GetTreeItemText(&node), "Plans");
    QCOMPARE(GetTreeItemText(nullptr), "");
}

void tst_FolderTree::subtreeIdsAreAddedToTheList()
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

void tst_FolderTree::recountFillsEveryFolder()
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

void tst_FolderTree::recountKeepsToTheDates()
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

void tst_FolderTree::countOfOneFolderDependsOnItsFamily()
{
    profile->InsertReceivedFax(
        "R1", {{"isReaded", "0"}, {"receiveTime", "2020-01-01 00:00:00"}, {"RecyleID", "1008"}});
    profile->InsertSentFax("S1", {{"isReaded", "0"}, {"RecyleID", "1008"}, {"folderID", "1002"}});
    profile->InsertSentFax("S2", {{"isReaded", "0"}, {"folderID", "1002"}});
    tree->LoadFaxFolderTree();
    QCOMPARE(FolderTree::GetNotReadCount(*tree->Find("1002"), {}), 1);
    // The bin's count does not follow the dates, though its list does.
    QCOMPARE(FolderTree::GetNotReadCount(*tree->Find("1008"), " between '2026-03-01' and  '2026-04-01'"), 2);
}

void tst_FolderTree::modelFollowsTheTree()
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

QTEST_GUILESS_MAIN(tst_FolderTree)
#include "tst_FolderTree.moc"
