#include "Logins.h"

#include "WireText.h"

#include <QTcpSocket>

#include <poll.h>

namespace {

/// Asks the system, since a connection's end may not have been noticed yet behind bytes still unread.
bool HasGone(const QTcpSocket &socket)
{
    if (socket.state() != QAbstractSocket::ConnectedState)
        return true;
    pollfd handle{int(socket.socketDescriptor()), POLLRDHUP, 0};
    return poll(&handle, 1, 0) > 0 && (handle.revents & (POLLRDHUP | POLLHUP | POLLERR)) != 0;
}

} // namespace

Logins::Logins(int most)
    : lMost(most)
{
}

int Logins::Enter(const QString &accountID, QTcpSocket *socket)
{
    QTcpSocket *holder = holders.value(accountID);
    if (holder && holder != socket) {
        if (!HasGone(*holder))
            return WireText::refAlreadyLoggedIn;
        Leave(holder);
    }
    const bool hasSeat = holders.values().contains(socket);
    if (lMost > 0 && holders.size() >= lMost + (hasSeat ? 1 : 0))
        return WireText::refTooManyUsers;
    Leave(socket); // the account that it had before
    holders.insert(accountID, socket);
    return 0;
}

void Logins::Leave(QTcpSocket *socket)
{
    holders.removeIf([socket](const auto &entry) { return entry.value() == socket; });
}
