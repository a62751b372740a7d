#include "fakes/WireDialogue.h"
#include "fixtures/TestTable.h"

#include <functional>

namespace {
using Action = std::function<void(WireDialogue &)>;

QByteArray Long(qint32 number, const QByteArray &rest)
{
    return Frames::Long(number) + rest;
}

int OpenFilesBelow(const QString &folder)
{
    int count = 0;
    const QDir descriptors("/proc/self/fd");
    for (const QFileInfo &entry :
         descriptors.entryInfoList(QDir::Files | QDir::System | QDir::NoDotAndDotDot))
        count += entry.symLinkTarget().startsWith(folder);
    return count;
}

/// Sends the header; the server has not answered yet.
void BeginUpload(WireDialogue &wire, const QByteArray &content)
{
    wire.client->SendFaxFile("header", wire.MakeFile("out.tif", content));
    wire.Sent();
}
} // namespace

/// Files in both directions.
class tst_clsClientFiles : public QObject
{
    Q_OBJECT

private slots:
    void readsBecomeAFile_data()
    {
        // What is told: see WireDialogue::Told. The file is "old" until something else is written.
        const TestTable<QByteArrayList, QStringList, QByteArray, QByteArray> row{"reads", "told", "sent",
                                                                                 "file"};
        const QByteArray fields = Long(5, "OK\r\nf");
        const QByteArray manyFields = "OK\r\n" + QByteArray(5000, 'n');
        row("in parts", {fields, Long(8, "abc"), "de", "fgh"}, {"3 62% 5/-1 OK\r\nf", "2 100% 8/8 OK\r\nf"},
            "GoOnGoOnGoOn", "abcdefgh");
        row("long announcement", {Long(5004, manyFields), Long(8, "abc"), "defgh"},
            {"3 100% 5004/5004 [5004 O n]", "4 100% 5004/5004 [5004 O n]", "2 100% 8/8 [5004 O n]"},
            "GoOnGoOnGoOn", "abcdefgh");
        row("size cut in two", {fields, QByteArray("\4\0", 2), QByteArray("\0\0ab", 4), "cd"},
            {"2 100% 4/4 OK\r\nf"}, "GoOnGoOn", "abcd");
        // Stays as it is: readers of fax files step over the four bytes.
        row("one read keeps its size bytes", {fields, Long(3, "abc")}, {"2 100% 3/3 OK\r\nf"}, "GoOn",
            QByteArray("\3\0\0\0abc", 7));
        row("bare OK announces nothing", {Long(4, "OK\r\n")}, {"4 100% -1/-1 OK\r\n"}, "", "old and long");
        row("more than its size", {fields, Long(2, "abc")}, {"1 100% -1/-1 "}, "GoOn", "old and long");
        row("negative size", {fields, Long(-5, "abc")}, {"1 100% -1/-1 "}, "GoOn", "old and long");
        row("later overrun is silent", {fields, Long(8, "abc"), "defghi"}, {}, "GoOnGoOn", "abcdefghi");
    }

    void readsBecomeAFile()
    {
        QFETCH(QByteArrayList, reads);
        WireDialogue wire;
        wire.MakeFile("A1.tif", "old and long");
        wire.client->GetFax(9, "A1", wire.Folder());
        wire.Sent();
        QString fileName;
        connect(wire.client.get(), &clsClient::DataArrival,
                [&](const ClientReply &reply) { fileName = reply.strFileName; });
        for (const QByteArray &read : reads)
            wire.socket.Feed(read);
        const bool isDone =
            !wire.aReplies.isEmpty() && wire.aReplies.last().lState == ClientReply::statFileDone;
        QCOMPARE(fileName, isDone ? wire.Path("A1.tif") : QString());
        QTEST(wire.Told(), "told");
        QTEST(wire.Sent(), "sent");
        QTEST(wire.ReadFile("A1.tif"), "file");
        QVERIFY(wire.IsIdle());
    }

    void fullDiskEndsTheConnection()
    {
        WireDialogue wire;
        QVERIFY(QFile::link("/dev/full", wire.Path("A1.tif")));
        wire.BeginDownload("A1");
        wire.socket.Feed(Long(8, "abc"));
        QCOMPARE(wire.TakeReply().lState, int(ClientReply::statFailure));
        // The server must not take the next command for a permission, nor believe that we have the fax.
        QCOMPARE(wire.Sent(), QByteArray());
        QVERIFY(!wire.client->IsConnected());
        QVERIFY(!QFileInfo(wire.Path("A1.tif")).isSymLink()); // what was begun is gone
    }

    void endingTheTransferClosesTheFile()
    {
        for (const Action &end : {Action([](auto &wire) { wire.client->Cancel(); }),
                                  Action([](auto &wire) { wire.socket.CloseByServer(); }),
                                  Action([](auto &wire) { wire.client->CloseConnect(); }),
                                  Action([](auto &wire) { wire.socket.Feed("0123456789"); }), // overrun
                                  Action([](auto &wire) { wire.socket.Feed("defgh"); })}) {
            WireDialogue wire;
            wire.BeginDownload("A1");
            wire.socket.Feed(Long(8, "abc"));
            QCOMPARE(OpenFilesBelow(wire.dir.path()), 1);
            end(wire);
            QCOMPARE(OpenFilesBelow(wire.dir.path()), 0);
            QVERIFY(wire.ReadFile("A1.tif").startsWith("abc"));
            wire.Reconnect();
            QVERIFY(wire.IsIdle());
        }
    }

    void largeFileGoesBlockByBlock()
    {
        WireDialogue wire;
        QByteArray content(2 * 2048000 + 1, 'f');
        content[2048000] = 'g';
        BeginUpload(wire, content);
        wire.socket.FeedShort("OK"); // before the header has drained
        wire.socket.DrainSends();
        QCOMPARE(wire.aProgress, QList<int>{50});
        wire.socket.DrainSends();
        wire.socket.DrainSends();
        QCOMPARE(wire.lSendCompletes, 0);
        wire.socket.DrainSends();
        wire.socket.DrainSends();
        QCOMPARE(wire.lSendCompletes, 1);
        QCOMPARE(wire.aProgress, (QList<int>{50, 100}));
        QCOMPARE(wire.socket.aWrites, (QByteArrayList{Frames::FormC(4096001, content.first(2048000)),
                                                      content.sliced(2048000, 2048000), "f"}));
    }

    void waitForTheAnswer()
    {
        const auto answer = [](const QByteArray &text) {
            return [text](WireDialogue &wire) { wire.socket.FeedShort(text); };
        };
        const struct
        {
            int lDelay;
            Action act;
            bool bStarts, bTimesOut;
            int lEnd;
        } rows[] = {
            {7900, answer("OK"), true, false, 8000},
            {100, answer("ERR\r\n7\r\n"), false, true, 8000}, // a refusal is told as a time-out
            {100, [](auto &) {}, false, true, 8000},
            {100, [](auto &wire) { wire.socket.CloseByServer(); }, false, false, 200},
            {100, [](auto &wire) { wire.ports.pump.Quit(); }, false, false, 200},
            {100, [](auto &wire) { wire.client.reset(); }, false, false, 200},
            {100, [](auto &wire) { wire.client->Cancel(), wire.Reconnect(); }, false, false, 200},
        };
        for (const auto &row : rows) {
            WireDialogue wire;
            BeginUpload(wire, "fax");
            wire.ports.pump.After(row.lDelay)
                .Then([&] { row.act(wire); })
                .Then([&] { // the watchdog stands still
                    QCOMPARE(wire.client && wire.client->IsWaitingServerReady(), row.bTimesOut);
                });
            wire.socket.DrainSends();
            const qint64 end = wire.ports.clock.lMilliseconds;
            QVERIFY2(end > row.lEnd - 200 && end <= row.lEnd, qPrintable(QString::number(&row - rows)));
            QCOMPARE(wire.aErrors.size(), row.bTimesOut ? 1 : 0);
            if (row.bTimesOut) {
                QCOMPARE(wire.aErrors.first().lNumber, 748);
                QCOMPARE(wire.aErrors.first().strDescription, "Sending Fax Out of Time");
                QCOMPARE(wire.client->State(), int(Socket::sckClosed));
                QVERIFY(wire.aReplies.isEmpty());
            }
            if (wire.client)
                QCOMPARE(wire.Sent(), row.bStarts ? Frames::FormC(3, "fax") : QByteArray());
        }
    }

    void fileThatShrinksEndsTheConnection()
    {
        WireDialogue wire;
        BeginUpload(wire, QByteArray(3 * 2048000, 'f'));
        wire.socket.FeedShort("OK");
        wire.socket.DrainSends();
        wire.Sent();
        QVERIFY(QFile::resize(wire.Path("out.tif"), 2048010));
        wire.socket.DrainSends();
        QCOMPARE(wire.Sent(), QByteArray());
        QCOMPARE(wire.aErrors.size(), 1);
        QCOMPARE(wire.aErrors.first().lNumber, 57);
        QVERIFY(!wire.client->IsConnected());
    }
};

QTEST_GUILESS_MAIN(tst_clsClientFiles)
#include "tst_clsClientFiles.moc"
