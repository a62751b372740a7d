#include "platform/QtEventPump.h"

#include <QCoreApplication>

namespace {
constexpr int lastTickInterval = 10;
}

QtEventPump::QtEventPump()
{
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this, [this] { bQuitting = true; });
}

void QtEventPump::RunSlice(int milliseconds)
{
    // Its only purpose is to be an event. Slices nest, so each has one of its own; and it repeats, because a
    // longer slice inside this one takes its first tick away.
    QTimer wakeUp;
    wakeUp.setTimerType(Qt::PreciseTimer);
    wakeUp.start(qMax(1, milliseconds));
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

void QtEventPump::RunPending()
{
    QCoreApplication::processEvents(QEventLoop::AllEvents);
}

int QtEventPump::Run()
{
    // A loop that starts after exit() was called would never hear of it.
    return bQuitting ? 0 : QCoreApplication::exec();
}

void QtEventPump::Quit()
{
    bQuitting = true;
    // A slice that still runs takes the interruption of exit() away from the loop around it, which would go
    // to sleep though it has to end: something must wake it.
    lastTicks.start(lastTickInterval);
    QCoreApplication::exit(0);
}
