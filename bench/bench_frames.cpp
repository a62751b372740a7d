#include "server/wire/Frames.h"

#include <benchmark/benchmark.h>

// Building and cutting frames, in bytes of the frame per second.

namespace {

void BuildFormB(benchmark::State &state)
{
    const QByteArray body(state.range(0), 'x');
    for (auto _ : state)
        benchmark::DoNotOptimize(Frames::FormB(Frames::cmdGetFaxState, body));
    state.SetBytesProcessed(state.iterations() * body.size());
}
BENCHMARK(BuildFormB)->Arg(4096)->Arg(330000);

void BuildFormC(benchmark::State &state)
{
    const QByteArray block(state.range(0), 'x');
    for (auto _ : state)
        benchmark::DoNotOptimize(Frames::FormC(100000000, block));
    state.SetBytesProcessed(state.iterations() * block.size());
}
BENCHMARK(BuildFormC)->Arg(50000)->Arg(2048000);

void CutReply(benchmark::State &state)
{
    const QByteArray text = "OK\r\n" + QByteArray(state.range(0), 'x');
    const QByteArray frame = Frames::Long(static_cast<qint32>(text.size())) + text;
    for (auto _ : state) {
        const bool isWhole = Frames::ReadLong(frame) == frame.size() - Frames::lLengthBytes;
        const QByteArray cut = Frames::BehindLength(frame);
        benchmark::DoNotOptimize(isWhole && !Frames::IsFailure(cut));
    }
    state.SetBytesProcessed(state.iterations() * frame.size());
}
BENCHMARK(CutReply)->Arg(2000)->Arg(65536)->Arg(2048000);

} // namespace

BENCHMARK_MAIN();
