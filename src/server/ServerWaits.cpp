#include "server/ServerWaits.h"

#include "core/ports/Clock.h"
#include "core/ports/EventPump.h"
#include "core/ports/Ports.h"
#include "core/ports/Timer.h"

namespace {
constexpr int lSlice = 10;
constexpr int lTickInterval = 1000;
constexpr int lMostBusyTicks = 5;
} // namespace

ServerWaits::ServerWaits(const Ports &ports)
    : ports(ports)
    , tmrWatchdog(ports.timers.Create())
{
    tmrWatchdog->SetInterval(lTickInterval);
    connect(tmrWatchdog.get(), &Timer::Tick, this, &ServerWaits::OnWatchdogTick);
}

ServerWaits::~ServerWaits() = default;

WaitEnd ServerWaits::Wait(const std::function<bool()> &isAlive)
{
    Open wait;
    aWaits.push_back(&wait);
    ResetSilence();
    tmrWatchdog->SetEnabled(true);
    const WaitEnd end = Run(wait, isAlive);
    aWaits.pop_back();
    ResetSilence();
    tmrWatchdog->SetEnabled(IsWaiting());
    return end;
}

WaitEnd ServerWaits::Run(const Open &wait, const std::function<bool()> &isAlive) const
{
    while (true) {
        if (wait.bSignalled)
            return wait.end;
        if (!isAlive())
            return WaitEnd::Closed;
        if (ports.pump.IsQuitting() || IsOutOfTime())
            return WaitEnd::Quitting;
        ports.pump.RunSlice(lSlice);
    }
}

void ServerWaits::End(WaitEnd end)
{
    if (!aWaits.empty() && !aWaits.back()->bSignalled)
        *aWaits.back() = {true, end};
}

void ServerWaits::Signal(WaitEnd end)
{
    End(end);
    ports.pump.RunPending();
}

void ServerWaits::SetTimeLeft(int milliseconds)
{
    lDeadline = milliseconds < 0 ? -1 : ports.clock.Milliseconds() + milliseconds;
}

bool ServerWaits::IsOutOfTime() const
{
    return lDeadline >= 0 && ports.clock.Milliseconds() >= lDeadline;
}

void ServerWaits::OnWatchdogTick()
{
    if (!IsWaiting() || (isPaused && isPaused())) {
        ResetSilence();
        return;
    }
    if (++lBusyTicks > lMostBusyTicks)
        Signal(WaitEnd::Silent);
}
