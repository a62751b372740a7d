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
    void modeWritesTheLastRow_data();
    void modeWritesTheLastRow();
    void withoutATotalNothingChanges();
    void animationRunsWhileConnectedAndBelowTheEnd();
    void synchronisationKeepsOneRow();
    void closeThatIsTaggedCancelStillCancels();
    void closedWindowStartsAfresh();

private:
    std::optional<Bench> bench;
};

void tst_Progress::modeWritesTheLastRow_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("percent");
    QTest::addColumn<QString>("outcome"); // image, state, text, bar, selected row
    // Task 2 of 4, three rows in the grid; the bar stands at 7 and the text reads "before".
    const auto row = [](const char *name, int mode, int percent, const char *outcome) {
        QTest::newRow(name) << mode << percent << outcome;
    };
    row("refused", -1, 100, "imgError Failed, Receiving fax 2 of 4, 50, -1");
    row("receiving, just begun", 0, 4, "imgReceive Receiving, Receiving fax 2 of 4, 26, 2");
    row("receiving", 0, 5, "imgReceive Receiving, Receiving fax 2 of 4, 26, -1");
    row("halves go to the even neighbour", 0, 50, "imgReceive Receiving, Receiving fax 2 of 4, 38, -1");
    row("received", 1, 100, "imgOK Completed, before, 7, -1");
    row("sending, just begun", 2, 4, "imgSend Sending, Sending fax 2 of 4, 26, 1");
    row("sending", 2, 80, "imgSend Sending, Sending fax 2 of 4, 45, -1");
    row("stored before", 3, 0, "imgWarning Exists, Receiving fax 2 of 4, 50, 1");
    row("upload failed", 4, 0, "imgError Failed, Sending fax 2 of 4, 50, -1");
    row("cancelled", 5, 0, "imgError Canceled, before, 7, -1");
    row("connection lost", 6, 0, "imgError Disconnected, before, 7, -1");
    row("not in use", 7, 1, " old, before, 7, -1");
    row("sent", 8, 0, "imgOK Completed, before, 7, -1");
    row("information", 9, 1, "imgInfo old, before, 7, -1");
    row("unknown", 10, 1, " old, before, 7, -1");
}

void tst_Progress::modeWritesTheLastRow()
{
    QFETCH(int, mode);
    QFETCH(int, percent);
    Progress &progress = bench->progress;
    for (int i = 0; i < 3; ++i)
        progress.AddRow("file", {}, "old");
    progress.SetTotal(4);
    progress.SetBar(7);
    progress.SetText("before");
    progress.ChangePos2(mode, 2, percent);
    const ProgressRow last = progress.Rows().constLast();
    QTEST(QString("%1 %2, %3, %4, %5")
              .arg(last.strImage, last.strState, progress.Text(), QString::number(progress.Bar()),
                   QString::number(progress.SelectedRow())),
          "outcome");
    QCOMPARE(progress.Rows().at(1), ProgressRow({{}, "file", "old"}));
    QVERIFY(percent > 0); // 0 is taken as 1 and written back
}

void tst_Progress::withoutATotalNothingChanges()
{
    bench->progress.AddRow("file");
    int percent = 0;
    bench->progress.ChangePos2(0, 1, percent);
    QCOMPARE(percent, 0);
    QCOMPARE(bench->progress.Rows().constFirst().strState, QString());
    QVERIFY(!bench->progress.IsAnimated());
}

void tst_Progress::animationRunsWhileConnectedAndBelowTheEnd()
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
    progress.ChangePos(10);
    bench->timers.Advance(100);
    progress.SetBar(100);
    bench->timers.Advance(100);
    QVERIFY(!progress.IsAnimated() && progress.Frame() == 6);
}

void tst_Progress::synchronisationKeepsOneRow()
{
    Progress &progress = bench->progress;
    progress.SetWindowMode(true, "first");
    QCOMPARE(progress.Rows(), QList<ProgressRow>({{"", "first", ""}}));
    progress.ChangePos(40);
    QCOMPARE(progress.Rows(), QList<ProgressRow>({{"imgProcessing", "Syncing public contacts: 40%", ""}}));
    progress.ChangePos(100);
    QCOMPARE(progress.Rows(), QList<ProgressRow>({{"imgOK", "Syncing public contacts: 100%", ""}}));
    progress.SetWindowMode(false, {});
    progress.ChangePos(50);
    QCOMPARE(progress.Rows().constFirst().strImage, QString("imgOK"));
}

void tst_Progress::closeThatIsTaggedCancelStillCancels()
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

void tst_Progress::closedWindowStartsAfresh()
{
    Progress &progress = bench->progress;
    progress.SetWindowMode(true, "row");
    progress.SetTotal(3);
    progress.Show();
    QCOMPARE(progress.Rows().size(), 1);
    progress.SetButtonEnabled(false);
    progress.CloseByUser();
    QVERIFY(progress.IsVisible());
    progress.SetButtonEnabled(true);
    progress.CloseByUser();
    QVERIFY(!progress.IsVisible() && bench->owner.aCalls.contains("cancel"));
    progress.Load();
    QVERIFY(progress.Rows().isEmpty() && progress.Total() == 0);
    QCOMPARE(progress.FileHeader(), QString("File"));
}

QTEST_GUILESS_MAIN(tst_Progress)
#include "tst_Progress.moc"
