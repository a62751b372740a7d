#include "fixtures/FaxFile.h"
#include "fixtures/MailboxTest.h"
#include "mailbox/FaxViewer.h"
#include "mailbox/ReadMarks.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>

class tst_ReadMarks : public QObject, private MailboxTest
{
    Q_OBJECT

private slots:
    void init()
    {
        SetUp();
        faxViewer = std::make_unique<FaxViewer>(*mailbox, fakes->ports,
                                                [this](const QString &id) { drafts.append(id); });
        profile->InsertFolder("SUB", "1001", "1");
    }
    void cleanup()
    {
        faxViewer.reset();
        TearDown();
    }

    void receivedFaxesAreAskedForOnce()
    {
        profile->InsertReceivedFax("A", {{"IsSendedReceipt", "False"}});
        profile->InsertReceivedFax("B", {{"IsSendedReceipt", "False"}});
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
        mailbox->Marks().mnuUnRead(); // and the receipts stay queued
        QCOMPARE(Read("ReceiveFax", "A"), "0");
        QCOMPARE(Queue(), QStringList({"A", "B"}));
        QCOMPARE(mailbox->SelectedNode()->lUnread, 2);
    }

    void binHandlesBothTables()
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

    void missingFileOfASelectedFaxIsTold()
    {
        for (const char *id : {"A", "B"}) {
            profile->InsertReceivedFax(id);
            profile->InsertSentFax(QString("S") + id, {{"RecyleID", "1008"}, {"fileName", ""}});
        }
        QVERIFY(WriteTestFile(Global().strInputBoxPath + "A.tif", "x"));
        QVERIFY(WriteTestFile(Global().strInputBoxPath + "b.TIF", "x"));
        Open("1001");
        QSignalSpy missing(mailbox.get(), &ShownMailbox::FaxFileMissing);
        mailbox->SelectFaxes({"A", "B"}, "A");
        QCOMPARE(mailbox->GetGridSelectedID().aReceived.size(), 2);
        QCOMPARE(missing.size(), 0); // the case of a name does not matter
        QVERIFY(QFile::remove(Global().strInputBoxPath + "A.tif"));
        mailbox->Marks().mnuUnRead();
        QCOMPARE(missing.size(), 1);
        mailbox->SelectFolder("1001");
        for (int i = 0; i < 60; ++i)
            profile->InsertReceivedFax("M" + QString::number(i), {{"fileName", i < 59 ? "B.tif" : "b.TIF"}});
        Profile::Execute("DELETE FROM ReceiveFax WHERE Fax_ID='A'");
        mailbox->ReloadCurrentFolder(true);
        mailbox->SelectFaxes(Profile::Values("SELECT Fax_ID FROM ReceiveFax"),
                             "B"); // so many that their folder is read
        QCOMPARE(mailbox->GetGridSelectedID().aReceived.size(), 61);
        QCOMPARE(missing.size(), 1);
        mailbox->SelectFolder("1008");
        mailbox->SelectFaxes({"SA"}, "SA");
        QCOMPARE(mailbox->GetGridSelectedID().aSent, QStringList("SA"));
        QCOMPARE(missing.size(), 2);
    }

    void iconMarksInIncomingAndTheBinOnly()
    {
        profile->InsertReceivedFax("A");
        profile->InsertReceivedFax("B", {{"isReaded", "0"}, {"RecyleID", "1008"}});
        profile->InsertReceivedFax("C", {{"isReaded", "0"}, {"folderID", "SUB"}});
        fakes->prompts.aAnswers = {mbAnswerNo, mbAnswerYes, mbAnswerYes};
        for (const char *folder : {"1001", "1001", "1001", "1008", "SUB"}) { // the third asks no more
            Open(folder);
            mailbox->Marks().ClickReadIcon(1);
        }
        QCOMPARE(Queue(), QStringList({"A", "B"}));
        QCOMPARE(Read("ReceiveFax", "A") + Read("ReceiveFax", "B") + Read("ReceiveFax", "C"), "110");
        QCOMPARE(fakes->prompts.aBoxes.size(), 3);
        profile->InsertSentFax("S", {{"isReaded", "0"}, {"RecyleID", "1008"}, {"ModifyTime", "2024-01-01"}});
        Profile::Execute("DELETE FROM ReceiveFax");
        Open("1008");
        fakes->prompts.aAnswers = {mbAnswerYes};
        mailbox->Marks().ClickReadIcon(1);
        QCOMPARE(Read("SendFax", "S"), "1");
        QCOMPARE(Queue(), QStringList({"A", "B"}));
    }

    void readFaxQueuesItsReceiptOnce()
    {
        profile->InsertReceivedFax("A", {{"IsSendedReceipt", "False"}});
        QVERIFY(MarkReceivedFaxRead("A"));
        QVERIFY(!MarkReceivedFaxRead("A"));
        QVERIFY(!MarkReceivedFaxRead("GONE"));
        QVERIFY(!MarkReceivedFaxRead(""));
        QCOMPARE(Queue(), QStringList("A"));
        QCOMPARE(Profile::Value("SELECT IsSendedReceipt FROM ReceiveFax"), "-1");
        QVERIFY(QueueReceipts({"A"}));
        QCOMPARE(Queue(), QStringList("A"));
        profile->InsertReceivedFax("SENT", {{"isReaded", "0"}, {"IsSendedReceipt", "True"}});
        QVERIFY(MarkReceivedFaxRead("SENT"));
        QCOMPARE(Queue(), QStringList("A"));
    }

    void waitingFaxDragsLaterOnesAlong()
    {
        for (const auto &[id, sent] : {std::pair("A", "-1"), {"B", "False"}, {"C", "-1"}, {"D", "False"}})
            profile->InsertReceivedFax(id, {{"IsSendedReceipt", sent}});
        QVERIFY(QueueReceipts({"A", "B", "C"}));
        QCOMPARE(Queue(), QStringList({"B", "C"}));
        Profile::Execute("DROP TABLE ReceiptQueue");
        QVERIFY(!QueueReceipts({"D"}));
        QCOMPARE(Profile::Value("SELECT IsSendedReceipt FROM ReceiveFax WHERE Fax_ID='D'"), "False");
    }

    void tickMarksTheOneFaxOnShowButInIncoming()
    {
        profile->InsertReceivedFax("A");
        profile->InsertReceivedFax("B", {{"folderID", "SUB"}, {"IsSendedReceipt", "False"}});
        for (const char *id : {"S", "T"})
            profile->InsertSentFax(id, {{"folderID", "1006"}, {"isReaded", "0"}});
        for (const char *folder : {"1000", "1001", "SUB"}) {
            Open(folder);
            mailbox->Marks().OnMarkFaxTick();
        }
        QCOMPARE(Read("ReceiveFax", "A") + Read("ReceiveFax", "B"), "01");
        QCOMPARE(Queue(), QStringList("B"));
        Open("1006");
        for (const QStringList &selected : {QStringList({"S", "T"}), QStringList("S")}) {
            mailbox->SelectFaxes(selected, "S");
            mailbox->Marks().OnMarkFaxTick();
            QCOMPARE(mailbox->List().UnreadCount(), selected.size());
        }
        QCOMPARE(Read("SendFax", "S"), "1");
        QCOMPARE(mailbox->SelectedNode()->lUnread, 1);
    }

    void openedFaxCountsAsRead()
    {
        const QString viewer = fakes->folders.Program() + "/VelmarBrowser.exe";
        QVERIFY(QDir().mkpath(fakes->folders.Program()) && WriteTestFile(viewer, ""));
        profile->InsertReceivedFax("R", {{"isReaded", "0"}, {"fileName", "R r.tif"}});
        profile->InsertSentFax("S", {{"folderID", "1006"}, {"isReaded", "0"}, {"fileName", "S.tif"}});
        profile->InsertSentFax("D", {{"folderID", "1002"}, {"isReaded", "0"}, {"fileName", ""}});
        QVERIFY(FaxFile{.bSizePrefix = true}.Write(Global().strInputBoxPath + "R r.tif"));
        QVERIFY(FaxFile().Write(Global().strOutputBoxPath + "S.tif"));
        for (const char *folder : {"1000", "1001", "1006", "1002"}) { // the summary holds no fax
            Open(folder);
            faxViewer->mnuViewFax();
            QVERIFY(QString(folder) == "1000" || mailbox->SelectedNode()->lUnread == 0);
        }
        QCOMPARE(Read("ReceiveFax", "R") + Read("SendFax", "S") + Read("SendFax", "D"), "111");
        QCOMPARE(Queue(), QStringList("R"));
        QCOMPARE(drafts, QStringList("D"));
        const QString copy = Global().strOutputBoxPath + "tmp~R r.tif";
        QCOMPARE(fakes->shell.aCalls.size(), 2);
        QCOMPARE(fakes->shell.aCalls[0].strFile, viewer);
        QCOMPARE(fakes->shell.aCalls[0].strVerb, "Open");
        QCOMPARE(fakes->shell.aCalls[0].aParameters, QStringList({"/Brenmot", copy}));
        QCOMPARE(fakes->shell.aCalls[1].aParameters,
                 QStringList({"/Brenmot", Global().strOutputBoxPath + "S.tif"}));
        QCOMPARE(ReadTestFile(copy), ReadTestFile(Global().strInputBoxPath + "R r.tif").mid(4));
        QVERIFY(fakes->prompts.aBoxes.isEmpty());
    }

    void faxThatDoesNotOpenStaysUnread()
    {
        profile->InsertReceivedFax("R", {{"isReaded", "0"}, {"fileName", ""}});
        Open("1001");
        const auto complaint = [this] {
            faxViewer->mnuViewFax();
            return fakes->prompts.aBoxes.isEmpty() ? QString() : fakes->prompts.aBoxes.takeFirst().strText;
        };
        QCOMPARE(complaint(), "This fax has no file to open.");
        Profile::Execute("UPDATE ReceiveFax SET FileName='R.tif'");
        QVERIFY(complaint().contains("is missing"));
        QVERIFY(FaxFile{.bSizePrefix = true}.Write(Global().strInputBoxPath + "R.tif"));
        QVERIFY(complaint().contains("not installed"));
        QVERIFY(QDir().mkpath(fakes->folders.Program()) &&
                WriteTestFile(fakes->folders.Program() + "/VelmarBrowser.exe", ""));
        fakes->shell.lResult = 32;
        QVERIFY(complaint().contains("could not be started"));
        Global().strOutputBoxPath = profile->Root() + "/nowhere/";
        QVERIFY(complaint().contains("could not be copied"));
        QCOMPARE(Read("ReceiveFax", "R"), "0");
        QVERIFY(Queue().isEmpty());
    }

private:
    QString Read(const QString &table, const QString &id) const
    {
        return Profile::Value("SELECT isReaded FROM " + table + " WHERE Fax_ID='" + id + "'");
    }
    QStringList Queue() const { return Profile::Values("SELECT Fax_ID FROM ReceiptQueue"); }
    QStringList drafts;
    std::unique_ptr<FaxViewer> faxViewer;
};

QTEST_GUILESS_MAIN(tst_ReadMarks)
#include "tst_ReadMarks.moc"
