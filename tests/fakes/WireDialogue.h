#pragma once

#include "fakes/FakePorts.h"
#include "server/wire/Frames.h"
#include "server/wire/clsClient.h"

#include <QList>
#include <QTemporaryDir>

#include <memory>
#include <utility>

/// A connected protocol client, a server that the test plays, and everything that the client raised.
struct WireDialogue
{
    WireDialogue()
        : client(std::make_unique<clsClient>(ports.sockets.Create(), ports.ports))
        , socket(*ports.sockets.Last())
    {
        QObject::connect(client.get(), &clsClient::DataArrival,
                         [this](const ClientReply &reply) { aReplies.append(reply); });
        QObject::connect(client.get(), &clsClient::Error,
                         [this](const ClientError &error) { aErrors.append(error); });
        QObject::connect(client.get(), &clsClient::SendingProgress,
                         [this](int percent) { aProgress.append(percent); });
        QObject::connect(client.get(), &clsClient::SendComplete, [this] { ++lSendCompletes; });
        Reconnect();
    }

    /// The folder of the files that come in, with a slash at its end.
    QString Folder() const { return dir.path() + u'/'; }
    QString Path(const QString &name) const { return Folder() + name; }

    /// Takes the writes so far as one text.
    QByteArray Sent()
    {
        QByteArray all;
        while (!socket.aWrites.isEmpty())
            all += socket.TakeWrite();
        return all;
    }
    ClientReply TakeReply() { return aReplies.isEmpty() ? NoReply() : aReplies.takeFirst(); }
    static ClientReply NoReply()
    {
        ClientReply reply;
        reply.lState = -1;
        return reply;
    }

    /// Takes the replies so far, each as "state percent% current/total data". Long data is told by its size,
    /// first and last letter.
    QStringList Told()
    {
        QStringList told;
        for (const ClientReply &reply : std::exchange(aReplies, {})) {
            const QByteArray &data = reply.abData;
            const bool isLong = data.size() > 30;
            told.append(QString::asprintf("%d %d%% %lld/%lld ", reply.lState, reply.lPercent, reply.lCurrent,
                                          reply.lTotal) +
                        (isLong ? QString::asprintf("[%lld %c %c]", data.size(), data.front(), data.back())
                                : QString::fromLatin1(data)));
        }
        return told;
    }
    /// True when nothing is under way: what comes next is taken for a short reply.
    bool IsIdle()
    {
        aReplies.clear();
        socket.FeedShort("hello");
        return aReplies.size() == 1 && aReplies.first().lState == ClientReply::statShort &&
               TakeReply().abData == "hello";
    }
    void Reconnect()
    {
        client->Connect("fax", "8750");
        socket.AcceptConnection();
        aReplies.clear();
    }

    /// Asks for the fax and lets the server announce it; what was sent is forgotten.
    void BeginDownload(const QString &id, const QByteArray &announcement = "OK\r\nsender\r\n")
    {
        client->GetFax(0, id, Folder());
        socket.FeedLong(announcement);
        Sent();
    }

    QString MakeFile(const QString &name, const QByteArray &content) const
    {
        QFile file(Path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("The test cannot write its file.");
        return file.fileName();
    }
    QByteArray ReadFile(const QString &name) const
    {
        QFile file(Path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no such file");
    }

    QTemporaryDir dir;
    FakePorts ports;
    std::unique_ptr<clsClient> client;
    FakeSocket &socket;
    QList<ClientReply> aReplies;
    QList<ClientError> aErrors;
    QList<int> aProgress;
    int lSendCompletes = 0;
};
