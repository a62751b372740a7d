#include "core/formats/ReceiptStates.h"
#include "core/ports/Timer.h"
#include "fixtures/SessionBench.h"
#include "fixtures/TestTable.h"
#include "server/ReturnReceipts.h"

#include <QTest>

#include <optional>

namespace {

struct Bench : SessionBench
{
    Bench() { session.CheckFaxTimer().SetEnabled(true); }
    ReturnReceipts receipts{ports.ports, session, desktop.mailbox, desktop.mainWindow};
};

} // namespace

class tst_ReturnReceipts : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench.emplace(); }

    void cleanup()
    {
        QVERIFY(!bench->ports.pump.IsStuck());
        QVERIFY(!bench->session.bIsSocketBusy && !bench->desktop.mainWindow.bBusyPointer);
        bench.reset();
    }

    void firstReaderIsTheEarliest_data()
    {
        const TestTable<QString, QString, QString> row({"receivers", "reader", "read"});
        row(",0;,0;", "Ann;Bert;", "", "");
        row("2024-02-01 08:00:00,1;2024-01-31 17:30:00,1;,0;", "Ann;Bert;Carl;", "Bert", "Ann Bert");
        row(",0;1/31/2024 5:30 PM,1;2024-01-31 17:30:00,1;", "Ann;Bert;Carl;", "Bert", "Bert Carl");
        row("2024-01-31,0;,1;", "Ann;Bert;", "Ann", "Bert");
        row("2024-01-30,1,1;2024-01-31,1;", "Ann;Bert;", "Bert", "Bert");
        row("2024-01-31,1;yesterday,1;", "Ann;Bert;", "", "Ann Bert");
        row("2024-01-31,1;,0;", "Ann;", "", "");
        row("2024-01-31,1;", "Ann;Bert;", "", "");
        row("2024-01-31,1;2024-01-30,1", "Ann;Bert", "Ann", "Ann"); // what has no ";" behind it is no entry
    }
    void firstReaderIsTheEarliest()
    {
        QFETCH(const QString, receivers);
        QStringList read;
        const QList<ReceiptState> states = ReceiptStates::Parse(receivers, QTest::currentDataTag());
        for (const ReceiptState &state : states) {
            if (state.bRead)
                read.append(state.strReceiver);
        }
        QTEST(ReceiptStates::FindFirstReader(states), "reader");
        QTEST(read.join(' '), "read");
    }

    void answerDecidesWhatLeavesTheQueue_data()
    {
        const TestTable<QByteArray, QString> row({"answer", "left"});
        row("no tail", "OK\r\nA;B", "it's C");
        row("none", "OK\r\n", "A B it's C");
        row("refusal", "ERR\r\n22\r\n", "");
        row("hostile", "OK\r\nA') or ('1'='1;B;;\r\n", "A it's C");
    }
    void answerDecidesWhatLeavesTheQueue()
    {
        QFETCH(const QByteArray, answer);
        Queue({"A", "B", "it's", "C"});
        bench->SayShort(answer);
        bench->receipts.NotifyReceiptRead();
        QCOMPARE(bench->Heard(), QStringList("19 \6   A;B;C;")); // length and ids
        QTEST(Queued().join(' '), "left");
        bench->Live(3);
        QCOMPARE(bench->Heard().size(), 1); // what was not acknowledged waits for the next reading
    }

    void queueWaitsForAFreeConnection()
    {
        Queue({"A"});
        Session &session = bench->session;
        const std::pair<bool *, bool> obstacles[] = {
            {&session.bIsSocketBusy, true}, {&session.bOnline, false}, {&session.bUserLogout, true}};
        for (const auto &[flag, value] : obstacles) {
            *flag = value;
            bench->receipts.NotifyReceiptRead();
            bench->Live(3);
            QVERIFY(bench->Heard().isEmpty() && Queued().size() == 1);
            *flag = !value;
        }
        bench->Socket().CloseByServer();
        bench->Live(3);
        QVERIFY(bench->Heard().isEmpty()); // and is not connected for this
        Answer(1, "OK\r\nA;\r\n");
        bench->Socket().Connect("127.0.0.1", 8750); // by the run of somebody else
        bench->Socket().AcceptConnection();
        bench->Live(2);
        bench->receipts.NotifyReceiptRead(); // nothing to tell any more
        QCOMPARE(bench->Heard().size(), 1);
    }

    /// The answer has to fit into one read.
    void longQueueLeavesInSeveralRequests()
    {
        QStringList ids;
        for (int i = 0; i < 100; ++i)
            ids.append("F" + QString::number(i));
        Queue(ids);
        for (const int part : {0, 1, 2})
            Answer(part + 1, "OK\r\n" + ids.mid(40 * part, 40).join(';').toLatin1() + ";\r\n");
        bench->receipts.NotifyReceiptRead();
        bench->Live(5);
        QVERIFY(Queued().isEmpty());
        QCOMPARE(bench->Heard().size(), 3);
    }

    void silentServerDoesNotHoldTheReaderUp()
    {
        Queue({"A"});
        bench->Silence(400).Then([this] { QVERIFY(!bench->desktop.mainWindow.bBusyPointer); });
        bench->Silence(200).Then([this] {
            QVERIFY(bench->desktop.mainWindow.bBusyPointer && bench->desktop.mainWindow.bEnabled);
            Queue({"B"});
            bench->receipts.NotifyReceiptRead(); // read meanwhile
        });
        bench->receipts.NotifyReceiptRead();
        QCOMPARE(Queued(), QStringList({"A", "B"}));
        QVERIFY(bench->session.IsOutOfStep());
    }

    void statesAreStoredAndShown()
    {
        Fax("A", "Ann;O~$@~Hara;", ",0;,0;");
        Fax("B", "Ann;Bert;", ",0;,0;");
        Fax("C", "Ann;Bert;", "2024-01-31,1;,0;", "Carl");
        Fax("D", "Ann;Bert;", "2024-01-31,1;,0;"); // read before it was fetched
        Fax("ALL", "Ann;", "2024-01-31,1;");
        bench->SayLong(
            "OK\r\nA\1,0;2024-01-31 09:00:00,1;\r\nB\1'a',0;\r\nC\0012024-01-30,1;2024-01-29,1;\r\n"
            "D\0012024-01-31,1;,0;\r\nALL\1,0;\1\r\nB' or '1\1,0;\r\nALL\r\n");
        QCOMPARE(AskForStates(), WaitEnd::Replied);
        QCOMPARE(bench->Heard(), QStringList("20 \10   A;B;C;D;"));
        QCOMPARE(Profile::Values("SELECT Fax_ID||' '||ReturnReceipts||' '||ifnull(FirstReader,'') FROM "
                                 "ReceiveFax ORDER BY Fax_ID"),
                 QStringList({"A ,0;2024-01-31 09:00:00,1; O~$@~Hara", "ALL 2024-01-31,1; ", "B a,0; ",
                              "C 2024-01-30,1;2024-01-29,1; Carl", "D 2024-01-31,1;,0; Ann"}));
        QCOMPARE(bench->desktop.mailbox.aCalls, QStringList("folder again"));
        bench->SayLong("OK\r\nA\1,0;,0;\r\n");
        QCOMPARE(AskForStates(), WaitEnd::Replied);
        QCOMPARE(bench->desktop.mailbox.aCalls.size(), 1); // no new reader
    }

    void badStatesChangeNothing_data()
    {
        const TestTable<QByteArray, WaitEnd> row({"answer", "end"});
        row("no status", "Sorry\r\nA\1,1;\r\n", WaitEnd::Silent);
        row("second row fails", "OK\r\nA\1,1;\r\nB\1,1;\r\n", WaitEnd::Failed); // at once
    }
    void badStatesChangeNothing()
    {
        QFETCH(const QByteArray, answer);
        Fax("A", "Ann;", ",0;");
        Fax("B", "Ann;", ",0;");
        Profile::Execute("CREATE TRIGGER Full BEFORE UPDATE ON ReceiveFax WHEN NEW.Fax_ID='B' BEGIN "
                         "SELECT RAISE(ABORT,'full'); END");
        bench->SayLong(answer);
        QTEST(AskForStates(), "end");
        QCOMPARE(Profile::Values("SELECT ReturnReceipts FROM ReceiveFax"), QStringList(2, ",0;"));
        QVERIFY(bench->desktop.mailbox.aCalls.isEmpty() && bench->ports.prompts.aBoxes.isEmpty());
    }

private:
    void Queue(const QStringList &ids)
    {
        for (const QString &id : ids)
            bench->profile.InsertRow("ReceiptQueue", {{"Fax_ID", id}, {"FaxType", "2"}});
    }
    QStringList Queued() const { return Profile::Values("SELECT Fax_ID FROM ReceiptQueue"); }
    /// The server answers the request of that number as soon as it has heard it.
    void Answer(int request, const QByteArray &text)
    {
        bench->Then([=, this] {
            if (bench->Heard().size() >= request)
                bench->Socket().FeedShort(text);
            else
                Answer(request, text);
        });
    }
    void Fax(const QString &id, const QString &receivers, const QString &receipts, const QString &reader = {})
    {
        Profile::Columns columns{{"ReceiveUser", receivers}, {"ReturnReceipts", receipts}};
        if (!reader.isEmpty())
            columns.insert("FirstReader", reader);
        bench->profile.InsertReceivedFax(id, columns);
    }
    WaitEnd AskForStates()
    {
        bool sent = false;
        bench->receipts.RequestReceiptStates(sent);
        return sent ? bench->session.WaitForServerReply() : WaitEnd::Closed;
    }

    std::optional<Bench> bench;
};

QTEST_GUILESS_MAIN(tst_ReturnReceipts)
#include "tst_ReturnReceipts.moc"
