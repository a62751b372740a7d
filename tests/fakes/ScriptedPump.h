#pragma once

#include "core/ports/EventPump.h"

#include <QtGlobal>

#include <deque>
#include <functional>

class FakeClock;
class FakeTimers;

/// An event loop whose events are written down beforehand: each slice runs the next step of a dialogue, then
/// lets the slice's time pass for clock and timers. A wait that outlives the script by ten minutes of fake
/// time is stuck: the pump then says that the program quits, and the test asks `IsStuck`.
class ScriptedPump final : public EventPump
{
public:
    using Step = std::function<void()>;

    ScriptedPump(FakeClock &clock, FakeTimers &timers)
        : clock(clock)
        , timers(timers)
    {
    }

    /// Adds a step: "server says", "user presses cancel".
    ScriptedPump &Then(Step step);
    /// Lets so much time pass before the next step.
    ScriptedPump &After(int milliseconds);

    void RunSlice(int milliseconds) override;
    void RunPending() override {}
    bool IsQuitting() const override { return bQuitting || bStuck; }

    void Quit() { bQuitting = true; }
    bool IsStuck() const { return bStuck; }

private:
    struct Entry
    {
        Step step;
        int delay = 0;
    };

    FakeClock &clock;
    FakeTimers &timers;
    std::deque<Entry> steps;
    qint64 lIdle = 0;
    bool bQuitting = false;
    bool bStuck = false;
};
