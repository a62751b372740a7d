#pragma once

/// What benchmarks share that run a client against the trial server.
namespace ServerBench {

/// Runs the program's benchmarks; the result of `main`.
int Run(int argc, char *argv[]);

} // namespace ServerBench
