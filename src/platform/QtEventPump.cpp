#include "platform/QtEventPump.h"

#include <QCoreApplication>
#include <QTimer>

QtEventPump::QtEventPump()
{
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this, [this] { bQuitting = true; });
}

void QtEventPump::RunSlice(int milliseconds)
{
    // One timer for each slice: slices nest. Its only purpose is to be an event.
    QTimer wakeUp;
    wakeUp.setSingleShot(true);
    wakeUp.setTimerType(Qt::PreciseTimer);
    wakeUp.start(qMax(0, milliseconds));
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
    QCoreApplication::exit(0);
}
