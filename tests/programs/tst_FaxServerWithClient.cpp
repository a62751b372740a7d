#include "core/ports/Socket.h"
#include "fixtures/TrialServer.h"
#include "platform/SystemPorts.h"
#include "server/wire/clsClient.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

/// The client's end of the wire against the server's: each was written without the other.
class tst_FaxServerWithClient : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void faxesArriveAsTheyAre();
    void uploadComesBackFromTheHistory();

private:
    /// The next reply that is complete, after the command was sent; a default one when none came.
    template <typename Command>
    ClientReply Ask(Command command);
    void LogIn(const QString &user);
    QStringList LinesOf(const ClientReply &reply) const;
    QByteArray FetchedFile(const QString &id);

    std::unique_ptr<TrialServer> server;
    std::unique_ptr<SystemPorts> ports;
    std::unique_ptr<clsClient> client;
    std::unique_ptr<QTemporaryDir> inbox;
    QList<ClientReply> replies;
};

void tst_FaxServerWithClient::init()
{
    server = std::make_unique<TrialServer>();
    inbox = std::make_unique<QTemporaryDir>();
    QVERIFY2(server->Start({}, "demo", {"--line-seconds", "0"}), qPrintable(server->Problem()));
    ports = std::make_unique<SystemPorts>();
    client = std::make_unique<clsClient>(ports->Get().sockets.Create(), ports->Get());
    connect(client.get(), &clsClient::DataArrival, this, [this](const ClientReply &reply) {
        if (reply.lState != ClientReply::statPart)
            replies.append(reply);
    });
}

void tst_FaxServerWithClient::cleanup()
{
    client.reset();
    ports.reset();
    replies.clear();
    QVERIFY2(server->Stop(), qPrintable(server->Problem()));
    server.reset();
}

template <typename Command>
ClientReply tst_FaxServerWithClient::Ask(Command command)
{
    replies.clear();
    command();
    return QTest::qWaitFor([this] { return !replies.isEmpty(); }, 10000) ? replies.first() : ClientReply();
}

QStringList tst_FaxServerWithClient::LinesOf(const ClientReply &reply) const
{
    QStringList lines = QString::fromLatin1(reply.abData).split("\r\n");
    lines.removeLast();
    return lines;
}

void tst_FaxServerWithClient::LogIn(const QString &user)
{
    const ClientReply greeting = Ask([&] { client->Connect("127.0.0.1", QString::number(server->Port())); });
    QCOMPARE(LinesOf(greeting), (QStringList{"Welcome", "1.6 beta"}));
    QString password = user;
    QCOMPARE(LinesOf(Ask([&] { client->LogIn(user, password, false); })), QStringList{"OK"});
}

QByteArray tst_FaxServerWithClient::FetchedFile(const QString &id)
{
    const ClientReply fax = Ask([&] { client->GetFax(1, id, inbox->path() + '/'); });
    QFile file(fax.strFileName);
    return fax.lState == ClientReply::statFileDone && file.open(QIODevice::ReadOnly) ? file.readAll()
                                                                                     : QByteArray();
}

void tst_FaxServerWithClient::faxesArriveAsTheyAre()
{
    QSet<QByteArray> originals;
    const QDir folder(server->DataFolder() + "/faxes");
    for (const QString &name : folder.entryList(QDir::Files)) {
        QFile file(folder.filePath(name));
        QVERIFY(file.open(QIODevice::ReadOnly));
        originals.insert(file.readAll());
    }
    LogIn("anna");
    const QStringList list = LinesOf(Ask([&] { client->GetNewFaxList(); }));
    QCOMPARE(list.size(), 9);
    QSet<QByteArray> fetched;
    for (const QString &line : list.mid(1))
        fetched.insert(FetchedFile(line.split(QChar(0)).first()));
    QCOMPARE(fetched.size(), 8);
    QVERIFY(originals.contains(fetched));
    QCOMPARE(LinesOf(Ask([&] { client->NewFaxReceived(); })), QStringList{"OK"});
    QCOMPARE(LinesOf(Ask([&] { client->GetNewFaxList(); })), QStringList{"OK"});
}

void tst_FaxServerWithClient::uploadComesBackFromTheHistory()
{
    const QString path = server->MakeFax("large.tif", 3, 6000000); // more than one block
    QVERIFY(!path.isEmpty());
    LogIn("ben");
    const QString header =
        QStringList{"", "Large", "large.tif", "3", "1", "", "", "\"Shop\"<123>;", "0", "0", ""}.join(
            QChar(0));
    Ask([&] { client->SendFaxFile(header, path); });
    QVERIFY(QTest::qWaitFor([this] { return replies.size() == 2; }, 20000)); // the header's, then the id
    const QString id = QString::fromLatin1(replies.last().abData);
    QCOMPARE(id.size(), 32);
    const QStringList state = LinesOf(Ask([&] { client->GetFaxState(id); })).value(1).split(QChar(0));
    QCOMPARE(state.value(0), id);
    QCOMPARE(state.value(1), QString("4"));
    QFile original(path);
    QVERIFY(original.open(QIODevice::ReadOnly));
    QVERIFY(FetchedFile(id) == original.readAll());
}

QTEST_MAIN(tst_FaxServerWithClient)
#include "tst_FaxServerWithClient.moc"
