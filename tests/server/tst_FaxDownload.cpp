#include "core/Globals.h"
#include "core/ports/Timer.h"
#include "fixtures/SessionBench.h"
#include "server/wire/Frames.h"
#include "server/wire/clsClient.h"

#include <QDir>
#include <QTest>

#include <optional>

using Script = std::function<void()>;
Q_DECLARE_METATYPE(Script)

namespace {
constexpr auto completed = "Receive Complete", lost = "Disconnect from the server", aborted = "User abort.";
}

class tst_FaxDownload : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench.emplace(); }
    void cleanup();

    void newFaxIsStored();
    void fieldsDecideWhatIsStored();
    void whatBecomesOfTheList_data();
    void whatBecomesOfTheList();
    void errorIsToldOnceAndKeepsWhatCameBefore();
    void nothingNew_data();
    void nothingNew();
    void emptyRunBehindAnUploadKeepsItsRows();
    void serverThatCannotBeReached();
    void silentRunWithAHiddenWindowNotifies();
    void statesAreAskedFor();
    void runStaysTheOwnerUntilItsLastCommand();
    void selectedFolderIsReloaded();
    void receivedFaxesArePrinted();

private:
    void Receive(bool silent = false, bool history = false)
    {
        if (history)
            session().BeginCommand(pndFaxList).GetHistoryList("range");
        bench->download.ReceiveFaxes(silent, history, true, true);
    }
    /// The server offers these faxes: "F1|100" or, in a history, "F1|100|9".
    void Offer(const QByteArrayList &lines);
    void Send(const QByteArray &id) { bench->SendFax(FaxFields(id), "fax bytes"); }
    /// Announces the fax and sends 3 of 9 bytes.
    void SendPart(const QByteArray &id);
    void Cancel()
    {
        bench->Then([this] { bench->progress.ClickCancelOperate(); });
    }
    QString States() const;
    bool IsAcknowledged() { return bench->Heard().contains("17"); }
    Session &session() { return bench->session; }
    FakeDesktop &desktop() { return bench->desktop; }

    std::optional<SessionBench> bench;
};

/// Whatever happened, a run leaves the program as it found it.
void tst_FaxDownload::cleanup()
{
    QVERIFY(!bench->ports.pump.IsStuck());
    QVERIFY(!session().bIsSocketBusy);
    QVERIFY(desktop().mainWindow.bEnabled);
    QVERIFY(session().CheckFaxTimer().IsEnabled());
    const QStringList tips = desktop().notifier.aTips;
    QVERIFY(tips.isEmpty() || tips.constLast() == "Velmar Clinet");
    bench.reset();
}

void tst_FaxDownload::Offer(const QByteArrayList &lines)
{
    QByteArray text = "OK\r\n";
    for (const QByteArray &line : lines)
        text += QByteArray(line).replace('|', '\0') + "\r\n";
    bench->SayLong(text);
}

void tst_FaxDownload::SendPart(const QByteArray &id)
{
    bench->SayLong("OK\r\n" + FaxFields(id).join('\0') + "\r\n").Say(Frames::Long(9) + "fax");
}

QString tst_FaxDownload::States() const
{
    QStringList states;
    for (const ProgressRow &row : bench->progress.Rows())
        states.append(row.strFile.chopped(4) + ' ' + row.strState);
    return states.join(", ");
}

void tst_FaxDownload::newFaxIsStored()
{
    Profile::Execute("Insert Into Contacts(ID,Name,Fax) Values('c1','Ann','555-1'),('c2','','555-2')");
    Profile::Execute("Insert Into UserList(ID,LoginName,UserName) "
                     "Values('u1','bert','Bert~$@~s'),('u2','carl','')");
    QVERIFY(WriteTestFile(Global().strInputBoxPath + "F1.tif", "left by a crash, longer than the fax"));
    QByteArrayList fields = FaxFields("F1");
    fields[0] = "O'Neil";
    fields[7] = "c1;c2;x'y";
    fields[8] = "Uu1;Uu2;";
    fields[9] = "D'Arcy";
    fields[10] = "u1";
    Offer({"F1|9"});
    bench->SendFax(fields, "fax bytes").SayShort("OK");
    Receive();
    QCOMPARE(bench->Heard(), QStringList({"6", "7 9 F1", "GoOn", "GoOn", "GoOn", "17"}));
    QCOMPARE(ReadTestFile(Global().strInputBoxPath + "F1.tif"), QByteArray("fax bytes"));
    QCOMPARE(Profile::Values("Select Fax_ID||'|'||Sender||'|'||Title||'|'||FileName||'|'||Pages||'|'||"
                             "FaxLevel||'|'||Remark||'|'||receiveTime||'|'||ReceiveUser||'|'||Resender||'|'||"
                             "FolderID||'|'||RecyleID||'|'||isreaded||'|'||IsSendedReceipt||'|'||"
                             "ReturnReceipts From ReceiveFax"),
             QStringList("F1|O~$@~Neil|Offer|F1.tif|2|1|a remark|2024-01-31 09:00:00|Ann(555-1);"
                         "555-2(555-2);Bert~$@~s[bert];carl[carl];D~$@~Arcy|Bert~$@~s(bert)|1001||0|False|"));
    QCOMPARE(bench->progress.ButtonTag(), QString("Close"));
    QCOMPARE(bench->progress.Bar(), 100);
    QCOMPARE(desktop().mainWindow.aTotalPercents, QList<int>({56, 100, -1}));
}

void tst_FaxDownload::fieldsDecideWhatIsStored()
{
    Offer({"F11|9", "F12|9", "F13|9", "F14|9"});
    for (const int count : {11, 12, 13, 14})
        bench->SendFax(FaxFields('F' + QByteArray::number(count), count), "fax bytes");
    bench->SayShort("OK");
    Receive();
    QCOMPARE(Profile::Values("Select Fax_ID||ReturnReceipts From ReceiveFax Order by Fax_ID"),
             QStringList({"F12", "F13", "F14receipts"}));
    QVERIFY(QFile::exists(Global().strInputBoxPath + "F11.tif")); // skipped without a word
    QVERIFY(IsAcknowledged());
    QCOMPARE(bench->Socket().lConnects, 0);
}

void tst_FaxDownload::whatBecomesOfTheList_data()
{
    QTest::addColumn<Script>("script"); // behind the offer of F1 and F2
    QTest::addColumn<QString>("states");
    QTest::addColumn<QString>("stored");
    QTest::addColumn<bool>("acknowledged");
    QTest::addColumn<int>("connects");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("box"); // its text up to a comma
    const auto row = [](const char *name, const Script &script, const char *states, const char *stored,
                        bool acknowledged, int connects, const char *text, const char *box = "") {
        QTest::newRow(name) << script << states << stored << acknowledged << connects << text << box;
    };
    const char *secondOnly = "InputBox/F1 Failed, InputBox/F2 Completed";
    const char *bothLost = "InputBox/F1 Disconnected, InputBox/F2 Disconnected";
    const char *notStored = "Failed to store a received fax";
    const auto refuse = [this] { bench->SayLong("ERR\r\n7\r\n"), Send("F2"), bench->SayShort("OK"); };
    row("refused", refuse, secondOnly, "F2", true, 0, completed);
    const auto known = [this] {
        bench->profile.InsertReceivedFax("F1");
        Send("F2"), bench->SayShort("OK");
    };
    row("stored before", known, "InputBox/F1 Exists, InputBox/F2 Completed", "F1 F2", true, 0, completed);
    // Its file would come next, on a connection that nobody reads.
    const auto noFields = [this] { bench->SayLong(QByteArray(3000, 'x')).AcceptConnection(), Send("F2"); };
    row("announcement without fields", noFields, secondOnly, "F2", false, 1, completed);
    const auto falls = [this] { SendPart("F1"), bench->Silence(6500).AcceptConnection(), Send("F2"); };
    row("server falls silent", falls, secondOnly, "F2", false, 1, completed);
    row(
        "connection breaks", [this] { bench->Close(); }, bothLost, "", false, 0, lost);
    row(
        "cancelled", [this] { SendPart("F1"), Cancel(); }, "InputBox/F1 Canceled", "", false, 0, aborted);
    row(
        "program ends", [this] { SendPart("F1"), bench->Then([this] { bench->ports.pump.Quit(); }); },
        "InputBox/F1 Failed, InputBox/F2 Disconnected", "", false, 1, lost);
    const auto noRow = [this] {
        Profile::Execute("Create Trigger Full Before Insert On ReceiveFax When new.Fax_ID='F1' "
                         "Begin Select Raise(Abort,'disk'); End");
        Send("F1"), Send("F2");
    };
    row("row that cannot be written", noRow, secondOnly, "F2", false, 0, completed, notStored);
    const auto noDisk = [this] { QDir(Global().strInputBoxPath).removeRecursively(), Send("F1"); };
    row("disk that refuses", noDisk, bothLost, "", false, 0, lost, notStored);
}

void tst_FaxDownload::whatBecomesOfTheList()
{
    QFETCH(Script, script);
    QFETCH(QString, states);
    QFETCH(QString, stored);
    QFETCH(QString, box);
    Offer({"F1|9", "F2|9"});
    script();
    Receive();
    QCOMPARE(States(), states);
    QCOMPARE(Profile::Values("Select Fax_ID From ReceiveFax Order by Fax_ID").join(' '), stored);
    QTEST(IsAcknowledged(), "acknowledged");
    QTEST(bench->Socket().lConnects, "connects");
    QTEST(bench->progress.Text(), "text");
    QVERIFY(desktop().mailbox.aCalls.contains("recount"));
    QCOMPARE(bench->ports.prompts.Texts().join('|').section(',', 0, 0), box);
}

void tst_FaxDownload::errorIsToldOnceAndKeepsWhatCameBefore()
{
    Profile::Execute("Drop Table SendFax");
    for (int poll = 0; poll < 2; ++poll) {
        Offer({"F1|9", "S2|9|4"});
        if (poll == 0)
            Send("F1");
        Receive();
    }
    QCOMPARE(Profile::Values("Select Fax_ID From ReceiveFax"), QStringList("F1"));
    QCOMPARE(desktop().mailbox.aCalls, QStringList({"recount", "recount"}));
    QVERIFY(!IsAcknowledged());
    QCOMPARE(bench->ports.prompts.aBoxes.size(), 1);
    QVERIFY(bench->ports.prompts.Texts().constFirst().startsWith("Failed to receive faxes."));
}

void tst_FaxDownload::nothingNew_data()
{
    QTest::addColumn<bool>("silent");
    QTest::addColumn<bool>("history");
    QTest::addColumn<Script>("script");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("checks");
    const Script empty = [this] { bench->SayLong("OK\r\n"); };
    const Script refused = [this] { bench->SayLong("ERR\r\n3\r\n"); };
    const Script cancelled = [this] { Cancel(); };
    const Script late = [this] { // the click comes in the same turn as the list
        bench->Server([this](FakeSocket &socket) {
            socket.FeedLong(QByteArray("OK\r\nF1\0009\r\n", 10));
            bench->progress.ClickCancelOperate();
        });
    };
    QTest::newRow("asked by the user") << false << false << empty << "No new fax..." << 1;
    QTest::newRow("history") << false << true << empty << "Cannot find any Fax history..." << 1;
    QTest::newRow("refused list") << false << false << refused << "No new fax..." << 1;
    QTest::newRow("no answer") << false << false << Script([] {}) << lost << 0;
    QTest::newRow("cancelled") << false << false << cancelled << aborted << 0;
    QTest::newRow("cancelled late") << false << false << late << aborted << 0;
    QTest::newRow("periodic") << true << false << empty << "Sending && Receiving Fax..." << 1;
    QTest::newRow("periodic, cancelled") << true << false << cancelled << "Sending && Receiving Fax..." << 0;
}

void tst_FaxDownload::nothingNew()
{
    QFETCH(bool, silent);
    QFETCH(bool, history);
    QFETCH(Script, script);
    QFETCH(int, checks);
    desktop().mainWindow.bVisible = !silent;
    session().bUserAbort = true; // the window of the run before was closed
    script();
    bool wasBusy = true;
    bench->status.onCheck = [&] { wasBusy = session().bIsSocketBusy; };
    Receive(silent, history);
    QTEST(bench->progress.Text(), "text");
    QCOMPARE(bench->status.aChecks, QList<bool>(checks, silent));
    QVERIFY(wasBusy);
    QCOMPARE(bench->progress.IsLoaded(), !silent);
    QVERIFY(!IsAcknowledged());
    QVERIFY(silent || (bench->progress.Bar() == 100 && bench->progress.ButtonTag() == "Close"));
}

void tst_FaxDownload::emptyRunBehindAnUploadKeepsItsRows()
{
    bench->progress.Show();
    bench->progress.SetTotal(1);
    bench->progress.AddRow("Outputbox/F0.tif", "imgOK", "Completed");
    bench->SayLong("OK\r\n");
    bench->download.ReceiveFaxes(false, false, false, false);
    const QList<ProgressRow> expected{{"imgOK", "Outputbox/F0.tif", "Completed"},
                                      {"imgInfo", "No incoming faxes ...", {}}};
    QCOMPARE(bench->progress.Rows(), expected);
    QVERIFY(bench->status.aChecks.isEmpty());
}

void tst_FaxDownload::serverThatCannotBeReached()
{
    bench->Socket().CloseByServer();
    for (const bool silent : {false, true}) {
        bench->Server([](FakeSocket &socket) { socket.RefuseConnection(); });
        Receive(silent);
        QCOMPARE(bench->progress.Text(), QString("Failed to connect to Velmar Server..."));
        QCOMPARE(bench->progress.IsLoaded(), !silent);
        QCOMPARE(bench->progress.Frame(), 6);
    }
    QVERIFY(bench->ports.prompts.aBoxes.isEmpty());
}

void tst_FaxDownload::silentRunWithAHiddenWindowNotifies()
{
    desktop().mainWindow.bVisible = false;
    Global().SoundPath = Global().strUserFolder + "ring.wav";
    QVERIFY(WriteTestFile(Global().SoundPath, "ring"));
    QByteArrayList outside = FaxFields("F1"), other = FaxFields("F2");
    outside[2] = "../Database/MFax_Client.mfd"; // not used
    other[2] = "F1.tif";                        // stands in the inbox folder
    Offer({"F1|9", "F2|9"});
    bench->SendFax(outside, "fax bytes").SendFax(other, "fax bytes").SayShort("OK");
    bench->Then([this] { QVERIFY(!bench->progress.IsVisible()); });
    Receive(true);
    QCOMPARE(desktop().notifier.aMonitors, QStringList("F1.tif,F1.tif"));
    QCOMPARE(bench->ports.sound.aPlayed, QStringList(Global().SoundPath));
    QCOMPARE(desktop().notifier.aTips,
             QStringList({"Receiving Fax...", "Receving Fax : 28%", "Receving Fax : 50%",
                          "Receving Fax : 78%", "Receving Fax : 100%", "Velmar Clinet"}));
}

void tst_FaxDownload::statesAreAskedFor()
{
    bench->profile.InsertReceivedFax("Known");
    const auto checks = [this](const QByteArray &id, bool silent, bool visible, bool wanted) {
        bench->status.aChecks.clear();
        desktop().mainWindow.bVisible = visible;
        Offer({id + "|9"});
        bench->Then([=, this] { QCOMPARE(bench->progress.IsVisible(), visible || !silent); });
        if (id != "Known")
            Send(id);
        bench->SayShort("OK");
        bench->download.ReceiveFaxes(silent, false, true, wanted);
        const bool isLeftOpen = bench->progress.IsLoaded();
        bench->progress.Unload();
        return isLeftOpen == silent ? QList<bool>{false, false} : bench->status.aChecks;
    };
    QCOMPARE(checks("F1", false, true, true), QList<bool>{true});
    QCOMPARE(checks("F2", true, true, true), QList<bool>{true});
    QCOMPARE(checks("F3", false, false, true), QList<bool>{false});
    QCOMPARE(checks("Known", false, false, true), QList<bool>{});
    QCOMPARE(checks("F4", false, true, false), QList<bool>{});
    QCOMPARE(bench->Heard().count("17"), 5);
    QVERIFY(desktop().notifier.aMonitors.isEmpty());
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

void tst_FaxDownload::selectedFolderIsReloaded()
{
    bench->profile.InsertReceivedFax("F1");
    desktop().mailbox.lRows = 2;
    const QList<std::pair<QString, QString>> folders{{"1005", "load 1005 5"},
                                                     {"1006", "load 1006 5"},
                                                     {"1007", "load 1007 5"},
                                                     {"1000", "load 1000 0"},
                                                     {"1002", ""},
                                                     {"1001", "load 1001 2"}};
    for (const auto &[folder, load] : folders) {
        desktop().mailbox.strFolder = folder;
        desktop().mailbox.aCalls.clear();
        Offer({"F1|9"});
        bench->SayShort("OK");
        bench->download.mnuReceive();
        QStringList expected{"recount", load, "current row", folder == "1001" ? "row 1" : ""};
        expected.removeAll("");
        QCOMPARE(desktop().mailbox.aCalls, expected);
    }
}

void tst_FaxDownload::receivedFaxesArePrinted()
{
    Global().Copies = "3";
    Global().PrinterName = "Laser";
    const auto printed = [this](const QByteArray &id, bool autoPrint, bool printer, bool history) {
        Global().AutoPrint = autoPrint;
        desktop().printing.bHasPrinter = printer;
        Offer({id + "|9"});
        Send(id), bench->SayShort("OK");
        Receive(false, history);
        return desktop().printing.aPrinted.join('|').section('/', -1);
    };
    QCOMPARE(printed("F1", false, true, false), QString());
    QCOMPARE(printed("F2", true, false, false), QString());
    QCOMPARE(printed("F3", true, true, true), QString());
    QCOMPARE(printed("F4", true, true, false), QString("F4.tif 1-0 x3 Laser"));
}

QTEST_GUILESS_MAIN(tst_FaxDownload)
#include "tst_FaxDownload.moc"
