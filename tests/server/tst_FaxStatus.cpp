#include "core/Globals.h"
#include "fixtures/SessionBench.h"
#include "fixtures/TestTable.h"
#include "server/FaxHistory.h"
#include "server/HistoryRange.h"
#include "server/SentFaxCommands.h"
#include "server/wire/Frames.h"

#include <QTest>

#include <optional>

namespace {

struct Bench : SessionBench
{
    StatusRooms rooms{session, progress, desktop.mainWindow, desktop.mailbox};
    FaxStatus faxes{ports.ports, rooms};
    SentFaxCommands commands{ports.ports, rooms};
    FaxHistory history{ports.ports, session, download};
};

/// A reply with "|" for the byte between two fields and "#" behind each line.
QByteArray Reply(QByteArray text)
{
    return text.replace('|', '\0').replace("#", "\r\n");
}

} // namespace

class tst_FaxStatus : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        bench.emplace();
        bench->session.SetIdleState(true);
    }

    /// However a run has ended, the user can go on.
    void cleanup()
    {
        QVERIFY(!bench->ports.pump.IsStuck());
        QVERIFY(!bench->session.bIsSocketBusy && bench->session.IsIdleState());
        QVERIFY(bench->desktop.mainWindow.bEnabled && bench->session.lPendingCommand == pndNone);
        QVERIFY(bench->progress.IsButtonEnabled());
        bench.reset();
    }

    void statusDecidesWhereTheFaxGoes_data()
    {
        const TestTable<QByteArray, QString, QString> row({"state", "fax", "follow"});
        row("moved on", "1|E|U|1|T|C", "1005 Sending  E/U/1/T/C/", "F hide ");
        row("as before", "1|E|old|||", "1005 Sending  E/old////", ""); // written before, see below
        row("failed", "2|E|U|2|T|C", "1007 Send failed E E/U/2/T/C/", "F hide ");
        row("no change", "3|E|U|1|T|C", "1005 Sending  E/old////", "");
        row("delivered", "4|E|U|4|T|C|more", "1006 Sucessfully E E/U/4/T/C/", "F hide ");
        row("may not", "5|E||||", "1007 Insufficient privileges E E/////", "F hide ");
        row("bad file", "6|E||||", "1007 Invalid fax file E E/////", "F hide ");
        row("retries", "10|E||||", "1007 Attempt limit reached E E/////", "F hide ");
        row("removed", "11|E||||", "1007 Deleted by administrator E E/////", "F hide ");
        row("decimals", "4.00|E||||", "1006 Sucessfully E E/////", "F hide ");
        for (const char *unknown : {"7", "8", "9", "4.5", "-1", "", "four", "99999999999999"})
            row(unknown, unknown + QByteArray("|E||||"), "1005 Sending  E/old////", " hide F");
        row("hostile", "2|'E|a';b|\2|\1|'", "1007 Send failed ~$@~E ~$@~E/a~$@~;b//\1/~$@~/", "F hide ");
    }
    void statusDecidesWhereTheFaxGoes()
    {
        QFETCH(const QByteArray, state);
        Fax("F", {{"Result", "Sending"}, {"ResultDetailed", "E\2old\2\2\2\2"}});
        bench->SayLong("OK\r\n" + Reply("F|" + state + "#"));
        bench->faxes.CheckFaxState(false);
        QCOMPARE(bench->Heard(), QStringList("9 \1   F"));
        QTEST(Stored("F").mid(2), "fax");
        QFETCH(const QString, follow);
        QCOMPARE(bench->desktop.mailbox.aCalls,
                 follow.isEmpty() ? QStringList() : QStringList({"follow " + follow, "recount"}));
        QVERIFY(!bench->progress.IsLoaded() && bench->ports.prompts.aBoxes.isEmpty());
    }

    void onlyLiveFaxesOfSendingAreAskedFor()
    {
        Fax("A", {});
        Fax("B", {});
        Fax("BIN", {{"RecyleID", "1008"}});
        Fax("SENT", {{"folderID", "1006"}});
        Fax("B' or 'x", {});
        bench->SayLong(Reply("OK#SENT|2|E|||||#BIN|2|E||||#x' or '1'='1|2|E||||#../A|2|E||||#B|4|E||||#"));
        bench->faxes.CheckFaxState(true);
        QCOMPARE(bench->Heard(), QStringList("9 \3   A B"));
        QCOMPARE(Profile::Values("Select folderID from SendFax Where folderID<>'1005' Order By Fax_ID"),
                 QStringList({"1006", "1006"}));
        QCOMPARE(bench->progress.Text(), QString("Tasks were completed successfully."));
        QCOMPARE(bench->progress.Bar(), 100);
    }

    /// What the user does while the answer is on its way holds; the fax only learns its result.
    void faxThatLeftSendingStaysWhereItIs()
    {
        for (const char *id : {"BIN", "OWN", "GONE", "STILL"})
            Fax(id, {{"Result", "Sending"}});
        bench->Then([] {
            Profile::Execute(
                "Update SendFax Set FolderID='1002',RecyleID='1008' Where Fax_ID in('BIN','STILL')");
            Profile::Execute("Update SendFax Set FolderID='USER' Where Fax_ID='OWN'");
            Profile::Execute("Delete From SendFax Where Fax_ID='GONE'");
            Profile::Execute("Insert Into SendFax(Fax_ID,FolderID) Values('NEW','1003')");
        });
        bench->SayLong(Reply("OK#BIN|4|E||||#OWN|2|E||||#GONE|4|E||||#NEW|4|E||||#STILL|1|E||||#"));
        bench->faxes.CheckFaxState(false);
        QCOMPARE(Stored("BIN"), QString("B 1002 Sucessfully E E/////"));
        QCOMPARE(Stored("OWN"), QString("  USER Send failed E E/////"));
        QCOMPARE(Stored("STILL"), QString("B 1002 Sending  "));
        QCOMPARE(Stored("NEW"), QString("  1003   "));
        QCOMPARE(Profile::Value("Select RecyleID from SendFax Where Fax_ID='BIN'"), QString("1008"));
    }

    void damagedAnswerLosesOnlyItsOwnFaxes_data()
    {
        const TestTable<QByteArray, QString, int> row({"reply", "moved", "boxes"});
        row("one line", "OK", "", 0);
        row("status only", "OK#", "", 0);
        row("short line", "OK#A|4|E||||#B|4|E|||#C|4|E||||#", "A", 1);
        row("statement fails", "OK#A|4|E||||#FULL|4|E||||#C|2|E||||#", "A C", 0);
        row("no tail", "OK#A|4|E||||#C|4|E||||", "A", 0);
    }
    void damagedAnswerLosesOnlyItsOwnFaxes()
    {
        QFETCH(const QByteArray, reply);
        for (const char *id : {"A", "B", "C", "FULL"})
            Fax(id, {});
        Profile::Execute("CREATE TRIGGER Full BEFORE UPDATE ON SendFax WHEN NEW.Fax_ID='FULL' BEGIN SELECT "
                         "RAISE(ABORT,'full'); END");
        for (int run = 0; run < 2; ++run) { // the same fault is told once
            bench->SayLong(Reply(reply));
            bench->faxes.CheckFaxState(true);
        }
        QTEST(Profile::Values("Select Fax_ID from SendFax Where folderID>'1005' Order By Fax_ID").join(' '),
              "moved");
        QTEST(int(bench->ports.prompts.aBoxes.size()), "boxes");
    }

    void endOfTheWaitIsTold_data()
    {
        const TestTable<QString, QString, int> row({"server", "text", "boxes"});
        row("refuses", "ERR\r\n7\r\n", "Failed to get fax status.", 0);
        row("is silent", "", "Failed to get fax status.", 0);
        row("closes", "close", "Disconnect from the server", 0);
        row("user cancels", "cancel", "User abort.", 0);
        row("table is locked", "begin", "Failed to get fax status.", 1);
    }
    void endOfTheWaitIsTold()
    {
        QFETCH(const QString, server);
        Fax("F", {});
        if (server == "close")
            bench->Close();
        else if (server == "cancel")
            bench->Then([this] {
                bench->progress.SetButton("Cancel", "&Cancel");
                bench->progress.ClickCancelOperate();
            });
        else if (server == "begin")
            bench->Then([] { Profile::Execute("Begin"); }).SayLong(Reply("OK#F|4|E||||#"));
        else if (!server.isEmpty())
            bench->SayLong(server.toLatin1());
        bench->faxes.CheckFaxState(true);
        QTEST(bench->progress.Text(), "text");
        QTEST(int(bench->ports.prompts.aBoxes.size()), "boxes");
        QCOMPARE(Stored("F").mid(2, 4), QString("1005"));
    }

    void longAnswerIsAppliedOnce()
    {
        QByteArray reply = "OK#";
        for (int i = 0; i < 1000; ++i) {
            Fax("F" + QString::number(i), {});
            reply += "F" + QByteArray::number(i) + "|4|2024-01-31 09:00:00|;|4;|||#";
        }
        const QByteArray frame = Frames::Long(int(Reply(reply).size())) + Reply(reply);
        bench->Say(frame.left(3000)).Then([this] {
            QVERIFY(bench->progress.Bar() > 0 && bench->progress.Bar() < 100);
            QCOMPARE(Profile::Value("Select count(*) from SendFax Where folderID='1006'"), QString("0"));
        });
        bench->Say(frame.mid(3000));
        bench->faxes.CheckFaxState(true);
        QCOMPARE(Profile::Value("Select count(*) from SendFax Where folderID='1006'"), QString("1000"));
        QCOMPARE(bench->desktop.mailbox.aCalls.size(), 2);
    }

    void secondRunIsNotBegun()
    {
        Fax("F", {});
        bench->session.bIsSocketBusy = true;
        bench->faxes.CheckFaxState(true);
        bench->commands.mnuCancelSend({"F"});
        bench->commands.mnuResendError({"F"});
        bench->history.mnuGetHistory("2024-01-01;2024-01-31");
        bench->session.bIsSocketBusy = false;
        bench->commands.mnuCancelSend({}); // nothing is selected
        bench->commands.mnuResendError({});
        bench->history.mnuGetHistory({});
        QCOMPARE(bench->ports.prompts.aBoxes.size(), 3);
        QVERIFY(bench->Heard().isEmpty() && Stored("F").startsWith("  1005"));
    }

    // Cancel and resend

    void cancelMovesTheFaxesBeforeTheServerAnswers_data()
    {
        const TestTable<QString, int> row({"server", "boxes"});
        row("confirms", "OK\r\n1;1;\r\n", 0);
        row("refuses", "ERR\r\n7\r\n", 1);
        row("is silent", "", 1);
        row("is gone", "close", 1);
        row("connects", "connect", 0);
    }
    void cancelMovesTheFaxesBeforeTheServerAnswers()
    {
        QFETCH(const QString, server);
        Fax("A", {{"Result", "Sending"}});
        Fax("B", {{"Result", "Sending"}});
        Fax("C", {});
        const bool isClosed = server == "close" || server == "connect";
        if (isClosed)
            bench->Socket().CloseByServer();
        bench->Then([this] {
            QCOMPARE(Profile::Values("Select Fax_ID||FolderID||RecyleID||Result from SendFax Where "
                                     "FolderID<>'1005' Order By Fax_ID"),
                     QStringList({"A10021008Sending", "B10021008Sending"}));
            QCOMPARE(bench->desktop.mailbox.aCalls.value(0), "follow A,B hide ");
            QVERIFY(!bench->desktop.mainWindow.bEnabled && !bench->progress.IsButtonEnabled());
            QCOMPARE(bench->progress.Text(), "Abort sending fax......");
        });
        if (server == "close")
            bench->Server([](FakeSocket &socket) { socket.RefuseConnection(); });
        else if (server == "connect")
            bench->AcceptConnection().SayLong("OK\r\n");
        else if (!server.isEmpty())
            bench->SayLong(server.toLatin1());
        bench->commands.mnuCancelSend({"A", "B"});
        if (!isClosed)
            QCOMPARE(bench->Heard(), QStringList("15 \4   A;B;"));
        QTEST(int(bench->ports.prompts.aBoxes.size()), "boxes");
        QVERIFY(!bench->progress.IsLoaded());
    }

    /// The first read must not end the wait: what follows would answer the next command.
    void cancelWaitsForTheWholeAnswer()
    {
        Fax("A", {});
        const QByteArray answer = "OK\r\n" + QByteArray(5000, '1');
        const QByteArray frame = Frames::Long(int(answer.size())) + answer;
        bench->Say(frame.left(2500)).Say(frame.mid(2500));
        bench->commands.mnuCancelSend({"A"});
        QCOMPARE(bench->Heard().count("GoOn"), 1);
        QVERIFY(!bench->session.IsOutOfStep() && bench->Socket().GetData().isEmpty());
    }

    void resendFollowsTheAnswers_data()
    {
        const TestTable<QString, QString, QString> row({"server", "resent", "box"});
        row("all", "OK#1;1;1;#", "A B C", "");
        row("some", "OK#1;0;1.0;#", "A C",
            "The server sends 2 of 3 faxes again. The others stay undelivered.");
        const QString none = "The server sends nothing of it again. It stays in Undelivered.";
        const QString unclear = "The server has not said whether it sends again. It may still send what "
                                "stays in Undelivered.";
        row("too few", "OK#1;1;#", "", unclear);
        row("no tail", "OK#1;1;1#", "", unclear);
        row("too many", "OK#1;1;1;1;#", "", unclear);
        row("no answers", "OK", "", unclear);
        row("no numbers", "OK#yes;' or 1=1;2;#", "", none);
        row("refused", "ERR#7#", "", none);
        row("silent", "", "", unclear);
        row("table full", "full OK#1;1;1;#", "", "Failed to resend fax.\nfull");
        row("no server", "refuse", "", "Failed to connect to Velmar Server.");
    }
    void resendFollowsTheAnswers()
    {
        QFETCH(QString, server);
        for (const char *id : {"A", "B", "C"})
            Fax(id, {{"folderID", "1007"}, {"Result", "Send failed"}, {"ResultDetailed", "kept"}});
        if (server.startsWith("full ")) {
            Profile::Execute(
                "CREATE TRIGGER Full BEFORE UPDATE ON SendFax BEGIN SELECT RAISE(ABORT,'full'); END");
            server.remove(0, 5);
        }
        if (server == "refuse") {
            bench->Socket().CloseByServer();
            bench->Server([](FakeSocket &socket) { socket.RefuseConnection(); });
        } else if (!server.isEmpty()) {
            bench->SayLong(Reply(server.toLatin1()));
        }
        bench->commands.mnuResendError({"A", "B", "C"});
        if (server != "refuse")
            QCOMPARE(bench->Heard(), QStringList("16 \6   A;B;C;"));
        QTEST(Profile::Values("Select Fax_ID from SendFax Where FolderID='1005' and Result='Sending' and "
                              "SendTime='2024-01-31 09:30:00' and ResultDetailed='kept' Order By Fax_ID")
                  .join(' '),
              "resent");
        QTEST(bench->ports.prompts.Texts().join('|').section("Error:", 0, 0).trimmed(), "box");
        QVERIFY(!bench->progress.IsLoaded());
    }

    // History

    void rangesFollowTheChoice_data()
    {
        const TestTable<QDate, QStringList> row({"today", "ranges"});
        row("leap day, Thursday", QDate(2024, 2, 29),
            {"2024-02-29 2024-02-29", "2024-02-25 2024-02-29", "2024-02-01 2024-02-29",
             "2024-01-01 2024-01-31", "2024-01-01 2024-02-29", "2024-01-01 2024-02-29",
             "2023-01-01 2023-12-31", "2023-02-01 2023-02-28", "1900-01-01 2024-02-29"});
        row("Sunday in January", QDate(2023, 1, 1),
            {"2023-01-01 2023-01-01", "2023-01-01 2023-01-01", "2023-01-01 2023-01-01",
             "2022-12-01 2022-12-31", "2022-12-01 2023-01-01", "2023-01-01 2023-01-01",
             "2022-01-01 2022-12-31", "2022-01-01 2022-01-31", "1900-01-01 2023-01-01"});
    }
    void rangesFollowTheChoice()
    {
        QFETCH(const QDate, today);
        QStringList ranges;
        for (int choice = 0; choice < HistoryRange::Choices; ++choice) {
            const HistoryRange range = HistoryRange::Of(HistoryRange::Choice(choice), today);
            ranges.append(range.from.toString(Qt::ISODate) + ' ' + range.to.toString(Qt::ISODate));
        }
        QTEST(ranges, "ranges");
        QCOMPARE(HistoryRange::Captions().size(), int(HistoryRange::Choices));
    }

private:
    void Fax(const QString &id, const Profile::Columns &columns)
    {
        Profile::Columns row{{"folderID", "1005"}, {"SendTime", "2024-01-30 08:00:00"}};
        row.insert(columns);
        bench->profile.InsertSentFax(id, row);
    }
    /// "B" for one in the bin, folder, result, end time, details with "/" for the byte 2.
    static QString Stored(const QString &id)
    {
        return Profile::Value("Select Case When RecyleID>'' Then 'B' Else ' ' End||' '||FolderID||' '||"
                              "ifnull(Result,'')||' '||ifnull(EndTime,'')||' '||ifnull(ResultDetailed,'') "
                              "from SendFax Where Fax_ID='" +
                              id + "'")
            .replace(QChar(2), '/');
    }

    std::optional<Bench> bench;
};

QTEST_GUILESS_MAIN(tst_FaxStatus)
#include "tst_FaxStatus.moc"
