#include "fakes/FakePorts.h"
#include "server/Progress.h"
#include "server/forms/ProgressAnimation.h"
#include "server/forms/ProgressModel.h"
#include "server/forms/frmProcess.h"

#include <QAbstractItemModelTester>
#include <QHeaderView>
#include <QIcon>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTreeView>
#include <QWindow>

namespace {

class FakeOwner final : public ProgressOwner
{
public:
    bool IsConnected() const override { return true; }
    void CancelTransfer() override { aCalls.append("cancel"); }
    void SetCommMenu(bool) override {}
    void EnableMainWindow() override { aCalls.append("enable"); }
    void SignalServerReply() override {}
    void SetUserAbort() override {}
    QStringList aCalls;
};

} // namespace

class tst_frmProcess : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void modelFollowsTheRows();
    void windowShowsTheRun();
    void headsFollowTheMode();
    void disabledMainWindowLeavesTheButtonAlive();
    void closingActsLikeTheButton();
    void newestRowStaysInSight();
    void everyStateHasItsPicture();
    void animationShowsAnotherPicturePerFrame();

private:
    template <class Widget>
    Widget *Find(const char *name) const
    {
        return form->findChild<Widget *>(name);
    }
    QTreeView *Grid() const { return Find<QTreeView>("grdProcess"); }
    QString Cell(int row, int column) const { return Grid()->model()->index(row, column).data().toString(); }

    FakePorts fakes;
    FakeOwner owner;
    std::unique_ptr<Progress> progress;
    std::unique_ptr<QWidget> mainWindow;
    std::unique_ptr<frmProcess> form;
};

void tst_frmProcess::init()
{
    owner.aCalls.clear();
    progress = std::make_unique<Progress>(fakes.timers);
    progress->SetOwner(&owner);
    mainWindow = std::make_unique<QWidget>();
    mainWindow->resize(600, 400);
    mainWindow->show();
    form = std::make_unique<frmProcess>(*progress, mainWindow.get());
}

void tst_frmProcess::cleanup()
{
    form.reset();
    mainWindow.reset();
    progress.reset();
}

void tst_frmProcess::modelFollowsTheRows()
{
    ProgressModel model(*progress);
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    connect(progress.get(), &Progress::RowsChanged, &model, &ProgressModel::Refresh);
    progress->SetTotal(2);
    progress->AddRow("a.tif");
    progress->AddRow("b.tif");
    QCOMPARE(inserted.size(), 2);
    progress->ChangePos2(0, 2, 40);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first().first().toModelIndex().row(), 1);
    QCOMPARE(model.index(1, ProgressModel::colState).data().toString(), "Receiving");
    progress->ClearRows();
    QCOMPARE(model.rowCount(), 0);
    progress->AddRow("c.tif");
    QCOMPARE(model.index(0, ProgressModel::colFile).data().toString(), "c.tif");
}

void tst_frmProcess::windowShowsTheRun()
{
    progress->Show();
    QVERIFY(form->isVisible());
    progress->SetTotal(2);
    progress->SetButton("Cancel", "&Cancel");
    progress->AddRow("Offer.tif");
    progress->ChangePos2(0, 1, 3);
    QCOMPARE(Find<QLabel>("labSendProcess")->text(), "Receiving fax 1 of 2");
    QCOMPARE(Find<QProgressBar>("pbSend")->value(), 2);
    QCOMPARE(Find<QPushButton>("btnCancelOperate")->text(), "&Cancel");
    QCOMPARE(Cell(0, ProgressModel::colState), "Receiving");
    QCOMPARE(Grid()->currentIndex().row(), 0);
    progress->ShowImage(4);
    QCOMPARE(Find<ProgressAnimation>("picTarget")->Frame(), 4);
    progress->Unload();
    QVERIFY(!form->isVisible());
}

void tst_frmProcess::headsFollowTheMode()
{
    const auto head = [this](int column) {
        return Grid()->model()->headerData(column, Qt::Horizontal).toString();
    };
    progress->Show();
    QCOMPARE(head(ProgressModel::colFile), "File");
    progress->SetWindowMode(true, "Checking");
    QCOMPARE(form->windowTitle(), "Syncing public contacts...");
    QCOMPARE(head(ProgressModel::colFile), "Tasks");
    QCOMPARE(head(ProgressModel::colState), "Status");
}

void tst_frmProcess::disabledMainWindowLeavesTheButtonAlive()
{
    mainWindow->setEnabled(false);
    progress->Show();
    progress->SetButton("Cancel", "&Cancel");
    QVERIFY(!form->isModal());
    QCOMPARE(form->windowHandle()->transientParent(), mainWindow->windowHandle());
    QTest::mouseClick(Find<QPushButton>("btnCancelOperate"), Qt::LeftButton);
    QVERIFY(owner.aCalls.contains("cancel") && owner.aCalls.contains("enable"));
}

void tst_frmProcess::closingActsLikeTheButton()
{
    progress->Show();
    progress->SetButton("Cancel", "&Cancel");
    form->close();
    QVERIFY(owner.aCalls.contains("cancel"));
    QVERIFY(!form->isVisible() && !progress->IsLoaded());
    owner.aCalls.clear();
    progress->Show();
    QTest::keyClick(form.get(), Qt::Key_Escape);
    QCOMPARE(owner.aCalls, QStringList{"enable"});
    QVERIFY(!form->isVisible());
}

void tst_frmProcess::newestRowStaysInSight()
{
    progress->Show();
    QVERIFY(QTest::qWaitForWindowExposed(form.get()));
    const QString longName = QString(200, 'n') + ".tif";
    for (int row = 0; row < 100; ++row)
        progress->AddRow(longName);
    const QModelIndex last = Grid()->model()->index(99, ProgressModel::colFile);
    QTRY_VERIFY(Grid()->viewport()->rect().contains(Grid()->visualRect(last).center()));
    QVERIFY(Grid()->columnWidth(ProgressModel::colFile) < form->width());
    QCOMPARE(last.data(Qt::ToolTipRole).toString(), longName);
}

void tst_frmProcess::everyStateHasItsPicture()
{
    for (const char *key :
         {"imgOK", "imgError", "imgWarning", "imgInfo", "imgProcessing", "imgSend", "imgReceive"})
        progress->AddRow("a.tif", key);
    for (int row = 0; row < progress->Rows().size(); ++row) {
        const QVariant icon = Grid()->model()->index(row, ProgressModel::colImage).data(Qt::DecorationRole);
        QVERIFY2(!icon.value<QIcon>().pixmap(16).isNull(), qPrintable(progress->Rows().at(row).strImage));
    }
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
    animation.ShowFrame(99);
    QCOMPARE(animation.Frame(), 6);
}

QTEST_MAIN(tst_frmProcess)
#include "tst_frmProcess.moc"
