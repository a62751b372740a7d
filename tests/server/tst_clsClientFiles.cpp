#include "fakes/WireDialogue.h"

#include <QTest>

#include <functional>

/// Files in both directions.
class tst_clsClientFiles : public QObject
{
    Q_OBJECT

private slots:
    // In
    void fileInPartsIsWrittenAsItComes();
    void longAnnouncementStaysTheDataOfItsFile();
    void refusedFaxStaysMarkedUntilReset();
    void bareOkAnnouncesNoFile();
    void fileOfOneReadKeepsItsSizeBytes();
    void fileLargerThanDeclaredIsRefused_data();
    void fileLargerThanDeclaredIsRefused();
    void overrunLaterEndsSilentlyAndClosesTheFile();
    void receivingTruncatesWhatWasThere();
    void cutSizeBytesAreWaitedFor();
    void unwritableFolderEndsTheConnection();
    void fullDiskEndsTheConnectionAndLeavesNoFile();
    void endingTheTransferClosesTheFile_data();
    void endingTheTransferClosesTheFile();

    // Out
    void fileOfOneBlockGoesInOneFrame();
    void largeFileGoesBlockByBlock();
    void answerBeforeTheHeaderHasDrainedCounts();
    void refusedHeaderIsReportedAsTimeOut();
    void unansweredHeaderEndsTheConnection();
    void slowAnswerStillStartsTheFile();
    void waitForTheAnswerEndsEarly_data();
    void waitForTheAnswerEndsEarly();
    void emptyFileSendsNothing();
    void fileThatShrinksEndsTheConnection();
    void socketProgressIsShownInPercent();
    void cancelInsideProgressSendsNoBlock();

private:
    static void BeginUpload(WireDialogue &wire, const QByteArray &content);
};

void tst_clsClientFiles::fileInPartsIsWrittenAsItComes()
{
    WireDialogue wire;
    wire.client->GetFax(9, QStringLiteral("A1"), wire.Folder());
    wire.Sent();
    wire.socket.FeedLong("OK\r\nsender\r\n");
    QVERIFY(wire.aReplies.isEmpty());
    QCOMPARE(wire.Sent(), QByteArray("GoOn"));
    wire.socket.Feed(Frames::Long(8) + "abc");
    QVERIFY(wire.aReplies.isEmpty());
    QCOMPARE(wire.ReadFile(QStringLiteral("A1.tif")), QByteArray("abc"));
    wire.socket.Feed("de");
    const ClientReply part = wire.TakeReply();
    QCOMPARE(part.lState, int(ClientReply::statPart));
    QCOMPARE(part.lPercent, 62); // 62.5
    QCOMPARE(part.abData, QByteArray("OK\r\nsender\r\n"));
    QCOMPARE(wire.Sent(), QByteArray("GoOnGoOn"));
    wire.socket.Feed("fgh");
    const ClientReply done = wire.TakeReply();
    QCOMPARE(done.lState, int(ClientReply::statFileDone));
    QCOMPARE(done.lPercent, 100);
    QCOMPARE(done.strFileName, wire.Path(QStringLiteral("A1.tif")));
    QCOMPARE(done.abData, QByteArray("OK\r\nsender\r\n"));
    QCOMPARE(wire.ReadFile(QStringLiteral("A1.tif")), QByteArray("abcdefgh"));
    QCOMPARE(wire.Sent(), QByteArray());
    wire.socket.FeedShort("OK");
    QCOMPARE(wire.TakeReply().lState, int(ClientReply::statShort));
}

void tst_clsClientFiles::longAnnouncementStaysTheDataOfItsFile()
{
    WireDialogue wire;
    const QByteArray announcement = "OK\r\n" + QByteArray(5000, 'n');
    wire.BeginDownload(QStringLiteral("A1"), announcement);
    wire.aReplies.clear();
    wire.socket.Feed(Frames::Long(8) + "abc");
    wire.socket.Feed("defgh");
    QCOMPARE(wire.aReplies.size(), 1);
    QCOMPARE(wire.aReplies.first().lState, int(ClientReply::statFileDone));
    QCOMPARE(wire.aReplies.first().abData, announcement);
    QCOMPARE(wire.ReadFile(QStringLiteral("A1.tif")), QByteArray("abcdefgh"));
}

void tst_clsClientFiles::refusedFaxStaysMarkedUntilReset()
{
    WireDialogue wire;
    wire.BeginDownload(QStringLiteral("A1"), "ERR\r\n3\r\n");
    QCOMPARE(wire.TakeReply().lState, int(ClientReply::statFailure));
    wire.client->ResetTransfer();
    wire.client->GetContactVersion();
    wire.socket.FeedShort("OK\r\n");
    QCOMPARE(wire.TakeReply().lState, int(ClientReply::statShort));
    QVERIFY(!QFile::exists(wire.Path(QStringLiteral("A1.tif"))));
}

void tst_clsClientFiles::bareOkAnnouncesNoFile()
{
    WireDialogue wire;
    wire.BeginDownload(QStringLiteral("A1"), "OK\r\n");
    QCOMPARE(wire.TakeReply().lState, int(ClientReply::statComplete));
    wire.socket.FeedShort("OK");
    QCOMPARE(wire.TakeReply().lState, int(ClientReply::statShort));
}

void tst_clsClientFiles::fileOfOneReadKeepsItsSizeBytes()
{
    WireDialogue wire;
    wire.BeginDownload(QStringLiteral("A1"));
    wire.socket.Feed(Frames::Long(3) + "abc");
    QCOMPARE(wire.TakeReply().lState, int(ClientReply::statFileDone));
    // Stays as it is: readers of fax files step over the four bytes.
    QCOMPARE(wire.ReadFile(QStringLiteral("A1.tif")), QByteArray("\x03\0\0\0abc", 7));
    QCOMPARE(wire.Sent(), QByteArray());
}

void tst_clsClientFiles::fileLargerThanDeclaredIsRefused_data()
{
    QTest::addColumn<int>("declared");
    QTest::newRow("less than came") << 2;
    QTest::newRow("negative") << -5;
}

void tst_clsClientFiles::fileLargerThanDeclaredIsRefused()
{
    QFETCH(int, declared);
    WireDialogue wire;
    wire.BeginDownload(QStringLiteral("A1"));
    wire.socket.Feed(Frames::Long(declared) + "abc");
    const ClientReply reply = wire.TakeReply();
    QCOMPARE(reply.lState, int(ClientReply::statFailure));
    QCOMPARE(reply.lPercent, 100);
    QVERIFY(wire.client->IsConnected());
    wire.socket.FeedShort("OK");
    QCOMPARE(wire.TakeReply().lState, int(ClientReply::statShort));
}

void tst_clsClientFiles::overrunLaterEndsSilentlyAndClosesTheFile()
{
    WireDialogue wire;
    wire.BeginDownload(QStringLiteral("A1"));
    wire.socket.Feed(Frames::Long(8) + "abc");
    wire.Sent();
    wire.socket.Feed("defghij");
    QVERIFY(wire.aReplies.isEmpty());
    QCOMPARE(wire.Sent(), QByteArray());
    wire.socket.FeedShort("OK");
    QCOMPARE(wire.TakeReply().lState, int(ClientReply::statShort));
}

void tst_clsClientFiles::receivingTruncatesWhatWasThere()
{
    WireDialogue wire;
    wire.MakeFile(QStringLiteral("A1.tif"), QByteArray(100, 'o'));
    wire.BeginDownload(QStringLiteral("A1"));
    wire.socket.Feed(Frames::Long(4) + "ab");
    wire.socket.Feed("cd");
    QCOMPARE(wire.ReadFile(QStringLiteral("A1.tif")), QByteArray("abcd"));
}

void tst_clsClientFiles::cutSizeBytesAreWaitedFor()
{
    WireDialogue wire;
    wire.BeginDownload(QStringLiteral("A1"));
    wire.socket.Feed(Frames::Long(4).first(2));
    wire.socket.Feed(Frames::Long(4).sliced(2) + "ab");
    wire.socket.Feed("cd");
    QCOMPARE(wire.ReadFile(QStringLiteral("A1.tif")), QByteArray("abcd"));
    wire.aReplies.clear();

    wire.BeginDownload(QStringLiteral("A2"));
    wire.socket.Feed(Frames::Long(4).first(2));
    wire.ports.timers.Advance(1000);
    QCOMPARE(wire.TakeReply().lState, int(ClientReply::statFailure));
}

void tst_clsClientFiles::unwritableFolderEndsTheConnection()
{
    WireDialogue wire;
    wire.client->GetFax(0, QStringLiteral("A1"), wire.Path(QStringLiteral("missing/")));
    wire.socket.FeedLong("OK\r\nsender\r\n");
    wire.Sent();
    wire.socket.Feed(Frames::Long(8) + "abc");
    QCOMPARE(wire.TakeReply().lState, int(ClientReply::statFailure));
    QCOMPARE(wire.Sent(), QByteArray());
    // The server must not take the next command for a permission to send on, nor believe that we have the
    // fax.
    QVERIFY(!wire.client->IsConnected());
}

void tst_clsClientFiles::fullDiskEndsTheConnectionAndLeavesNoFile()
{
    WireDialogue wire;
    QVERIFY(QFile::link(QStringLiteral("/dev/full"), wire.Path(QStringLiteral("A1.tif"))));
    wire.BeginDownload(QStringLiteral("A1"));
    wire.socket.Feed(Frames::Long(8) + "abc");
    QCOMPARE(wire.TakeReply().lState, int(ClientReply::statFailure));
    QVERIFY(!wire.client->IsConnected());
    QVERIFY(!QFileInfo(wire.Path(QStringLiteral("A1.tif"))).isSymLink());
}

namespace {
using Action = std::function<void(WireDialogue &)>;

int OpenFilesBelow(const QString &folder)
{
    int count = 0;
    const QDir descriptors(QStringLiteral("/proc/self/fd"));
    for (const QFileInfo &entry :
         descriptors.entryInfoList(QDir::Files | QDir::System | QDir::NoDotAndDotDot))
        count += entry.symLinkTarget().startsWith(folder);
    return count;
}
} // namespace
Q_DECLARE_METATYPE(Action)

void tst_clsClientFiles::endingTheTransferClosesTheFile_data()
{
    QTest::addColumn<Action>("end");
    QTest::newRow("cancel") << Action([](WireDialogue &wire) { wire.client->Cancel(); });
    QTest::newRow("closed by the server") << Action([](WireDialogue &wire) { wire.socket.CloseByServer(); });
    QTest::newRow("error") << Action([](WireDialogue &wire) { wire.socket.Fail(10054); });
    QTest::newRow("closed by the owner") << Action([](WireDialogue &wire) { wire.client->CloseConnect(); });
    QTest::newRow("log out") << Action([](WireDialogue &wire) { wire.client->LogOut(); });
    QTest::newRow("overrun") << Action([](WireDialogue &wire) { wire.socket.Feed("0123456789"); });
    QTest::newRow("complete") << Action([](WireDialogue &wire) { wire.socket.Feed("defgh"); });
}

void tst_clsClientFiles::endingTheTransferClosesTheFile()
{
    QFETCH(Action, end);
    WireDialogue wire;
    wire.BeginDownload(QStringLiteral("A1"));
    wire.socket.Feed(Frames::Long(8) + "abc");
    QCOMPARE(OpenFilesBelow(wire.dir.path()), 1);
    end(wire);
    QCOMPARE(OpenFilesBelow(wire.dir.path()), 0);
    QVERIFY(wire.ReadFile(QStringLiteral("A1.tif")).startsWith("abc"));
    wire.client->Connect(QStringLiteral("fax"), QStringLiteral("8750"));
    wire.socket.AcceptConnection();
    wire.aReplies.clear();
    wire.socket.FeedShort("hello");
    QCOMPARE(wire.TakeReply().lState, int(ClientReply::statShort));
}

/// Sends the header; the server has not answered yet.
void tst_clsClientFiles::BeginUpload(WireDialogue &wire, const QByteArray &content)
{
    wire.client->SendFaxFile(QStringLiteral("header"), wire.MakeFile(QStringLiteral("out.tif"), content));
    wire.Sent();
}

void tst_clsClientFiles::fileOfOneBlockGoesInOneFrame()
{
    WireDialogue wire;
    const QByteArray content(2048000, 'f'); // exactly one block
    BeginUpload(wire, content);
    wire.ports.pump.Then([&] {
        QVERIFY(wire.client->IsWaitingServerReady());
        wire.socket.FeedShort("OK");
    });
    wire.socket.DrainSends();
    QVERIFY(!wire.client->IsWaitingServerReady());
    const ClientReply ready = wire.TakeReply();
    QCOMPARE(ready.lState, int(ClientReply::statComplete));
    QCOMPARE(ready.abData, QByteArray("OK"));
    QCOMPARE(ready.lPercent, 0);
    QCOMPARE(wire.socket.aWrites.size(), 1);
    QCOMPARE(wire.Sent(), Frames::FormC(2048000, content));
    QCOMPARE(wire.aProgress, QList<int>{100});
    wire.socket.DrainSends();
    QCOMPARE(wire.lSendCompletes, 0);
    QCOMPARE(wire.aProgress, QList<int>{100});
    wire.socket.FeedShort(QByteArray(32, 'A'));
    QCOMPARE(wire.TakeReply().lState, int(ClientReply::statShort));
}

void tst_clsClientFiles::largeFileGoesBlockByBlock()
{
    WireDialogue wire;
    QByteArray content(2 * 2048000 + 1, 'f');
    content[2048000] = 'g';
    BeginUpload(wire, content);
    wire.ports.pump.Then([&] { wire.socket.FeedShort("OK"); });
    wire.socket.DrainSends();
    QCOMPARE(wire.socket.TakeWrite(), Frames::FormC(4096001, content.first(2048000)));
    QCOMPARE(wire.aProgress, QList<int>{50});
    wire.socket.DrainSends();
    QCOMPARE(wire.socket.TakeWrite(), content.sliced(2048000, 2048000));
    wire.socket.DrainSends();
    QCOMPARE(wire.socket.TakeWrite(), QByteArray("f"));
    QCOMPARE(wire.lSendCompletes, 0);
    wire.socket.DrainSends();
    QCOMPARE(wire.lSendCompletes, 1);
    QCOMPARE(wire.aProgress, (QList<int>{50, 100}));
    wire.socket.DrainSends();
    QCOMPARE(wire.lSendCompletes, 1);
    QVERIFY(wire.socket.aWrites.isEmpty());
}

void tst_clsClientFiles::answerBeforeTheHeaderHasDrainedCounts()
{
    WireDialogue wire;
    BeginUpload(wire, "fax");
    wire.socket.FeedShort("OK");
    wire.socket.DrainSends();
    QCOMPARE(wire.Sent(), Frames::FormC(3, "fax"));
}

void tst_clsClientFiles::refusedHeaderIsReportedAsTimeOut()
{
    WireDialogue wire;
    BeginUpload(wire, "fax");
    wire.ports.pump.Then([&] { wire.socket.FeedShort("ERR\r\n7\r\n"); }).Then([&] {
        QVERIFY(wire.client->IsWaitingServerReady());
        QVERIFY(wire.aErrors.isEmpty());
    });
    wire.socket.DrainSends();
    QVERIFY(wire.aReplies.isEmpty());
    QCOMPARE(wire.aErrors.size(), 1);
    QCOMPARE(wire.aErrors.first().lNumber, 748);
    QVERIFY(!wire.client->IsConnected());
}

void tst_clsClientFiles::unansweredHeaderEndsTheConnection()
{
    WireDialogue wire;
    BeginUpload(wire, "fax");
    wire.socket.DrainSends();
    QCOMPARE(wire.ports.clock.lMilliseconds, 8000);
    QCOMPARE(wire.aErrors.size(), 1);
    QCOMPARE(wire.aErrors.first().lNumber, 748);
    QCOMPARE(wire.aErrors.first().strDescription, QStringLiteral("Sending Fax Out of Time"));
    QCOMPARE(wire.aErrors.first().strSource, QStringLiteral("sckClient_SendComplete()"));
    QCOMPARE(wire.client->State(), int(Socket::sckClosed));
    QCOMPARE(wire.Sent(), QByteArray());
    QVERIFY(!wire.client->IsWaitingServerReady());
}

void tst_clsClientFiles::slowAnswerStillStartsTheFile()
{
    WireDialogue wire;
    BeginUpload(wire, "fax");
    wire.ports.pump.After(7900).Then([&] { wire.socket.FeedShort("OK"); });
    wire.socket.DrainSends();
    QVERIFY(wire.aErrors.isEmpty());
    QCOMPARE(wire.Sent(), Frames::FormC(3, "fax"));
}

void tst_clsClientFiles::waitForTheAnswerEndsEarly_data()
{
    QTest::addColumn<Action>("end");
    QTest::newRow("closed by the server") << Action([](WireDialogue &wire) { wire.socket.CloseByServer(); });
    QTest::newRow("cancelled") << Action([](WireDialogue &wire) { wire.client->Cancel(); });
    QTest::newRow("program quits") << Action([](WireDialogue &wire) { wire.ports.pump.Quit(); });
    QTest::newRow("client destroyed") << Action([](WireDialogue &wire) { wire.client.reset(); });
    QTest::newRow("cancelled and connected again") << Action([](WireDialogue &wire) {
        wire.client->Cancel();
        wire.client->Connect(QStringLiteral("fax"), QStringLiteral("8750"));
        wire.socket.AcceptConnection();
    });
}

void tst_clsClientFiles::waitForTheAnswerEndsEarly()
{
    QFETCH(Action, end);
    WireDialogue wire;
    BeginUpload(wire, "fax");
    wire.ports.pump.After(100).Then([&] { end(wire); });
    wire.socket.DrainSends();
    QVERIFY(wire.ports.clock.lMilliseconds < 300);
    QVERIFY(wire.aErrors.isEmpty());
    if (wire.client) {
        QVERIFY(!wire.client->IsWaitingServerReady());
        QCOMPARE(wire.Sent(), QByteArray());
    }
}

void tst_clsClientFiles::emptyFileSendsNothing()
{
    WireDialogue wire;
    BeginUpload(wire, QByteArray());
    wire.socket.FeedShort("OK");
    wire.socket.DrainSends();
    QCOMPARE(wire.Sent(), QByteArray());
    QVERIFY(wire.aProgress.isEmpty());
    QVERIFY(wire.aErrors.isEmpty());
}

void tst_clsClientFiles::fileThatShrinksEndsTheConnection()
{
    WireDialogue wire;
    BeginUpload(wire, QByteArray(3 * 2048000, 'f'));
    wire.socket.FeedShort("OK");
    wire.socket.DrainSends();
    wire.Sent();
    QVERIFY(QFile::resize(wire.Path(QStringLiteral("out.tif")), 2048010));
    wire.socket.DrainSends();
    QCOMPARE(wire.Sent(), QByteArray());
    QCOMPARE(wire.aErrors.size(), 1);
    QCOMPARE(wire.aErrors.first().lNumber, 57);
    QVERIFY(!wire.client->IsConnected());
}

void tst_clsClientFiles::socketProgressIsShownInPercent()
{
    WireDialogue wire;
    emit wire.socket.SendProgress(100, 0);
    QVERIFY(wire.aProgress.isEmpty()); // no file goes out
    BeginUpload(wire, QByteArray(1000, 'f'));
    wire.socket.FeedShort("OK");
    wire.socket.DrainSends();
    wire.aProgress.clear();
    emit wire.socket.SendProgress(501, 507);
    emit wire.socket.SendProgress(507, 0);
    QCOMPARE(wire.aProgress, (QList<int>{50, 101}));
}

void tst_clsClientFiles::cancelInsideProgressSendsNoBlock()
{
    WireDialogue wire;
    QObject::connect(wire.client.get(), &clsClient::SendingProgress, [&] { wire.client->Cancel(); });
    BeginUpload(wire, "fax");
    wire.socket.FeedShort("OK");
    wire.socket.DrainSends();
    QCOMPARE(wire.Sent(), QByteArray());
    QCOMPARE(wire.client->State(), int(Socket::sckClosed));
}

QTEST_GUILESS_MAIN(tst_clsClientFiles)
#include "tst_clsClientFiles.moc"
