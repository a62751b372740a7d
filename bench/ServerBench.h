#pragma once

#include <functional>

/// What benchmarks share that run a client against the trial server.
namespace ServerBench {

/// Seconds that something takes by the clock: the server works in a process of its own.
double SecondsFor(const std::function<void()> &act);

/// Runs the program's benchmarks; the result of `main`.
int Run(int argc, char *argv[]);

} // namespace ServerBench
