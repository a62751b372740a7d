#include "platform/QtTimers.h"

#include <QPointer>
#include <QTimer>

namespace {
class QtTimer final : public Timer
{
public:
    QtTimer() { QObject::connect(&timer, &QTimer::timeout, this, &QtTimer::OnTimeout); }

    void SetInterval(int milliseconds) override
    {
        lInterval = milliseconds;
        if (bEnabled)
            Restart();
    }
    int Interval() const override { return lInterval; }

    void SetEnabled(bool enabled) override
    {
        bEnabled = enabled;
        Restart();
    }
    bool IsEnabled() const override { return bEnabled; }

private:
    void Restart()
    {
        timer.stop();
        // An interval of 0 would fire with every turn of the loop.
        if (bEnabled && lInterval > 0)
            timer.start(lInterval);
    }

    void OnTimeout()
    {
        // A handler that waits and starts the timer anew would otherwise be entered again.
        if (bInTick)
            return;
        const QPointer<QtTimer> self(this);
        bInTick = true;
        emit Tick();
        if (self)
            bInTick = false;
    }

    QTimer timer;
    int lInterval = 0;
    bool bEnabled = false;
    bool bInTick = false;
};
} // namespace

std::unique_ptr<Timer> QtTimers::Create()
{
    return std::make_unique<QtTimer>();
}
