#include "fakes/FakePorts.h"
#include "fakes/FakeProgressOwner.h"
#include "server/Progress.h"
#include "server/forms/ProgressModel.h"
#include "server/forms/frmProcess.h"

#include <QAbstractItemModelTester>
#include <QDialog>
#include <QIcon>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTreeView>
#include <QWindow>

#include <optional>

namespace {
struct Bench
{
    Bench()
    {
        progress.SetOwner(&owner);
        mainWindow.show();
        progress.Show();
        progress.SetButton("Cancel", "&Cancel");
    }
    FakePorts fakes;
    FakeProgressOwner owner;
    Progress progress{fakes.timers};
    QWidget mainWindow;
    frmProcess form{progress, &mainWindow};
};
} // namespace

class tst_frmProcess : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        bench.emplace();
        progress = &bench->progress;
        form = &bench->form;
    }

    void windowShowsTheRun()
    {
        QVERIFY(form->isVisible() && !form->isModal());
        progress->SetTotal(2);
        progress->AddRow("Offer.tif");
        progress->ChangePos2(0, 1, 3);
        QCOMPARE(Find<QLabel>("labSendProcess")->text(), "Receiving fax 1 of 2");
        QCOMPARE(Find<QProgressBar>("pbSend")->value(), 2);
        QCOMPARE(Find<QPushButton>("btnCancelOperate")->text(), "&Cancel");
        QCOMPARE(Model()->index(0, ProgressModel::colState).data().toString(), "Receiving");
        QCOMPARE(Find<QTreeView>("grdProcess")->currentIndex().row(), 0);
        progress->SetWindowMode(true, "Checking");
        QCOMPARE(form->windowTitle(), "Syncing public contacts...");
        progress->Unload();
        QVERIFY(!form->isVisible());
    }

    void modelTellsOnlyWhatIsNew()
    {
        const QAbstractItemModelTester tester(Model(),
                                              QAbstractItemModelTester::FailureReportingMode::QtTest);
        QSignalSpy inserted(Model(), &QAbstractItemModel::rowsInserted);
        QSignalSpy changed(Model(), &QAbstractItemModel::dataChanged);
        for (const char *key :
             {"imgOK", "imgError", "imgWarning", "imgInfo", "imgProcessing", "imgSend", "imgReceive"}) {
            progress->AddRow("a.tif", key);
            const QModelIndex last = Model()->index(Model()->rowCount() - 1, ProgressModel::colImage);
            QVERIFY2(!last.data(Qt::DecorationRole).value<QIcon>().pixmap(16).isNull(), key);
        }
        QCOMPARE(inserted.size(), 7);
        progress->SetTotal(7);
        progress->ChangePos2(0, 7, 40);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(changed.first().first().toModelIndex().row(), 6);
        progress->ClearRows();
        QCOMPARE(Model()->rowCount(), 0);
    }

    void disabledMainWindowLeavesTheButtonAlive()
    {
        bench->mainWindow.setEnabled(false);
        QCOMPARE(form->windowHandle()->transientParent(), bench->mainWindow.windowHandle());
        progress->SetWindowMode(true, {});
        auto *button = Find<QPushButton>("btnCancelOperate");
        QCOMPARE(button->text(), "&Close"); // and still cancels
        QTest::mouseClick(button, Qt::LeftButton);
        // The signal comes last: whoever it wakes finds the abort noted and the connection closed.
        QCOMPARE(bench->owner.aCalls, QStringList({"cancel", "menu on", "enable", "abort", "signal"}));
        QVERIFY(progress->IsLoaded() && !progress->IsSyncMode());
    }

    void closingActsLikeTheButton()
    {
        form->close();
        QVERIFY(bench->owner.aCalls.contains("cancel") && !form->isVisible() && !progress->IsLoaded());
        bench->owner.aCalls.clear();
        progress->Show();
        QTest::keyClick(form, Qt::Key_Escape);
        QVERIFY(bench->owner.aCalls == QStringList({"enable", "abort"}) && !form->isVisible());
    }

    void shortRunShowsNoWindowAndALongerOneDoesNotFlash()
    {
        FakeTimers &timers = bench->fakes.timers;
        progress->Unload();
        progress->ShowSoon();
        timers.Advance(400);
        QVERIFY(progress->IsLoaded() && !form->isVisible());
        progress->Unload();
        timers.Advance(400);
        QVERIFY(!form->isVisible());

        progress->ShowSoon();
        timers.Advance(510);
        progress->Unload();
        QVERIFY(form->isVisible() && !progress->IsLoaded());
        progress->Show(); // the next run takes it over
        timers.Advance(1000);
        QVERIFY(form->isVisible());

        progress->Unload();
        progress->ShowSoon();
        timers.Advance(510);
        progress->SetButton("Close", "&Close");
        progress->Unload();
        QTest::mouseClick(Find<QPushButton>("btnCancelOperate"), Qt::LeftButton); // a person need not wait
        QVERIFY(!form->isVisible());
    }

    void questionOfTheRunIsNotCovered()
    {
        progress->Unload();
        QDialog question;
        question.setModal(true);
        question.show();
        progress->Show();
        QVERIFY(!form->isVisible());
        question.close();
        QTRY_VERIFY(form->isVisible());
    }

private:
    template <class Widget>
    Widget *Find(const char *name) const
    {
        return form->findChild<Widget *>(name);
    }
    QAbstractItemModel *Model() const { return Find<QTreeView>("grdProcess")->model(); }

    std::optional<Bench> bench;
    Progress *progress = nullptr;
    frmProcess *form = nullptr;
};

QTEST_MAIN(tst_frmProcess)
#include "tst_frmProcess.moc"
