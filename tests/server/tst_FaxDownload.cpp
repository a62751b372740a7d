#include "core/Globals.h"
#include "core/ports/Timer.h"
#include "fixtures/SessionBench.h"
#include "server/FaxListReply.h"
#include "server/FaxReply.h"
#include "server/wire/Frames.h"
#include "server/wire/clsClient.h"

#include <QTest>

#include <cerrno>
#include <optional>

#include <unistd.h>

namespace {
int lDiskError = 0;   ///< of the next files that are written through; 0 for none
QStringList aFlushed; ///< what was written through, and how many rows there were then
} // namespace

/// Takes the place of the system's.
extern "C" int fsync(int file)
{
    const QString path = QFile::symLinkTarget(QStringLiteral("/proc/self/fd/%1").arg(file));
    aFlushed.append(path.section('/', -1) + ' ' + Profile::Value("Select Count(*) From ReceiveFax"));
    errno = lDiskError;
    return lDiskError == 0 ? 0 : -1;
}

class tst_FaxDownload : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        bench.emplace();
        session().SetIdleState(true);
        aFlushed.clear();
        lDiskError = 0;
    }

    /// Whatever happened, a run leaves the program as it found it.
    void cleanup()
    {
        QVERIFY(!bench->ports.pump.IsStuck());
        QVERIFY(!session().bIsSocketBusy);
        QVERIFY(desktop().mainWindow.bEnabled);
        QVERIFY(session().CheckFaxTimer().IsEnabled());
        const QStringList tips = desktop().notifier.aTips;
        QVERIFY(tips.isEmpty() || tips.constLast() == "Velmar Clinet");
        bench.reset();
    }

    void listGivesTheFaxesOfItsLines()
    {
        // Lines with "|" for the byte between two fields, and what they give: id:size:kind.
        const QList<std::pair<QByteArray, QString>> lists{
            {"", ""},
            {"OK#", ""},
            {"OK#A|10#B|20|9#C|30|4#", "A:10:0 B:20:9 C:30:4"},
            {"OK#A|10|4|more than three#", "A:10:0"},
            {"OK#A|10#short#C|30#", "A:10:0"},
            {"OK#../A|1#A'B|1#|1#A/B|1#A.tif|1#OK1|1#", "OK1:1:0"}, // ids that are no safe file names
            {"OK#" + QByteArray(65, 'A') + "|1#", ""},
            {"OK#A|ten|nine#B|-5#C|99999999999#", "A:0:0 B:-5:0 C:2147483647:0"},
            {"OK#A|1", ""}, // no empty tail: the last line is taken for it
        };
        for (auto [reply, expected] : lists) {
            QStringList faxes;
            for (const NewFaxItem &item : FaxListReply::Parse(reply.replace('|', '\0').replace("#", "\r\n")))
                faxes.append(QString("%1:%2:%3").arg(item.FaxID).arg(item.Size).arg(item.Kind));
            QCOMPARE(faxes.join(' '), expected);
        }
    }

    void idsAreQuotedAndEscaped()
    {
        QCOMPARE(FaxReply::QuotedIds("a;b", 0), QString("'a','b'"));
        QCOMPARE(FaxReply::QuotedIds(";Ua;;Ub;U", 1), QString("'a','b'"));
        QCOMPARE(FaxReply::QuotedIds("", 0), QString());
        QCOMPARE(FaxReply::QuotedIds("a') or ('1", 0), QString("'a~$@~) or (~$@~1'"));
    }

    void namesThatLeaveTheFolderAreRefused()
    {
        QVERIFY(FaxReply::IsBareName("Fax 1.tif"));
        for (const QString name : {"", ".", "..", "../x.tif", "a/b", "a\\b", "a,b", "a'b", "a\nb"})
            QVERIFY2(!FaxReply::IsBareName(name), qPrintable(name));
    }

    void newFaxIsStored()
    {
        Profile::Execute("Insert Into Contacts(ID,Name,Fax) Values('c1','Ann','555-1'),('c2','','555-2')");
        Profile::Execute("Insert Into UserList(ID,LoginName,UserName) "
                         "Values('u1','bert','Bert~$@~s'),('u2','carl','')");
        QVERIFY(WriteTestFile(Global().strInputBoxPath + "F1.tif", "left by a crash, longer than the fax"));
        QByteArrayList fields = FaxFields("F1");
        fields[0] = "O'Neil";
        fields[7] = "c2;c1;x'y";
        fields[8] = "Uu2;Uu1;";
        fields[9] = "D'Arcy";
        fields[10] = "u1";
        Offer({"F1|9"});
        bench->SendFax(fields, "fax bytes").SayShort("OK");
        Receive();
        QCOMPARE(bench->Heard(), QStringList({"6", "7 9 F1", "GoOn", "GoOn", "GoOn", "17"}));
        QCOMPARE(ReadTestFile(Global().strInputBoxPath + "F1.tif"), QByteArray("fax bytes"));
        QCOMPARE(
            Profile::Values("Select Fax_ID||'|'||Sender||'|'||Title||'|'||FileName||'|'||Pages||'|'||"
                            "FaxLevel||'|'||Remark||'|'||receiveTime||'|'||ReceiveUser||'|'||Resender||'|'||"
                            "FolderID||'|'||RecyleID||'|'||isreaded||'|'||IsSendedReceipt||'|'||"
                            "ReturnReceipts From ReceiveFax"),
            QStringList("F1|O~$@~Neil|Offer|F1.tif|2|1|a remark|2024-01-31 09:00:00|555-2(555-2);"
                        "Ann(555-1);carl[carl];Bert~$@~s[bert];D~$@~Arcy|Bert~$@~s(bert)|1001||0|False|"));
        QCOMPARE(bench->progress.ButtonTag(), QString("Close"));
        QCOMPARE(bench->progress.Bar(), 100);
        QCOMPARE(desktop().mainWindow.aTotalPercents, QList<int>({56, 100, -1}));
    }

    void faxIsWrittenThroughBeforeItsRowAndTheFolderBeforeTheAcknowledgement()
    {
        Offer({"F1|9"});
        Send("F1");
        bench->Then([] { QCOMPARE(aFlushed, QStringList({"F1.tif 0", "InputBox 1"})); }).SayShort("OK");
        Receive();
        QVERIFY(IsAcknowledged());
        bench->ForgetHeard();
        lDiskError = EIO;
        Offer({"F2|9"});
        Send("F2");
        Receive();
        QCOMPARE(Profile::Values("Select Fax_ID From ReceiveFax"), QStringList("F1"));
        QCOMPARE(bench->ports.prompts.aBoxes.size(), 1);
        QVERIFY(!IsAcknowledged());
    }

    void historyPutsEachKindInItsPlace()
    {
        const QByteArrayList offer{"F1|9|9", "F2|9|3", "F3|9|4", "F4|9|2"};
        Offer(offer);
        for (const char *id : {"F1", "F2", "F3", "F4"})
            Send(id);
        bench->SayShort("OK");
        Receive(false, true);
        QCOMPARE(Profile::Values("Select Fax_ID||' '||FolderID From ReceiveFax"), QStringList("F1 1001"));
        QCOMPARE(Profile::Values("Select Fax_ID||' '||FolderID||' '||ModifyTime From SendFax"),
                 (QStringList{"F2 1005 24-01-31", "F3 1006 24-01-31", "F4 1007 24-01-31"}));
        QCOMPARE(ReadTestFile(Global().strInputBoxPath + "F1.tif"), QByteArray("fax bytes"));
        QCOMPARE(ReadTestFile(Global().strOutputBoxPath + "F2.tif"), QByteArray("fax bytes"));
        Offer(offer);
        bench->SayShort("OK");
        Receive(false, true);
        QCOMPARE(States(), QString("InputBox/F1 Exists, Outputbox/F2 Exists, Outputbox/F3 Exists, "
                                   "Outputbox/F4 Exists"));
    }

    // The file would come next, on a connection that nobody reads.
    void announcementWithoutFieldsIsNotFollowedByAnything()
    {
        Offer({"F1|9", "F2|9"});
        bench->SayLong(QByteArray(3000, 'x')).AcceptConnection();
        Send("F2");
        Receive();
        QCOMPARE(States(), QString("InputBox/F1 Failed, InputBox/F2 Completed"));
        QCOMPARE(Profile::Values("Select Fax_ID From ReceiveFax"), QStringList("F2"));
        QVERIFY(!IsAcknowledged());
        QCOMPARE(bench->Socket().lConnects, 1);
    }

    void endOfTheProgramEndsTheRun()
    {
        Offer({"F1|9", "F2|9"});
        bench->SayLong("OK\r\n" + FaxFields("F1").join('\0') + "\r\n").Say(Frames::Long(9) + "fax");
        bench->Then([this] { bench->ports.pump.Quit(); });
        Receive();
        QCOMPARE(States(), QString("InputBox/F1 Failed, InputBox/F2 Disconnected"));
        QVERIFY(Profile::Values("Select Fax_ID From ReceiveFax").isEmpty() && !IsAcknowledged());
    }

    void errorIsToldOnceAndKeepsWhatCameBefore()
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

    void lateCancelStillEndsTheRun()
    {
        bench->Server([this](FakeSocket &socket) { // the click comes in the same turn as the list
            socket.FeedLong(QByteArray("OK\r\nF1\0009\r\n", 10));
            bench->progress.ClickCancelOperate();
        });
        Receive();
        QCOMPARE(bench->progress.Text(), QString("User abort."));
        QVERIFY(bench->status.aChecks.isEmpty() && !IsAcknowledged());
        QVERIFY(bench->progress.Bar() == 100 && bench->progress.ButtonTag() == "Close");
    }

    void silentRunWithAHiddenWindowNotifies()
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

    void runStaysTheOwnerUntilItsLastCommand()
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

    void receivedFaxesArePrinted()
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

private:
    void Receive(bool silent = false, bool history = false)
    {
        if (history)
            session().BeginCommand(pndFaxList).GetHistoryList("range");
        bench->download.ReceiveFaxes(silent, history, true, true);
    }
    /// The server offers these faxes: "F1|100" or, in a history, "F1|100|9".
    void Offer(const QByteArrayList &lines)
    {
        QByteArray text = "OK\r\n";
        for (const QByteArray &line : lines)
            text += QByteArray(line).replace('|', '\0') + "\r\n";
        bench->SayLong(text);
    }

    void Send(const QByteArray &id) { bench->SendFax(FaxFields(id), "fax bytes"); }
    QString States() const
    {
        QStringList states;
        for (const ProgressRow &row : bench->progress.Rows())
            states.append(row.strFile.chopped(4) + ' ' + row.strState);
        return states.join(", ");
    }

    bool IsAcknowledged() { return bench->Heard().contains("17"); }
    Session &session() { return bench->session; }
    FakeDesktop &desktop() { return bench->desktop; }

    std::optional<SessionBench> bench;
};

QTEST_GUILESS_MAIN(tst_FaxDownload)
#include "tst_FaxDownload.moc"
