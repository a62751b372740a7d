#include "Measures.h"
#include "ServerBench.h"
#include "core/AnsiText.h"
#include "core/Globals.h"
#include "core/Schema.h"
#include "endtoend/ClientUnderTest.h"
#include "fixtures/TrialServer.h"
#include "server/AddressList.h"
#include "server/AddressStore.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

// The public contacts of a large house: the whole list from the server in its own process, and what of it is
// the client's own work, from the complete reply to the committed rows.

namespace {

constexpr int contactCount = 50000;

QStringList Contacts()
{
    QStringList lines;
    for (int i = 0; i < contactCount; ++i)
        lines.append(QString("%1\tJonas O'Petersen %2\tHarbour Freight %2\tDispatch\tClerk\t01632 960 202\t"
                             "01632 960 201\t07700 900 131\tdispatch%2@harbour.example\t\tG1")
                         .arg(qHash(i, 7), 32, 16, QChar('0'))
                         .arg(i));
    return lines;
}

bool HasAllContacts()
{
    const auto row = Global().objDB->SelectEx("Select count(*) From Contacts Where isPublic=1");
    return row->Next() && row->Number(0) == contactCount;
}

/// A client that is logged in at a server with the contacts.
class LargeHouse
{
public:
    explicit LargeHouse(benchmark::State &state)
        : client(home.path())
    {
        LoginChoice choice;
        if (!server.AddUser("anna", "anna") || !server.Publish("contacts", Contacts()) || !server.Start()) {
            state.SkipWithError("The server does not run.");
            return;
        }
        choice.strServer = server.Address();
        bReady = client.LogIn(choice);
        if (!bReady)
            state.SkipWithError("The client cannot log in.");
    }

    bool bReady = false;
    const QTemporaryDir home;
    TrialServer server;
    ClientUnderTest client;
};

/// The run with its requests and replies; the first inserts, all others replace the rows.
void Synchronise(benchmark::State &state)
{
    LargeHouse house(state);
    for (auto _ : state) {
        if (!house.bReady)
            return;
        Global().objDB->Execute("Update Option Set ContactVersion='-1'");
        state.SetIterationTime(Measures::WallTimeOf([&] { house.client.runs.SyncWithServer(true); }) / 1000);
        if (!HasAllContacts())
            state.SkipWithError("Contacts are missing.");
    }
}
BENCHMARK(Synchronise)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(4);

/// The client's own work: from the complete reply to the committed rows.
void ReplyToRows(benchmark::State &state)
{
    const QTemporaryDir home;
    Global() = Globals();
    if (!CreateClientDatabase(home.filePath("MFax_Client.mfd"))) {
        state.SkipWithError("The database cannot be made.");
        return;
    }
    QByteArray reply = "OK\r\n";
    for (const QString &line : Contacts())
        reply += AnsiText::ToAnsi(line).replace('\t', '\0') + "\r\n";
    for (auto _ : state) {
        const AddressListReply cut(reply);
        AddressStore::Replace(AddressList::Contacts(), cut.Lines(), {});
    }
    if (!HasAllContacts())
        state.SkipWithError("Contacts are missing.");
    state.SetBytesProcessed(state.iterations() * reply.size());
    Global() = Globals();
}
BENCHMARK(ReplyToRows)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();

} // namespace

int main(int argc, char *argv[])
{
    return ServerBench::Run(argc, argv);
}
