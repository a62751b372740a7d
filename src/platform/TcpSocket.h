#pragma once

#include "core/ports/Socket.h"

#include <QAbstractSocket>

#include <memory>

class ConnectionProbe;
class QTcpSocket;

/// A TCP connection over the network. Every connection has a socket and a number of its own: what an earlier
/// one still had to report is recognised by its number and dropped.
class TcpSocket final : public Socket
{
    Q_OBJECT

public:
    TcpSocket();
    ~TcpSocket() override;

    void Connect(const QString &host, int port) override;
    void Close() override;
    SocketState State() const override;
    void SendData(const QByteArray &bytes) override;
    QByteArray GetData() override;

private:
    template <typename Signal, typename Slot>
    void Listen(Signal signal, Slot slot);
    void PrepareConnection();
    void OnConnected();
    void OnDisconnected();
    void OnReadyRead();
    void OnBytesWritten(qint64 bytes);
    void OnErrorOccurred(QAbstractSocket::SocketError error);
    void Fail(int number);

    std::unique_ptr<QTcpSocket> tcp;
    std::unique_ptr<ConnectionProbe> probe;
    SocketState state = sckClosed;
    int lConnection = 0;
    bool bDrainDue = false; ///< something was queued since the last `SendComplete`
};

class TcpSockets final : public Sockets
{
public:
    std::unique_ptr<Socket> Create() override { return std::make_unique<TcpSocket>(); }
};
