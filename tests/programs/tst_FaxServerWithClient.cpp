#include "core/ports/Socket.h"
#include "fixtures/Profile.h"
#include "fixtures/TrialServer.h"
#include "platform/SystemPorts.h"
#include "server/wire/clsClient.h"

#include <QTest>

/// The client's end of the wire against the server's: each was written without the other.
class tst_FaxServerWithClient : public QObject
{
    Q_OBJECT

private slots:
    void largeUploadComesBackFromTheHistory()
    {
        TrialServer server;
        QVERIFY2(server.Start({}, "demo", {"--line-seconds", "0"}), qPrintable(server.Problem()));
        const QString path = server.MakeFax("large.tif", 3, 6000000); // more than one block
        SystemPorts ports;
        clsClient client(ports.Get().sockets.Create(), ports.Get());
        connect(&client, &clsClient::DataArrival, this, [this](const ClientReply &reply) {
            if (reply.lState != ClientReply::statPart)
                replies.append(reply);
        });
        client.Connect("127.0.0.1", QString::number(server.Port()));
        QCOMPARE(NextReply().abData, "Welcome\r\n1.6 beta\r\n");
        QString password = "ben";
        client.LogIn("ben", password, false);
        QCOMPARE(NextReply().abData, "OK\r\n");
        const QStringList header = {"", "Large",          "large.tif", "3", "1", "",
                                    "", "\"Shop\"<123>;", "0",         "0", ""};
        client.SendFaxFile(header.join(QChar(0)), path);
        QCOMPARE(NextReply().abData, "OK\r\n");
        const QByteArray id = NextReply().abData;
        QCOMPARE(id.size(), 32);
        client.GetFaxState(id);
        QVERIFY(NextReply().abData.startsWith("OK\r\n" + id + '\0' + '4'));
        const QTemporaryDir inbox;
        client.GetFax(1, id, inbox.path() + '/');
        const ClientReply fax = NextReply();
        QCOMPARE(fax.lState, ClientReply::statFileDone);
        QVERIFY(ReadTestFile(fax.strFileName) == ReadTestFile(path));
        QVERIFY2(server.Stop(), qPrintable(server.Problem()));
    }

private:
    /// The next reply that is complete; a default one when none comes.
    ClientReply NextReply()
    {
        return QTest::qWaitFor([this] { return !replies.isEmpty(); }, 20000) ? replies.takeFirst()
                                                                             : ClientReply();
    }

    QList<ClientReply> replies;
};

QTEST_MAIN(tst_FaxServerWithClient)
#include "tst_FaxServerWithClient.moc"
