#include "fakes/FakeSocket.h"

#include <QtEndian>

namespace {
QByteArray LittleEndian(qint32 value)
{
    QByteArray bytes(4, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}
} // namespace

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

void FakeSocket::SendData(const QByteArray &bytes)
{
    aWrites.append(bytes);
}

QByteArray FakeSocket::GetData()
{
    return std::exchange(abIncoming, {});
}

void FakeSocket::AcceptConnection()
{
    state = sckConnected;
    emit Connected();
}

void FakeSocket::RefuseConnection(int number)
{
    Fail(number);
}

void FakeSocket::Feed(const QByteArray &bytes)
{
    abIncoming += bytes;
    emit DataArrival(abIncoming.size());
}

void FakeSocket::FeedShort(const QByteArray &text)
{
    Feed(LittleEndian(static_cast<qint32>(text.size())) + text);
}

void FakeSocket::FeedLong(const QByteArray &text)
{
    FeedShort(text);
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

void FakeSocket::DrainSends()
{
    emit SendComplete();
}

QByteArray FakeSocket::TakeWrite()
{
    return aWrites.isEmpty() ? QByteArray() : aWrites.takeFirst();
}

std::unique_ptr<Socket> FakeSockets::Create()
{
    auto socket = std::make_unique<FakeSocket>();
    last = socket.get();
    return socket;
}
