#include "Measures.h"

#include <QFile>

#include <algorithm>
#include <chrono>
#include <ctime>

double Measures::WallTimeOf(const std::function<void()> &run)
{
    const auto start = std::chrono::steady_clock::now();
    run();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

double Measures::ThreadTimeOf(const std::function<void()> &run)
{
    const auto now = [] {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
    };
    const double start = now();
    run();
    return now() - start;
}

double Measures::NinetyNinth(std::vector<double> values)
{
    const auto place = values.begin() + static_cast<std::ptrdiff_t>(values.size() * 99 / 100);
    std::nth_element(values.begin(), place, values.end());
    return *place;
}

double Measures::MemoryOf(const char *name)
{
    QFile file("/proc/self/status");
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith(name))
            return line.mid(line.indexOf(':') + 1).simplified().split(' ').first().toDouble() / 1024;
    }
    return -1;
}
