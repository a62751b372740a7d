#include "Loopback.h"

#include <cstdio>
#include <utility>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

sockaddr_in Address(int port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<uint16_t>(port));
    return address;
}

void SetNoDelay(int connection)
{
    const int yes = 1;
    setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
}

} // namespace

Loopback::Server::Server(std::function<void(int)> serve)
    : lListener(socket(AF_INET, SOCK_STREAM, 0))
{
    sockaddr_in address = Address(0);
    socklen_t length = sizeof address;
    bind(lListener, reinterpret_cast<sockaddr *>(&address), length);
    listen(lListener, 1);
    getsockname(lListener, reinterpret_cast<sockaddr *>(&address), &length);
    lPort = ntohs(address.sin_port);
    thread = std::thread([listener = lListener, take = std::move(serve)] {
        for (int connection; (connection = accept(listener, nullptr, nullptr)) >= 0; close(connection)) {
            SetNoDelay(connection);
            take(connection);
        }
    });
}

Loopback::Server::~Server()
{
    shutdown(lListener, SHUT_RDWR);
    thread.join();
    close(lListener);
}

int Loopback::Connect(int port)
{
    const int connection = socket(AF_INET, SOCK_STREAM, 0);
    const sockaddr_in address = Address(port);
    SetNoDelay(connection);
    if (connect(connection, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0)
        return connection;
    close(connection);
    return -1;
}

void Loopback::Send(int connection, const QByteArray &bytes)
{
    for (qsizetype done = 0; done < bytes.size();) {
        const ssize_t sent = send(connection, bytes.constData() + done, bytes.size() - done, MSG_NOSIGNAL);
        if (sent <= 0)
            return;
        done += sent;
    }
}

QByteArray Loopback::Read(int connection, std::size_t count)
{
    QByteArray bytes(static_cast<qsizetype>(count), '\0');
    if (recv(connection, bytes.data(), count, MSG_WAITALL) != static_cast<ssize_t>(count))
        std::perror("loopback");
    return bytes;
}

void Loopback::ReadToEnd(int connection)
{
    shutdown(connection, SHUT_WR);
    char rest[4096];
    while (recv(connection, rest, sizeof rest, 0) > 0) {
    }
}
