#include "fakes/FakeSocket.h"

#include <QtEndian>

void FakeSocket::Connect(const QString &host, int port)
{
    strHost = host;
    lPort = port;
    ++lConnects;
    abIncoming.clear();
    state = sckConnecting;
}

void FakeSocket::Close()
{
    state = sckClosed;
    abIncoming.clear();
}

void FakeSocket::AcceptConnection()
{
    state = sckConnected;
    emit Connected();
}

void FakeSocket::Feed(const QByteArray &bytes)
{
    abIncoming += bytes;
    emit DataArrival(abIncoming.size());
}

void FakeSocket::FeedShort(const QByteArray &text)
{
    QByteArray size(4, '\0');
    qToLittleEndian(static_cast<qint32>(text.size()), size.data());
    Feed(size + text);
}

void FakeSocket::CloseByServer()
{
    state = sckClosing;
    emit Closed();
}

void FakeSocket::Fail(int number, const QString &description)
{
    state = sckError;
    emit Error(number, description);
}

std::unique_ptr<Socket> FakeSockets::Create()
{
    auto socket = std::make_unique<FakeSocket>();
    last = socket.get();
    return socket;
}
