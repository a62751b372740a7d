#pragma once

#include "core/ports/Timer.h"

#include <QList>

class FakeTimers;

class FakeTimer final : public Timer
{
public:
    explicit FakeTimer(FakeTimers &owner);
    ~FakeTimer() override;

    void SetInterval(int milliseconds) override { lInterval = milliseconds; }
    int Interval() const override { return lInterval; }
    void SetEnabled(bool enabled) override
    {
        bEnabled = enabled;
        lElapsed = 0;
    }
    bool IsEnabled() const override { return bEnabled; }

    /// Lets time pass; ticks as often as the interval has gone by, never inside its own handler.
    void Advance(int milliseconds);

private:
    FakeTimers &owner;
    int lInterval = 0;
    int lElapsed = 0;
    bool bEnabled = false;
    bool bInTick = false;
};

/// Timers that tick as the scripted pump, or a test, lets time pass.
class FakeTimers final : public Timers
{
public:
    std::unique_ptr<Timer> Create() override { return std::make_unique<FakeTimer>(*this); }
    void Advance(int milliseconds);

private:
    friend class FakeTimer;
    QList<FakeTimer *> aTimers;
};
