#include "core/Globals.h"
#include "core/ports/Timer.h"
#include "fixtures/SessionBench.h"
#include "server/FaxDownload.h"
#include "server/wire/Frames.h"
#include "server/wire/clsClient.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <optional>

class tst_FaxDownload : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void newFaxIsStoredAndAcknowledged();
    void receiversAreNamedFromTheTables();
    void storedFaxIsNotFetchedAgain();
    void fileWithoutARowIsFetchedAgain();
    void historyFaxesGoByTheirKind();
    void receiptsNeedFourteenFields();
    void shortReplyLeavesNoRow();
    void refusedFaxLeavesNoRowAndTheNextComes();
    void announcementWithoutFieldsIsNotFollowedByItsFile();
    void silentServerCostsOneFaxAndHoldsTheListOpen();
    void rowThatCannotBeWrittenHoldsTheListOpen();
    void diskThatRefusesHoldsTheListOpen();
    void brokenConnectionEndsTheRun();
    void userCancelsDuringTheFile();
    void userCancelsDuringTheList();
    void nothingNew_data();
    void nothingNew();
    void listThatDoesNotComeIsNotCalledEmpty();
    void emptyRunBehindAnUploadKeepsItsRows();
    void serverThatCannotBeReached_data();
    void serverThatCannotBeReached();
    void silentRunWithAHiddenWindowNotifies();
    void silentRunWithAVisibleWindowLeavesNothingOpen();
    void statesAreAskedFor_data();
    void statesAreAskedFor();
    void runStaysTheOwnerUntilItsLastCommand();
    void selectedFolderIsReloaded_data();
    void selectedFolderIsReloaded();
    void receivedFaxesArePrinted_data();
    void receivedFaxesArePrinted();
    void foreignFileNameIsNotUsed();
    void receiveCommandSelectsTheNewestFax();

private:
    void Receive(bool silent = false, bool history = false)
    {
        download->ReceiveFaxes(silent, history, true, true);
    }
    /// The server offers these faxes: "F1|100" or, in a history, "F1|100|9".
    void Offer(const QByteArrayList &lines);
    QString States() const;
    bool IsAcknowledged() { return bench->Heard().contains("17"); }
    Session &session() { return bench->session; }
    FakeDesktop &desktop() { return bench->desktop; }

    std::optional<SessionBench> bench;
    std::unique_ptr<FaxDownload> download;
};

void tst_FaxDownload::init()
{
    bench.emplace();
    download = std::make_unique<FaxDownload>(
        bench->ports.ports, DownloadRooms{session(), bench->progress, bench->status, desktop().printing,
                                          desktop().notifier, desktop().mainWindow, desktop().mailbox});
}

/// Whatever happened, a run leaves the program as it found it.
void tst_FaxDownload::cleanup()
{
    QVERIFY(!bench->ports.pump.IsStuck());
    QVERIFY(!session().bIsSocketBusy);
    QVERIFY(desktop().mainWindow.bEnabled);
    QVERIFY(session().CheckFaxTimer().IsEnabled());
    QCOMPARE(desktop().notifier.aTips.isEmpty() ? "Velmar Clinet" : desktop().notifier.aTips.constLast(),
             QString("Velmar Clinet"));
    download.reset();
    bench.reset();
}

void tst_FaxDownload::Offer(const QByteArrayList &lines)
{
    QByteArray text = "OK\r\n";
    for (const QByteArray &line : lines)
        text += QByteArray(line).replace('|', '\0') + "\r\n";
    bench->SayLong(text);
}

QString tst_FaxDownload::States() const
{
    QStringList states;
    for (const ProgressRow &row : bench->progress.Rows())
        states.append(row.strFile + ' ' + row.strState);
    return states.join(", ");
}

void tst_FaxDownload::newFaxIsStoredAndAcknowledged()
{
    Offer({"F1|9"});
    QByteArrayList fields = FaxFields("F1");
    fields[0] = "O'Neil";
    bench->SendFax(fields, "fax bytes").SayShort("OK");
    Receive();
    QCOMPARE(bench->Heard(), QStringList({"6", "7 9 F1", "GoOn", "GoOn", "GoOn", "17"}));
    QCOMPARE(ReadTestFile(Global().strInputBoxPath + "F1.tif"), QByteArray("fax bytes"));
    QCOMPARE(Profile::Value("Select Fax_ID||'|'||Sender||'|'||Title||'|'||FileName||'|'||Pages||'|'||FaxLevel"
                            "||'|'||Remark||'|'||receiveTime||'|'||ReceiveUser||'|'||Resender||'|'||FolderID"
                            "||'|'||RecyleID||'|'||isreaded||'|'||IsSendedReceipt||'|'||ReturnReceipts "
                            "From ReceiveFax"),
             QString("F1|O~$@~Neil|Offer|F1.tif|2|1|a remark|2024-01-31 09:00:00|by hand||1001||0|False|"));
    QCOMPARE(States(), QString("InputBox/F1.tif Completed"));
    QCOMPARE(bench->progress.Text(), QString("Receive Complete"));
    QCOMPARE(bench->progress.ButtonTag(), QString("Close"));
    QCOMPARE(bench->progress.Bar(), 100);
    QCOMPARE(desktop().mainWindow.aTotalPercents, QList<int>({56, 100, -1}));
    QVERIFY(desktop().mailbox.aCalls.contains("recount"));
    QVERIFY(bench->ports.prompts.aBoxes.isEmpty());
}

void tst_FaxDownload::receiversAreNamedFromTheTables()
{
    Profile::Execute("Insert Into Contacts(ID,Name,Fax) Values('c1','Ann','555-1')");
    Profile::Execute("Insert Into Contacts(ID,Name,Fax) Values('c2','','555-2')");
    Profile::Execute("Insert Into UserList(ID,LoginName,UserName) Values('u1','bert','Bert~$@~s')");
    Profile::Execute("Insert Into UserList(ID,LoginName,UserName) Values('u2','carl','')");
    QByteArrayList fields = FaxFields("F1");
    fields[7] = "c1;c2;x'y";
    fields[8] = "Uu1;Uu2;";
    fields[9] = "D'Arcy";
    fields[10] = "u1";
    Offer({"F1|9"});
    bench->SendFax(fields, "fax bytes").SayShort("OK");
    Receive();
    QCOMPARE(Profile::Value("Select ReceiveUser From ReceiveFax"),
             QString("Ann(555-1);555-2(555-2);Bert~$@~s[bert];carl[carl];D~$@~Arcy"));
    QCOMPARE(Profile::Value("Select Resender From ReceiveFax"), QString("Bert~$@~s(bert)"));
}

void tst_FaxDownload::storedFaxIsNotFetchedAgain()
{
    bench->profile.InsertReceivedFax("F1");
    bench->profile.InsertSentFax("F2");
    Offer({"F1|9", "F2|9|4"});
    bench->SayShort("OK");
    Receive();
    QCOMPARE(bench->Heard(), QStringList({"6", "17"}));
    QCOMPARE(States(), QString("InputBox/F1.tif Exists, Outputbox/F2.tif Exists"));
}

void tst_FaxDownload::fileWithoutARowIsFetchedAgain()
{
    QVERIFY(WriteTestFile(Global().strInputBoxPath + "F1.tif", "left by a crash, longer than the fax"));
    Offer({"F1|9"});
    bench->SendFax(FaxFields("F1"), "fax bytes").SayShort("OK");
    Receive();
    QCOMPARE(ReadTestFile(Global().strInputBoxPath + "F1.tif"), QByteArray("fax bytes"));
    QCOMPARE(Profile::Value("Select Count(*) From ReceiveFax"), QString("1"));
}

void tst_FaxDownload::historyFaxesGoByTheirKind()
{
    session().BeginCommand(pndFaxList).GetHistoryList("range");
    Offer({"R1|9|9", "S3|9|3", "S4|9|4", "S2|9|2"});
    for (const char *id : {"R1", "S3", "S4", "S2"})
        bench->SendFax(FaxFields(id), "fax bytes");
    bench->SayShort("OK");
    Receive(false, true);
    QCOMPARE(bench->Heard().constFirst(), QString("10 range"));
    QVERIFY(!bench->Heard().contains("6"));
    QCOMPARE(Profile::Values("Select Fax_ID||' '||FolderID From ReceiveFax"), QStringList("R1 1001"));
    QCOMPARE(Profile::Values("Select Fax_ID||' '||FolderID||' '||ModifyTime||'>'||ReceiverName From SendFax"),
             QStringList({"S3 1005 24-01-31>", "S4 1006 24-01-31>", "S2 1007 24-01-31>"}));
    QVERIFY(QFile::exists(Global().strOutputBoxPath + "S3.tif"));
    QVERIFY(!QFile::exists(Global().strInputBoxPath + "S3.tif"));
}

void tst_FaxDownload::receiptsNeedFourteenFields()
{
    Offer({"F1|9", "F2|9", "F3|9"});
    for (const int count : {12, 13, 14})
        bench->SendFax(FaxFields('F' + QByteArray::number(count - 11), count), "fax bytes");
    bench->SayShort("OK");
    Receive();
    QCOMPARE(Profile::Values("Select ReturnReceipts From ReceiveFax Order by Fax_ID"),
             QStringList({"", "", "receipts"}));
}

void tst_FaxDownload::shortReplyLeavesNoRow()
{
    Offer({"F1|9"});
    bench->SendFax(FaxFields("F1", 11), "fax bytes").SayShort("OK");
    Receive();
    QCOMPARE(Profile::Value("Select Count(*) From ReceiveFax"), QString("0"));
    QVERIFY(QFile::exists(Global().strInputBoxPath + "F1.tif"));
    QVERIFY(IsAcknowledged());
    QCOMPARE(bench->Socket().lConnects, 0);
}

void tst_FaxDownload::refusedFaxLeavesNoRowAndTheNextComes()
{
    Offer({"F1|9", "F2|9"});
    bench->SayLong("ERR\r\n7\r\n");
    bench->SendFax(FaxFields("F2"), "fax bytes").SayShort("OK");
    Receive();
    QCOMPARE(States(), QString("InputBox/F1.tif Failed, InputBox/F2.tif Completed"));
    QCOMPARE(Profile::Values("Select Fax_ID From ReceiveFax"), QStringList("F2"));
    QVERIFY(IsAcknowledged());
    QCOMPARE(bench->Socket().lConnects, 0);
}

void tst_FaxDownload::announcementWithoutFieldsIsNotFollowedByItsFile()
{
    Offer({"F1|9", "F2|9"});
    bench->SayLong(QByteArray(3000, 'x')); // its file would come now, on a connection that nobody reads
    bench->AcceptConnection().SendFax(FaxFields("F2"), "fax bytes");
    Receive();
    QCOMPARE(bench->Socket().lConnects, 1);
    QCOMPARE(Profile::Values("Select Fax_ID From ReceiveFax"), QStringList("F2"));
    QVERIFY(!IsAcknowledged());
}

void tst_FaxDownload::silentServerCostsOneFaxAndHoldsTheListOpen()
{
    Offer({"F1|9", "F2|9"});
    bench->SayLong("OK\r\n" + FaxFields("F1").join('\0') + "\r\n");
    bench->Say(Frames::Long(9) + "fax"); // and no more
    bench->Silence(6500).AcceptConnection();
    bench->SendFax(FaxFields("F2"), "fax bytes");
    Receive();
    QCOMPARE(States(), QString("InputBox/F1.tif Failed, InputBox/F2.tif Completed"));
    QCOMPARE(Profile::Values("Select Fax_ID From ReceiveFax"), QStringList("F2"));
    QVERIFY(!IsAcknowledged());
    QVERIFY(bench->ports.prompts.aBoxes.isEmpty());
}

void tst_FaxDownload::rowThatCannotBeWrittenHoldsTheListOpen()
{
    Profile::Execute("Create Trigger Full Before Insert On ReceiveFax When new.Fax_ID='F1' "
                     "Begin Select Raise(Abort,'disk'); End");
    for (int run = 0; run < 2; ++run) {
        Offer({"F1|9", "F2|9"});
        bench->SendFax(FaxFields("F1"), "fax bytes");
        if (run == 0)
            bench->SendFax(FaxFields("F2"), "fax bytes");
        Receive();
        QVERIFY(States().contains("F1.tif Failed"));
    }
    QCOMPARE(Profile::Values("Select Fax_ID From ReceiveFax"), QStringList("F2"));
    QVERIFY(!IsAcknowledged());
    QCOMPARE(bench->Socket().lConnects, 0);
    QCOMPARE(bench->ports.prompts.aBoxes.size(), 1); // not again for every poll
    QVERIFY(bench->ports.prompts.Texts().constFirst().startsWith("Failed to store a received fax"));
}

void tst_FaxDownload::diskThatRefusesHoldsTheListOpen()
{
    QVERIFY(QDir(Global().strInputBoxPath).removeRecursively());
    Offer({"F1|9", "F2|9"});
    bench->SendFax(FaxFields("F1"), "fax bytes");
    Receive();
    QVERIFY(!IsAcknowledged());
    QCOMPARE(Profile::Value("Select Count(*) From ReceiveFax"), QString("0"));
    QCOMPARE(bench->ports.prompts.aBoxes.size(), 1);
    QVERIFY(bench->ports.prompts.Texts().constFirst().contains("disk"));
}

void tst_FaxDownload::brokenConnectionEndsTheRun()
{
    Offer({"F1|9", "F2|9"});
    bench->Close();
    Receive();
    QCOMPARE(bench->Heard(), QStringList({"6", "7 9 F1"}));
    QCOMPARE(bench->progress.Text(), QString("Disconnect from the server"));
    QVERIFY(States().startsWith("InputBox/F1.tif Disconnected"));
    QCOMPARE(bench->Socket().lConnects, 0);
    QVERIFY(bench->status.aChecks.isEmpty());
}

void tst_FaxDownload::userCancelsDuringTheFile()
{
    Offer({"F1|9", "F2|9"});
    bench->SayLong("OK\r\n" + FaxFields("F1").join('\0') + "\r\n");
    bench->Say(Frames::Long(9) + "fax");
    bench->Then([this] { bench->progress.ClickCancelOperate(); });
    Receive();
    QCOMPARE(bench->progress.Text(), QString("User abort."));
    QCOMPARE(States(), QString("InputBox/F1.tif Canceled"));
    QCOMPARE(Profile::Value("Select Count(*) From ReceiveFax"), QString("0"));
    QVERIFY(!session().IsConnected());
    QVERIFY(!IsAcknowledged());
    QCOMPARE(bench->ports.pump.StepsLeft(), 0);
}

void tst_FaxDownload::userCancelsDuringTheList()
{
    bench->Then([this] { bench->progress.ClickCancelOperate(); });
    Receive();
    QCOMPARE(bench->progress.Text(), QString("User abort."));
    QVERIFY(bench->status.aChecks.isEmpty());
}

void tst_FaxDownload::nothingNew_data()
{
    QTest::addColumn<bool>("silent");
    QTest::addColumn<bool>("history");
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("text");
    const QByteArray none = "OK\r\n";
    QTest::newRow("asked by the user") << false << false << none << "No new fax...";
    QTest::newRow("history") << false << true << none << "Cannot find any Fax history...";
    QTest::newRow("refused list") << false << false << QByteArray("ERR\r\n3\r\n") << "No new fax...";
    QTest::newRow("periodic") << true << false << none << "Sending && Receiving Fax...";
}

void tst_FaxDownload::nothingNew()
{
    QFETCH(bool, silent);
    QFETCH(bool, history);
    QFETCH(QByteArray, reply);
    desktop().mainWindow.bVisible = !silent;
    if (history)
        session().BeginCommand(pndFaxList).GetHistoryList("range");
    bench->SayLong(reply);
    bool wasBusy = false;
    bench->status.onCheck = [&] { wasBusy = session().bIsSocketBusy; };
    Receive(silent, history);
    QTEST(bench->progress.Text(), "text");
    QCOMPARE(bench->status.aChecks, QList<bool>{silent});
    QVERIFY(wasBusy);
    QCOMPARE(bench->progress.IsLoaded(), !silent);
    QVERIFY(!IsAcknowledged());
    if (!silent)
        QCOMPARE(bench->progress.Bar(), 100);
}

void tst_FaxDownload::listThatDoesNotComeIsNotCalledEmpty()
{
    Receive();
    QCOMPARE(bench->progress.Text(), QString("Disconnect from the server"));
    QCOMPARE(bench->progress.ButtonTag(), QString("Close"));
}

void tst_FaxDownload::emptyRunBehindAnUploadKeepsItsRows()
{
    bench->progress.Show();
    bench->progress.SetTotal(1);
    bench->progress.AddRow("Outputbox/F0.tif", "imgOK", "Completed");
    bench->SayLong("OK\r\n");
    download->ReceiveFaxes(false, false, false, false);
    const QList<ProgressRow> expected{{"imgOK", "Outputbox/F0.tif", "Completed"},
                                      {"imgInfo", "No incoming faxes ...", {}}};
    QCOMPARE(bench->progress.Rows(), expected);
    QVERIFY(bench->status.aChecks.isEmpty());
}

void tst_FaxDownload::serverThatCannotBeReached_data()
{
    QTest::addColumn<bool>("silent");
    QTest::newRow("asked by the user") << false;
    QTest::newRow("periodic") << true;
}

void tst_FaxDownload::serverThatCannotBeReached()
{
    QFETCH(bool, silent);
    bench->Socket().CloseByServer();
    bench->Server([](FakeSocket &socket) { socket.RefuseConnection(); });
    Receive(silent);
    QCOMPARE(bench->progress.Text(), QString("Failed to connect to Velmar Server..."));
    QCOMPARE(bench->progress.IsLoaded(), !silent);
    QCOMPARE(bench->progress.Frame(), 6);
    QVERIFY(!bench->progress.IsAnimated());
    QVERIFY(bench->ports.prompts.aBoxes.isEmpty());
}

void tst_FaxDownload::silentRunWithAHiddenWindowNotifies()
{
    desktop().mainWindow.bVisible = false;
    Global().SoundPath = Global().strUserFolder + "ring.wav";
    QVERIFY(WriteTestFile(Global().SoundPath, "ring"));
    Offer({"F1|9", "F2|9"});
    bench->SendFax(FaxFields("F1"), "fax bytes");
    bench->SendFax(FaxFields("F2"), "fax bytes").SayShort("OK");
    bool wasVisible = false;
    bench->Then([&] { wasVisible = bench->progress.IsVisible(); });
    Receive(true);
    QVERIFY(!wasVisible);
    QCOMPARE(desktop().notifier.aMonitors, QStringList("F1.tif,F2.tif"));
    QCOMPARE(bench->ports.sound.aPlayed, QStringList(Global().SoundPath));
    QCOMPARE(desktop().notifier.aTips,
             QStringList({"Receiving Fax...", "Receving Fax : 28%", "Receving Fax : 50%",
                          "Receving Fax : 78%", "Receving Fax : 100%", "Velmar Clinet"}));
    QCOMPARE(bench->status.aChecks, QList<bool>{false});
}

void tst_FaxDownload::silentRunWithAVisibleWindowLeavesNothingOpen()
{
    bool wasVisible = false;
    bench->Then([&] { wasVisible = bench->progress.IsVisible(); });
    Offer({"F1|9"});
    bench->SendFax(FaxFields("F1"), "fax bytes").SayShort("OK");
    bench->status.onCheck = [this] { bench->progress.Show(); };
    Receive(true);
    QVERIFY(wasVisible);
    QVERIFY(!bench->progress.IsLoaded());
    QVERIFY(desktop().notifier.aMonitors.isEmpty());
}

void tst_FaxDownload::statesAreAskedFor_data()
{
    QTest::addColumn<bool>("visible");
    QTest::addColumn<bool>("checkStateAfter");
    QTest::addColumn<bool>("isNew");
    QTest::addColumn<QList<bool>>("checks");
    QTest::newRow("visible") << true << true << false << QList<bool>{true};
    QTest::newRow("hidden with new faxes") << false << true << true << QList<bool>{false};
    QTest::newRow("hidden without") << false << true << false << QList<bool>{};
    QTest::newRow("not wanted") << true << false << true << QList<bool>{};
}

void tst_FaxDownload::statesAreAskedFor()
{
    QFETCH(bool, visible);
    QFETCH(bool, checkStateAfter);
    QFETCH(bool, isNew);
    desktop().mainWindow.bVisible = visible;
    Offer({"F1|9"});
    if (isNew)
        bench->SendFax(FaxFields("F1"), "fax bytes");
    else
        bench->profile.InsertReceivedFax("F1");
    bench->SayShort("OK");
    download->ReceiveFaxes(false, false, true, checkStateAfter);
    QTEST(bench->status.aChecks, "checks");
    QVERIFY(IsAcknowledged());
}

void tst_FaxDownload::runStaysTheOwnerUntilItsLastCommand()
{
    bench->profile.InsertReceivedFax("F1");
    Offer({"F1|9"});
    // The window is enabled again while the acknowledgement is on its way: a click starts no second run.
    bench->Then([this] {
        QVERIFY(desktop().mainWindow.bEnabled);
        Receive();
    });
    bench->SayShort("OK");
    Receive();
    QCOMPARE(bench->Heard(), QStringList({"6", "17"}));
}

void tst_FaxDownload::selectedFolderIsReloaded_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("load");
    QTest::newRow("inbox") << "1001"
                           << "load 1001 2";
    QTest::newRow("sending") << "1005"
                             << "load 1005 5";
    QTest::newRow("sent") << "1006"
                          << "load 1006 5";
    QTest::newRow("undelivered") << "1007"
                                 << "load 1007 5";
    QTest::newRow("summary") << "1000"
                             << "load 1000 0";
    QTest::newRow("drafts") << "1002"
                            << "";
    QTest::newRow("none") << ""
                          << "";
}

void tst_FaxDownload::selectedFolderIsReloaded()
{
    QFETCH(QString, folder);
    QFETCH(QString, load);
    desktop().mailbox.strFolder = folder;
    desktop().mailbox.lRows = 2;
    bench->profile.InsertReceivedFax("F1");
    Offer({"F1|9"});
    bench->SayShort("OK");
    Receive();
    QStringList expected{"recount"};
    if (!load.isEmpty())
        expected.append(load);
    QCOMPARE(desktop().mailbox.aCalls, expected + QStringList("current row"));
}

void tst_FaxDownload::receivedFaxesArePrinted_data()
{
    QTest::addColumn<bool>("autoPrint");
    QTest::addColumn<bool>("printer");
    QTest::addColumn<bool>("history");
    QTest::addColumn<int>("printed");
    QTest::newRow("on arrival") << true << true << false << 1;
    QTest::newRow("not wanted") << false << true << false << 0;
    QTest::newRow("no printer") << true << false << false << 0;
    QTest::newRow("history") << true << true << true << 0;
}

void tst_FaxDownload::receivedFaxesArePrinted()
{
    QFETCH(bool, autoPrint);
    QFETCH(bool, printer);
    QFETCH(bool, history);
    Global().AutoPrint = autoPrint;
    Global().Copies = "3";
    Global().PrinterName = "Laser";
    desktop().printing.bHasPrinter = printer;
    if (history)
        session().BeginCommand(pndFaxList).GetHistoryList("range");
    Offer({"F1|9"});
    bench->SendFax(FaxFields("F1"), "fax bytes").SayShort("OK");
    Receive(false, history);
    QTEST(int(desktop().printing.aPrinted.size()), "printed");
    if (!desktop().printing.aPrinted.isEmpty())
        QVERIFY(desktop().printing.aPrinted.constFirst().endsWith("F1.tif 1-0 x3 Laser"));
}

void tst_FaxDownload::foreignFileNameIsNotUsed()
{
    desktop().mainWindow.bVisible = false;
    QByteArrayList fields = FaxFields("F1");
    fields[2] = "../Database/MFax_Client.mfd";
    QByteArrayList other = FaxFields("F2");
    other[2] = "F1.tif"; // stands in the inbox folder
    Offer({"F1|9", "F2|9"});
    bench->SendFax(fields, "fax bytes");
    bench->SendFax(other, "fax bytes").SayShort("OK");
    Receive(true);
    QCOMPARE(desktop().notifier.aMonitors, QStringList("F1.tif,F1.tif"));
}

void tst_FaxDownload::receiveCommandSelectsTheNewestFax()
{
    desktop().mailbox.strFolder = "1001";
    desktop().mailbox.lRows = 1;
    bench->SayLong("OK\r\n");
    download->mnuReceive();
    QCOMPARE(desktop().mailbox.aCalls.constLast(), QString("row 1"));
}

QTEST_GUILESS_MAIN(tst_FaxDownload)
#include "tst_FaxDownload.moc"
