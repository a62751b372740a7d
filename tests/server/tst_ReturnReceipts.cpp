#include "core/formats/ReceiptStates.h"
#include "core/ports/Timer.h"
#include "fixtures/SessionBench.h"
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
    void init()
    {
        bench.emplace();
        lAnswers = 0;
    }

    void cleanup()
    {
        QVERIFY(!bench->ports.pump.IsStuck());
        QVERIFY(!bench->session.bIsSocketBusy && !bench->desktop.mainWindow.bBusyPointer);
        bench.reset();
    }

    void firstReaderIsTheEarliest_data()
    {
        QTest::addColumn<QString>("receivers");
        QTest::addColumn<QString>("receipts");
        QTest::addColumn<QString>("reader");
        QTest::addColumn<QString>("read"); // recipients who count as having read
        const auto row = [](const char *tag, const char *receivers, const char *receipts, const char *reader,
                            const char *read) {
            QTest::newRow(tag) << receivers << receipts << reader << read;
        };
        row("nobody", "Ann;Bert;", ",0;,0;", "", "");
        row("later in the list", "Ann;Bert;Carl;", "2024-02-01 08:00:00,1;2024-01-31 17:30:00,1;,0;", "Bert",
            "Ann Bert");
        row("same time", "Ann;Bert;Carl;", ",0;1/31/2024 5:30 PM,1;2024-01-31 17:30:00,1;", "Bert",
            "Bert Carl");
        row("time of an unread entry", "Ann;Bert;", "2024-01-31,0;,1;", "Ann", "Bert");
        row("three parts", "Ann;Bert;", "2024-01-30,1,1;2024-01-31,1;", "Bert", "Bert");
        row("no date", "Ann;Bert;", "2024-01-31,1;yesterday,1;", "", "Ann Bert");
        row("apostrophe", "O~$@~Hara;", "2024-01-31,1;", "O'Hara", "O'Hara");
        row("more receipts", "Ann;", "2024-01-31,1;,0;", "", "");
        row("more recipients", "Ann;Bert;", "2024-01-31,1;", "", "");
        row("no tail", "Ann;Bert", "2024-01-31,1;2024-01-30,1", "Ann", "Ann");
    }
    void firstReaderIsTheEarliest()
    {
        QFETCH(const QString, receivers);
        QFETCH(const QString, receipts);
        const QList<ReceiptState> states = ReceiptStates::Parse(receivers, receipts);
        QTEST(ReceiptStates::FindFirstReader(states), "reader");
        QStringList read;
        for (const ReceiptState &state : states) {
            if (state.bRead)
                read.append(state.strReceiver);
        }
        QTEST(read.join(' '), "read");
    }

    void answerDecidesWhatLeavesTheQueue_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("left");
        QTest::newRow("all") << QByteArray("OK\r\nA;B;C;\r\n") << "";
        QTest::newRow("no tail") << QByteArray("OK\r\nA;B") << "C";
        QTest::newRow("none") << QByteArray("OK\r\n") << "A B C";
        QTest::newRow("hostile") << QByteArray("OK\r\nA') or ('1'='1;B;;\r\n") << "A C";
        QTest::newRow("refused") << QByteArray("ERR\r\n22\r\n") << "";
    }
    void answerDecidesWhatLeavesTheQueue()
    {
        QFETCH(const QByteArray, answer);
        Queue({"A", "B", "it's", "C"});
        bench->SayShort(answer);
        bench->receipts.NotifyReceiptRead();
        QCOMPARE(bench->Heard(), QStringList("19 \6   A;B;C;")); // length and ids
        Profile::Execute("DELETE FROM ReceiptQueue WHERE Fax_ID='it''s'");
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
        AnswerNext("OK\r\nA;\r\n");
        bench->Socket().Connect("127.0.0.1", 8750); // by the run of somebody else
        bench->Socket().AcceptConnection();
        bench->Live(2);
        QVERIFY(Queued().isEmpty());
        QCOMPARE(bench->Heard().size(), 1);
        bench->receipts.NotifyReceiptRead();
        QCOMPARE(bench->Heard().size(), 1); // nothing to tell
    }

    /// The answer has to fit into one read.
    void longQueueLeavesInSeveralRequests()
    {
        QStringList ids;
        for (int i = 0; i < 100; ++i)
            ids.append("F" + QString::number(i));
        Queue(ids);
        for (const int first : {0, 40, 80})
            AnswerNext("OK\r\n" + ids.mid(first, 40).join(';').toLatin1() + ";\r\n");
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
        When([this] { return bench->Socket().lConnects > 0; },
             [this] { bench->AcceptConnection().SayShort("OK\r\nA;B;\r\n"); });
        bench->Live(2);
        QVERIFY(Queued().isEmpty());
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
        QTest::addColumn<QByteArray>("answer");
        QTest::newRow("no status") << QByteArray("Sorry\r\nA\1,1;\r\n");
        QTest::newRow("status only") << QByteArray("OK");
        QTest::newRow("second row fails") << QByteArray("OK\r\nA\1,1;\r\nB\1,1;\r\n");
    }
    void badStatesChangeNothing()
    {
        QFETCH(const QByteArray, answer);
        Fax("A", "Ann;", ",0;");
        Fax("B", "Ann;", ",0;");
        Profile::Execute("CREATE TRIGGER Full BEFORE UPDATE ON ReceiveFax WHEN NEW.Fax_ID='B' BEGIN "
                         "SELECT RAISE(ABORT,'full'); END");
        bench->SayLong(answer);
        QCOMPARE(AskForStates(), WaitEnd::Silent);
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
    /// Acts at the first turn of the event loop at which the condition holds.
    void When(const std::function<bool()> &condition, const std::function<void()> &act)
    {
        bench->Then([=, this] { condition() ? act() : When(condition, act); });
    }
    /// The server answers the next request that it hears after those so far.
    void AnswerNext(const QByteArray &text)
    {
        const int request = ++lAnswers;
        When([=, this] { return bench->Heard().size() >= request; },
             [=, this] { bench->Socket().FeedShort(text); });
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
    int lAnswers = 0;
};

QTEST_GUILESS_MAIN(tst_ReturnReceipts)
#include "tst_ReturnReceipts.moc"
