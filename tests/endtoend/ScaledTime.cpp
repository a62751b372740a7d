#include "endtoend/ScaledTime.h"

#include "platform/QtTimers.h"
#include "platform/SystemClock.h"

namespace {

class ScaledTimer final : public Timer
{
public:
    ScaledTimer(std::unique_ptr<Timer> timer, int factor)
        : timer(std::move(timer))
        , lFactor(factor)
    {
        connect(this->timer.get(), &Timer::Tick, this, &Timer::Tick);
    }
    void SetInterval(int milliseconds) override
    {
        timer->SetInterval(milliseconds > 0 ? std::max(1, milliseconds / lFactor) : 0);
    }
    int Interval() const override { return timer->Interval() * lFactor; }
    void SetEnabled(bool enabled) override { timer->SetEnabled(enabled); }
    bool IsEnabled() const override { return timer->IsEnabled(); }

private:
    std::unique_ptr<Timer> timer;
    int lFactor;
};

} // namespace

ScaledClock::ScaledClock(int factor)
    : lStart(SystemClock().Milliseconds())
    , lFactor(factor)
{
}

QDateTime ScaledClock::Now() const
{
    return SystemClock().Now();
}

qint64 ScaledClock::Milliseconds() const
{
    return (SystemClock().Milliseconds() - lStart) * lFactor;
}

std::unique_ptr<Timer> ScaledTimers::Create()
{
    return std::make_unique<ScaledTimer>(QtTimers().Create(), lFactor);
}
