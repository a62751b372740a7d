#include "platform/SystemPorts.h"
#include "platform/TcpSocket.h"
#include "server/wire/Frames.h"
#include "server/wire/clsClient.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

// Downloads of one large fax over loopback: the client of the program against the least that any client of
// the protocol must do. "--peak" receives 500 MB instead and prints the memory that the process took at most.

namespace {

constexpr qint32 fileSize = 100 * 1000 * 1000;
constexpr qint32 peakFileSize = 500 * 1000 * 1000;
constexpr std::size_t blockSize = 256 * 1024;
const QByteArray announcement = "OK\r\nsender\r\n";

void ReadAll(int connection, std::size_t count)
{
    std::vector<char> bytes(count);
    if (recv(connection, bytes.data(), count, MSG_WAITALL) != static_cast<ssize_t>(count))
        std::perror("server reads");
}

/// Serves one file per connection: the first block, then the rest as fast as it is taken.
class FileServer
{
public:
    explicit FileServer(qint32 size)
        : lSize(size)
        , lListener(socket(AF_INET, SOCK_STREAM, 0))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        bind(lListener, reinterpret_cast<sockaddr *>(&address), length);
        listen(lListener, 1);
        getsockname(lListener, reinterpret_cast<sockaddr *>(&address), &length);
        lPort = ntohs(address.sin_port);
        thread = std::thread([this] { Run(); });
    }
    ~FileServer()
    {
        shutdown(lListener, SHUT_RDWR);
        thread.join();
        close(lListener);
    }
    int Port() const { return lPort; }

private:
    void Run()
    {
        for (int connection; (connection = accept(lListener, nullptr, nullptr)) >= 0; close(connection))
            Serve(connection);
    }
    void Serve(int connection) const
    {
        const int yes = 1;
        setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
        ReadAll(connection, Frames::FormA(Frames::cmdGetFax, QByteArray("0\0A1", 4)).size());
        Send(connection, Frames::Long(static_cast<qint32>(announcement.size())) + announcement);
        ReadAll(connection, 4);
        QByteArray block(blockSize, 'x');
        Send(connection, Frames::Long(lSize) + block);
        ReadAll(connection, 4);
        for (qint64 left = lSize - block.size(); left > 0; left -= block.size()) {
            block.truncate(qMin<qint64>(left, block.size()));
            Send(connection, block);
            char goOns[4096];
            while (recv(connection, goOns, sizeof goOns, MSG_DONTWAIT) > 0) {
            }
        }
        shutdown(connection, SHUT_WR);
        char rest[4096];
        while (recv(connection, rest, sizeof rest, 0) > 0) {
        }
    }
    static void Send(int connection, const QByteArray &bytes)
    {
        for (qsizetype done = 0; done < bytes.size();) {
            const ssize_t sent =
                send(connection, bytes.constData() + done, bytes.size() - done, MSG_NOSIGNAL);
            if (sent <= 0)
                return;
            done += sent;
        }
    }

    qint32 lSize;
    int lListener;
    int lPort = 0;
    std::thread thread;
};

/// Read, write, permit; nothing else.
qint64 DownloadMinimally(int port, const QString &path)
{
    const int connection = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<uint16_t>(port));
    if (connect(connection, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0)
        return -1;
    const int yes = 1;
    setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    const QByteArray request = Frames::FormA(Frames::cmdGetFax, QByteArray("0\0A1", 4));
    send(connection, request.constData(), request.size(), 0);
    std::vector<char> buffer(blockSize);
    recv(connection, buffer.data(), announcement.size() + 4, MSG_WAITALL);
    send(connection, "GoOn", 4, 0);
    qint32 size = 0;
    recv(connection, &size, sizeof size, MSG_WAITALL);
    const int file = open(path.toUtf8().constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    qint64 done = 0;
    while (done < size) {
        const ssize_t count = recv(connection, buffer.data(), buffer.size(), 0);
        if (count <= 0 || write(file, buffer.data(), count) != count)
            break;
        done += count;
        send(connection, "GoOn", 4, 0);
    }
    close(file);
    close(connection);
    return done;
}

qint64 DownloadWithClient(SystemPorts &ports, int port, const QString &folder)
{
    clsClient client(std::make_unique<TcpSocket>(), ports.Get());
    bool bDone = false;
    QObject::connect(&client, &clsClient::Connected, [&] { client.GetFax(0, QStringLiteral("A1"), folder); });
    QObject::connect(&client, &clsClient::DataArrival,
                     [&](const ClientReply &reply) { bDone = reply.lState != ClientReply::statPart; });
    QObject::connect(&client, &clsClient::Error, [&] { bDone = true; });
    QObject::connect(&client, &clsClient::ConnectClosed, [&] { bDone = true; });
    client.Connect(QStringLiteral("127.0.0.1"), QString::number(port));
    while (!bDone)
        ports.Get().pump.RunSlice(10);
    return QFile(folder + QStringLiteral("A1.tif")).size();
}

SystemPorts *systemPorts = nullptr;

double SecondsFor(const std::function<qint64()> &download, benchmark::State &state)
{
    const auto start = std::chrono::steady_clock::now();
    if (download() != fileSize)
        state.SkipWithError("The file did not come whole.");
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Both in turn, so that what else the machine does hits both. "ratio" is the client's throughput in parts
/// of the minimal client's.
void DownloadAgainstMinimal(benchmark::State &state)
{
    FileServer server(fileSize);
    QTemporaryDir folder;
    const QString target = folder.path() + u'/';
    double minimal = 0;
    double client = 0;
    for (auto _ : state) {
        minimal += SecondsFor(
            [&] { return DownloadMinimally(server.Port(), target + QStringLiteral("minimal")); }, state);
        const double seconds =
            SecondsFor([&] { return DownloadWithClient(*systemPorts, server.Port(), target); }, state);
        client += seconds;
        state.SetIterationTime(seconds);
    }
    state.SetBytesProcessed(state.iterations() * fileSize);
    state.counters["minimal_MB/s"] = state.iterations() * (fileSize / 1e6) / minimal;
    state.counters["ratio"] = minimal / client;
}
BENCHMARK(DownloadAgainstMinimal)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(10)
    ->Repetitions(3);

int ReportPeak(SystemPorts &ports)
{
    FileServer server(peakFileSize);
    QTemporaryDir folder;
    const qint64 got = DownloadWithClient(ports, server.Port(), folder.path() + u'/');
    std::printf("received %lld bytes\n", static_cast<long long>(got));
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 1;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM"))
            std::printf("%s\n", line.constData());
    }
    return got == peakFileSize ? 0 : 1;
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    SystemPorts ports;
    systemPorts = &ports;
    if (argc > 1 && std::strcmp(argv[1], "--peak") == 0)
        return ReportPeak(ports);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
