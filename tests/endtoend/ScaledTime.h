#pragma once

#include "core/ports/Clock.h"
#include "core/ports/Timer.h"

/// The machine's clock, running `factor` times as fast.
class ScaledClock final : public Clock
{
public:
    explicit ScaledClock(int factor);
    QDateTime Now() const override;
    qint64 Milliseconds() const override;

private:
    qint64 lStart;
    int lFactor;
};

/// Real timers whose intervals are `factor` times shorter.
class ScaledTimers final : public Timers
{
public:
    explicit ScaledTimers(int factor)
        : lFactor(factor)
    {
    }
    std::unique_ptr<Timer> Create() override;

private:
    int lFactor;
};
