#include "platform/SystemInstance.h"

#include "platform/FileDescriptor.h"
#include "platform/RuntimeFolder.h"

#include <QCoreApplication>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
const QByteArray raiseRequest = QByteArrayLiteral("raise\n");

QString ChannelName(qlonglong process)
{
    return QStringLiteral("velmar.%1.%2").arg(geteuid()).arg(process);
}

/// Any local user can reach a socket that has a name only, and can take such a name first.
bool IsOfSameUser(const QLocalSocket &socket)
{
    ucred peer{};
    socklen_t length = sizeof peer;
    return getsockopt(static_cast<int>(socket.socketDescriptor()), SOL_SOCKET, SO_PEERCRED, &peer, &length) ==
               0 &&
           peer.uid == geteuid();
}

QString LockFileName(const QString &name)
{
    QString plain = name;
    for (QChar &character : plain) {
        if (!character.isLetterOrNumber())
            character = u'_';
    }
    return QStringLiteral("/velmar.") + plain + QStringLiteral(".lock");
}

FileDescriptor OpenLockFile(const QString &name)
{
    int failure = 0;
    const QString folder = RuntimeFolder(failure);
    FileDescriptor file;
    if (!folder.isEmpty()) {
        const QByteArray path = QFile::encodeName(folder + LockFileName(name));
        file = FileDescriptor(
            open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR));
        failure = errno;
    }
    if (!file.IsOpen())
        qWarning("No lock file for a single copy: %s", std::strerror(failure));
    return file;
}
} // namespace

SystemInstance::SystemInstance() = default;
SystemInstance::~SystemInstance() = default;

bool SystemInstance::TakeLock(const QString &name)
{
    if (locks.contains(name))
        return true;
    auto file = std::make_shared<FileDescriptor>(OpenLockFile(name));
    // Where no lock can be had at all the program still has to start.
    if (file->IsOpen() && flock(file->Number(), LOCK_EX | LOCK_NB) != 0)
        return errno != EWOULDBLOCK;
    locks.insert(name, file);
    return true;
}

qlonglong SystemInstance::PublishWindow()
{
    const qint64 process = QCoreApplication::applicationPid();
    if (server && server->isListening())
        return process;
    server = std::make_unique<QLocalServer>();
    server->setSocketOptions(QLocalServer::AbstractNamespaceOption);
    connect(server.get(), &QLocalServer::newConnection, this, &SystemInstance::OnConnection);
    if (server->listen(ChannelName(process)))
        return process;
    qWarning("Other copies cannot raise this window: %s", qPrintable(server->errorString()));
    return 0;
}

void SystemInstance::OnConnection()
{
    while (QLocalSocket *caller = server->nextPendingConnection()) {
        connect(caller, &QLocalSocket::disconnected, caller, &QObject::deleteLater);
        if (!IsOfSameUser(*caller)) {
            caller->abort();
            caller->deleteLater();
            continue;
        }
        connect(caller, &QLocalSocket::readyRead, this, [this, caller] { OnRequest(caller); });
        OnRequest(caller); // what came before the signal was connected
    }
}

void SystemInstance::OnRequest(QLocalSocket *caller)
{
    if (caller->bytesAvailable() < raiseRequest.size())
        return;
    const bool understood = caller->read(raiseRequest.size()) == raiseRequest;
    caller->abort();
    caller->deleteLater();
    if (understood)
        emit RaiseRequested();
}

void SystemInstance::RaiseWindow(qlonglong window)
{
    if (window <= 0)
        return;
    QLocalSocket channel;
    channel.setSocketOptions(QLocalSocket::AbstractNamespaceOption);
    channel.connectToServer(ChannelName(window));
    // A local socket connects at once or not at all.
    if (channel.state() != QLocalSocket::ConnectedState || !IsOfSameUser(channel))
        return;
    channel.write(raiseRequest);
    channel.flush();
}
