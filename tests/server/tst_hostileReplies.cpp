#include "fakes/WireDialogue.h"

#include <QTest>

#include <functional>
#include <limits>
#include <random>

namespace {

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
        QByteArray bytes = Frames::Long(OneIn(2) ? size : lies[Number(0, 9)]) + text;
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
            const int size = OneIn(2) ? left : Number(1, OneIn(3) ? qMin(8, left) : left);
            reads.append(stream.first(size));
            stream.remove(0, size);
        }
        return reads;
    }

private:
    std::mt19937 random;
};

using Ask = std::function<void(WireDialogue &)>;

} // namespace
Q_DECLARE_METATYPE(Ask)

/// A server that lies, stutters and sends rubbish. Whatever comes, in whatever cuts: no crash, no endless
/// wait, no more memory than what came, no file but the one asked for, and the next connection works.
class tst_hostileReplies : public QObject
{
    Q_OBJECT

private slots:
    void rubbishHurtsNoReader_data()
    {
        QTest::addColumn<quint32>("seed");
        QTest::addColumn<Ask>("ask");
        const auto row = [](const char *name, quint32 seed, const Ask &ask) {
            QTest::newRow(name) << seed << ask;
        };
        row("short reply", 1000, [](auto &wire) { wire.client->GetContactVersion(); });
        row("long reply", 2000000, [](auto &wire) { wire.client->GetUserList(); });
        row("announcement", 3000000, [](auto &wire) { wire.client->GetFax(0, "A1", wire.Folder()); });
        row("file", 4000000, [](auto &wire) { wire.BeginDownload("A1"); });
        row("header", 5000000, [](auto &wire) { wire.client->SendFaxFile("header", wire.Path("out.tif")); });
    }

    void rubbishHurtsNoReader()
    {
        QFETCH(quint32, seed);
        QFETCH(Ask, ask);
        WireDialogue wire;
        wire.MakeFile("out.tif", "fax");
        qsizetype largest = 0;
        connect(wire.client.get(), &clsClient::DataArrival,
                [&](const ClientReply &reply) { largest = qMax(largest, reply.abData.capacity()); });
        for (const quint32 last = seed + 10000; seed < last; ++seed) {
            Liar server(seed);
            qint64 fed = 0;
            largest = 0;
            ask(wire);
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

QTEST_GUILESS_MAIN(tst_hostileReplies)
#include "tst_hostileReplies.moc"
