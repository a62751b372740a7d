#include "core/FaxImage.h"
#include "fixtures/Profile.h"
#include "fixtures/TrialServer.h"

#include <QDateTime>
#include <QTcpSocket>
#include <QTest>
#include <QtEndian>

#include <memory>

namespace {

const QByteArray abGreeting("\x13\0\0\0Welcome\r\n1.6 beta\r\n", 23);
const QByteArray abOk("\x04\0\0\0OK\r\n", 8);
/// Digests of the passwords "anna" and "ben".
const QByteArray abAnna = "A70F9E38FF015AFAA9AB0AACABEE2E13";
const QByteArray abBen = "7FE4771C008A22EB763DF47D19E2C6AA";

QByteArray Number(qint32 value)
{
    QByteArray bytes(4, '\0');
    qToLittleEndian(value, bytes.data());
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

QByteArray FaxRequest(const QByteArray &id)
{
    return Number(7) + "100" + '\0' + id;
}

QByteArray PasswordRequest(const QByteArray &oldDigest)
{
    return Number(11) + "anna" + '\0' + oldDigest + '\0' + abBen;
}

QByteArray History(const QByteArray &flags)
{
    return Number(10) + "1900-01-01;" + QDate::currentDate().toString(Qt::ISODate).toLatin1() + '\0' + flags;
}

/// What a client tells of a fax that is to go to these people.
QByteArray Header(const QByteArray &people, const QByteArray &time = "2020-01-01 00:00:00",
                  const QByteArray &sender = {})
{
    const QByteArrayList fields = {
        "",  "O~$@~Hara", "0123456789ABCDEF0123456789ABCDEF.tif", "2", "0", "soon", time, people, "0",
        "0", sender};
    return Counted(8, fields.join('\0'));
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

    /// The reply with its length, or so many bytes of what the request brings.
    QByteArray Ask(const QByteArray &request, qsizetype size = 0)
    {
        Send(request);
        return size == 0 ? ReadReply() : Read(size);
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
        const qint32 size = qFromLittleEndian<qint32>(Read(4).constData());
        QByteArray text = Read(std::min(size, 2044));
        if (size > 2044)
            text += IsSilent(200) ? Ask("GoOn", size - 2044) : QByteArray();
        for (const QByteArray &line : text.split('\n').mid(1))
            ids += line.split('\0').first();
        ids.removeAll(QByteArray());
        return ids;
    }

    /// Sends a fax and returns the id that it got.
    QByteArray Upload(const QByteArray &header, const QByteArray &file)
    {
        if (Ask(header) != abOk)
            return {};
        Send(Number(12) + Number(qint32(file.size())) + file.left(100));
        return Ask(file.mid(100)).mid(4);
    }

    /// The status of a sent fax, or with 4 those of its calls.
    QByteArray State(const QByteArray &id, int field = 1) { return Fields(Counted(9, id)).value(field); }

    /// The fields of a reply of one line behind "OK".
    QByteArrayList Fields(const QByteArray &request) { return Ask(request).mid(8).chopped(2).split('\0'); }

    /// The file of one fax, as a client fetches it.
    QByteArray Fetch(const QByteArray &id)
    {
        if (!Ask(FaxRequest(id)).mid(4).startsWith("OK\r\n"))
            return {};
        const qint32 size = qFromLittleEndian<qint32>(Ask("GoOn", 4).constData());
        return Ask("GoOn", size);
    }

    QTcpSocket sckServer;
    QByteArray abIn;
};

} // namespace

class tst_FaxServer : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        server = std::make_unique<TrialServer>();
        QVERIFY2(server->AddUser("anna", "anna"), qPrintable(server->Problem()));
        strFax = server->MakeFax("letter.tif", 2, 12000);
        QVERIFY(!strFax.isEmpty());
    }

    void cleanup() { QVERIFY2(server->Stop(), qPrintable(server->Problem())); }

    void greetsAndAnswersInGoldenBytes()
    {
        StartWithFaxes(0);
        RawClient client(*server);
        QCOMPARE(client.Read(abGreeting.size()), abGreeting);
        for (const int command : {3, 4, 6, 17, 18})
            QCOMPARE(client.Ask(Number(command)), Refused(20)); // before the login
        QCOMPARE(client.Ask(Counted(8, "1")), Refused(20));
        QCOMPARE(client.Ask(FaxRequest(QByteArray(32, 'A'))), Refused(20));
        QCOMPARE(client.Ask(PasswordRequest(abAnna)), Refused(20));

        client.Send(Number(1) + "an");
        QVERIFY(client.IsSilent(10));
        QCOMPARE(client.Ask("na\r\n" + abAnna), abOk);
        for (const int command : {6, 17})
            QCOMPARE(client.Ask(Number(command)), abOk);
        QCOMPARE(client.Ask(Number(18)), Number(13) + QByteArray("OK\r\n1\0"
                                                                 "150\0"
                                                                 "0\r\n",
                                                                 13));
        for (const int command : {4, 5, 14})
            QVERIFY(client.Ask(Number(command)).mid(4).startsWith("OK\r\n"));
        const QByteArray id = QByteArray(32, 'A');
        QCOMPARE(client.Ask(Counted(15, id + ';')), abOk);
        QCOMPARE(client.Ask(Counted(16, id + ';')), Number(8) + "OK\r\n0;\r\n");
        QCOMPARE(client.Ask(Counted(19, id + ';')), Number(39) + "OK\r\n" + id + ";\r\n");
        QCOMPARE(client.Ask(Counted(20, id + ';')), abOk);
        for (const char byte : Counted(9, id))
            client.Send(QByteArray(1, byte));
        QCOMPARE(client.ReadReply(), Number(46) + "OK\r\n" + id +
                                         QByteArray("\0"
                                                    "11\0\0\0\0\0\r\n",
                                                    10));
        QCOMPARE(client.Fields(Number(3)).size(), 8);
        QCOMPARE(client.Ask(FaxRequest("short")), Refused(21)); // no length of its own
        QCOMPARE(client.Ask(FaxRequest(QByteArray(32, 'F'))), Refused(21));
        QCOMPARE(client.Ask(FaxRequest("../../faxserver.db")), Refused(21));
        QCOMPARE(client.Ask(Number(2)), abOk);
        QVERIFY(client.IsClosed());
    }

    void refusesLoginsAndChangesPasswords()
    {
        QVERIFY(server->AddUser("ben", "ben") && server->AddUser("carl", "ben", true));
        QVERIFY(server->Start({}, {}, {"--max-users", "1"}));
        for (int i = 0; i < 10; ++i) { // a closed connection frees its account at once
            RawClient client(*server);
            QCOMPARE(client.LogIn("anna", abAnna), abOk);
            i % 2 ? client.sckServer.abort() : client.sckServer.close();
        }
        RawClient first(*server), second(*server);
        QCOMPARE(first.LogIn("anna", abBen), Refused(1));
        QCOMPARE(first.Ask(Number(1) + "nobody\r\n" + abBen), Refused(1));
        QCOMPARE(first.Ask(Number(1) + "carl\r\n" + abBen), Refused(14));
        QCOMPARE(first.Ask(Number(1) + "ANNA\r\n" + abAnna), abOk);
        QCOMPARE(first.Ask(PasswordRequest(abBen)), Refused(1));
        QCOMPARE(first.Ask(PasswordRequest(abAnna)), abOk);
        QCOMPARE(second.LogIn("anna", abBen), Refused(12));
        QCOMPARE(second.Ask(Number(1) + "ben\r\n" + abBen), Refused(2));
        QCOMPARE(first.Ask(Number(2)), abOk);
        QCOMPARE(second.Ask(Number(1) + "anna\r\n" + abAnna), Refused(1));
        QCOMPARE(second.Ask(Number(1) + "anna\r\n" + abBen), abOk);
    }

    void demonstrationIsALivelyOffice()
    {
        server = std::make_unique<TrialServer>();
        strFax = server->MakeFax("fetched.tif");
        for (int start = 0; start < 2; ++start) { // a second seed adds nothing
            QVERIFY2(server->Start({}, "demo"), qPrintable(server->Problem()));
            QVERIFY(start || server->Stop());
        }
        RawClient client(*server);
        QCOMPARE(client.LogIn("anna", abAnna), abOk);
        QSet<QByteArray> senders;
        for (const QByteArray &id : client.List()) {
            const QByteArrayList fields = client.Fields(FaxRequest(id));
            senders.insert(fields.value(0));
            QVERIFY(WriteTestFile(strFax, client.Fetch(id)));
            QCOMPARE(FaxImage::GetPageCount(strFax), fields.value(3).toInt());
            QCOMPARE(FaxImage::LoadPage(strFax, 0, 0).lWidth, 1728);
        }
        QCOMPARE(senders.size(), 8);
        QCOMPARE(client.Ask(Number(5)).mid(4).count("\r\n"), 8);
        QCOMPARE(client.List(History("1;1;1;0")).size(), 4);
    }

    void fileWaitsForGoOnTwice()
    {
        StartWithFaxes(60);
        const QByteArray file = ReadTestFile(strFax);
        RawClient client(*server);
        QCOMPARE(client.LogIn("anna", abAnna), abOk);
        const QByteArrayList ids = client.List(); // in two pieces
        QCOMPARE(QSet<QByteArray>(ids.begin(), ids.end()).size(), 60);
        const QByteArrayList fields = client.Fields(FaxRequest(ids[0]));
        QCOMPARE(fields.size(), 14);
        QCOMPARE(fields.mid(1, 3), (QByteArrayList{"letter", ids[0] + ".tif", "2"}));
        QCOMPARE(fields[13], QByteArray(",0;"));
        QVERIFY(client.IsSilent(100));
        QCOMPARE(client.Ask("GoOn", 4), Number(qint32(file.size())));
        QByteArray got = client.Read(file.size(), 200);
        QVERIFY(!got.isEmpty() && got.size() < file.size()); // the rest waits
        got += client.Ask("GoOn", file.size() - got.size());
        QVERIFY(got == file);

        client.Ask(FaxRequest(ids[1]));
        QCOMPARE(client.Ask("GoOn", 4), Number(qint32(file.size())));
        client.Send("GoOnGoOnGo");
        QVERIFY(client.Ask("OnGoOn", file.size()) == file);
        QCOMPARE(client.Ask("GoOnGoOn" + Number(17)), abOk); // late ones are no commands
    }

    void acknowledgesOnlyWhatWasListedAndDelivered()
    {
        QVERIFY(server->AddUser("ben", "ben"));
        StartWithFaxes(3);
        RawClient ben(*server);
        QCOMPARE(ben.LogIn("ben", abBen), abOk);
        {
            RawClient client(*server);
            QCOMPARE(client.LogIn("anna", abAnna), abOk);
            const QByteArrayList ids = client.List();
            QCOMPARE(ben.Ask(FaxRequest(ids[0])), Refused(21)); // another one's
            QVERIFY(!client.Fetch(ids[0]).isEmpty());
            QVERIFY(server->Deliver("anna", {strFax})); // not listed
            client.Ask(FaxRequest(ids[1]));
            client.Ask("GoOn", 4); // and never the second one: the file does not arrive
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

    void refusesToDeliverWhatIsNoFax()
    {
        const QString text = server->DataFolder() + "/note.txt";
        QVERIFY(WriteTestFile(text, "no picture"));
        QCOMPARE(server->Run({"--data", server->DataFolder(), "--deliver", "anna", strFax, text}), 1);
        QVERIFY(server->Output().contains("is no TIFF"));
        StartWithFaxes(0);
        RawClient client(*server);
        QCOMPARE(client.LogIn("anna", abAnna), abOk);
        QCOMPARE(client.List().size(), 0); // nothing was delivered by halves
    }

    void onlyItsOwnerTakesAFaxOffTheLine()
    {
        StartWithBen("3600");
        RawClient anna(*server), ben(*server);
        QCOMPARE(anna.LogIn("anna", abAnna), abOk);
        QCOMPARE(ben.LogIn("ben", abBen), abOk);
        const QByteArray soon =
            QDateTime::currentDateTime().addSecs(2).toString("yyyy-MM-dd HH:mm:ss").toLatin1();
        const QByteArray people = "Ben[" + IdOf(anna, "ben") + "];\"A\"<123>;";
        const QByteArray id = anna.Upload(Header(people, soon), ReadTestFile(strFax));
        const QByteArray never = anna.Upload(Header(people, "2990-01-01 00:00:00"), ReadTestFile(strFax));
        QCOMPARE(ben.State(id), QByteArray("11"));
        QCOMPARE(ben.Ask(Counted(16, id + ';')).mid(8), QByteArray("0;\r\n"));
        ben.Ask(Counted(15, id + ';' + never + ';'));
        QCOMPARE(anna.State(id), QByteArray("1"));
        QCOMPARE(anna.State(id), QByteArray("3")); // nothing has moved since
        QCOMPARE(anna.Ask(Counted(16, id + ';' + QByteArray(32, 'A') + ';')).mid(8), QByteArray("1;0;\r\n"));
        QCOMPARE(ben.List().size(), 0);
        QTRY_COMPARE(ben.List().size(), 1); // its time has come
        QCOMPARE(anna.State(id), QByteArray("1"));
        QCOMPARE(anna.State(id, 4), QByteArray("4;1;"));
        QCOMPARE(anna.List(History("1;0;0;0")), (QByteArrayList{id, never}));
        QCOMPARE(anna.Ask(Counted(15, id + ';' + never + ';')), abOk);
        QCOMPARE(anna.State(id), QByteArray("11"));
        QCOMPARE(anna.State(id, 4), QByteArray("4;11;"));
        QCOMPARE(anna.List(History("0;0;1;0")), (QByteArrayList{id, never}));
    }

    void refusedHeaderLeavesTheConnection()
    {
        StartWithFaxes(0);
        RawClient anna(*server);
        QCOMPARE(anna.LogIn("anna", abAnna), abOk);
        const QByteArray people = QByteArray("A[B];").repeated(2) + QByteArray("\"A\"<1>;").repeated(5000);
        const QByteArrayList headers = {Counted(8, "1;"), Header("", "tomorrow"), Header(people),
                                        Header("\"A\"<1>;", "", QByteArray(300000, 'x')),
                                        Counted(8, QByteArray("';") + Header("").mid(8))};
        for (const QByteArray &header : headers)
            QCOMPARE(anna.Ask(header), Refused(22));
        QCOMPARE(anna.List(History("1;1;1;1")).size(), 0);
    }

    void hostileInputEndsOneConnectionOnly()
    {
        StartWithFaxes(1);
        RawClient good(*server);
        QCOMPARE(good.LogIn("anna", abAnna), abOk);
        const QByteArrayList inputs = {"GET / HTTP/1.0\r\n\r\n",
                                       Number(0),
                                       Number(9) + Number(-1),
                                       Number(9) + Number(0x7fffffff),
                                       Number(12) + Number(1000) + "abc",
                                       Header("") + Number(12) + Number(-5),
                                       Number(1) + QByteArray(200000, 'a')};
        for (const QByteArray &bytes : inputs) {
            RawClient bad(*server);
            bad.ReadReply();
            bad.Ask(bytes, bytes.size() + 100000);
            QVERIFY2(bad.IsClosed(), bytes.left(20).toHex().constData());
            QCOMPARE(good.List().size(), 1);
        }
    }

private:
    void StartWithFaxes(int count)
    {
        QVERIFY2(count == 0 || server->Deliver("anna", {strFax}, count), qPrintable(server->Problem()));
        QVERIFY2(server->Start(), qPrintable(server->Problem()));
    }

    void StartWithBen(const QString &lineSeconds)
    {
        QVERIFY(server->AddUser("ben", "ben"));
        QVERIFY(server->Start({}, {}, {"--line-seconds", lineSeconds}));
    }

    static QByteArray IdOf(RawClient &client, const QByteArray &user)
    {
        for (const QByteArray &line : client.Ask(Number(13)).mid(8).split('\n')) {
            if (line.split('\0').value(1) == user)
                return line.split('\0').first();
        }
        return {};
    }

    std::unique_ptr<TrialServer> server;
    QString strFax;
};

QTEST_MAIN(tst_FaxServer)
#include "tst_FaxServer.moc"
