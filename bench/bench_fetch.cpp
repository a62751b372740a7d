#include "Measures.h"
#include "ServerBench.h"
#include "core/Globals.h"
#include "endtoend/ClientUnderTest.h"
#include "fixtures/TrialServer.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

// A morning's faxes: the client's whole fetch, files and rows on the disk, from the server in its own
// process.

namespace {

constexpr int faxCount = 1000;
constexpr int faxSize = 30 * 1000;

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
        state.SetIterationTime(Measures::WallTimeOf([&] { client.download.mnuReceive(); }) / 1000);
        if (client.StoredIds().size() != faxCount)
            state.SkipWithError("Faxes are missing.");
    }
    state.SetItemsProcessed(state.iterations() * faxCount);
}
BENCHMARK(FetchFaxes)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace

int main(int argc, char *argv[])
{
    return ServerBench::Run(argc, argv);
}
