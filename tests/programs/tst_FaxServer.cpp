#include "fixtures/TrialServer.h"

#include <QDate>
#include <QElapsedTimer>
#include <QFile>
#include <QTcpSocket>
#include <QTemporaryFile>
#include <QTest>
#include <QtEndian>

#include <memory>

#include <tiffio.h>

namespace {

const QByteArray abGreeting("\x13\0\0\0Welcome\r\n1.6 beta\r\n", 23);
const QByteArray abOk("\x04\0\0\0OK\r\n", 8);
/// Digests of the passwords "anna" and "ben".
const QByteArray abAnna = "A70F9E38FF015AFAA9AB0AACABEE2E13";
const QByteArray abBen = "7FE4771C008A22EB763DF47D19E2C6AA";

QByteArray Number(qint32 value)
{
    QByteArray bytes;
    for (int shift = 0; shift < 32; shift += 8)
        bytes += char(quint32(value) >> shift);
    return bytes;
}

QByteArray Counted(qint32 command, const QByteArray &body)
{
    return Number(command) + Number(qint32(body.size())) + body;
}

QByteArray Refused(int reason)
{
    const QByteArray text = "ERR\r\n" + QByteArray::number(reason) + "\r\n";
    return Number(qint32(text.size())) + text;
}

/// One client that speaks in bytes.
class RawClient
{
public:
    explicit RawClient(const TrialServer &server)
    {
        sckServer.connectToHost("127.0.0.1", server.Port());
        sckServer.waitForConnected(5000);
    }

    /// So many bytes, or fewer when no more come within a while.
    QByteArray Read(qsizetype size, int milliseconds = 10000)
    {
        while (abIn.size() < size && sckServer.waitForReadyRead(milliseconds))
            abIn += sckServer.readAll();
        abIn += sckServer.readAll();
        const QByteArray taken = abIn.left(size);
        abIn.remove(0, taken.size());
        return taken;
    }

    /// A reply with the length in front of it.
    QByteArray ReadReply()
    {
        const QByteArray head = Read(4);
        return head + Read(head.size() < 4 ? 0 : qFromLittleEndian<qint32>(head.constData()));
    }

    void Send(const QByteArray &bytes)
    {
        sckServer.write(bytes);
        sckServer.flush();
    }

    QByteArray Ask(const QByteArray &request)
    {
        Send(request);
        return ReadReply();
    }

    QByteArray LogIn(const QByteArray &user, const QByteArray &digest)
    {
        ReadReply();
        return Ask(Number(1) + user + "\r\n" + digest);
    }

    /// Nothing comes within this time.
    bool IsSilent(int milliseconds) { return Read(1, milliseconds).isEmpty() && !IsClosed(0); }

    bool IsClosed(int milliseconds = 10000)
    {
        if (sckServer.state() != QAbstractSocket::UnconnectedState)
            sckServer.waitForDisconnected(milliseconds);
        return sckServer.state() == QAbstractSocket::UnconnectedState;
    }

    /// The ids of the faxes that a list of new or old ones names.
    QByteArrayList List(const QByteArray &request = Number(6))
    {
        QByteArrayList ids;
        Send(request);
        const QByteArray head = Read(4);
        const qint32 size = qFromLittleEndian<qint32>(head.constData());
        QByteArray text = Read(std::min(size, 2044));
        if (size > 2044) {
            Send("GoOn");
            text += Read(size - 2044);
        }
        for (const QByteArray &line : text.split('\n').mid(1))
            ids += line.split('\0').first();
        ids.removeAll(QByteArray());
        return ids;
    }

    /// The file of one fax, as a client fetches it.
    QByteArray Fetch(const QByteArray &id)
    {
        if (!Ask(Number(7) + "100" + '\0' + id).mid(4).startsWith("OK\r\n"))
            return {};
        Send("GoOn");
        const qint32 size = qFromLittleEndian<qint32>(Read(4).constData());
        Send("GoOn");
        return Read(size);
    }

    QTcpSocket sckServer;
    QByteArray abIn;
};

QByteArray Contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

struct PageTable
{
    int lPages = 0;
    int lWidth = 0;
    int lVerticalDpi = 0;
};

PageTable PagesOf(const QByteArray &fax)
{
    QTemporaryFile file;
    if (!file.open() || file.write(fax) != fax.size() || !file.flush())
        return {};
    const std::unique_ptr<TIFF, void (*)(TIFF *)> tiff(
        TIFFOpen(QFile::encodeName(file.fileName()).constData(), "r"), &TIFFClose);
    if (!tiff)
        return {};
    uint32_t width = 0;
    float resolution = 0;
    TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tiff.get(), TIFFTAG_YRESOLUTION, &resolution);
    return {int(TIFFNumberOfDirectories(tiff.get())), int(width), qRound(resolution)};
}

} // namespace

class tst_FaxServer : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void greetsAndAnswersInGoldenBytes();
    void refusesLogins();
    void closedConnectionFreesItsAccountAtOnce();
    void refusesCommandsBeforeTheLogin();
    void passwordCanBeChanged();
    void requestsMayComeInPieces();
    void demonstrationIsALivelyOffice();

    void fileWaitsForGoOnTwice();
    void lateAndManyGoOnsAreNoCommands();
    void longListIsSentInTwoPieces();
    void acknowledgesOnlyWhatWasListedAndDelivered();
    void unknownFaxIsRefused();
    void deliversWhileItRuns();
    void refusesToDeliverWhatIsNoFax();
    void manyFaxesAndALargeFileAreFast();

    void uploadReachesTheOtherUserAndTheHistory();
    void uploadThatIsNoFaxIsMarkedSo();
    void historyFollowsRangeAndFlags();

    void scriptReplacesReplies_data();
    void scriptReplacesReplies();
    void scriptTampersWithFiles();
    void scriptTakesItsTime();
    void wrongScriptsAreToldByLine_data();
    void wrongScriptsAreToldByLine();

    void hostileInputEndsOneConnectionOnly_data();
    void hostileInputEndsOneConnectionOnly();

private:
    void StartWithFaxes(int count, const QByteArray &script = {});

    std::unique_ptr<TrialServer> server;
    QString strFax;
};

void tst_FaxServer::init()
{
    server = std::make_unique<TrialServer>();
    QVERIFY2(server->AddUser("anna", "anna"), qPrintable(server->Problem()));
    strFax = server->MakeFax("letter.tif", 2, 12000);
    QVERIFY(!strFax.isEmpty());
}

void tst_FaxServer::cleanup()
{
    QVERIFY2(server->Stop(), qPrintable(server->Problem()));
    server.reset();
}

void tst_FaxServer::StartWithFaxes(int count, const QByteArray &script)
{
    QVERIFY2(count == 0 || server->Deliver("anna", {strFax}, count), qPrintable(server->Problem()));
    QVERIFY2(server->Start(script), qPrintable(server->Problem()));
}

void tst_FaxServer::greetsAndAnswersInGoldenBytes()
{
    StartWithFaxes(0);
    RawClient client(*server);
    QCOMPARE(client.Read(abGreeting.size()), abGreeting);
    QCOMPARE(client.Ask(QByteArray("\x01\0\0\0anna\r\n", 10) + abAnna), abOk);
    QCOMPARE(client.Ask(QByteArray("\x06\0\0\0", 4)), abOk);
    QCOMPARE(client.Ask(QByteArray("\x11\0\0\0", 4)), abOk);
    QCOMPARE(client.Ask(QByteArray("\x12\0\0\0", 4)), QByteArray("\x0d\0\0\0OK\r\n1\0"
                                                                 "150\0"
                                                                 "0\r\n",
                                                                 17));
    for (const int command : {4, 5, 14})
        QVERIFY(client.Ask(Number(command)).mid(4).startsWith("OK\r\n"));
    const QByteArray id = QByteArray(32, 'A');
    QCOMPARE(client.Ask(Counted(15, id + ';')), abOk);
    QCOMPARE(client.Ask(Counted(16, id + ';')), Number(8) + "OK\r\n0;\r\n");
    QCOMPARE(client.Ask(Counted(19, id + ';')), Number(39) + "OK\r\n" + id + ";\r\n");
    QCOMPARE(client.Ask(Counted(20, id + ';')), abOk);
    QCOMPARE(client.Ask(Counted(9, id)), Number(46) + "OK\r\n" + id +
                                             QByteArray("\0"
                                                        "11\0\0\0\0\0\r\n",
                                                        10));
    const QList<QByteArray> versions = client.Ask(Number(3)).mid(4).split('\n').value(1).split('\0');
    QCOMPARE(versions.size(), 8);
    QCOMPARE(client.Ask(Number(2)), abOk);
    QVERIFY(client.IsClosed());
}

void tst_FaxServer::refusesLogins()
{
    QVERIFY(server->AddUser("ben", "ben"));
    QVERIFY(server->AddUser("carl", "ben", true));
    QVERIFY(server->Start({}, {}, {"--max-users", "1"}));
    RawClient first(*server);
    QCOMPARE(first.LogIn("anna", abBen), Refused(1));
    QCOMPARE(first.Ask(Number(1) + "nobody\r\n" + abBen), Refused(1));
    QCOMPARE(first.Ask(Number(1) + "carl\r\n" + abBen), Refused(14));
    QCOMPARE(first.Ask(Number(1) + "ANNA\r\n" + abAnna), abOk);
    RawClient second(*server);
    QCOMPARE(second.LogIn("anna", abAnna), Refused(12));
    QCOMPARE(second.Ask(Number(1) + "ben\r\n" + abBen), Refused(2));
}

void tst_FaxServer::closedConnectionFreesItsAccountAtOnce()
{
    StartWithFaxes(0);
    for (int i = 0; i < 20; ++i) {
        RawClient client(*server);
        QCOMPARE(client.LogIn("anna", abAnna), abOk);
        if (i % 2)
            client.sckServer.abort();
        else
            client.sckServer.close();
    }
}

void tst_FaxServer::refusesCommandsBeforeTheLogin()
{
    StartWithFaxes(1);
    RawClient client(*server);
    client.ReadReply();
    for (const int command : {3, 4, 6, 17, 18})
        QCOMPARE(client.Ask(Number(command)), Refused(20));
    QCOMPARE(client.Ask(Counted(8, "1")), Refused(20));
    QCOMPARE(client.Ask(Number(7) + "1" + '\0' + QByteArray(32, 'A')), Refused(20));
    QCOMPARE(client.Ask(Number(11) + "anna" + '\0' + abAnna + '\0' + abBen), Refused(20));
}

void tst_FaxServer::passwordCanBeChanged()
{
    StartWithFaxes(0);
    {
        RawClient client(*server);
        QCOMPARE(client.LogIn("anna", abAnna), abOk);
        QCOMPARE(client.Ask(Number(11) + "anna" + '\0' + abBen + '\0' + abBen), Refused(1));
        QCOMPARE(client.Ask(Number(11) + "anna" + '\0' + abAnna + '\0' + abBen), abOk);
    }
    RawClient again(*server);
    QCOMPARE(again.LogIn("anna", abAnna), Refused(1));
    QCOMPARE(again.Ask(Number(1) + "anna\r\n" + abBen), abOk);
}

void tst_FaxServer::requestsMayComeInPieces()
{
    StartWithFaxes(1);
    RawClient client(*server);
    client.ReadReply();
    client.Send(Number(1) + "an");
    QVERIFY(client.IsSilent(10));
    client.Send("na\r\n" + abAnna);
    QCOMPARE(client.ReadReply(), abOk);
    for (const char byte : Counted(9, QByteArray(32, 'A')))
        client.Send(QByteArray(1, byte));
    QVERIFY(client.ReadReply().mid(4).startsWith("OK\r\n"));
    QCOMPARE(client.Ask(Number(7) + "100" + '\0' + "short"), Refused(21)); // no length of its own
}

void tst_FaxServer::demonstrationIsALivelyOffice()
{
    server = std::make_unique<TrialServer>();
    for (int start = 0; start < 2; ++start) { // a second seed adds nothing
        QVERIFY2(server->Start({}, "demo"), qPrintable(server->Problem()));
        QVERIFY(start || server->Stop());
    }
    RawClient client(*server);
    QCOMPARE(client.LogIn("anna", abAnna), abOk);
    const QByteArrayList ids = client.List();
    QCOMPARE(ids.size(), 8);
    QSet<QByteArray> senders;
    QSet<QByteArray> levels;
    QSet<int> resolutions;
    int mostPages = 0;
    for (const QByteArray &id : ids) {
        const QByteArrayList fields = client.Ask(Number(7) + "1" + '\0' + id).mid(8).split('\0');
        senders.insert(fields.value(0));
        levels.insert(fields.value(4));
        const PageTable pages = PagesOf(client.Fetch(id));
        QCOMPARE(pages.lPages, fields.value(3).toInt());
        QCOMPARE(pages.lWidth, 1728);
        resolutions.insert(pages.lVerticalDpi);
        mostPages = std::max(mostPages, pages.lPages);
    }
    QVERIFY(senders.contains("O~$@~Brien Catering"));
    QCOMPARE(senders.size(), 8);
    QCOMPARE(levels.size(), 3);
    QCOMPARE(resolutions, (QSet<int>{98, 196}));
    QCOMPARE(mostPages, 5);
    QCOMPARE(client.Ask(Number(5)).mid(4).count("\r\n"), 6);
    const QByteArray today = QDate::currentDate().toString(Qt::ISODate).toLatin1();
    QCOMPARE(client.List(Number(10) + "1900-01-01;" + today + '\0' + "1;1;1;0").size(), 4);
    RawClient ben(*server);
    QCOMPARE(ben.LogIn("ben", abBen), abOk);
    QCOMPARE(ben.List().size(), 3);
}

void tst_FaxServer::fileWaitsForGoOnTwice()
{
    StartWithFaxes(1);
    const QByteArray file = Contents(strFax);
    RawClient client(*server);
    QCOMPARE(client.LogIn("anna", abAnna), abOk);
    const QByteArray list = client.Ask(Number(6));
    const QByteArray id = list.mid(8, 32);
    QCOMPARE(list.mid(4), "OK\r\n" + id + '\0' + QByteArray::number(file.size()) + "\r\n");

    const QByteArray announcement = client.Ask(Number(7) + "100" + '\0' + id).mid(4);
    QVERIFY(announcement.startsWith("OK\r\n") && announcement.endsWith("\r\n"));
    const QByteArrayList fields = announcement.mid(4).chopped(2).split('\0');
    QCOMPARE(fields.size(), 14);
    QCOMPARE(fields[1], QByteArray("letter"));
    QCOMPARE(fields[2], id + ".tif");
    QCOMPARE(fields[3], QByteArray("2"));
    QCOMPARE(fields[13], QByteArray(",0;"));
    QVERIFY(client.IsSilent(100));

    client.Send("GoOn");
    QCOMPARE(client.Read(4), Number(qint32(file.size())));
    QByteArray got = client.Read(file.size(), 200);
    QVERIFY(!got.isEmpty() && got.size() < file.size()); // the rest waits
    client.Send("GoOn");
    got += client.Read(file.size() - got.size());
    QVERIFY(got == file);
}

void tst_FaxServer::lateAndManyGoOnsAreNoCommands()
{
    StartWithFaxes(2);
    const QByteArray file = Contents(strFax);
    RawClient client(*server);
    QCOMPARE(client.LogIn("anna", abAnna), abOk);
    const QByteArrayList ids = client.List();
    QCOMPARE(ids.size(), 2);
    for (const QByteArray &id : ids) {
        client.Ask(Number(7) + "100" + '\0' + id);
        client.Send("GoOn");
        QCOMPARE(client.Read(4), Number(qint32(file.size())));
        client.Send("GoOnGoOnGo");
        client.Send("OnGoOn");
        QVERIFY(client.Read(file.size()) == file);
        client.Send("GoOn"); // for a read that held the end
    }
    QCOMPARE(client.Ask("GoOnGoOn" + Number(17)), abOk);
    QCOMPARE(client.Ask(Number(6)), abOk);
}

void tst_FaxServer::longListIsSentInTwoPieces()
{
    StartWithFaxes(200);
    RawClient client(*server);
    QCOMPARE(client.LogIn("anna", abAnna), abOk);
    client.Send(Number(6));
    const qint32 size = qFromLittleEndian<qint32>(client.Read(4).constData());
    QVERIFY(size > 2044);
    QCOMPARE(client.Read(size, 200).size(), 2044);
    client.Send("GoOn");
    QCOMPARE(client.Read(size - 2044).size(), size - 2044);
    client.Send("GoOn");
    const QByteArrayList ids = client.List();
    QCOMPARE(QSet<QByteArray>(ids.begin(), ids.end()).size(), 200);
}

void tst_FaxServer::acknowledgesOnlyWhatWasListedAndDelivered()
{
    StartWithFaxes(3);
    QByteArrayList ids;
    {
        RawClient client(*server);
        QCOMPARE(client.LogIn("anna", abAnna), abOk);
        ids = client.List();
        QVERIFY(!client.Fetch(ids[0]).isEmpty());
        QVERIFY(server->Deliver("anna", {strFax})); // not listed
        client.Ask(Number(7) + "100" + '\0' + ids[1]);
        client.Send("GoOn"); // and never the second one: the file does not arrive
        client.Read(4);
        client.Read(100000, 200);
        QCOMPARE(client.Ask(Number(17)), abOk); // ids[2] is one that the client has already
        const QByteArrayList waiting = client.List();
        QCOMPARE(waiting.size(), 2);
        QCOMPARE(waiting.first(), ids[1]);
        QVERIFY(!ids.contains(waiting.last()));
    }
    RawClient again(*server); // a new session has listed nothing
    QCOMPARE(again.LogIn("anna", abAnna), abOk);
    QCOMPARE(again.Ask(Number(17)), abOk);
    QCOMPARE(again.List().size(), 2);
}

void tst_FaxServer::unknownFaxIsRefused()
{
    QVERIFY(server->AddUser("ben", "ben"));
    StartWithFaxes(1);
    RawClient anna(*server);
    QCOMPARE(anna.LogIn("anna", abAnna), abOk);
    const QByteArray id = anna.List().first();
    QCOMPARE(anna.Ask(Number(7) + "1" + '\0' + QByteArray(32, 'F')), Refused(21));
    QCOMPARE(anna.Ask(Number(7) + "1" + '\0' + "../../faxserver.db"), Refused(21));
    RawClient ben(*server);
    QCOMPARE(ben.LogIn("ben", abBen), abOk);
    QCOMPARE(ben.Ask(Number(7) + "1" + '\0' + id), Refused(21)); // another one's
}

void tst_FaxServer::deliversWhileItRuns()
{
    StartWithFaxes(0);
    RawClient client(*server);
    QCOMPARE(client.LogIn("anna", abAnna), abOk);
    QCOMPARE(client.List().size(), 0);
    QVERIFY(server->Deliver("anna", {strFax}, 2));
    QCOMPARE(client.List().size(), 2);
}

void tst_FaxServer::refusesToDeliverWhatIsNoFax()
{
    const QString text = server->DataFolder() + "/note.txt";
    QFile file(text);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("no picture") > 0);
    file.close();
    QCOMPARE(server->Run({"--data", server->DataFolder(), "--deliver", "anna", strFax, text}), 1);
    QVERIFY(server->Output().contains("is no TIFF"));
    QCOMPARE(server->Run({"--data", server->DataFolder(), "--deliver", "nobody", strFax}), 1);
    QVERIFY(server->Output().contains("There is no user nobody."));
    QCOMPARE(server->Run({"--data", server->DataFolder(), "--port", "x"}), 1);
    StartWithFaxes(0);
    RawClient client(*server);
    QCOMPARE(client.LogIn("anna", abAnna), abOk);
    QCOMPARE(client.List().size(), 0); // nothing was delivered by halves
}

void tst_FaxServer::manyFaxesAndALargeFileAreFast()
{
    const QString small = server->MakeFax("small.tif", 1, 30000);
    const QString large = server->MakeFax("large.tif", 1, 40000000);
    QVERIFY(server->Deliver("anna", {small}, 300));
    QVERIFY(server->Deliver("anna", {large}));
    StartWithFaxes(0);
    RawClient client(*server);
    QCOMPARE(client.LogIn("anna", abAnna), abOk);
    const QByteArrayList ids = client.List();
    QCOMPARE(ids.size(), 301);
    QElapsedTimer since;
    since.start();
    for (qsizetype i = 0; i < ids.size() - 1; ++i)
        QVERIFY(client.Fetch(ids[i]).size() > 29000);
    QVERIFY2(since.elapsed() < 3000, qPrintable(QString("%1 ms for 300 faxes").arg(since.elapsed())));
    since.restart();
    QVERIFY(client.Fetch(ids.last()) == Contents(large));
    QVERIFY2(since.elapsed() < 3000, qPrintable(QString("%1 ms for 40 MB").arg(since.elapsed())));
}

void tst_FaxServer::uploadReachesTheOtherUserAndTheHistory()
{
    QVERIFY(server->AddUser("ben", "ben"));
    QVERIFY(server->Start({}, {}, {"--line-seconds", "0"}));
    const QByteArray file = Contents(strFax);
    RawClient anna(*server);
    QCOMPARE(anna.LogIn("anna", abAnna), abOk);
    QByteArray ben;
    for (const QByteArray &line : anna.Ask(Number(13)).split('\n'))
        ben = line.contains("ben") ? line.split('\0').first() : ben;
    const QByteArray header = QByteArrayList{"",
                                             "O~$@~Hara",
                                             "x.tif",
                                             "2",
                                             "0",
                                             "soon",
                                             "2020-01-01 00:00:00",
                                             "Ben[" + ben + "];\"Shop\"<123>;",
                                             "0",
                                             "0",
                                             ""}
                                  .join('\0');
    QCOMPARE(anna.Ask(Counted(8, header)), abOk);
    anna.Send(Number(12) + Number(qint32(file.size())) + file.left(100));
    anna.Send(file.mid(100, 5000));
    anna.Send(file.mid(5100));
    const QByteArray answer = anna.ReadReply();
    QCOMPARE(answer.size(), 36);
    const QByteArray id = answer.mid(4);
    const QByteArrayList state = anna.Ask(Counted(9, id)).mid(8).chopped(2).split('\0');
    QCOMPARE(state.size(), 7);
    QCOMPARE(state[1], QByteArray("4"));
    QCOMPARE(state[3], '[' + ben + "];");
    QCOMPARE(state[4], QByteArray("4;4;"));
    QCOMPARE(state[5], QByteArray("\"Shop\"<123>;"));
    QVERIFY(anna.Fetch(id) == file);

    RawClient other(*server);
    QCOMPARE(other.LogIn("ben", abBen), abOk);
    const QByteArray copy = other.List().value(0);
    const QByteArrayList fields = other.Ask(Number(7) + "1" + '\0' + copy).mid(8).chopped(2).split('\0');
    QCOMPARE(fields.value(1), QByteArray("O~$@~Hara"));
    QCOMPARE(fields.value(8), 'U' + ben + ';');
    QCOMPARE(fields.value(13), QByteArray(",0;,0;"));
    QCOMPARE(other.Ask(Counted(19, copy + ';')).mid(8), copy + ";\r\n");
    const QByteArray receipts = other.Ask(Counted(20, copy + ';')).mid(8);
    QVERIFY(receipts.startsWith(copy + '\1'));
    QVERIFY(receipts.endsWith(",1;,0;\r\n"));
}

void tst_FaxServer::uploadThatIsNoFaxIsMarkedSo()
{
    StartWithFaxes(0);
    RawClient client(*server);
    QCOMPARE(client.LogIn("anna", abAnna), abOk);
    QCOMPARE(client.Ask(Counted(8, "1;")), abOk);
    const QByteArray id = client.Ask(Number(12) + Number(4) + "text").mid(4);
    QCOMPARE(client.Ask(Counted(9, id)).mid(8).split('\0').value(1), QByteArray("6"));
}

void tst_FaxServer::historyFollowsRangeAndFlags()
{
    StartWithFaxes(2);
    RawClient client(*server);
    QCOMPARE(client.LogIn("anna", abAnna), abOk);
    QCOMPARE(client.Ask(Counted(8, "1;")), abOk);
    const QByteArray bad = client.Ask(Number(12) + Number(4) + "text").mid(4);
    const QByteArray today = QDate::currentDate().toString(Qt::ISODate).toLatin1();
    const QByteArray all = Number(10) + "1900-01-01;" + today + '\0';
    QCOMPARE(client.List(all + "1;1;1;1").size(), 3);
    QCOMPARE(client.List(all + "1;1;0;1").size(), 2);
    QCOMPARE(client.Ask(all + "0;0;1;0").mid(8), bad + '\0' + "4" + '\0' + "6\r\n");
    QVERIFY(client.Ask(all + "0;0;0;1")
                .endsWith(QByteArray("\0"
                                     "9\r\n",
                                     4)));
    QCOMPARE(client.List(Number(10) + "1900-01-01;2000-01-01" + '\0' + "1;1;1;1").size(), 0);
    QCOMPARE(client.Ask(Number(10) + "yesterday;today" + '\0' + "1;1;1;1"), Refused(22));
}

void tst_FaxServer::scriptReplacesReplies_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QByteArray>("greeting");
    QTest::addColumn<QByteArrayList>("replies"); // to the login and to two lists
    const QByteArray kinds("OK\r\na\0"
                           "1\0"
                           "9\r\nb\0"
                           "1\0"
                           "3\r\nc\r\n",
                           21);
    QTest::newRow("wrong version") << QByteArray("on greeting short \"Welcome\\r\\n1.5\\r\\n\"")
                                   << Number(14) + "Welcome\r\n1.5\r\n"
                                   << QByteArrayList{abOk, abOk, abOk};
    QTest::newRow("refused once") << QByteArray(
                                         "# a comment\n\non 1 refuse 14\non 6 once refuse 5 # said once\n")
                                  << abGreeting << QByteArrayList{Refused(14), Refused(5), Refused(20)};
    QTest::newRow("canned, the second time")
        << QByteArray("on 6 #2 long \"OK\\r\\na\\01\\09\\r\\nb\\01\\03\\r\\nc\\r\\n\"") << abGreeting
        << QByteArrayList{abOk, abOk, Number(21) + kinds};
    QTest::newRow("from the second on, wrong length") << QByteArray("on 6 #2+ declare +3") << abGreeting
                                                      << QByteArrayList{abOk, abOk, Number(7) + "OK\r\n"};
    QTest::newRow("bytes") << QByteArray("on 6 hex ff0000 raw \"x\"") << abGreeting
                           << QByteArrayList{abOk, "\xff" + QByteArray("\0\0x", 3),
                                             "\xff" + QByteArray("\0\0x", 3)};
}

void tst_FaxServer::scriptReplacesReplies()
{
    QFETCH(QByteArray, script);
    QFETCH(QByteArray, greeting);
    QFETCH(QByteArrayList, replies);
    StartWithFaxes(0, script);
    RawClient client(*server);
    QCOMPARE(client.Read(greeting.size()), greeting);
    client.Send(Number(1) + "anna\r\n" + abAnna);
    QCOMPARE(client.Read(replies[0].size()), replies[0]);
    client.Send(Number(6));
    QCOMPARE(client.Read(replies[1].size()), replies[1]);
    client.Send(Number(6));
    QCOMPARE(client.Read(replies[2].size()), replies[2]);
    QVERIFY(client.IsSilent(50));
}

void tst_FaxServer::scriptTampersWithFiles()
{
    StartWithFaxes(4, "on 7 #1 fields 11\non 7 #2 declare -10\non 7 #3 refuse 21\non 7 #4 close-after 3000");
    const QByteArray file = Contents(strFax);
    RawClient client(*server);
    QCOMPARE(client.LogIn("anna", abAnna), abOk);
    const QByteArrayList ids = client.List();
    QCOMPARE(client.Ask(Number(7) + "1" + '\0' + ids[0]).mid(8).count('\0'), 10);
    client.Send("GoOn");
    client.Send("GoOn");
    QVERIFY(client.Read(4 + file.size()).mid(4) == file);

    client.Ask(Number(7) + "1" + '\0' + ids[1]);
    client.Send("GoOn");
    QCOMPARE(client.Read(4), Number(qint32(file.size()) - 10));
    client.Send("GoOn");
    QVERIFY(client.Read(file.size()) == file);

    QCOMPARE(client.Ask(Number(7) + "1" + '\0' + ids[2]), Refused(21));
    QCOMPARE(client.Ask(Number(17)), abOk);
    QCOMPARE(client.List(), (QByteArrayList{ids[1]})); // what left with a wrong size was not delivered

    const QByteArray announcement = client.Ask(Number(7) + "1" + '\0' + ids[3]);
    client.Send("GoOn");
    QCOMPARE(client.Read(4000).size(), 3000 - announcement.size());
    QVERIFY(client.IsClosed());
}

void tst_FaxServer::scriptTakesItsTime()
{
    StartWithFaxes(1, "on 6 #1 silence\non 6 #2 delay 300\non 6 #3 pieces 20 30\non 7 stall-after 1000");
    RawClient client(*server);
    QCOMPARE(client.LogIn("anna", abAnna), abOk);
    client.Send(Number(6));
    QVERIFY(client.IsSilent(100));
    QElapsedTimer since;
    since.start();
    client.Send(Number(6) + Number(17)); // the second waits its turn
    const QByteArray list = client.ReadReply();
    QVERIFY(since.elapsed() >= 290);
    QCOMPARE(client.ReadReply(), abOk);
    QVERIFY(server->Deliver("anna", {strFax}));
    since.restart();
    QCOMPARE(client.Ask(Number(6)).size(), list.size());
    QVERIFY(since.elapsed() >= 55);

    const QByteArray id = client.List().first();
    const QByteArray announcement = client.Ask(Number(7) + "1" + '\0' + id);
    client.Send("GoOn");
    QCOMPARE(client.Read(5000, 200).size(), 1000 - announcement.size());
    QVERIFY(!client.IsClosed(0));
}

void tst_FaxServer::wrongScriptsAreToldByLine_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("no rule") << QByteArray("hello");
    QTest::newRow("no command") << QByteArray("on 21 close");
    QTest::newRow("no action") << QByteArray("on 6 dance");
    QTest::newRow("nothing") << QByteArray("on 6 #2");
    QTest::newRow("no number") << QByteArray("on 6 delay soon");
    QTest::newRow("open text") << QByteArray("on 6 long \"OK");
}

void tst_FaxServer::wrongScriptsAreToldByLine()
{
    QFETCH(QByteArray, line);
    QFile script(server->DataFolder() + "/script");
    QVERIFY(script.open(QIODevice::WriteOnly) && script.write("on 6 close\n" + line) > 0);
    script.close();
    QCOMPARE(server->Run({"--data", server->DataFolder(), "--script", script.fileName()}), 1);
    QVERIFY2(server->Output().contains("Line 2 of the script: "), server->Output().constData());
}

void tst_FaxServer::hostileInputEndsOneConnectionOnly_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("no command") << QByteArray("GET / HTTP/1.0\r\n\r\n");
    QTest::newRow("command 0") << Number(0);
    QTest::newRow("negative length") << Number(9) + Number(-1);
    QTest::newRow("absurd length") << Number(9) + Number(0x7fffffff);
    QTest::newRow("file without header") << Number(12) + Number(1000) + "abc";
    QTest::newRow("negative file") << Counted(8, "1;") + Number(12) + Number(-5);
    QTest::newRow("endless request") << Number(1) + QByteArray(200000, 'a');
}

void tst_FaxServer::hostileInputEndsOneConnectionOnly()
{
    QFETCH(QByteArray, bytes);
    StartWithFaxes(1);
    RawClient good(*server);
    QCOMPARE(good.LogIn("anna", abAnna), abOk);
    RawClient bad(*server);
    bad.ReadReply();
    bad.Send(bytes);
    bad.Read(bytes.size() + 100000);
    QVERIFY(bad.IsClosed());
    QCOMPARE(good.List().size(), 1);
}

QTEST_GUILESS_MAIN(tst_FaxServer)
#include "tst_FaxServer.moc"
