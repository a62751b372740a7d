#include "server/forms/frmProcess.h"

#include "server/Progress.h"
#include "server/forms/ProgressModel.h"
#include "ui_frmProcess.h"

#include <QApplication>
#include <QCloseEvent>
#include <QHeaderView>
#include <QTimer>
#include <QWindow>

#include <algorithm>

namespace {
constexpr int lModalPause = 100; // milliseconds
}

/// The pictures of a static library are dropped unless somebody asks for them.
static void InitPictures()
{
    Q_INIT_RESOURCE(progress);
}

frmProcess::frmProcess(Progress &progress, QWidget *mainWindow)
    : ui(std::make_unique<Ui::frmProcess>())
    , progress(progress)
    , mainWindow(mainWindow)
    , model(new ProgressModel(progress, this))
{
    InitPictures();
    ui->setupUi(this);
    SetUpGrid();
    ui->labSendProcess->setMinimumHeight(fontMetrics().lineSpacing()); // an empty line keeps its place
    connect(&progress, &Progress::Changed, this, &frmProcess::ShowControls);
    connect(&progress, &Progress::RowsChanged, this, &frmProcess::ShowRows);
    connect(&progress, &Progress::RowSelected, this, &frmProcess::SelectRow);
    connect(&progress, &Progress::FrameChanged, ui->picTarget, &ProgressAnimation::ShowFrame);
    connect(&progress, &Progress::Shown, this, &frmProcess::ShowOver);
    connect(&progress, &Progress::Unloaded, this, &frmProcess::hide);
    connect(ui->btnCancelOperate, &QPushButton::clicked, &progress, &Progress::ClickCancelOperate);
    ShowControls();
}

frmProcess::~frmProcess() = default;

void frmProcess::SetUpGrid()
{
    ui->grdProcess->setModel(model);
    QHeaderView *header = ui->grdProcess->header();
    const int iconSize = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
    const int imageWidth = iconSize + 12;
    ui->grdProcess->setIconSize(QSize(iconSize, iconSize));
    header->setMinimumSectionSize(imageWidth);
    header->setStretchLastSection(false);
    header->setSectionsMovable(false);
    header->setSectionResizeMode(ProgressModel::colImage, QHeaderView::Fixed);
    header->resizeSection(ProgressModel::colImage, imageWidth);
    header->setSectionResizeMode(ProgressModel::colFile, QHeaderView::Stretch);
    header->setSectionResizeMode(ProgressModel::colState, QHeaderView::ResizeToContents);
}

void frmProcess::reject()
{
    progress.CloseByUser();
}

void frmProcess::closeEvent(QCloseEvent *event)
{
    progress.CloseByUser();
    event->setAccepted(!isVisible());
}

void frmProcess::ShowOver(bool owned)
{
    if (QApplication::activeModalWidget()) { // a question of the run would be covered
        QTimer::singleShot(lModalPause, this, [this, owned] {
            if (progress.IsVisible() && !isVisible())
                ShowOver(owned);
        });
        return;
    }
    ShowControls();
    ShowRows();
    winId(); // makes the native window, which has the owner
    QWindow *owner = mainWindow ? mainWindow->window()->windowHandle() : nullptr;
    windowHandle()->setTransientParent(owned ? owner : nullptr);
    if (mainWindow && !bPlaced)
        CentreOver(*mainWindow->window());
    bPlaced = true;
    show();
    raise();
}

void frmProcess::CentreOver(const QWidget &other)
{
    move(other.frameGeometry().center() - rect().center());
}

void frmProcess::ShowControls()
{
    setWindowTitle(progress.Caption().isEmpty() ? tr("Velmar Client") : progress.Caption());
    ui->labSendProcess->setText(progress.Text());
    ui->pbSend->setValue(std::clamp(progress.Bar(), 0, 100));
    ui->btnCancelOperate->setText(progress.ButtonCaption());
    ui->btnCancelOperate->setEnabled(progress.IsButtonEnabled());
    ui->picTarget->ShowFrame(progress.Frame());
    model->RefreshHeads();
}

/// The newest row stays in sight.
void frmProcess::ShowRows()
{
    const int before = model->rowCount();
    model->Refresh();
    if (model->rowCount() > before)
        ui->grdProcess->scrollToBottom();
}

void frmProcess::SelectRow(int row)
{
    const QModelIndex index = model->index(row, ProgressModel::colFile);
    if (!index.isValid()) {
        ui->grdProcess->clearSelection();
        return;
    }
    ui->grdProcess->setCurrentIndex(index);
    ui->grdProcess->scrollTo(index);
}
