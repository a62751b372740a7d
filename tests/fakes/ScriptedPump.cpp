#include "fakes/ScriptedPump.h"

#include "fakes/FakeClock.h"
#include "fakes/FakeTimers.h"

#include <QCoreApplication>

namespace {
constexpr qint64 stuckAfter = 10 * 60 * 1000;
}

ScriptedPump &ScriptedPump::Then(Step step)
{
    steps.push_back({std::move(step), 0});
    return *this;
}

ScriptedPump &ScriptedPump::After(int milliseconds)
{
    steps.push_back({nullptr, milliseconds});
    return *this;
}

void ScriptedPump::RunSlice(int milliseconds)
{
    if (QCoreApplication::instance())
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    if (steps.empty()) {
        lIdle += milliseconds;
        bStuck = bStuck || lIdle > stuckAfter;
    } else if (steps.front().delay > 0) {
        steps.front().delay -= milliseconds;
        if (steps.front().delay <= 0)
            steps.pop_front();
    } else {
        const Step step = std::move(steps.front().step);
        steps.pop_front();
        lIdle = 0;
        step();
    }
    clock.Advance(milliseconds);
    timers.Advance(milliseconds);
}
