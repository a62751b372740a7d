#pragma once

#include <functional>
#include <vector>

#include <benchmark/benchmark.h>

/// Times of one piece of work against a measure, taken in turn, so that what else the machine does hits both.
class Pairs
{
public:
    /// Milliseconds of the processor's time that something takes. What other programs take does not count, so
    /// that a busy machine gives the same figures.
    static double TimeOf(const std::function<void()> &run);

    void Add(double measure, double own);

    /// The medians "bare_ms" and "own_ms", the median "ratio" of the pairs, and as "noise" how far the
    /// measure's slowest run lies over its fastest.
    void Report(benchmark::State &state) const;

    double Ratio() const { return Median(aRatios); }
    static double Median(std::vector<double> values);

private:
    std::vector<double> aMeasures;
    std::vector<double> aOwn;
    std::vector<double> aRatios;
};
