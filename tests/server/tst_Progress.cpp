#include "fakes/FakeProgressOwner.h"
#include "fakes/FakeTimers.h"
#include "server/Progress.h"

#include <QSignalSpy>
#include <QTest>

#include <optional>

namespace {
struct Bench
{
    Bench()
    {
        progress.SetOwner(&owner);
        progress.Show();
    }
    FakeTimers timers;
    Progress progress{timers};
    FakeProgressOwner owner;
};
} // namespace

class tst_Progress : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench.emplace(); }

    void animationRunsWhileConnectedAndBelowTheEnd()
    {
        Progress &progress = bench->progress;
        QSignalSpy frames(&progress, &Progress::FrameChanged);
        progress.SetTotal(2);
        progress.AddRow("file");
        progress.ChangePos2(0, 1, 100);
        QVERIFY(!progress.IsAnimated());
        progress.ChangePos2(0, 1, 99);
        bench->timers.Advance(700);
        QStringList shown;
        for (const QList<QVariant> &frame : frames)
            shown.append(frame.constFirst().toString());
        QCOMPARE(shown.join(' '), QString("1 2 3 4 5 6 1"));
        bench->owner.bConnected = false;
        progress.ChangePos2(5, 1, 99);
        QVERIFY(!progress.IsAnimated() && progress.Frame() == 6);
    }

    void synchronisationKeepsOneRow()
    {
        Progress &progress = bench->progress;
        progress.SetWindowMode(true, "first");
        QCOMPARE(progress.Rows(), QList<ProgressRow>({{"", "first", ""}}));
        progress.ChangePos(40);
        QCOMPARE(progress.Rows(),
                 QList<ProgressRow>({{"imgProcessing", "Syncing public contacts: 40%", ""}}));
        progress.ChangePos(100);
        QCOMPARE(progress.Rows(), QList<ProgressRow>({{"imgOK", "Syncing public contacts: 100%", ""}}));
    }

    void closeThatIsTaggedCancelStillCancels()
    {
        bench->progress.SetWindowMode(true, {});
        QCOMPARE(bench->progress.ButtonCaption(), QString("&Close"));
        bench->progress.ClickCancelOperate();
        // The signal comes last: whoever it wakes finds the abort noted and the connection closed.
        QCOMPARE(bench->owner.aCalls, QStringList({"cancel", "menu on", "enable", "abort", "signal"}));
        QVERIFY(bench->progress.IsLoaded() && !bench->progress.IsSyncMode());
        bench->owner.aCalls.clear();
        bench->progress.ClickCancelOperate(); // now it only closes
        QCOMPARE(bench->owner.aCalls, QStringList({"enable", "abort"}));
        QVERIFY(!bench->progress.IsLoaded());
    }

private:
    std::optional<Bench> bench;
};

QTEST_GUILESS_MAIN(tst_Progress)
#include "tst_Progress.moc"
