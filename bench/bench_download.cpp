#include "Loopback.h"
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
#include <vector>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

// Downloads of one large fax over loopback: the client of the program against the least that any client of
// the protocol must do. "--peak" receives 500 MB instead and prints the memory that the process took at most.

namespace {

constexpr qint32 fileSize = 100 * 1000 * 1000;
constexpr qint32 peakFileSize = 500 * 1000 * 1000;
constexpr std::size_t blockSize = 256 * 1024;
const QByteArray announcement = "OK\r\nsender\r\n";

/// Serves one file per connection: the first block, then the rest as fast as it is taken.
class FileServer final : public Loopback::Server
{
public:
    explicit FileServer(qint32 size)
        : Server([this](int connection) { Serve(connection); })
        , lSize(size)
    {
    }

private:
    void Serve(int connection) const
    {
        Loopback::Read(connection, Frames::FormA(Frames::cmdGetFax, QByteArray("0\0A1", 4)).size());
        Loopback::Send(connection, Frames::Long(static_cast<qint32>(announcement.size())) + announcement);
        Loopback::Read(connection, 4);
        QByteArray block(blockSize, 'x');
        Loopback::Send(connection, Frames::Long(lSize) + block);
        Loopback::Read(connection, 4);
        for (qint64 left = lSize - block.size(); left > 0; left -= block.size()) {
            block.truncate(qMin<qint64>(left, block.size()));
            Loopback::Send(connection, block);
            char goOns[4096];
            while (recv(connection, goOns, sizeof goOns, MSG_DONTWAIT) > 0) {
            }
        }
        Loopback::ReadToEnd(connection);
    }

    qint32 lSize;
};

/// Read, write, permit; nothing else.
qint64 DownloadMinimally(int port, const QString &path)
{
    const int connection = Loopback::Connect(port);
    if (connection < 0)
        return -1;
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
