// The reading states of a mailbox in which every fax has a recipient who never reads it: the request, and the
// reply stored into the tables. With `changed`, somebody has read each fax since the last time.

#include "fixtures/SessionBench.h"
#include "server/ReturnReceipts.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

namespace {

QByteArray IdOf(long number)
{
    return QByteArray::number(number).rightJustified(32, '0');
}

void FillMailbox(long faxes)
{
    Profile::Execute("Begin");
    for (long i = 0; i < faxes; ++i) {
        Profile::Execute("Insert Into ReceiveFax(Fax_ID,ReturnReceipts,ReceiveUser,folderID,RecyleID,title,"
                         "sender,fileName) Values('" +
                         IdOf(i) +
                         "',',0;2024-01-31 09:00:00,1;,0;','Anna[anna];Ben[ben];Carla[carla];','1001','',"
                         "'A fax of the office','+44 20 7946 0018','" +
                         IdOf(i) + ".tif')");
    }
    Profile::Execute("Commit");
}

QByteArray Reply(long faxes, const QByteArray &receipts)
{
    QByteArray reply = "OK\r\n";
    for (long i = 0; i < faxes; ++i)
        reply += IdOf(i) + '\1' + receipts + "\r\n";
    return reply;
}

void Ask(benchmark::State &state, SessionBench &bench, ReturnReceipts &receipts, const QByteArray &reply)
{
    bench.ports.pump.Then([&] { bench.Socket().FeedLong(reply); });
    bool sent = false;
    receipts.RequestReceiptStates(sent);
    if (!sent || bench.session.WaitForServerReply() != WaitEnd::Replied)
        state.SkipWithError("no answer");
    bench.Socket().aWrites.clear();
}

void StoreStates(benchmark::State &state)
{
    SessionBench bench;
    ReturnReceipts receipts(bench.ports.ports, bench.session, bench.desktop.mailbox,
                            bench.desktop.mainWindow);
    FillMailbox(state.range(0));
    const QByteArray first = Reply(state.range(0), ",0;2024-01-31 09:00:00,1;,0;");
    const QByteArray second = Reply(state.range(0), "2024-01-31 10:00:00,1;2024-01-31 09:00:00,1;,0;");
    Ask(state, bench, receipts, first); // every fax has its first reader now
    bool isFirst = true;
    for ([[maybe_unused]] auto step : state) {
        Ask(state, bench, receipts, state.range(1) && isFirst ? second : first);
        isFirst = !isFirst;
    }
}
BENCHMARK(StoreStates)
    ->ArgNames({"faxes", "changed"})
    ->ArgsProduct({{1000, 10000, 100000}, {0, 1}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
