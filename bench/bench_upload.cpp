#include "Loopback.h"
#include "Measures.h"
#include "ServerBench.h"
#include "core/Globals.h"
#include "core/TransactionScope.h"
#include "core/Utilities.h"
#include "endtoend/ClientUnderTest.h"
#include "fixtures/Profile.h"
#include "fixtures/TrialServer.h"
#include "server/wire/Frames.h"
#include "server/wire/clsClient.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <vector>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr qint64 fileSize = 100 * 1000 * 1000;
constexpr std::size_t blockSize = 256 * 1024;
constexpr int faxCount = 200;
constexpr int faxSize = 30 * 1000;
const QByteArray header = "header";
const QByteArray answer(32, 'A');

void SendShort(int connection, const QByteArray &text)
{
    Loopback::Send(connection, Frames::Long(static_cast<qint32>(text.size())) + text);
}

/// Takes a header and a file, and keeps nothing.
void TakeFax(int connection)
{
    Loopback::Read(connection, 8 + static_cast<std::size_t>(header.size()));
    SendShort(connection, "OK");
    qint64 missing = Frames::ReadLong(Loopback::Read(connection, 8).mid(4));
    std::vector<char> buffer(blockSize);
    while (missing > 0) {
        const ssize_t count = recv(connection, buffer.data(), buffer.size(), 0);
        if (count <= 0)
            return;
        missing -= count;
    }
    SendShort(connection, answer);
    Loopback::ReadToEnd(connection);
}

/// Read, send; nothing else.
void CopyPlainly(int port, const QString &path)
{
    const int connection = Loopback::Connect(port);
    Loopback::Send(connection, Frames::FormB(Frames::cmdSendFaxFile, header));
    Loopback::Read(connection, 4 + 2);
    Loopback::Send(connection, Frames::FormC(static_cast<qint32>(fileSize), {}));
    const int file = open(path.toUtf8().constData(), O_RDONLY);
    QByteArray block(blockSize, '\0');
    for (ssize_t count; (count = read(file, block.data(), blockSize)) > 0;)
        Loopback::Send(connection, QByteArray::fromRawData(block.constData(), count));
    close(file);
    Loopback::Read(connection, 4 + 32);
    close(connection);
}

/// The longest time that the event loop was not free, in milliseconds; -1 when the answer did not come.
double SendWithClient(ClientUnderTest &program, int port, const QString &path)
{
    clsClient client(std::make_unique<TcpSocket>(), program.ports);
    bool isDone = false, isAnswered = false;
    QObject::connect(&client, &clsClient::Connected, [&] { client.SendFaxFile(header, path); });
    QObject::connect(&client, &clsClient::DataArrival, [&](const ClientReply &reply) {
        isAnswered = reply.abData == answer;
        isDone = isDone || isAnswered;
    });
    QObject::connect(&client, &clsClient::Error, [&] { isDone = true; });
    QObject::connect(&client, &clsClient::ConnectClosed, [&] { isDone = true; });
    client.Connect("127.0.0.1", QString::number(port));
    double longest = 0;
    while (!isDone)
        longest = std::max(longest, Measures::WallTimeOf([&] { program.pump.RunSlice(10); }));
    return isAnswered ? longest : -1;
}

/// Both in turn, so that what else the machine does hits both. "ratio" is the client's throughput in parts of
/// the plain copy's.
void UploadAgainstPlainCopy(benchmark::State &state)
{
    const QTemporaryDir home;
    ClientUnderTest program(home.path());
    const QString path = home.filePath("large.tif");
    if (!WriteTestFile(path, {}) || !QFile::resize(path, fileSize)) {
        state.SkipWithError("The file cannot be written.");
        return;
    }
    Loopback::Server server(TakeFax);
    double plain = 0, own = 0, longest = 0;
    for (auto _ : state) {
        plain += Measures::WallTimeOf([&] { CopyPlainly(server.Port(), path); });
        const double before = Measures::MemoryOf("VmHWM");
        const double time = Measures::WallTimeOf([&] {
            const double slice = SendWithClient(program, server.Port(), path);
            if (slice < 0)
                state.SkipWithError("The file did not arrive.");
            longest = std::max(longest, slice);
        });
        state.counters["grown_MiB"] =
            std::max<double>(state.counters["grown_MiB"], Measures::MemoryOf("VmHWM") - before);
        own += time;
        state.SetIterationTime(time / 1000);
    }
    state.SetBytesProcessed(state.iterations() * fileSize);
    state.counters["plain_MB/s"] = double(state.iterations()) * (fileSize / 1e3) / plain;
    state.counters["ratio"] = plain / own;
    state.counters["longest_slice_ms"] = longest;
}
BENCHMARK(UploadAgainstPlainCopy)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(10)
    ->Repetitions(3);

/// A row and a file for each fax, as the composer leaves them.
void QueueFaxes(const QString &fax)
{
    TransactionScope transaction(*Global().objDB);
    SystemIds ids;
    for (int i = 0; i < faxCount; ++i) {
        const QString id = NewFaxID(ids);
        QFile::copy(fax, Global().strOutputBoxPath + id + ".tif");
        Profile::Execute(QString("Insert Into SendFax(Fax_ID,FileName,Title,TempReceiver,FolderID,RecyleID) "
                                 "Values('%1','%1.tif','Offer','\"Ann\"<555>;','1003','')")
                             .arg(id));
    }
    transaction.Commit();
}

/// The client's whole sending, files and rows on the disk, to the server in its own process.
void SendFaxes(benchmark::State &state)
{
    TrialServer server;
    if (!server.AddUser("anna", "anna") || !server.Start({}, {}, {"--lines", "0"})) {
        state.SkipWithError("The server does not run.");
        return;
    }
    const QString fax = server.MakeFax("fax.tif", 1, faxSize);
    for (auto _ : state) {
        const QTemporaryDir home;
        ClientUnderTest client(home.path());
        if (!client.LogIn({server.Address()})) {
            state.SkipWithError("The client cannot log in.");
            return;
        }
        QueueFaxes(fax);
        state.SetIterationTime(Measures::WallTimeOf([&] { client.runs.mnuSend(); }) / 1000);
        if (Profile::Value("Select Count(*) From SendFax Where FolderID='1005'").toInt() != faxCount)
            state.SkipWithError("Faxes were left.");
    }
    state.SetItemsProcessed(state.iterations() * faxCount);
}
BENCHMARK(SendFaxes)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace

int main(int argc, char *argv[])
{
    return ServerBench::Run(argc, argv);
}
