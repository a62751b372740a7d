#include "platform/SystemClock.h"

#include <chrono>

QDateTime SystemClock::Now() const
{
    return QDateTime::currentDateTime();
}

qint64 SystemClock::Milliseconds() const
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}
