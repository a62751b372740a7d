#pragma once

#include <QByteArray>

#include <cstddef>
#include <functional>
#include <thread>

/// Plain sockets of this machine, for the measure that the program's own connections are held against.
namespace Loopback {

/// Serves one connection after the other, in a thread of its own.
class Server
{
public:
    /// `serve` gets each connection, which is closed afterwards.
    explicit Server(std::function<void(int connection)> serve);
    ~Server();
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    int Port() const { return lPort; }

private:
    int lListener;
    int lPort = 0;
    std::thread thread;
};

/// A connection to such a server; below 0 when there is none.
int Connect(int port);
void Send(int connection, const QByteArray &bytes);
/// Waits for exactly so many bytes.
QByteArray Read(int connection, std::size_t count);
/// Says that nothing more comes, and waits for the other side to say so.
void ReadToEnd(int connection);

} // namespace Loopback
