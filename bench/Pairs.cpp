#include "Pairs.h"

#include <algorithm>
#include <ctime>

namespace {

double Now()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

} // namespace

double Pairs::TimeOf(const std::function<void()> &run)
{
    const double start = Now();
    run();
    return Now() - start;
}

void Pairs::Add(double measure, double own)
{
    aMeasures.push_back(measure);
    aOwn.push_back(own);
    aRatios.push_back(own / measure);
}

void Pairs::Report(benchmark::State &state) const
{
    const auto [fastest, slowest] = std::minmax_element(aMeasures.begin(), aMeasures.end());
    state.counters["bare_ms"] = Median(aMeasures);
    state.counters["own_ms"] = Median(aOwn);
    state.counters["ratio"] = Ratio();
    state.counters["noise"] = *slowest / *fastest;
}

double Pairs::Median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}
