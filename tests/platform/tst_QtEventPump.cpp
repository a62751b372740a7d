#include "platform/QtEventPump.h"
#include "platform/QtTimers.h"

#include <QElapsedTimer>
#include <QTest>
#include <QTimer>

#include <ctime>

class tst_QtEventPump : public QObject
{
    Q_OBJECT

private slots:
    void idleSlicesSleep()
    {
        QtEventPump pump;
        pump.RunPending();
        const std::clock_t before = std::clock(); // counts the time on the processor
        QElapsedTimer passed;
        passed.start();
        int slices = 0;
        for (; passed.elapsed() < 300; ++slices)
            pump.RunSlice(10);
        QVERIFY2(slices <= 40, qPrintable(QString::number(slices)));
        QVERIFY(std::clock() - before < 0.15 * CLOCKS_PER_SEC);
    }

    void longNestedWaitDoesNotHoldTheOuterOne()
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

    void timerOfIntervalZeroIsSilent()
    {
        QtEventPump pump;
        const std::unique_ptr<Timer> timer = QtTimers().Create();
        int ticks = 0;
        connect(timer.get(), &Timer::Tick, this, [&ticks] { ++ticks; });
        timer->SetEnabled(true);
        for (int slice = 0; slice < 5; ++slice)
            pump.RunSlice(5);
        QCOMPARE(ticks, 0);
        timer->SetInterval(1); // an enabled timer takes its interval at once
        QTRY_VERIFY(ticks > 0);
    }

    void timerIsNotEnteredTwice()
    {
        QtEventPump pump;
        std::unique_ptr<Timer> timer = QtTimers().Create();
        int depth = 0, deepest = 0, ticks = 0;
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
        QTRY_COMPARE(ticks, 3);
        QCOMPARE(deepest, 1);
    }

    void quitEndsWaitsWithoutSpinning() // the pump's life ends with the application's: keep it last
    {
        QtEventPump pump;
        int slicesAfterQuit = 0;
        QTimer::singleShot(0, &pump, [&] {
            QTimer::singleShot(0, &pump, [&] { pump.Quit(); });
            while (!pump.IsQuitting())
                pump.RunSlice(10);
            QElapsedTimer passed; // somebody who looks at something else sleeps on in slices
            passed.start();
            for (; passed.elapsed() < 100; ++slicesAfterQuit)
                pump.RunSlice(10);
        });
        QCOMPARE(pump.Run(), 0);
        QVERIFY2(slicesAfterQuit <= 20, qPrintable(QString::number(slicesAfterQuit)));
    }
};

QTEST_GUILESS_MAIN(tst_QtEventPump)
#include "tst_QtEventPump.moc"
