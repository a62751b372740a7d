#include "core/PrinterProgress.h"
#include "core/SettingsFile.h"
#include "core/Utilities.h"
#include "core/clsWaitableTimer.h"
#include "fakes/FakePorts.h"

#include <QTemporaryDir>
#include <QTest>

class tst_Waits final : public QObject
{
    Q_OBJECT

private slots:
    void timerRunsEventsForItsTime();
    void cancelEndsTheTimerEarly();
    void quittingProgramEndsTheTimer();

    void printerThatNeverWorkedIsIdle();
    void printerIsWaitedForUntilItIsDone_data();
    void printerIsWaitedForUntilItIsDone();
    void printerThatNeverEndsIsGivenUp();
    void quittingProgramEndsTheWaitForThePrinter();
};

namespace {

void SetPrinterStatus(const FakePorts &fakes, const QString &status)
{
    const QString folder = fakes.folders.UserAppData() + "/Velmar";
    QVERIFY(CreateFolder(folder));
    QVERIFY(WriteIniValue("PROGRESS", "Status", status, folder + "/FaxSetup.ini"));
}

} // namespace

void tst_Waits::timerRunsEventsForItsTime()
{
    FakePorts fakes;
    int events = 0;
    fakes.pump.After(100).Then([&] { ++events; });
    clsWaitableTimer timer(fakes.ports);
    timer.Wait(205);
    QCOMPARE(fakes.clock.Milliseconds(), 205);
    QCOMPARE(events, 1);
    QVERIFY(!timer.Cancel);
    timer.Wait(0);
    QCOMPARE(fakes.clock.Milliseconds(), 205);
}

void tst_Waits::cancelEndsTheTimerEarly()
{
    FakePorts fakes;
    clsWaitableTimer timer(fakes.ports);
    fakes.pump.After(100).Then([&] { timer.Cancel = true; });
    timer.Wait(60000);
    QVERIFY(timer.Cancel);
    QVERIFY(fakes.clock.Milliseconds() < 200);
    timer.Wait(50);
    QVERIFY(!timer.Cancel);
}

void tst_Waits::quittingProgramEndsTheTimer()
{
    FakePorts fakes;
    fakes.pump.Then([&] { fakes.pump.Quit(); });
    clsWaitableTimer timer(fakes.ports);
    timer.Wait(60000);
    QVERIFY(fakes.clock.Milliseconds() < 100);
}

void tst_Waits::printerThatNeverWorkedIsIdle()
{
    const QTemporaryDir root;
    FakePorts fakes;
    fakes.folders.strRoot = root.path();
    QCOMPARE(GetPrinterStatus(fakes.ports), 0);
    QVERIFY(WaitForPrinter(fakes.ports, 0));
}

void tst_Waits::printerIsWaitedForUntilItIsDone_data()
{
    QTest::addColumn<QString>("end");
    QTest::addColumn<bool>("result");
    QTest::newRow("done") << "2" << true;
    QTest::newRow("idle again") << "0" << true;
    QTest::newRow("failed") << "3" << false;
}

void tst_Waits::printerIsWaitedForUntilItIsDone()
{
    QFETCH(QString, end);
    const QTemporaryDir root;
    FakePorts fakes;
    fakes.folders.strRoot = root.path();
    SetPrinterStatus(fakes, "1");
    fakes.pump.After(3500).Then([&] { SetPrinterStatus(fakes, end); });
    QTEST(WaitForPrinter(fakes.ports, 10), "result");
    QCOMPARE(fakes.clock.Milliseconds(), 4000);
}

void tst_Waits::printerThatNeverEndsIsGivenUp()
{
    const QTemporaryDir root;
    FakePorts fakes;
    fakes.folders.strRoot = root.path();
    SetPrinterStatus(fakes, "1");
    QVERIFY(!WaitForPrinter(fakes.ports, 10));
    QCOMPARE(fakes.clock.Milliseconds(), 10000);
}

void tst_Waits::quittingProgramEndsTheWaitForThePrinter()
{
    const QTemporaryDir root;
    FakePorts fakes;
    fakes.folders.strRoot = root.path();
    SetPrinterStatus(fakes, "1");
    fakes.pump.Then([&] { fakes.pump.Quit(); });
    QVERIFY(!WaitForPrinter(fakes.ports, 0));
    QVERIFY(!fakes.pump.IsStuck());
}

QTEST_GUILESS_MAIN(tst_Waits)
#include "tst_Waits.moc"
