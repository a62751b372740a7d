#include "fakes/WireDialogue.h"
#include "fixtures/TestTable.h"

#include <functional>
#include <limits>
#include <random>

namespace {
using Ask = std::function<void(WireDialogue &)>;

/// First read of a long reply.
QByteArray First(qint32 declared, const QByteArray &text)
{
    return Frames::Long(declared) + text;
}

QByteArray Text(qsizetype size, char letter = 'x')
{
    return QByteArray(size, letter);
}

auto LogIn(const QString &user, QString password, bool alreadyDigested)
{
    return [=](clsClient &client) mutable { client.LogIn(user, password, alreadyDigested); };
}

/// The server's side of one round.
class Liar
{
public:
    explicit Liar(quint32 seed)
        : random(seed)
    {
    }

    int Number(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random); }
    bool OneIn(int chances) { return Number(1, chances) == 1; }
    QByteArray Rubbish(int size)
    {
        QByteArray bytes(size, '\0');
        for (char &byte : bytes)
            byte = static_cast<char>(Number(0, 255));
        return bytes;
    }
    /// A length that may be wrong, and a text, with a byte or two of it changed.
    QByteArray Frame()
    {
        static const QByteArray starts[] = {"OK\r\n", "ERR\r\n5\r\n", "", "E", "\0\0\0\0"};
        const QByteArray text = starts[Number(0, 4)] + Rubbish(OneIn(3) ? Number(2000, 6000) : Number(0, 60));
        const auto size = static_cast<qint32>(text.size());
        using Limits = std::numeric_limits<qint32>;
        const qint32 lies[] = {size - 1,      size + 1,     0, -1, 2044, 2045, 1 << 28, (1 << 28) + 1,
                               Limits::min(), Limits::max()};
        QByteArray bytes = First(OneIn(2) ? size : lies[Number(0, 9)], text);
        while (OneIn(2))
            bytes[Number(0, static_cast<int>(bytes.size()) - 1)] = static_cast<char>(Number(0, 255));
        return OneIn(4) ? bytes.first(Number(0, static_cast<int>(bytes.size()))) : bytes;
    }
    /// Up to four frames or rubbish, in reads of random sizes.
    QByteArrayList Reads()
    {
        QByteArray stream;
        for (int i = Number(1, 4); i > 0; --i)
            stream += OneIn(5) ? Rubbish(Number(0, 3000)) : Frame();
        QByteArrayList reads;
        while (!stream.isEmpty()) {
            const int left = static_cast<int>(stream.size());
            reads.append(stream.first(OneIn(2) ? left : Number(1, OneIn(3) ? qMin(8, left) : left)));
            stream.remove(0, reads.last().size());
        }
        return reads;
    }

private:
    std::mt19937 random;
};
} // namespace

/// The bytes that the server gets, and replies put together from reads.
class tst_clsClient : public QObject
{
    Q_OBJECT

private slots:
    /// Written out: both ends of the protocol are held against them.
    void everyCommandHasItsGoldenBytes()
    {
        const QByteArray abc = "3930303135303938334344323446423044363936334637443238453137463732"; // digest
        const QByteArray empty = "4434314438434439384630304232303445393830303939384543463834323745";
        const QString nul(QChar(u'\0')), file = QCoreApplication::applicationFilePath();
        const std::pair<std::function<void(clsClient &)>, QByteArray> commands[] = {
            {LogIn("Zoë", "abc", false), "01000000 5a6feb 0d0a" + abc},
            {LogIn("u", "0F", true), "01000000 75 0d0a 3046"},
            {&clsClient::LogOut, "02000000"},
            {&clsClient::GetContactVersion, "03000000"},
            {&clsClient::GetPublicContactGroup, "04000000"},
            {&clsClient::GetPublicContacts, "05000000"},
            {&clsClient::GetNewFaxList, "06000000"},
            {[](auto &c) { c.GetFax(70000, "A1", "/x/"); }, "07000000 3730303030 00 4131"},
            {[=](auto &c) { c.SendFaxFile("1;" + nul + "t€", file); }, "08000000 05000000 313b007480"},
            {[=](auto &c) { c.GetFaxState("A" + nul + "B"); }, "09000000 03000000 410042"},
            {[](auto &c) { c.GetHistoryList("2024-01-01"); }, "0a000000 323032342d30312d3031"},
            {[](auto &c) { c.ChangePassword("u", "", "abc"); }, "0b000000 75 00" + empty + "00" + abc},
            {&clsClient::GetUserList, "0d000000"},
            {&clsClient::GetDepartmentList, "0e000000"},
            {[](auto &c) { c.CancelSendingFax("A;B;"); }, "0f000000 04000000 413b423b"},
            {[](auto &c) { c.ResendErrorFax("A;"); }, "10000000 02000000 413b"},
            {&clsClient::NewFaxReceived, "11000000"},
            {&clsClient::GetFaxConfigAndKeepTouckTime, "12000000"},
            {[](auto &c) { c.SendReturnReceipt("A;"); }, "13000000 02000000 413b"},
            {[](auto &c) { c.GetReturnReceiptState("A;"); }, "14000000 02000000 413b"},
        };
        for (const auto &[command, hex] : commands) {
            WireDialogue wire;
            command(*wire.client);
            QCOMPARE(wire.socket.aWrites, QByteArrayList{QByteArray::fromHex(hex)});
        }
        QCOMPARE(Frames::FormC(0x01020304, "xyz"), QByteArray("\x0c\0\0\0\x04\x03\x02\x01xyz", 11));
    }

    void whatIsEmptyOrUnsafeSendsNothing()
    {
        WireDialogue wire;
        wire.client->GetFaxState({});
        wire.client->SendReturnReceipt({});
        wire.client->SendFaxFile({}, QCoreApplication::applicationFilePath());
        wire.client->SendFaxFile("h", wire.Path("missing.tif"));
        wire.client->GetFax(0, "../evil", wire.Folder());
        wire.client->GetFax(0, {}, wire.Folder());
        wire.client->GetFax(0, "A1", {});
        QVERIFY(wire.socket.aWrites.isEmpty());
        QVERIFY(wire.IsIdle());
    }

    void readsBecomeReplies_data()
    {
        // What is told: see WireDialogue::Told
        const TestTable<bool, QByteArrayList, QStringList, QByteArray> row{"isLong", "reads", "told", "sent"};
        row("short; its four bytes are not read", false, {"\xff\xff\xff\xffOK\r\n7"}, {"0 0% -1/-1 OK\r\n7"},
            "");
        row("short in two reads", false, {"....OK\r", "\n7\r\n"}, {"0 0% -1/-1 OK\r", "0 0% -1/-1 "}, "");
        row("long of one read", true, {First(2044, Text(2044))}, {"4 100% -1/-1 [2044 x x]"}, "");
        row("long above the limit", true, {First(2045, Text(2045))},
            {"3 100% 2045/2045 [2045 x x]", "4 100% 2045/2045 [2045 x x]"}, "GoOn");
        row("long in parts", true, {First(4000, Text(500, 'a')), Text(1000, 'b'), Text(2500, 'c')},
            {"3 12% 500/4000 [500 a a]", "3 38% 1500/4000 [1500 a b]", "4 100% 4000/4000 [4000 a c]"},
            "GoOnGoOn");
        row("refused long one", true, {First(6, "ERR\r\n5")}, {"1 100% 6/-1 ERR\r\n5"}, "");
        row("more than declared below the limit", true, {First(2, "OK\r\n")}, {"4 100% -1/-1 OK\r\n"}, "");
        row("more in the first read", true, {First(3000, Text(3001))}, {"1 0% -1/-1 "}, "");
        row("more in a later read", true, {First(3000, Text(2999)), "yz"},
            {"3 100% 2999/3000 [2999 x x]", "1 0% -1/-1 "}, "GoOn");
        row("negative length", true, {First(-1, "OK\r\n")}, {"1 0% -1/-1 "}, "");
        row("length over the bound", true, {First(256 * 1024 * 1024 + 1, "OK\r\n")}, {"1 0% -1/-1 "}, "");
    }

    void readsBecomeReplies()
    {
        QFETCH(bool, isLong);
        QFETCH(QByteArrayList, reads);
        WireDialogue wire;
        isLong ? wire.client->GetUserList() : wire.client->GetContactVersion();
        wire.Sent();
        for (const QByteArray &read : reads)
            wire.socket.Feed(read);
        QTEST(wire.Told(), "told");
        QTEST(wire.Sent(), "sent");
        QVERIFY(wire.IsIdle());
    }

    void cutReplyWaitsForItsRestForASecond()
    {
        WireDialogue wire;
        wire.client->GetUserList();
        const QByteArray frame = First(1500, Text(1500));
        wire.socket.Feed(frame.first(3));
        wire.ports.timers.Advance(900);
        wire.socket.Feed(frame.sliced(3, 1400));
        wire.ports.timers.Advance(900); // the second counts from the latest byte
        QVERIFY(wire.aReplies.isEmpty());
        wire.socket.Feed(frame.sliced(1403));
        wire.ports.timers.Advance(5000);
        QCOMPARE(wire.Told(), QStringList{"4 100% -1/-1 [1500 x x]"});

        wire.client->GetUserList();
        wire.socket.Feed(First(100, "OK\r\nhalf"));
        wire.ports.timers.Advance(1000);
        wire.socket.Feed("late rest"); // is taken as a reply of its own
        QCOMPARE(wire.Told(), QStringList({"4 100% -1/-1 OK\r\nhalf", "0 0% -1/-1  rest"}));
    }

    void ownerMayDestroyTheClientInAnyEvent()
    {
        for (const QByteArray &read :
             {First(4000, Text(500)), First(4000, Text(4000)), First(3, "ERR"), First(4000, Text(4001))}) {
            WireDialogue wire;
            connect(wire.client.get(), &clsClient::DataArrival, [&] { wire.client.reset(); });
            wire.client->GetUserList();
            wire.socket.Feed(read);
            QCOMPARE(wire.aReplies.size(), 1);
            QVERIFY(!wire.ports.sockets.Last());
        }
    }

    void cancelInsideAPartSendsNoGoOn()
    {
        WireDialogue wire;
        connect(wire.client.get(), &clsClient::DataArrival, [&] {
            wire.client->Cancel();
            wire.Reconnect();
        });
        wire.client->GetUserList();
        wire.Sent();
        wire.socket.Feed(First(4000, Text(4000)));
        QCOMPARE(wire.Sent(), QByteArray());
        QVERIFY(wire.aReplies.isEmpty()); // nothing more came after the reconnection
    }

    /// A server that lies, stutters and sends rubbish. Whatever comes, in whatever cuts: no crash, no endless
    /// wait, no more memory than what came, no file but the one asked for, and the next connection works.
    void rubbishHurtsNoReader()
    {
        const Ask asks[] = {[](auto &wire) { wire.client->GetContactVersion(); },
                            [](auto &wire) { wire.client->GetUserList(); },
                            [](auto &wire) { wire.client->GetFax(0, "A1", wire.Folder()); },
                            [](auto &wire) { wire.BeginDownload("A1"); },
                            [](auto &wire) { wire.client->SendFaxFile("header", wire.Path("out.tif")); }};
        WireDialogue wire;
        wire.MakeFile("out.tif", "fax");
        qsizetype largest = 0;
        connect(wire.client.get(), &clsClient::DataArrival,
                [&](const ClientReply &reply) { largest = qMax(largest, reply.abData.capacity()); });
        for (quint32 seed = 0; seed < 15000; ++seed) {
            Liar server(seed);
            qint64 fed = 0;
            largest = 0;
            asks[seed % 5](wire);
            const QByteArrayList reads = server.Reads();
            for (const QByteArray &read : reads) {
                fed += read.size();
                wire.socket.Feed(read);
                if (server.OneIn(4))
                    wire.socket.DrainSends(); // may wait for the answer to a header
                if (server.OneIn(4))
                    wire.ports.timers.Advance(server.Number(0, 1200));
            }
            // What is declared takes no memory, only what has come; buffers may double.
            QVERIFY2(largest <= 2 * fed + 1000, qPrintable(QString("seed %1").arg(seed)));
            QVERIFY(!wire.ports.pump.IsStuck());
            server.OneIn(2) ? wire.client->Cancel() : wire.socket.Fail(Socket::sckConnectionReset);
            wire.Reconnect();
            QVERIFY2(wire.IsIdle(), qPrintable(QString("seed %1").arg(seed)));
            wire.aErrors.clear();
            wire.Sent();
        }
        for (const QString &name : QDir(wire.dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot))
            QVERIFY2(name == "A1.tif" || name == "out.tif", qPrintable(name));
    }
};

QTEST_GUILESS_MAIN(tst_clsClient)
#include "tst_clsClient.moc"
