#pragma once

#include <functional>
#include <vector>

/// What several benchmarks measure besides the processor's time.
namespace Measures {

/// Milliseconds of the clock.
double WallTimeOf(const std::function<void()> &run);

/// Milliseconds of the processor's time that this thread takes.
double ThreadTimeOf(const std::function<void()> &run);

/// The value that 99 of 100 do not exceed.
double NinetyNinth(std::vector<double> values);

/// MiB of this process, by the system's name for them: "VmRSS" now, "VmHWM" the most so far; -1 when unknown.
double MemoryOf(const char *name);

} // namespace Measures
