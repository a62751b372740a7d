#pragma once

#include "core/ports/Socket.h"

#include <QList>
#include <QPointer>

#include <utility>

/// A socket that a test plays the server of: it feeds bytes and reads what was written.
class FakeSocket final : public Socket
{
public:
    using Socket::Socket;

    void Connect(const QString &host, int port) override;
    void Close() override;
    SocketState State() const override { return state; }
    void SendData(const QByteArray &bytes) override { aWrites.append(bytes); }
    QByteArray GetData() override { return std::exchange(abIncoming, {}); }

    // What the server does

    void AcceptConnection();
    void RefuseConnection() { Fail(sckConnectionRefused); }
    /// One read of these bytes.
    void Feed(const QByteArray &bytes);
    /// A short reply: four bytes and the text, in one read.
    void FeedShort(const QByteArray &text);
    /// A long reply with its length in front, in one read.
    void FeedLong(const QByteArray &text) { FeedShort(text); }
    void CloseByServer();
    void Fail(int number, const QString &description = {});
    /// Reports that everything written has left.
    void DrainSends() { emit SendComplete(); }

    // What the client did

    QString strHost;
    int lPort = -1;
    int lConnects = 0;
    QList<QByteArray> aWrites; ///< each `SendData` is one element
    /// Takes the oldest write; empty when there is none.
    QByteArray TakeWrite() { return aWrites.isEmpty() ? QByteArray() : aWrites.takeFirst(); }

private:
    SocketState state = sckClosed;
    QByteArray abIncoming;
};

/// Hands out fake sockets and remembers the latest.
class FakeSockets final : public Sockets
{
public:
    std::unique_ptr<Socket> Create() override;

    /// The latest socket; null when it is gone.
    FakeSocket *Last() const { return last; }

private:
    QPointer<FakeSocket> last;
};
