#include "core/Globals.h"
#include "fixtures/SessionBench.h"
#include "fixtures/TestTable.h"
#include "server/FaxInfo.h"
#include "server/FaxUpload.h"
#include "server/RunScope.h"
#include "server/wire/Frames.h"

#include <QDir>

#include <optional>

namespace {
const QString A(32, 'A'), B(32, 'B'), C(32, 'C'), D(32, 'D'), E(32, 'E');
constexpr qsizetype lBlock = 2048000;

struct Bench : SessionBench
{
    FaxUpload upload{ports.ports, {session, progress, status, desktop.mainWindow, desktop.mailbox}};

    Bench &Drain()
    {
        return Server([](FakeSocket &socket) { socket.DrainSends(); }), *this;
    }
    /// The server takes the header, then the file, of one block.
    Bench &TakeFile()
    {
        Drain().SayShort("OK");
        return Drain();
    }
};
using Action = std::function<void(Bench &)>;

Action Answer(const QString &text)
{
    return [text](Bench &bench) { bench.TakeFile().SayShort(text.toLatin1()); };
}
} // namespace
Q_DECLARE_METATYPE(Action)

class tst_FaxUpload : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        bench.emplace();
        bench->session.SetIdleState(true);
    }

    /// Whatever happened, a run leaves the program as it found it.
    void cleanup()
    {
        QVERIFY(!bench->ports.pump.IsStuck());
        QVERIFY(!bench->session.bIsSocketBusy && bench->session.lPendingCommand == pndNone);
        QVERIFY(bench->desktop.mainWindow.bEnabled && bench->session.CheckFaxTimer().IsEnabled());
        QVERIFY(!bench->progress.IsVisible() || bench->progress.ButtonTag() == "Close");
        bench.reset();
    }

    void fieldsOfAFax_data()
    {
        const TestTable<QString, QString, QString, QString, QString> row{"timing", "sent", "isDontRetry",
                                                                         "retries", "sender"};
        const QString now = "2024-01-31 09:30:00";
        row("at once, the server's retries", "-1", now, "False", "0 0", "u1");
        row("past, own retries", "2024-01-31\r\n09:29\r\n", now, "True", "3 10", "u1");
        row("tomorrow", "2024-02-01\r\n09:29\r\n", "2024-02-01 09:29:00", "-1", "3 10", "u1");
        row("nothing, sender of the row", "", now, "", "0 0", "u9");
    }

    void fieldsOfAFax()
    {
        QFETCH(QString, timing);
        QFETCH(QString, isDontRetry);
        QFETCH(QString, sender);
        OutgoingFax fax;
        fax.OuterReceiver = "c1;", fax.InnerReceiver = "Bert[u2];", fax.TempReceiver = "<555>;";
        fax.Title = "O~$@~Neil";
        fax.FileName = "A.tif", fax.Pages = "2", fax.FaxLevel = "1", fax.ReMark = "note";
        fax.timingSend = timing, fax.isDontRetry = isDontRetry;
        fax.resendTimes = "-3", fax.reTryInterval = "10";
        fax.originalSender = sender == "u1" ? "" : sender;
        const QStringList fields = FaxInfo(fax, bench->ports.clock.now, "u1").split(QChar(0));
        QCOMPARE(fields.mid(0, 6).join('|'), QString("c1;|O~$@~Neil|A.tif|2|1|note"));
        QTEST(fields.value(6), "sent");
        QCOMPARE(fields.value(7), QString("Bert[u2];<555>;"));
        QTEST(fields.mid(8, 2).join(' '), "retries");
        QTEST(fields.mid(10).join('|'), "sender");
    }

    void whatBecomesOfAFax_data()
    {
        // The row: id, folder, result, and the id under which the server may have it without our knowing.
        const TestTable<Action, QString, QString, QString> row{"server", "state", "row", "text"};
        const auto is = [](const QString &id, const char *rest) { return QString(id + ' ' + rest); };
        const QString sent = "Completed", done = "Completed.", lost = "Disconnected";
        const QString sending = is(A, "1005 Sending ") + A, waits = is(A, "1003  "), doubt = waits + A;
        const QString away = "Failed to connect to Velmar Server.", cancelled = "Abort by user...";
        row("new id", Answer(B), sent, is(B, "1005 Sending "), done);
        row("its own id", Answer(A), sent, is(A, "1005 Sending "), done);
        row("31 characters", Answer(B.left(31)), sent, sending, done);
        row("refusal", Answer("ERR\r\n23\r\n"), sent, sending, done);
        row(
            "silence", [](Bench &at) { at.TakeFile(); }, sent, sending, done);
        row("no file name", Answer("../" + B.left(29)), sent, sending, done);
        row("another fax's id", Answer(C), sent, sending, done);
        row(
            "the id after something else",
            [](Bench &at) { at.TakeFile().SayShort("?").SayShort(B.toLatin1()); }, sent,
            is(B, "1005 Sending "), done);
        row(
            "lost behind the answer", [](Bench &at) { Answer(B)(at), at.Close(); }, sent,
            is(B, "1005 Sending "), done);
        row(
            "lost before the answer", [](Bench &at) { at.TakeFile().Close(); }, lost, doubt, away);
        row(
            "cancelled before the answer",
            [](Bench &at) { at.TakeFile().Then([&at] { at.progress.ClickCancelOperate(); }); }, "Canceled",
            doubt, cancelled);
        row(
            "the program ends", [](Bench &at) { at.TakeFile().Then([&at] { at.ports.pump.Quit(); }); }, lost,
            doubt, away);
        row(
            "lost before the file", [](Bench &at) { at.Drain().Close(); }, lost, waits, away);
        // Nothing of the file has gone: this is not its answer.
        row(
            "id to the header", [](Bench &at) { at.Drain().SayShort(B.toLatin1()).Close(); }, lost, doubt,
            away);
        row(
            "file that does not leave", [](Bench &at) { at.Drain().SayShort("OK"); }, "Failed", doubt, done);
        row(
            "file that vanishes",
            [](Bench &at) {
                at.Drain().Server([](FakeSocket &socket) {
                    QFile::remove(Global().strOutputBoxPath + A + ".tif");
                    socket.FeedShort("OK");
                });
            },
            "Failed", waits, done);
    }

    void whatBecomesOfAFax()
    {
        QFETCH(Action, server);
        AddFax(A);
        bench->profile.InsertSentFax(C, {{"folderID", "1006"}, {"result", "Sucessfully"}});
        server(*bench);
        const bool result = Send();
        QVERIFY(result);
        QTEST(States(), "state");
        QTEST(RowsBut(C), "row");
        QTEST(bench->progress.Text(), "text");
        const QString id = RowsBut(C).left(32);
        if (QByteArray(QTest::currentDataTag()) != "file that vanishes")
            QCOMPARE(Files(), QStringList(id + ".tif " + A));
        QCOMPARE(bench->ports.prompts.Texts(), QStringList());
    }

    void severalFaxes()
    {
        for (const QString &id : {A, B, C})
            AddFax(id);
        QVERIFY(QFile::remove(Global().strOutputBoxPath + B + ".tif"));
        bench->desktop.mailbox.strFolder = "1003";
        bench->TakeFile().SayShort(D.toLatin1());
        bench->TakeFile().SayShort(E.toLatin1());
        QVERIFY(Send());
        QCOMPARE(States(), QString("Completed Failed Completed"));
        QCOMPARE(Profile::Values("Select FileName||' '||SendTime From SendFax Order By FileName"),
                 QStringList({B + ".tif 2024-01-31 09:00:00", D + ".tif 2024-01-31 09:30:00",
                              E + ".tif 2024-01-31 09:30:00"}));
        QCOMPARE(Files(), QStringList({D + ".tif " + A, E + ".tif " + C}));
        QCOMPARE(Profile::Value("Select Count(*) From SendFax Where sSndReserve1<>''"), QString("0"));
        QCOMPARE(bench->desktop.mailbox.aCalls,
                 QStringList({"drop row", "drop row", "saved 3 old ", "saved 2 new "}));
        QCOMPARE(bench->status.aChecks, QList<bool>{true});
        QCOMPARE(bench->desktop.mainWindow.aTotalPercents, QList<int>({33, 100, -1}));
    }

    void answerThatComesLateIsNotTheNextFaxs()
    {
        AddFax(A);
        AddFax(C);
        bench->TakeFile().Silence(6000);
        bench->Server(
            [](FakeSocket &socket) { socket.Feed(Frames::Long(32) + B.toLatin1()); }); // nobody hears it
        bench->AcceptConnection();
        bench->TakeFile().SayShort(B.toLatin1());
        QVERIFY(Send());
        QCOMPARE(RowsBut(B), A + " 1005 Sending " + A);
        QCOMPARE(Files(), QStringList({A + ".tif " + A, B + ".tif " + C}));
    }

    void doubtfulFaxGoesOnlyWhenTheUserSaysSo()
    {
        AddFax(A, {{"title", "O~$@~Neil"}, {"sSndReserve1", A}});
        for (const long answer : {mbAnswerNo, mbAnswerOK, mbAnswerYes}) {
            QCOMPARE(RowsBut(""), A + " 1003  " + A);
            bench->ports.prompts.aAnswers = {answer};
            if (answer == mbAnswerYes)
                bench->TakeFile().SayShort(B.toLatin1());
            QVERIFY(Send());
            QVERIFY(bench->ports.prompts.Texts().constLast().contains("O'Neil"));
        }
        QCOMPARE(RowsBut(""), B + " 1005 Sending ");
        QCOMPARE(bench->ports.prompts.aBoxes.size(), 3);
    }

    /// Killed between the server's answer and the row, and between the row and the end of the old name.
    void whatAKilledRunHasLeftIsCompleted()
    {
        const auto path = [](const QString &id) { return Global().strOutputBoxPath + id + ".tif"; };
        AddFax(A, {{"sSndReserve1", A}});
        const QString F(32, 'F');
        QVERIFY(link(qPrintable(path(A)), qPrintable(path(B))) == 0);
        AddFax(D, {{"sSndReserve1", C}, {"folderID", "1005"}});
        QVERIFY(link(qPrintable(path(D)), qPrintable(path(C))) == 0);
        AddFax(F, {{"sSndReserve1", E}, {"folderID", "1005"}}); // a file system without second names
        QVERIFY(QFile::rename(path(F), path(E)));
        QVERIFY(Send());
        QCOMPARE(Files(), QStringList({B + ".tif " + A, D + ".tif " + D, F + ".tif " + F}));
        QCOMPARE(Profile::Values("Select Fax_ID||FolderID||sSndReserve1 From SendFax Order By Fax_ID"),
                 QStringList({B + "1005", D + "1005", F + "1005"}));
        QCOMPARE(bench->ports.prompts.aBoxes.size() + bench->Heard().size(), 0);
    }

    void databaseThatRefusesTheAnswerIsCompletedByTheNextRun()
    {
        AddFax(A);
        Profile::Execute("Create Trigger Full Before Update On SendFax When NEW.FolderID='1005' "
                         "Begin Select Raise(Abort,'the disk is full'); End");
        bench->TakeFile().SayShort(B.toLatin1());
        QVERIFY(Send());
        QCOMPARE(States(), QString("Failed"));
        QCOMPARE(bench->ports.prompts.Texts().size(), 1);
        QVERIFY(bench->ports.prompts.Texts().constFirst().contains("the disk is full"));
        Profile::Execute("Drop Trigger Full");
        QVERIFY(Send());
        QCOMPARE(RowsBut(""), B + " 1005 Sending ");
        QCOMPARE(Files(), QStringList(B + ".tif " + A));
    }

    void errorShowsWhatHasGoneBeforeIt()
    {
        AddFax(A);
        AddFax(B);
        Profile::Execute("Create Trigger Full Before Update On SendFax When NEW.FolderID||NEW.Fax_ID='1005" +
                         B + "' Begin Select Raise(Abort,'full'); End");
        bench->desktop.mailbox.strFolder = "1003";
        bench->TakeFile().SayShort(C.toLatin1());
        bench->TakeFile().SayShort(B.toLatin1());
        QVERIFY(!Send());
        QCOMPARE(RowsBut(""), B + " 1003  " + B + '|' + C + " 1005 Sending " + A);
        QCOMPARE(bench->desktop.mailbox.aCalls, QStringList({"drop row", "saved 3 old ", "saved 2 new "}));
        QCOMPARE(bench->ports.prompts.Texts().size(), 1);
    }

    void fileThatCannotBeMarkedDoesNotGo()
    {
        AddFax(A);
        Profile::Execute(
            "Create Trigger Full Before Update On SendFax Begin Select Raise(Abort,'full'); End");
        bench->Drain().SayShort("OK");
        QVERIFY(Send());
        QCOMPARE(bench->Heard().filter(QRegularExpression("^12")), QStringList());
        QCOMPARE(bench->ports.prompts.Texts().size(), 1);
    }

    void filesThatCannotBeSentFail()
    {
        AddFax(A, {{"fileName", A + ".Tif"}});
        QVERIFY(
            QFile::rename(Global().strOutputBoxPath + A + ".tif", Global().strOutputBoxPath + A + ".Tif"));
        AddFax(B);
        QVERIFY(QFile::resize(Global().strOutputBoxPath + B + ".tif", 0));
        AddFax(C);
        QVERIFY(QFile::resize(Global().strOutputBoxPath + C + ".tif", qint64(1) << 31));
        bench->TakeFile().SayShort(D.toLatin1());
        QVERIFY(
            bench->upload.GetSendFaxID(true, A + ';' + B + ';' + C + ';' + "gone;" + A + ';', true, false));
        QCOMPARE(States(), QString("Completed Failed Failed Failed"));
        QVERIFY(QFile::exists(Global().strOutputBoxPath + D + ".tif"));
        QCOMPARE(Profile::Value("Select Count(*) From SendFax Where FolderID='1003'"), QString("2"));
    }

    void refusedFaxKeepsNoOtherBack()
    {
        AddFax(A, {{"title", "O~$@~Neil"}});
        AddFax(B);
        AddFax(C);
        bench->Drain().SayShort("ERR\r\n22\r\n").Silence(8500).AcceptConnection();
        bench->Drain().SayShort("ERR\r\n22\r\n").Close().AcceptConnection();
        bench->TakeFile().SayShort(D.toLatin1());
        QVERIFY(Send());
        QCOMPARE(States(), QString("Failed Failed Completed"));
        QCOMPARE(RowsBut(""), A + " 1003  |" + B + " 1003  |" + D + " 1005 Sending ");
        QCOMPARE(bench->ports.prompts.Texts(),
                 QStringList("The server has not taken this fax, it stays in Outgoing:\n\nO'Neil"));
    }

    void faxThatCostsTheConnectionGoesLast()
    {
        AddFax(A);
        AddFax(B);
        bench->Drain().Close();
        QVERIFY(Send());
        bench->AcceptConnection();
        bench->TakeFile().SayShort(C.toLatin1());
        bench->Drain().Close();
        QVERIFY(Send());
        QCOMPARE(States(), QString("Completed Disconnected"));
        QCOMPARE(RowsBut(""), A + " 1003  |" + C + " 1005 Sending ");
    }

    void cancelBeforeTheFirstFaxIsHeard()
    {
        AddFax(A);
        QObject::connect(&bench->progress, &Progress::Changed, &bench->progress, [this] {
            if (bench->progress.ButtonTag() == "Cancel")
                bench->progress.ClickCancelOperate();
        });
        QVERIFY(Send());
        QCOMPARE(bench->progress.Text() + States(), QString("Abort by user...Canceled"));
        QCOMPARE(RowsBut(""), A + " 1003  ");
    }

    void cancelInTheMiddleOfALargeFile()
    {
        AddFax(B);
        AddFax(A);
        QVERIFY(QFile::resize(Global().strOutputBoxPath + A + ".tif", 3 * lBlock));
        bench->TakeFile().SayShort(D.toLatin1());
        bench->Then([] { QCOMPARE(RowsBut(D), A + " 1003  " + A); }); // marked with the same write
        bench->Drain().SayShort("OK");
        bench->Drain().Then([this] {
            QCOMPARE(States(), QString("Completed Sending"));
            bench->progress.ClickCancelOperate();
        });
        QVERIFY(Send());
        QCOMPARE(States(), QString("Completed Canceled"));
        QCOMPARE(RowsBut(D), A + " 1003  "); // the server cannot have it
        QVERIFY(bench->status.aChecks.isEmpty() && !bench->session.IsConnected());
    }

    void faxSentDuringAnotherRunWaits()
    {
        AddFax(A);
        {
            const RunScope fetch(bench->session);
            QVERIFY(Send() && bench->ports.prompts.aBoxes.isEmpty());
            QVERIFY(bench->upload.GetSendFaxID(true, A + ';', true, true));
        }
        QCOMPARE(bench->ports.prompts.aBoxes.size(), 1);
        QVERIFY(!bench->progress.IsVisible() && bench->Heard().isEmpty());
        QCOMPARE(RowsBut(""), A + " 1003  ");
    }

    void emptyQueue()
    {
        QVERIFY(Send());
        QCOMPARE(bench->progress.Text() + States(), QString("No outgoing faxes ..."));
        QCOMPARE(bench->status.aChecks, QList<bool>{true});
        bench->progress.SetTotal(1); // of another run
        QVERIFY(bench->upload.GetSendFaxID(false, {}, false, false));
        QCOMPARE(bench->progress.Rows(), QList<ProgressRow>({{"imgInfo", "No outgoing faxes ...", ""}}));
    }

    void noConnection()
    {
        AddFax(A);
        bench->Socket().CloseByServer();
        bench->Server([](FakeSocket &socket) { socket.RefuseConnection(); });
        QVERIFY(!Send());
        QCOMPARE(States() + bench->progress.Text(),
                 QString("DisconnectedFailed to connect to Velmar Server."));
        QCOMPARE(RowsBut(""), A + " 1003  ");
    }

private:
    /// A waiting fax whose file holds its id.
    void AddFax(const QString &id, const Profile::Columns &columns = {})
    {
        bench->profile.InsertSentFax(id, columns);
        QVERIFY(WriteTestFile(Global().strOutputBoxPath + id + ".tif", id.toLatin1()));
    }
    bool Send() { return bench->upload.GetSendFaxID(false, {}, true, true); }
    QString States() const
    {
        QStringList states;
        for (const ProgressRow &row : bench->progress.Rows())
            states.append(row.strState);
        return states.join(' ');
    }
    static QString RowsBut(const QString &id)
    {
        return Profile::Values("Select Fax_ID||' '||FolderID||' '||ifnull(Result,'')||' '||"
                               "ifnull(sSndReserve1,'') From SendFax Where Fax_ID<>'" +
                               id + "' Order By Fax_ID")
            .join('|');
    }
    /// The names in the outbox, each with what its file holds.
    static QStringList Files()
    {
        QStringList files;
        for (const QString &name : QDir(Global().strOutputBoxPath).entryList(QDir::Files, QDir::Name))
            files.append(name + ' ' + ReadTestFile(Global().strOutputBoxPath + name));
        return files;
    }

    std::optional<Bench> bench;
};

QTEST_GUILESS_MAIN(tst_FaxUpload)
#include "tst_FaxUpload.moc"
