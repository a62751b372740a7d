#include "fakes/FakeTimers.h"

#include <QPointer>

FakeTimer::FakeTimer(FakeTimers &owner)
    : owner(owner)
{
    owner.aTimers.append(this);
}

FakeTimer::~FakeTimer()
{
    owner.aTimers.removeOne(this);
}

void FakeTimer::Advance(int milliseconds)
{
    if (!bEnabled || lInterval <= 0 || bInTick)
        return;
    lElapsed += milliseconds;
    const QPointer<FakeTimer> self(this);
    while (self && bEnabled && lInterval > 0 && lElapsed >= lInterval) {
        lElapsed -= lInterval;
        bInTick = true;
        emit Tick();
        if (self)
            bInTick = false;
    }
}

void FakeTimers::Advance(int milliseconds)
{
    const QList<FakeTimer *> timers = aTimers; // handlers make and drop timers
    for (FakeTimer *timer : timers) {
        if (aTimers.contains(timer))
            timer->Advance(milliseconds);
    }
}
