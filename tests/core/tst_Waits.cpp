#include "core/PrinterProgress.h"
#include "core/clsWaitableTimer.h"
#include "fakes/FakePorts.h"

#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <stdexcept>

namespace {
/// Runs events while a box stands, as a real one does.
class BusyPrompts final : public Prompts
{
public:
    long Show(const QString &text, long flags, const QString &title) override
    {
        aShown.append(QString("%1|%2|%3").arg(text, QString::number(flags), title));
        if (whileOpen)
            whileOpen();
        return mbAnswerYes;
    }
    QString AskText(const QString &, const QString &) override { return QStringLiteral("typed"); }
    QStringList aShown;
    std::function<void()> whileOpen;
};
} // namespace

class tst_Waits final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        folder = std::make_unique<QTemporaryDir>();
        fakes = std::make_unique<FakePorts>();
        fakes->folders.strRoot = folder->path();
    }

    void secondBoxIsNotShownWhileOneStands()
    {
        BusyPrompts prompts;
        Message message(prompts);
        long second = 0;
        prompts.whileOpen = [&] { second = message.ShowMessage("Second", mbYesNo); };
        QCOMPARE(message.ShowMessage("First"), long(mbAnswerYes));
        QCOMPARE(second, long(mbAnswerOK));
        prompts.whileOpen = [] { throw std::runtime_error("no display"); };
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, message.ShowMessage("Third"));
        prompts.whileOpen = nullptr;
        QCOMPARE(message.ShowMessage("Really?", mbYesNo + mbQuestion, "Delete"), long(mbAnswerYes));
        QCOMPARE(prompts.aShown,
                 (QStringList{"First|0|Velmar Client", "Third|0|Velmar Client", "Really?|36|Delete"}));
    }

    void timerRunsEventsUntilItsTimeOrItsCancel()
    {
        int events = 0;
        fakes->pump.After(100).Then([&] { ++events; });
        clsWaitableTimer timer(fakes->ports);
        timer.Wait(205);
        QCOMPARE(fakes->clock.Milliseconds(), 205);
        QCOMPARE(events, 1);
        fakes->pump.After(100).Then([&] { timer.Cancel = true; });
        timer.Wait(60000);
        QVERIFY(fakes->clock.Milliseconds() < 400);
        timer.Wait(50);
        QVERIFY(!timer.Cancel);
    }

    void quittingProgramEndsEveryWait()
    {
        QVERIFY(SetPrinterStatus(fakes->folders, printerBusy));
        fakes->pump.Then([&] { fakes->pump.Quit(); });
        clsWaitableTimer(fakes->ports).Wait(60000);
        QVERIFY(!WaitForPrinter(fakes->ports, 0));
        QVERIFY(fakes->clock.Milliseconds() < 1000);
        QVERIFY(!fakes->pump.IsStuck());
    }

    void printerIsWaitedForUntilItIsDone()
    {
        QVERIFY(WaitForPrinter(fakes->ports, 0)); // it never worked yet
        for (const auto &[end, result, time] : {std::tuple(printerDone, true, 4000),
                                                {printerFailed, false, 4000},
                                                {printerBusy, false, 10000}}) {
            const qint64 start = fakes->clock.Milliseconds();
            QVERIFY(SetPrinterStatus(fakes->folders, printerBusy));
            fakes->pump.After(3500).Then([&, status = end] { SetPrinterStatus(fakes->folders, status); });
            QCOMPARE(WaitForPrinter(fakes->ports, 10), result);
            QCOMPARE(int(fakes->clock.Milliseconds() - start), time);
        }
    }

private:
    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<FakePorts> fakes;
};

QTEST_GUILESS_MAIN(tst_Waits)
#include "tst_Waits.moc"
