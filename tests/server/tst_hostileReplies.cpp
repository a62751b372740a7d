#include "fakes/WireDialogue.h"

#include <QTest>

#include <functional>
#include <limits>
#include <random>

/// A server that lies, stutters and sends rubbish. Whatever comes, in whatever cuts: no crash, no endless
/// wait, no more memory than what came, no file but the one asked for, and the next connection works.
class tst_hostileReplies : public QObject
{
    Q_OBJECT

private slots:
    void rubbishHurtsNoReader_data();
    void rubbishHurtsNoReader();
};

namespace {

constexpr int rounds = 10000;

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
    QByteArray Text()
    {
        static const QByteArray starts[] = {"OK\r\n", "ERR\r\n5\r\n", "", "E", "\0\0\0\0"};
        return starts[Number(0, 4)] + Rubbish(OneIn(3) ? Number(2000, 6000) : Number(0, 60));
    }
    qint32 Length(qsizetype real)
    {
        const auto size = static_cast<qint32>(real);
        const qint32 lies[] = {size - 1,
                               size + 1,
                               0,
                               -1,
                               2044,
                               2045,
                               1 << 28,
                               (1 << 28) + 1,
                               std::numeric_limits<qint32>::min(),
                               std::numeric_limits<qint32>::max()};
        return OneIn(2) ? size : lies[Number(0, 9)];
    }
    QByteArray Frame()
    {
        const QByteArray text = Text();
        return Frames::Long(Length(text.size())) + text;
    }
    QByteArray Mutated(QByteArray bytes)
    {
        while (!bytes.isEmpty() && OneIn(2))
            bytes[Number(0, static_cast<int>(bytes.size()) - 1)] = static_cast<char>(Number(0, 255));
        return OneIn(4) ? bytes.first(Number(0, static_cast<int>(bytes.size()))) : bytes;
    }
    /// Up to four frames or rubbish, in reads of random sizes.
    QList<QByteArray> Reads()
    {
        QByteArray stream;
        for (int i = Number(1, 4); i > 0; --i)
            stream += OneIn(5) ? Rubbish(Number(0, 3000)) : Mutated(Frame());
        QList<QByteArray> reads;
        while (!stream.isEmpty()) {
            const int size = OneIn(2) ? static_cast<int>(stream.size())
                                      : Number(1, OneIn(3) ? 8 : static_cast<int>(stream.size()));
            reads.append(stream.first(qMin<qsizetype>(size, stream.size())));
            stream.remove(0, reads.last().size());
        }
        return reads;
    }

private:
    std::mt19937 random;
};

using Ask = std::function<void(WireDialogue &)>;

} // namespace
Q_DECLARE_METATYPE(Ask)

void tst_hostileReplies::rubbishHurtsNoReader_data()
{
    QTest::addColumn<quint32>("seed");
    QTest::addColumn<Ask>("ask");
    QTest::newRow("short reply") << 1000u
                                 << Ask([](WireDialogue &wire) { wire.client->GetContactVersion(); });
    QTest::newRow("long reply") << 2000000u << Ask([](WireDialogue &wire) { wire.client->GetUserList(); });
    QTest::newRow("announcement and file")
        << 3000000u
        << Ask([](WireDialogue &wire) { wire.client->GetFax(0, QStringLiteral("A1"), wire.Folder()); });
    QTest::newRow("file") << 4000000u
                          << Ask([](WireDialogue &wire) { wire.BeginDownload(QStringLiteral("A1")); });
    QTest::newRow("answer to a header") << 5000000u << Ask([](WireDialogue &wire) {
        wire.client->SendFaxFile(QStringLiteral("header"), wire.Path(QStringLiteral("out.tif")));
    });
}

void tst_hostileReplies::rubbishHurtsNoReader()
{
    QFETCH(quint32, seed);
    QFETCH(Ask, ask);
    WireDialogue wire;
    wire.MakeFile(QStringLiteral("out.tif"), "fax");
    qint64 fed = 0;
    qsizetype largest = 0;
    connect(wire.client.get(), &clsClient::DataArrival,
            [&](const ClientReply &reply) { largest = qMax(largest, reply.abData.capacity()); });
    qInfo("seeds from %u", seed);
    for (int round = 0; round < rounds; ++round) {
        Liar server(seed + static_cast<quint32>(round));
        fed = 0;
        largest = 0;
        ask(wire);
        const QList<QByteArray> reads = server.Reads();
        for (const QByteArray &read : reads) {
            fed += read.size();
            wire.socket.Feed(read);
            if (server.OneIn(4))
                wire.socket.DrainSends(); // may wait for the answer to a header
            if (server.OneIn(4))
                wire.ports.timers.Advance(server.Number(0, 1200));
        }
        // What is declared takes no memory, only what has come; buffers may double.
        QVERIFY2(largest <= 2 * fed + 1000, qPrintable(QStringLiteral("seed %1").arg(seed + round)));
        QVERIFY(!wire.ports.pump.IsStuck());

        if (server.OneIn(2))
            wire.client->Cancel();
        else
            wire.socket.Fail(Socket::sckConnectionReset);
        wire.client->Connect(QStringLiteral("fax"), QStringLiteral("8750"));
        wire.socket.AcceptConnection();
        wire.aReplies.clear();
        wire.socket.FeedShort("1.6 beta");
        QCOMPARE(wire.aReplies.size(), 1);
        QCOMPARE(wire.aReplies.first().abData, QByteArray("1.6 beta"));
        wire.aReplies.clear();
        wire.aErrors.clear();
        wire.Sent();
    }
    const QStringList allowed{QStringLiteral("A1.tif"), QStringLiteral("out.tif")};
    for (const QString &name : QDir(wire.dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot))
        QVERIFY2(allowed.contains(name), qPrintable(name));
}

QTEST_GUILESS_MAIN(tst_hostileReplies)
#include "tst_hostileReplies.moc"
