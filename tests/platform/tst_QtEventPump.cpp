#include "platform/QtEventPump.h"
#include "platform/QtTimers.h"

#include <QElapsedTimer>
#include <QTest>
#include <QTimer>

#include <ctime>

namespace {
double ProcessSeconds()
{
    timespec used{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) / 1e9;
}
} // namespace

class tst_QtEventPump : public QObject
{
    Q_OBJECT

private slots:
    void idleSlicesSleep();
    void sliceEndsWithTheFirstEvent();
    void longNestedWaitDoesNotHoldTheOuterOne();
    void timerOfIntervalZeroIsSilent();
    void timerIsNotEnteredTwice();
    void quitEndsWaitsWithoutSpinning(); // the pump's life ends with the application's: keep it last
};

void tst_QtEventPump::idleSlicesSleep()
{
    QtEventPump pump;
    pump.RunPending();
    const double before = ProcessSeconds();
    QElapsedTimer passed;
    passed.start();
    int slices = 0;
    while (passed.elapsed() < 300) {
        pump.RunSlice(10);
        ++slices;
    }
    QVERIFY2(slices <= 40, qPrintable(QString::number(slices)));
    QVERIFY(ProcessSeconds() - before < 0.15);
}

void tst_QtEventPump::sliceEndsWithTheFirstEvent()
{
    QtEventPump pump;
    bool posted = false;
    bool timed = false;
    QMetaObject::invokeMethod(
        &pump, [&posted] { posted = true; }, Qt::QueuedConnection);
    QElapsedTimer passed;
    passed.start();
    pump.RunSlice(5000);
    QVERIFY(posted);
    QTimer::singleShot(20, &pump, [&timed] { timed = true; });
    for (int slice = 0; slice < 3 && !timed; ++slice)
        pump.RunSlice(5000);
    QVERIFY(timed);
    QVERIFY(passed.elapsed() < 4000);
}

void tst_QtEventPump::longNestedWaitDoesNotHoldTheOuterOne()
{
    QtEventPump pump;
    bool outerDone = false;
    QTimer rescue; // nothing else would ever wake a loop that sleeps without end
    rescue.start(5000);
    QElapsedTimer passed;
    passed.start();
    QMetaObject::invokeMethod(
        &pump,
        [&] {
            while (passed.elapsed() < 60)
                pump.RunSlice(10);
            outerDone = true;
        },
        Qt::QueuedConnection);
    while (!outerDone)
        pump.RunSlice(10);
    QVERIFY2(passed.elapsed() < 2000, qPrintable(QString::number(passed.elapsed())));
}

void tst_QtEventPump::timerOfIntervalZeroIsSilent()
{
    QtEventPump pump;
    QtTimers timers;
    const std::unique_ptr<Timer> timer = timers.Create();
    int ticks = 0;
    connect(timer.get(), &Timer::Tick, this, [&ticks] { ++ticks; });
    timer->SetEnabled(true);
    for (int slice = 0; slice < 5; ++slice)
        pump.RunSlice(5);
    QVERIFY(timer->IsEnabled());
    QCOMPARE(ticks, 0);

    timer->SetInterval(1); // an enabled timer takes its interval at once
    QTRY_VERIFY(ticks > 0);
    timer->SetInterval(0);
    ticks = 0;
    for (int slice = 0; slice < 5; ++slice)
        pump.RunSlice(5);
    QCOMPARE(ticks, 0);
}

void tst_QtEventPump::timerIsNotEnteredTwice()
{
    QtEventPump pump;
    QtTimers timers;
    std::unique_ptr<Timer> timer = timers.Create();
    int depth = 0;
    int deepest = 0;
    int ticks = 0;
    connect(timer.get(), &Timer::Tick, this, [&] {
        deepest = qMax(deepest, ++depth);
        timer->SetEnabled(true); // a new start of the interval, inside the handler
        for (int slice = 0; slice < 5; ++slice)
            pump.RunSlice(5);
        --depth;
        if (++ticks == 3)
            timer.reset(); // may be dropped in its tick
    });
    timer->SetInterval(1);
    timer->SetEnabled(true);
    while (ticks < 3)
        pump.RunSlice(10);
    QCOMPARE(deepest, 1);
}

void tst_QtEventPump::quitEndsWaitsWithoutSpinning()
{
    QtEventPump pump;
    int slicesAfterQuit = 0;
    QTimer::singleShot(0, &pump, [&] {
        QTimer::singleShot(0, &pump, [&] { pump.Quit(); });
        while (!pump.IsQuitting())
            pump.RunSlice(10);
        QElapsedTimer passed; // somebody who looks at something else sleeps on in slices
        passed.start();
        while (passed.elapsed() < 100) {
            pump.RunSlice(10);
            ++slicesAfterQuit;
        }
    });
    QCOMPARE(pump.Run(), 0);
    QVERIFY2(slicesAfterQuit <= 20, qPrintable(QString::number(slicesAfterQuit)));

    QtEventPump late;
    late.Quit();
    QCOMPARE(late.Run(), 0); // asked to end before it began
}

QTEST_GUILESS_MAIN(tst_QtEventPump)
#include "tst_QtEventPump.moc"
