#include "ServerBench.h"

#include <QCoreApplication>

#include <chrono>

#include <benchmark/benchmark.h>

double ServerBench::SecondsFor(const std::function<void()> &act)
{
    const auto start = std::chrono::steady_clock::now();
    act();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

int ServerBench::Run(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    // The server is a program of the same build.
    if (!qEnvironmentVariableIsSet("VELMAR_BIN_DIR"))
        qputenv("VELMAR_BIN_DIR", VELMAR_BIN_DIR);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
