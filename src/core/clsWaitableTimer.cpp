#include "core/clsWaitableTimer.h"

#include "core/ports/Clock.h"
#include "core/ports/EventPump.h"
#include "core/ports/Ports.h"

#include <algorithm>

void clsWaitableTimer::Wait(int milliseconds)
{
    constexpr qint64 longestSlice = 10;
    Cancel = false;
    const qint64 end = ports.clock.Milliseconds() + milliseconds;
    ports.pump.RunPending();
    while (!Cancel && !ports.pump.IsQuitting()) {
        const qint64 left = end - ports.clock.Milliseconds();
        if (left <= 0)
            return;
        ports.pump.RunSlice(static_cast<int>(std::min(left, longestSlice)));
    }
}
