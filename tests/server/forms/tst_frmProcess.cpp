#include "fakes/FakePorts.h"
#include "fakes/FakeProgressOwner.h"
#include "server/Progress.h"
#include "server/forms/ProgressAnimation.h"
#include "server/forms/ProgressModel.h"
#include "server/forms/frmProcess.h"

#include <QAbstractItemModelTester>
#include <QIcon>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTreeView>
#include <QWindow>

class tst_frmProcess : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void windowShowsTheRun();
    void modelTellsOnlyWhatIsNew();
    void disabledMainWindowLeavesTheButtonAlive();
    void closingActsLikeTheButton();
    void newestRowStaysInSight();
    void animationShowsAnotherPicturePerFrame();

private:
    template <class Widget>
    Widget *Find(const char *name) const
    {
        return form->findChild<Widget *>(name);
    }
    QAbstractItemModel *Model() const { return Find<QTreeView>("grdProcess")->model(); }

    FakePorts fakes;
    FakeProgressOwner owner;
    std::unique_ptr<Progress> progress;
    std::unique_ptr<QWidget> mainWindow;
    std::unique_ptr<frmProcess> form;
};

void tst_frmProcess::init()
{
    owner = {};
    progress = std::make_unique<Progress>(fakes.timers);
    progress->SetOwner(&owner);
    mainWindow = std::make_unique<QWidget>();
    mainWindow->show();
    form = std::make_unique<frmProcess>(*progress, mainWindow.get());
    progress->Show();
    progress->SetButton("Cancel", "&Cancel");
}

void tst_frmProcess::cleanup()
{
    form.reset();
    mainWindow.reset();
    progress.reset();
}

void tst_frmProcess::windowShowsTheRun()
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
    progress->ShowImage(4);
    QCOMPARE(Find<ProgressAnimation>("picTarget")->Frame(), 4);
    progress->SetWindowMode(true, "Checking");
    QCOMPARE(form->windowTitle(), "Syncing public contacts...");
    QCOMPARE(Model()->headerData(ProgressModel::colFile, Qt::Horizontal).toString(), "Tasks");
    QCOMPARE(Model()->headerData(ProgressModel::colState, Qt::Horizontal).toString(), "Status");
    progress->Unload();
    QVERIFY(!form->isVisible());
}

void tst_frmProcess::modelTellsOnlyWhatIsNew()
{
    const QAbstractItemModelTester tester(Model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
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

void tst_frmProcess::disabledMainWindowLeavesTheButtonAlive()
{
    mainWindow->setEnabled(false);
    QCOMPARE(form->windowHandle()->transientParent(), mainWindow->windowHandle());
    QTest::mouseClick(Find<QPushButton>("btnCancelOperate"), Qt::LeftButton);
    QCOMPARE(owner.aCalls, QStringList({"cancel", "menu on", "enable", "abort", "signal"}));
}

void tst_frmProcess::closingActsLikeTheButton()
{
    form->close();
    QVERIFY(owner.aCalls.contains("cancel") && !form->isVisible() && !progress->IsLoaded());
    owner.aCalls.clear();
    progress->Show();
    QTest::keyClick(form.get(), Qt::Key_Escape);
    QVERIFY(owner.aCalls == QStringList({"enable", "abort"}) && !form->isVisible());
}

void tst_frmProcess::newestRowStaysInSight()
{
    QVERIFY(QTest::qWaitForWindowExposed(form.get()));
    for (int row = 0; row < 100; ++row)
        progress->AddRow(QString(200, 'n') + ".tif");
    const auto *grid = Find<QTreeView>("grdProcess");
    const QModelIndex last = Model()->index(99, ProgressModel::colFile);
    QTRY_VERIFY(grid->viewport()->rect().contains(grid->visualRect(last).center()));
    QVERIFY(grid->columnWidth(ProgressModel::colFile) < form->width());
}

void tst_frmProcess::animationShowsAnotherPicturePerFrame()
{
    ProgressAnimation animation;
    animation.resize(animation.sizeHint());
    QList<QImage> pictures;
    for (int frame = 0; frame < ProgressAnimation::frameCount; ++frame) {
        animation.ShowFrame(frame);
        const QImage picture = animation.grab().toImage();
        QVERIFY2(!pictures.contains(picture), qPrintable(QString::number(frame)));
        pictures.append(picture);
    }
}

QTEST_MAIN(tst_frmProcess)
#include "tst_frmProcess.moc"
