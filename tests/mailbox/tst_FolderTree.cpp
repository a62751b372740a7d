#include "core/ModelRoles.h"
#include "fixtures/MailboxTest.h"
#include "mailbox/FolderRules.h"
#include "mailbox/FolderTree.h"
#include "mailbox/FolderTreeModel.h"

#include <QAbstractItemModelTester>
#include <QMimeData>

namespace {

QStringList ChildKeys(const FolderNode *node)
{
    QStringList keys;
    for (const FolderNode *child : node->aChildren)
        keys.append(child->strKey);
    return keys;
}

QString Parent(const QString &id)
{
    return Profile::Value("SELECT parentID FROM FaxFolder WHERE Folder_ID='" + id + "'");
}

QString FolderOf(const QString &table, const QString &fax, const QString &column = "FolderID")
{
    return Profile::Value("SELECT " + column + " FROM " + table + " WHERE Fax_ID='" + fax + "'");
}

} // namespace

class tst_FolderTree : public QObject, private MailboxTest
{
    Q_OBJECT

private slots:
    void init()
    {
        SetUp();
        tree = &mailbox->Folders();
        model = std::make_unique<FolderTreeModel>(*tree);
        new QAbstractItemModelTester(model.get(), QAbstractItemModelTester::FailureReportingMode::QtTest,
                                     model.get());
    }
    void cleanup()
    {
        model.reset();
        TearDown();
    }

    void userFoldersFollowInTheOrderOfTheTable()
    {
        profile->InsertFolder("B", "1001", "1", "Sam~$@~s");
        profile->InsertFolder("A", "1001", "1");
        profile->InsertFolder("TOP", "1000", "0");
        profile->InsertFolder("BELOW", "B", "1");
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
        profile->InsertFolder("LOOP1", "LOOP2", "1");
        profile->InsertFolder("LOOP2", "LOOP1", "1");
        profile->InsertFolder("SELF", "SELF", "1");
        profile->InsertFolder("ORPHAN", "GONE", "1");
        profile->InsertFolder("TWICE", "1001", "1");
        profile->InsertFolder("TWICE", "1002", "2");
        profile->InsertFolder("1000", "1001", "0");           // the root below itself
        profile->InsertFolder("x') or ('1'='1", "1001", "1"); // would be part of statements
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
        profile->InsertFolder("DEEP", "1007", "6");
        tree->LoadFaxFolderTree();
        QCOMPARE(GetNodeParentKey(tree->Find("DEEP")), "1007");
        QCOMPARE(GetNodeParentKey(tree->Find("1006")), "1006");
        QCOMPARE(GetNodeParentKey(tree->Find("1004")), "");
        QCOMPARE(GetListMode(FolderFamily::Sended, "1006"), 6);
        QCOMPARE(GetListMode(FolderFamily::Sended, ""), -1);
    }

    void subtreeIdsAreAddedToTheList()
    {
        profile->InsertFolder("A", "1001", "1");
        profile->InsertFolder("AA", "A", "1");
        profile->InsertFolder("B", "1001", "1");
        tree->LoadFaxFolderTree();
        QCOMPARE(tree->CollectSubtreeFolderIds(tree->Find("1001")), ",'A','AA','B'");
        QCOMPARE(tree->CollectSubtreeFolderIds(tree->Find("A")), ",'A','AA','B','AA'");
        tree->FolderIdList.clear();
        QCOMPARE(tree->CollectSubtreeFolderIds(tree->Find("AA")), "");
    }

    void recountFillsEveryFolderWithinTheDates()
    {
        const QString march = " between '2026-03-01' and  '2026-04-01'";
        profile->InsertReceivedFax("R1", {{"receiveTime", "2026-03-31 23:59:59"}});
        profile->InsertReceivedFax("R2", {{"receiveTime", "2026-04-01 00:00:01"}});
        profile->InsertReceivedFax("R3", {{"receiveTime", "2026-03-01 09:00:00"}, {"RecyleID", "1008"}});
        profile->InsertReceivedFax("R4", {{"isReaded", "1"}});
        profile->InsertReceivedFax("R5", {{"folderID", "GONE"}});
        profile->InsertSentFax("S1", {{"isReaded", "0"}, {"ModifyTime", "2026-03-05 09:00:00"}});
        profile->InsertSentFax("S2", {{"isReaded", "0"}, {"ModifyTime", "2025-03-05 09:00:00"}});
        profile->InsertSentFax("S3", {{"isReaded", "0"}, {"RecyleID", "1008"}});
        tree->LoadFaxFolderTree();
        tree->SetUnread(tree->Find("1002"), 7);
        for (const auto &[dates, counts] : {std::pair(QString(), "2022"), {march, "1011"}}) {
            tree->RefreshFolderUnreadCounts(dates);
            QString found;
            for (const char *key : {"1001", "1002", "1003", "1008"}) { // the bin holds one of each table
                found += QString::number(tree->Find(key)->lUnread);
            }
            QCOMPARE(found, counts);
            QCOMPARE(FolderTree::GetNotReadCount(*tree->Find("1001"), dates), tree->Find("1001")->lUnread);
            QCOMPARE(FolderTree::GetNotReadCount(*tree->Find("1003"), dates), tree->Find("1003")->lUnread);
        }
    }

    void modelFollowsTheTree()
    {
        profile->InsertFolder("A", "1001", "1", "Letters");
        tree->LoadFaxFolderTree();
        const QModelIndex letters = model->IndexOf(tree->Find("A"));
        QCOMPARE(letters.parent(), model->IndexOf(tree->Find("1001")));
        QCOMPARE(letters.data(KeyRole), "A");
        QCOMPARE(letters.data(ImageKeyRole), "imgReceived");
        tree->SetUnread(tree->Find("A"), 3);
        QCOMPARE(letters.data(CountRole), 3);
        QCOMPARE(letters.data(Qt::DisplayRole), "Letters"); // the count is no part of the text
        QCOMPARE(letters.data(Qt::AccessibleTextRole), "Letters, 3 unread");
    }

    void foldersMayChange()
    {
        InsertOwnFolders();
        const QMap<QString, QString> rules{// a: add in it, c: change it, d: drag it
                                           {"1000", ""},   {"1001", "a"}, {"1002", "a"},   {"1003", ""},
                                           {"1004", ""},   {"1005", "a"}, {"1007", "a"},   {"1008", "a"},
                                           {"TOP", "acd"}, {"IN", "acd"}, {"SENT", "acd"}, {"STRAY", "a"}};
        QMap<QString, QString> found;
        for (const QString &key : rules.keys()) {
            const FolderNode *node = tree->Find(key);
            found[key] = QString(CanAddFolder(node) ? "a" : "") + (CanChangeFolder(node) ? "c" : "") +
                         (CanDragFolder(node) ? "d" : "");
        }
        QCOMPARE(found, rules);
    }

    void foldersStayInTheirFamily()
    {
        InsertOwnFolders();
        const QMap<QString, QStringList> targets{{"TOP", {"TOP2"}},
                                                 {"UNDER", {"1000", "TOP2"}},
                                                 {"IN", {"STRAY"}},
                                                 {"SENT", {"1005", "1007"}},
                                                 {"BIN", {}}};
        QStringList keys = Profile::Values("SELECT Folder_ID FROM FaxFolder");
        for (const QString &source : targets.keys()) {
            QStringList found;
            for (const QString &key : std::as_const(keys)) {
                if (CanDropFolder(tree->Find(source), tree->Find(key)))
                    found.append(key);
            }
            QCOMPARE(found, targets.value(source));
        }
        QVERIFY(!CanDropFolder(tree->Find("IN"), nullptr));
    }

    void newFolderCopiesItsParent()
    {
        Open("1007");
        const FolderChanges::Naming naming = *mailbox->Changes().mnuAddFolder();
        QVERIFY(!mailbox->Changes().SaveName(naming, " ")); // nothing typed
        QVERIFY(mailbox->Changes().SaveName(naming, "Sam's (1)"));
        const QString id = QString(31, '0') + "1";
        QCOMPARE(Profile::Value("SELECT Folder_Name||'|'||Folder_Type||'|'||isSystem||'|'||parentID FROM "
                                "FaxFolder WHERE Folder_ID='" +
                                id + "'"),
                 "Sam~$@~s (1)|6|0|1007");
        const QModelIndex index = model->IndexOf(mailbox->Folders().Find(id));
        QCOMPARE(index.data(), "Sam's (1)");
        QCOMPARE(index.data(ImageKeyRole), "imgSended");
        mailbox->SelectFolder(id);
        QCOMPARE(mailbox->Changes().mnuEditFolder()->strCurrentName, "Sam's ");
        fakes->ids.bFails = true;
        QVERIFY(!mailbox->Changes().SaveName(naming, "Other"));
        QCOMPARE(index.parent(), model->IndexOf(mailbox->Folders().Find("1007")));
        QCOMPARE(model->rowCount(index.parent()), 1);
    }

    void takenNamesAreRefused()
    {
        profile->InsertFolder("A", "1001", "1", "Plans");
        profile->InsertFolder("B", "1002", "2", "(b)");
        Open("1001");
        FolderChanges &changes = mailbox->Changes();
        QVERIFY(!changes.SaveName(*changes.mnuAddFolder(), "Plans"));
        QCOMPARE(fakes->prompts.Texts(), QStringList("The specified folder name already exists."));
        mailbox->SelectFolder("1002");
        QVERIFY(changes.SaveName(*changes.mnuAddFolder(), "Plans")); // no sibling has it
        mailbox->SelectFolder("B");
        const FolderChanges::Naming rename = *changes.mnuEditFolder();
        QCOMPARE(rename.strCurrentName, "");
        QVERIFY(!changes.SaveName(rename, "Plans")); // somebody has it
        QVERIFY(changes.SaveName(rename, "It's"));
        QCOMPARE(Profile::Value("SELECT Folder_Name FROM FaxFolder WHERE Folder_ID='B'"), "It~$@~s");
        QCOMPARE(mailbox->labFolderTip().trimmed(), "It's");
        QCOMPARE(fakes->prompts.aBoxes.size(), 2);
    }

    void deletedFolderLeavesItsFaxesToItsParent()
    {
        profile->InsertFolder("A", "1001", "1");
        profile->InsertFolder("AA", "A", "1");
        profile->InsertFolder("BIN", "1008", "7");
        profile->InsertReceivedFax("R1", {{"folderID", "A"}});
        profile->InsertReceivedFax("R2", {{"folderID", "AA"}, {"isReaded", "1"}});
        profile->InsertReceivedFax("R3", {{"folderID", "A"}, {"RecyleID", "BIN"}});
        profile->InsertSentFax("S1", {{"RecyleID", "BIN"}});
        Open("A");
        fakes->prompts.aAnswers = {mbAnswerNo, mbAnswerYes, mbAnswerYes};
        mailbox->Changes().mnuDeleteFolder();
        QCOMPARE(mailbox->SelectedFolder(), "A");
        QCOMPARE(fakes->prompts.aBoxes.first().lFlags, mbYesNo + mbQuestion + mbDefaultButton2);
        mailbox->SelectFolder("AA");
        mailbox->SelectFolder("A");
        mailbox->Changes().mnuDeleteFolder();
        QCOMPARE(mailbox->SelectedFolder(), "1001");
        QCOMPARE(mailbox->RowCount(), 2);
        QCOMPARE(mailbox->SelectedNode()->lUnread, 1);
        QCOMPARE(FolderOf("ReceiveFax", "R2"), "1001");
        QCOMPARE(FolderOf("ReceiveFax", "R3", "RecyleID"), "BIN");
        mailbox->SelectFolder("BIN");
        mailbox->Changes().mnuDeleteFolder();
        QCOMPARE(FolderOf("ReceiveFax", "R3", "RecyleID"), "1008");
        QCOMPARE(FolderOf("SendFax", "S1", "RecyleID"), "1008");
        QCOMPARE(FolderOf("SendFax", "S1"), "1003");
        QCOMPARE(Profile::Value("SELECT count(*) FROM FaxFolder"), "9");
        QCOMPARE(mailbox->Folders().Count(), 9);
    }

    void failedDeletionIsNotDoneByTheNextOne()
    {
        profile->InsertFolder("A", "1001", "1");
        profile->InsertFolder("B", "1002", "2");
        profile->InsertReceivedFax("R1", {{"folderID", "A"}});
        Open("A");
        fakes->prompts.aAnswers = {mbAnswerYes, mbAnswerOK, mbAnswerYes};
        Profile::Execute(
            "CREATE TRIGGER Busy BEFORE UPDATE ON ReceiveFax BEGIN SELECT RAISE(FAIL,'busy'); END");
        mailbox->Changes().mnuDeleteFolder();
        QVERIFY(fakes->prompts.Texts().last().contains("busy"));
        QCOMPARE(mailbox->SelectedFolder(), "A");
        mailbox->SelectFolder("B");
        mailbox->Changes().mnuDeleteFolder();
        QCOMPARE(Profile::Value("SELECT count(*) FROM FaxFolder WHERE Folder_ID='A'"), "1");
        QVERIFY(!mailbox->Folders().Find("B"));
    }

    void droppedFolderMoves()
    {
        profile->InsertFolder("A", "1001", "1");
        profile->InsertFolder("B", "1001", "1");
        profile->InsertFolder("C", "1001", "1");
        Open("A");
        FolderTree &shown = mailbox->Folders();
        connect(model.get(), &FolderTreeModel::FolderDropped, this,
                [this](const QString &source, const QString &target) {
                    mailbox->Changes().DropFolder(source, target);
                });
        const auto drop = [&](const QString &source, const QString &target) {
            const std::unique_ptr<QMimeData> data(model->mimeData({model->IndexOf(shown.Find(source))}));
            return model->dropMimeData(data.get(), Qt::MoveAction, -1, -1,
                                       model->IndexOf(shown.Find(target)));
        };
        QVERIFY(drop("A", "C"));
        QCOMPARE(Parent("A"), "C");
        QCOMPARE(ChildKeys(shown.Find("1001")), QStringList({"B", "C"}));
        QVERIFY(!drop("C", "A") && !drop("B", "1002") && !drop("1001", "B"));
        QVERIFY(drop("C", "B"));
        QCOMPARE(model->IndexOf(shown.Find("A")).parent().parent(), model->IndexOf(shown.Find("B")));
    }

    void binIsEmptyWithoutRecycledFaxes()
    {
        QVERIFY(FolderTree::IsRecycleBinEmpty());
        profile->InsertSentFax("S1", {{"RecyleID", "1008"}});
        QVERIFY(!FolderTree::IsRecycleBinEmpty());
    }

    void wildNamesAreShownAsOneLine()
    {
        profile->InsertFolder("A", "1001", "1", QString("<b>a\r\n\t") + QString(1 << 20, 'x'));
        Open("A");
        const QString shown = model->IndexOf(mailbox->SelectedNode()).data().toString();
        QVERIFY(shown.startsWith("<b>a   xx") && shown.size() < 1000);
        QVERIFY(mailbox->labFolderTip().size() < 1000);
    }

private:
    /// TOP (with UNDER) and TOP2 in the root; IN, SENT and BIN in folders of the system; STRAY is of no
    /// family that may stand in the root.
    void InsertOwnFolders()
    {
        profile->InsertFolder("TOP", "1000", "0");
        profile->InsertFolder("UNDER", "TOP", "0");
        profile->InsertFolder("TOP2", "1000", "0");
        profile->InsertFolder("IN", "1001", "1");
        profile->InsertFolder("SENT", "1006", "6");
        profile->InsertFolder("BIN", "1008", "7");
        profile->InsertFolder("STRAY", "1000", "1");
        tree->LoadFaxFolderTree();
    }

    FolderTree *tree = nullptr;
    std::unique_ptr<FolderTreeModel> model;
};

QTEST_GUILESS_MAIN(tst_FolderTree)
#include "tst_FolderTree.moc"
