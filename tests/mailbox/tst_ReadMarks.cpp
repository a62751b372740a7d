#include "core/Globals.h"
#include "fakes/FakePorts.h"
#include "fixtures/Profile.h"
#include "mailbox/ReadMarks.h"
#include "mailbox/ShownMailbox.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

class tst_ReadMarks : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void receivedFaxesAreAskedForOnce();
    void sentFaxesAreNotAskedFor();
    void binHandlesBothTables();
    void unreadLeavesTheQueuedReceipt();
    void iconMarksInIncomingAndTheBinOnly_data();
    void iconMarksInIncomingAndTheBinOnly();
    void refusedQuestionLeavesTheFax();
    void readFaxQueuesItsReceiptOnce();
    void sentReceiptIsNotQueuedAgain();
    void waitingFaxDragsLaterOnesAlong();
    void tickLeavesIncomingAlone();
    void tickMarksTheOneFaxOnShow();
    void tickInTheBinMarksSentFaxesOnly();

private:
    QString Read(const QString &table, const QString &id) const
    {
        return Profile::Value("SELECT isReaded FROM " + table + " WHERE Fax_ID='" + id + "'");
    }
    QStringList Queue() const { return Profile::Values("SELECT Fax_ID FROM ReceiptQueue"); }
    void Open(const QString &folder)
    {
        mailbox->LoadFaxFolderTree();
        mailbox->SelectFolder(folder);
    }

    std::unique_ptr<Profile> profile;
    std::unique_ptr<FakePorts> fakes;
    std::unique_ptr<ShownMailbox> mailbox;
};

void tst_ReadMarks::init()
{
    profile = std::make_unique<Profile>();
    fakes = std::make_unique<FakePorts>();
    mailbox = std::make_unique<ShownMailbox>(fakes->message, fakes->clock);
    profile->InsertRow("FaxFolder", {{"Folder_ID", "SUB"},
                                     {"Folder_Name", "Letters"},
                                     {"Folder_Type", "1"},
                                     {"parentID", "1001"},
                                     {"isSystem", "0"}});
}

void tst_ReadMarks::cleanup()
{
    mailbox.reset();
    fakes.reset();
    profile.reset();
}

void tst_ReadMarks::receivedFaxesAreAskedForOnce()
{
    profile->InsertReceivedFax("A", {{"isReaded", "0"}, {"IsSendedReceipt", "False"}});
    profile->InsertReceivedFax("B", {{"isReaded", "0"}, {"IsSendedReceipt", "False"}});
    Open("1001");
    const QSignalSpy queued(&mailbox->Marks(), &ReadMarks::ReceiptsQueued);
    mailbox->SelectFaxes({"A", "B"}, "A");
    fakes->prompts.aAnswers = {mbAnswerNo, mbAnswerYes};
    mailbox->Marks().mnuHadRead();
    QCOMPARE(Read("ReceiveFax", "A"), "0");
    QCOMPARE(mailbox->List().UnreadCount(), 2);
    mailbox->Marks().mnuHadRead();
    QCOMPARE(Read("ReceiveFax", "B"), "1");
    QCOMPARE(Queue(), QStringList({"A", "B"}));
    QCOMPARE(queued.size(), 1);
    QCOMPARE(mailbox->List().UnreadCount(), 0);
    QCOMPARE(mailbox->SelectedNode()->lUnread, 0);
    QCOMPARE(fakes->prompts.Texts(), QStringList(2, "Are you sure want to mark these fax as read?"));
}

void tst_ReadMarks::sentFaxesAreNotAskedFor()
{
    profile->InsertSentFax("S", {{"folderID", "1006"}, {"isReaded", "0"}});
    Open("1006");
    mailbox->Marks().mnuHadRead();
    QCOMPARE(Read("SendFax", "S"), "1");
    QVERIFY(fakes->prompts.aBoxes.isEmpty());
    QVERIFY(Queue().isEmpty());
}

void tst_ReadMarks::binHandlesBothTables()
{
    profile->InsertReceivedFax("R", {{"isReaded", "0"}, {"RecyleID", "1008"}});
    profile->InsertSentFax("S", {{"isReaded", "0"}, {"RecyleID", "1008"}});
    Open("1008");
    mailbox->SelectFaxes({"R", "S"}, "R");
    fakes->prompts.aAnswers = {mbAnswerNo};
    mailbox->Marks().mnuHadRead();
    QCOMPARE(Read("ReceiveFax", "R"), "0");
    QCOMPARE(Read("SendFax", "S"), "1");
    QCOMPARE(mailbox->List().UnreadCount(), 1);
}

void tst_ReadMarks::unreadLeavesTheQueuedReceipt()
{
    profile->InsertReceivedFax("A", {{"isReaded", "0"}});
    Open("1001");
    QVERIFY(MarkReceivedFaxRead("A"));
    mailbox->ReloadCurrentFolder(true);
    mailbox->Marks().mnuUnRead();
    QCOMPARE(Read("ReceiveFax", "A"), "0");
    QCOMPARE(Queue(), QStringList("A"));
    QCOMPARE(mailbox->SelectedNode()->lUnread, 1);
}

void tst_ReadMarks::iconMarksInIncomingAndTheBinOnly_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("bin");
    QTest::addColumn<bool>("marks");
    QTest::newRow("Incoming") << "1001"
                              << "" << true;
    QTest::newRow("recycle bin") << "1001"
                                 << "1008" << true;
    QTest::newRow("user folder") << "SUB"
                                 << "" << false;
}

void tst_ReadMarks::iconMarksInIncomingAndTheBinOnly()
{
    QFETCH(QString, folder);
    QFETCH(QString, bin);
    QFETCH(bool, marks);
    profile->InsertReceivedFax("A", {{"isReaded", "0"}, {"folderID", folder}, {"RecyleID", bin}});
    Open(bin.isEmpty() ? folder : bin);
    fakes->prompts.aAnswers = {mbAnswerYes};
    mailbox->Marks().ClickReadIcon(1);
    QCOMPARE(mailbox->List().Row(1).bRead, marks);
    QCOMPARE(Queue().size(), marks ? 1 : 0);
    mailbox->Marks().ClickReadIcon(1); // asks no more
    QCOMPARE(fakes->prompts.aBoxes.size(), marks ? 1 : 0);
}

void tst_ReadMarks::refusedQuestionLeavesTheFax()
{
    profile->InsertReceivedFax("A", {{"isReaded", "0"}});
    Open("1001");
    fakes->prompts.aAnswers = {mbAnswerNo};
    mailbox->Marks().ClickReadIcon(1);
    QCOMPARE(Read("ReceiveFax", "A"), "0");
}

void tst_ReadMarks::readFaxQueuesItsReceiptOnce()
{
    profile->InsertReceivedFax("A", {{"isReaded", "0"}, {"IsSendedReceipt", "False"}});
    QVERIFY(MarkReceivedFaxRead("A"));
    QVERIFY(!MarkReceivedFaxRead("A"));
    QVERIFY(!MarkReceivedFaxRead("GONE"));
    QVERIFY(!MarkReceivedFaxRead(""));
    QCOMPARE(Queue(), QStringList("A"));
    QCOMPARE(Profile::Value("SELECT IsSendedReceipt FROM ReceiveFax"), "-1");
    QVERIFY(!QueueReceipts({"A"}));
}

void tst_ReadMarks::sentReceiptIsNotQueuedAgain()
{
    profile->InsertReceivedFax("A", {{"isReaded", "0"}, {"IsSendedReceipt", "True"}});
    QVERIFY(MarkReceivedFaxRead("A"));
    QCOMPARE(Read("ReceiveFax", "A"), "1");
    QVERIFY(Queue().isEmpty());
}

void tst_ReadMarks::waitingFaxDragsLaterOnesAlong()
{
    profile->InsertReceivedFax("A", {{"IsSendedReceipt", "-1"}});
    profile->InsertReceivedFax("B", {{"IsSendedReceipt", "False"}});
    profile->InsertReceivedFax("C", {{"IsSendedReceipt", "-1"}});
    QVERIFY(QueueReceipts({"A", "B", "C"}));
    QCOMPARE(Queue(), QStringList({"B", "C"}));
    Profile::Execute("DROP TABLE ReceiptQueue");
    QVERIFY(!QueueReceipts({"B"}));
}

void tst_ReadMarks::tickLeavesIncomingAlone()
{
    profile->InsertReceivedFax("A", {{"isReaded", "0"}});
    profile->InsertReceivedFax("B", {{"isReaded", "0"}, {"folderID", "SUB"}, {"IsSendedReceipt", "False"}});
    Open("1001");
    mailbox->Marks().OnMarkFaxTick();
    QCOMPARE(Read("ReceiveFax", "A"), "0");
    mailbox->SelectFolder("SUB");
    mailbox->Marks().OnMarkFaxTick();
    QCOMPARE(Read("ReceiveFax", "B"), "1");
    QCOMPARE(Queue(), QStringList("B"));
}

void tst_ReadMarks::tickMarksTheOneFaxOnShow()
{
    profile->InsertSentFax("S", {{"folderID", "1006"}, {"isReaded", "0"}});
    profile->InsertSentFax("T", {{"folderID", "1006"}, {"isReaded", "0"}});
    Open("1006");
    mailbox->SelectFaxes({"S", "T"}, "S");
    mailbox->Marks().OnMarkFaxTick();
    QCOMPARE(mailbox->List().UnreadCount(), 2);
    mailbox->SelectFaxes({"S"}, "S");
    mailbox->Marks().OnMarkFaxTick();
    QCOMPARE(Read("SendFax", "S"), "1");
    QCOMPARE(mailbox->SelectedNode()->lUnread, 1);
    mailbox->SelectFolder("1000");
    mailbox->Marks().OnMarkFaxTick();
}

void tst_ReadMarks::tickInTheBinMarksSentFaxesOnly()
{
    profile->InsertReceivedFax("R", {{"isReaded", "0"}, {"RecyleID", "1008"}});
    profile->InsertSentFax("S", {{"isReaded", "0"}, {"RecyleID", "1008"}});
    Open("1008");
    for (const char *id : {"R", "S"}) {
        mailbox->SelectFaxes({id}, id);
        mailbox->Marks().OnMarkFaxTick();
    }
    QCOMPARE(Read("ReceiveFax", "R"), "0");
    QCOMPARE(Read("SendFax", "S"), "1");
}

QTEST_GUILESS_MAIN(tst_ReadMarks)
#include "tst_ReadMarks.moc"
