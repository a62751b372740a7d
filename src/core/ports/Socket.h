#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

#include <memory>

/// One TCP connection with the states and error numbers of the protocol's home platform.
///
/// Signals come through the event loop, never from inside a call. A socket does not report its own `Close`,
/// and what an earlier connection still had to report is never heard on a later one.
class Socket : public QObject
{
    Q_OBJECT

public:
    enum SocketState {
        sckClosed = 0,
        sckOpen = 1,
        sckListening = 2,
        sckConnectionPending = 3,
        sckResolvingHost = 4,
        sckHostResolved = 5,
        sckConnecting = 6,
        sckConnected = 7,
        sckClosing = 8,
        sckError = 9
    };

    /// Error numbers that the program looks at or shows.
    enum SocketError {
        sckAddressInUse = 10048,
        sckNetworkUnreachable = 10051,
        sckConnectionAborted = 10053,
        sckConnectionReset = 10054,
        sckTimedOut = 10060,
        sckConnectionRefused = 10061,
        sckHostUnreachable = 10065,
        sckHostNotFound = 11001
    };

    using QObject::QObject;

    /// Begins to connect; the outcome comes as `Connected` or `Error`. Port 0 and ports above 65535 fail.
    virtual void Connect(const QString &host, int port) = 0;
    virtual void Close() = 0;
    virtual SocketState State() const = 0;

    /// Queues the bytes as one write. Only for a connected socket.
    virtual void SendData(const QByteArray &bytes) = 0;

    /// Takes all bytes that have arrived.
    virtual QByteArray GetData() = 0;

signals:
    void Connected();
    void Closed();
    void ConnectionRequest(int requestId);
    void DataArrival(qint64 bytesTotal);
    /// Everything queued has left.
    void SendComplete();
    void SendProgress(qint64 bytesSent, qint64 bytesRemaining);
    void Error(int number, const QString &description);
};

class Sockets
{
public:
    virtual ~Sockets() = default;
    virtual std::unique_ptr<Socket> Create() = 0;
};
