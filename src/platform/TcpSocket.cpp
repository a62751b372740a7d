#include "platform/TcpSocket.h"

#include "platform/ConnectionProbe.h"

#include <QCoreApplication>
#include <QNetworkProxy>
#include <QPointer>
#include <QTcpSocket>

#include <utility>

namespace {

constexpr int addressNotAvailable = 10049;
constexpr int highestPort = 65535;
/// What one connection holds of data that nobody has read yet; the sender is slowed down above it.
constexpr qint64 readBufferSize = 8 * 1024 * 1024;

QString Description(int number)
{
    switch (number) {
    case addressNotAvailable:
        return QStringLiteral("The address is not available.");
    case Socket::sckAddressInUse:
        return QStringLiteral("The address is in use.");
    case Socket::sckNetworkUnreachable:
        return QStringLiteral("The network cannot be reached at this time.");
    case Socket::sckConnectionReset:
        return QStringLiteral("The connection was reset by the remote side.");
    case Socket::sckTimedOut:
        return QStringLiteral("The attempt to connect timed out.");
    case Socket::sckConnectionRefused:
        return QStringLiteral("The connection was refused.");
    case Socket::sckHostUnreachable:
        return QStringLiteral("The host cannot be reached at this time.");
    case Socket::sckHostNotFound:
        return QStringLiteral("The host was not found.");
    default:
        return QStringLiteral("The connection was aborted.");
    }
}

/// Only the text tells these failures apart. It is in the language of the program, so it is compared with
/// what the same translation gives.
int NetworkErrorNumber(const QString &text)
{
    const auto is = [&](const char *source) {
        return text == QCoreApplication::translate("QNativeSocketEngine", source);
    };
    if (is("Network unreachable"))
        return Socket::sckNetworkUnreachable;
    if (is("Host unreachable"))
        return Socket::sckHostUnreachable;
    if (is("Connection timed out"))
        return Socket::sckTimedOut;
    return Socket::sckConnectionAborted;
}

int ErrorNumber(QAbstractSocket::SocketError error, const QString &text)
{
    switch (error) {
    case QAbstractSocket::ConnectionRefusedError:
        return Socket::sckConnectionRefused;
    case QAbstractSocket::HostNotFoundError:
        return Socket::sckHostNotFound;
    case QAbstractSocket::SocketTimeoutError:
        return Socket::sckTimedOut;
    case QAbstractSocket::AddressInUseError:
        return Socket::sckAddressInUse;
    case QAbstractSocket::SocketAddressNotAvailableError:
        return addressNotAvailable;
    case QAbstractSocket::NetworkError:
        return NetworkErrorNumber(text);
    default:
        return Socket::sckConnectionAborted;
    }
}

} // namespace

TcpSocket::TcpSocket() = default;

TcpSocket::~TcpSocket()
{
    Close();
}

/// Queued: a wait inside a slot that the socket calls directly would get no more data.
template <typename Signal, typename Slot>
void TcpSocket::Listen(Signal signal, Slot slot)
{
    const auto deliver = [this, slot, connection = lConnection](auto... arguments) {
        if (connection == lConnection)
            (this->*slot)(arguments...);
    };
    connect(tcp.get(), signal, this, deliver, Qt::QueuedConnection);
}

void TcpSocket::Connect(const QString &host, int port)
{
    Close();
    state = sckConnecting;
    tcp = std::make_unique<QTcpSocket>();
    tcp->setProxy(QNetworkProxy::NoProxy);
    tcp->setReadBufferSize(readBufferSize);
    connect(tcp.get(), &QTcpSocket::connected, this, &TcpSocket::PrepareConnection);
    Listen(&QTcpSocket::connected, &TcpSocket::OnConnected);
    Listen(&QTcpSocket::disconnected, &TcpSocket::OnDisconnected);
    Listen(&QTcpSocket::readyRead, &TcpSocket::OnReadyRead);
    Listen(&QTcpSocket::bytesWritten, &TcpSocket::OnBytesWritten);
    Listen(&QTcpSocket::errorOccurred, &TcpSocket::OnErrorOccurred);
    if (port >= 1 && port <= highestPort)
        tcp->connectToHost(host, static_cast<quint16>(port));
    else
        QMetaObject::invokeMethod(
            this,
            [this, connection = lConnection] {
                if (connection == lConnection)
                    Fail(addressNotAvailable);
            },
            Qt::QueuedConnection);
}

void TcpSocket::Close()
{
    ++lConnection;
    state = sckClosed;
    bDrainDue = false;
    probe.reset();
    if (!tcp)
        return;
    tcp->disconnect(this);
    tcp->flush(); // a good-bye just said still leaves
    tcp->abort();
    tcp.reset();
}

Socket::SocketState TcpSocket::State() const
{
    const bool isResolving = state == sckConnecting && tcp->state() == QAbstractSocket::HostLookupState;
    return isResolving ? sckResolvingHost : state;
}

void TcpSocket::SendData(const QByteArray &bytes)
{
    // It may be closed already without the report of it having come.
    if (state != sckConnected || tcp->state() != QAbstractSocket::ConnectedState)
        return;
    bDrainDue = true;
    tcp->write(bytes);
}

QByteArray TcpSocket::GetData()
{
    return tcp && tcp->isOpen() ? tcp->readAll() : QByteArray();
}

/// Called directly: by the time of a queued report the descriptor may be gone.
void TcpSocket::PrepareConnection()
{
    // Permissions to send on are four bytes; waiting to fill a packet would slow every file down.
    tcp->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    probe = std::make_unique<ConnectionProbe>(tcp->socketDescriptor());
}

void TcpSocket::OnConnected()
{
    state = sckConnected;
    emit Connected();
}

void TcpSocket::OnDisconnected()
{
    if (state != sckConnected)
        return;
    if (probe->IsReset()) {
        Fail(sckConnectionReset);
        return;
    }
    probe.reset();
    state = sckClosing;
    emit Closed();
}

void TcpSocket::OnReadyRead()
{
    if (const qint64 bytes = tcp->bytesAvailable(); bytes > 0)
        emit DataArrival(bytes);
}

void TcpSocket::OnBytesWritten(qint64 bytes)
{
    const int connection = lConnection;
    const QPointer<TcpSocket> self(this);
    emit SendProgress(bytes, tcp->bytesToWrite());
    if (!self || connection != lConnection || tcp->bytesToWrite() > 0)
        return;
    if (std::exchange(bDrainDue, false))
        emit SendComplete();
}

void TcpSocket::OnErrorOccurred(QAbstractSocket::SocketError error)
{
    // The end of a connection that stood is reported by `OnDisconnected`.
    if (error != QAbstractSocket::RemoteHostClosedError && state != sckError)
        Fail(ErrorNumber(error, tcp->errorString()));
}

void TcpSocket::Fail(int number)
{
    probe.reset();
    state = sckError;
    emit Error(number, Description(number));
}
