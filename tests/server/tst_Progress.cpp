#include "fakes/FakeTimers.h"
#include "server/Progress.h"

#include <QSignalSpy>
#include <QTest>

namespace {
class FakeOwner final : public ProgressOwner
{
public:
    bool IsConnected() const override { return bConnected; }
    void CancelTransfer() override
    {
        aCalls.append("cancel");
        bConnected = false;
    }
    void SetCommMenu(bool enabled) override { aCalls.append(enabled ? "menu on" : "menu off"); }
    void EnableMainWindow() override { aCalls.append("enable"); }
    void SignalServerReply() override { aCalls.append("signal"); }
    void SetUserAbort() override { aCalls.append("abort"); }

    bool bConnected = true;
    QStringList aCalls;
};
} // namespace

class tst_Progress : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void modeWritesTheLastRow_data();
    void modeWritesTheLastRow();
    void withoutATotalNothingChanges();
    void animationRunsWhileConnected();
    void framesGoFromOneToSixAndStopAtTheEnd();
    void synchronisationKeepsOneRow();
    void closeThatIsTaggedCancelStillCancels();
    void buttonTaggedCloseOnlyClosesTheWindow();
    void windowThatWasUnloadedStartsAfresh();
    void windowWithADisabledButtonCannotBeClosed();

private:
    std::unique_ptr<FakeTimers> timers;
    std::unique_ptr<Progress> progress;
    std::unique_ptr<FakeOwner> owner;
};

void tst_Progress::init()
{
    timers = std::make_unique<FakeTimers>();
    progress = std::make_unique<Progress>(*timers);
    owner = std::make_unique<FakeOwner>();
    progress->SetOwner(owner.get());
    progress->Show();
}

void tst_Progress::cleanup()
{
    progress.reset();
    owner.reset();
    timers.reset();
}

void tst_Progress::modeWritesTheLastRow_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("percent");
    QTest::addColumn<QString>("image");
    QTest::addColumn<QString>("state");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("bar");
    QTest::addColumn<int>("selected");

    // Task 2 of 4, three rows in the grid; the bar stands at 7 and the text reads "before".
    const auto row = [](const char *name, int mode, int percent, const char *image, const char *state,
                        const char *text, int bar, int selected) {
        QTest::newRow(name) << mode << percent << image << state << text << bar << selected;
    };
    row("refused", -1, 100, "imgError", "Failed", "Receiving fax 2 of 4", 50, -1);
    row("receiving, just begun", 0, 4, "imgReceive", "Receiving", "Receiving fax 2 of 4", 26, 2);
    row("receiving", 0, 5, "imgReceive", "Receiving", "Receiving fax 2 of 4", 26, -1);
    row("halves go to the even neighbour", 0, 50, "imgReceive", "Receiving", "Receiving fax 2 of 4", 38, -1);
    row("received", 1, 100, "imgOK", "Completed", "before", 7, -1);
    row("sending, just begun", 2, 4, "imgSend", "Sending", "Sending fax 2 of 4", 26, 1);
    row("sending", 2, 80, "imgSend", "Sending", "Sending fax 2 of 4", 45, -1);
    row("stored before", 3, 0, "imgWarning", "Exists", "Receiving fax 2 of 4", 50, 1);
    row("upload failed", 4, 0, "imgError", "Failed", "Sending fax 2 of 4", 50, -1);
    row("cancelled", 5, 0, "imgError", "Canceled", "before", 7, -1);
    row("connection lost", 6, 0, "imgError", "Disconnected", "before", 7, -1);
    row("not in use", 7, 0, "", "old", "before", 7, -1);
    row("sent", 8, 0, "imgOK", "Completed", "before", 7, -1);
    row("information", 9, 1, "imgInfo", "old", "before", 7, -1);
    row("unknown", 10, 0, "", "old", "before", 7, -1);
}

void tst_Progress::modeWritesTheLastRow()
{
    QFETCH(int, mode);
    QFETCH(int, percent);
    QFETCH(QString, image);
    QFETCH(QString, state);
    const bool isZero = percent == 0;
    for (int i = 0; i < 3; ++i)
        progress->AddRow("file", {}, "old");
    progress->SetTotal(4);
    progress->SetBar(7);
    progress->SetText("before");

    progress->ChangePos2(mode, 2, percent);

    const ProgressRow untouched{{}, "file", "old"};
    const QList<ProgressRow> expected{untouched, untouched, {image, "file", state}};
    QCOMPARE(progress->Rows(), expected);
    QTEST(progress->Text(), "text");
    QTEST(progress->Bar(), "bar");
    QTEST(progress->SelectedRow(), "selected");
    if (isZero && mode < 10 && mode != 7)
        QCOMPARE(percent, 1); // written back
}

void tst_Progress::withoutATotalNothingChanges()
{
    progress->AddRow("file");
    int percent = 0;
    progress->ChangePos2(0, 1, percent);
    QCOMPARE(percent, 0);
    QCOMPARE(progress->Rows().constFirst().strState, QString());
    QVERIFY(!progress->IsAnimated());
}

void tst_Progress::animationRunsWhileConnected()
{
    progress->SetTotal(2);
    progress->AddRow("file");
    progress->ChangePos2(0, 1, 100);
    QVERIFY(!progress->IsAnimated());
    progress->ChangePos2(0, 1, 99);
    QVERIFY(progress->IsAnimated());
    owner->bConnected = false;
    progress->ChangePos2(5, 1, 99);
    QVERIFY(!progress->IsAnimated());
    QCOMPARE(progress->Frame(), 6);
}

void tst_Progress::framesGoFromOneToSixAndStopAtTheEnd()
{
    QSignalSpy frames(progress.get(), &Progress::FrameChanged);
    progress->ChangePos(10);
    timers->Advance(700);
    QList<int> shown;
    for (const QList<QVariant> &frame : frames)
        shown.append(frame.constFirst().toInt());
    QCOMPARE(shown, QList<int>({1, 2, 3, 4, 5, 6, 1}));
    progress->SetBar(100);
    timers->Advance(100);
    QCOMPARE(progress->Frame(), 6);
    QVERIFY(!progress->IsAnimated());
}

void tst_Progress::synchronisationKeepsOneRow()
{
    progress->SetWindowMode(true, "first");
    QCOMPARE(progress->Caption(), QString("Syncing public contacts..."));
    QCOMPARE(progress->FileHeader(), QString("Tasks"));
    QCOMPARE(progress->Rows().constFirst().strFile, QString("first"));
    progress->ChangePos(40);
    QCOMPARE(progress->Rows(), QList<ProgressRow>({{"imgProcessing", "Syncing public contacts: 40%", {}}}));
    progress->ChangePos(100);
    QCOMPARE(progress->Rows(), QList<ProgressRow>({{"imgOK", "Syncing public contacts: 100%", {}}}));
    progress->SetWindowMode(false, {});
    progress->ChangePos(50);
    QCOMPARE(progress->Rows().constFirst().strImage, QString("imgOK"));
}

void tst_Progress::closeThatIsTaggedCancelStillCancels()
{
    progress->SetWindowMode(true, {});
    QCOMPARE(progress->ButtonCaption(), QString("&Close"));
    progress->ClickCancelOperate();
    // The signal comes last: whoever it wakes finds the abort noted and the connection closed.
    QCOMPARE(owner->aCalls, QStringList({"cancel", "menu on", "enable", "abort", "signal"}));
    QVERIFY(progress->IsLoaded());
    QVERIFY(!progress->IsSyncMode());
    QCOMPARE(progress->ButtonTag(), QString("Close"));
}

void tst_Progress::buttonTaggedCloseOnlyClosesTheWindow()
{
    progress->SetButton("Close", "&Close");
    progress->ClickCancelOperate();
    QCOMPARE(owner->aCalls, QStringList({"enable", "abort"}));
    QVERIFY(!progress->IsLoaded());
}

void tst_Progress::windowThatWasUnloadedStartsAfresh()
{
    progress->SetWindowMode(true, "row");
    progress->SetTotal(3);
    progress->Show();
    QCOMPARE(progress->Rows().size(), 1);
    progress->Unload();
    progress->Load();
    QVERIFY(progress->Rows().isEmpty());
    QCOMPARE(progress->Total(), 0);
    QCOMPARE(progress->FileHeader(), QString("File"));
    QVERIFY(!progress->IsSyncMode());
    QVERIFY(!progress->IsVisible());
}

void tst_Progress::windowWithADisabledButtonCannotBeClosed()
{
    progress->SetButtonEnabled(false);
    progress->CloseByUser();
    QVERIFY(progress->IsVisible());
    progress->SetButtonEnabled(true);
    progress->SetButton("Cancel", "&Cancel");
    progress->CloseByUser();
    QVERIFY(!progress->IsVisible());
    QVERIFY(owner->aCalls.contains("cancel"));
}

QTEST_GUILESS_MAIN(tst_Progress)
#include "tst_Progress.moc"
