#include "ServerBench.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

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
