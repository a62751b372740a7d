#include "core/Globals.h"
#include "endtoend/ClientUnderTest.h"
#include "fixtures/TrialServer.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <chrono>

#include <benchmark/benchmark.h>

// A morning's faxes: the client's whole fetch, files and rows on the disk, from the server in its own
// process.

namespace {

constexpr int faxCount = 1000;
constexpr int faxSize = 30 * 1000;

double SecondsFor(const std::function<void()> &act)
{
    const auto start = std::chrono::steady_clock::now();
    act();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void FetchFaxes(benchmark::State &state)
{
    TrialServer server;
    if (!server.AddUser("anna", "anna") || !server.Start()) {
        state.SkipWithError("The server does not run.");
        return;
    }
    const QString fax = server.MakeFax("fax.tif", 1, faxSize);
    for (auto _ : state) {
        const QTemporaryDir home;
        ClientUnderTest client(home.path());
        LoginChoice choice;
        choice.strServer = server.Address();
        if (!server.Deliver("anna", {fax}, faxCount) || !client.LogIn(choice)) {
            state.SkipWithError("The client cannot log in.");
            return;
        }
        state.SetIterationTime(SecondsFor([&] { client.download.mnuReceive(); }));
        if (client.StoredIds().size() != faxCount)
            state.SkipWithError("Faxes are missing.");
    }
    state.SetItemsProcessed(state.iterations() * faxCount);
}
BENCHMARK(FetchFaxes)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    // The server is a program of the same build.
    if (!qEnvironmentVariableIsSet("VELMAR_BIN_DIR"))
        qputenv("VELMAR_BIN_DIR", VELMAR_BIN_DIR);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
