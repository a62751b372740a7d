#include "ViewerWindow.h"

#include "FaxPrinting.h"
#include "FaxSaving.h"
#include "NoticeBar.h"
#include "PageBox.h"
#include "PagesView.h"
#include "ThumbnailPane.h"
#include "ViewerCommands.h"
#include "ViewerSettings.h"
#include "ZoomBox.h"

#include <QAction>
#include <QApplication>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QScreen>
#include <QSplitter>
#include <QStatusBar>
#include <QToolBar>
#include <QVBoxLayout>

namespace {

constexpr QSize usualSize(1024, 1000);
constexpr double dMostOfScreen = 0.9;

/// One line without what could steer its drawing.
QString ToShownName(const QString &path)
{
    QString name = QFileInfo(path).fileName();
    const auto steers = [](QChar character) {
        switch (character.category()) {
        case QChar::Other_Control:
        case QChar::Other_Format: // some turn the direction of what follows
        case QChar::Separator_Line:
        case QChar::Separator_Paragraph:
            return true;
        default:
            return false;
        }
    };
    std::replace_if(name.begin(), name.end(), steers, QChar(' '));
    return name;
}

/// "204 x 98 dpi, 216 x 297 mm".
QString DescribePaper(const FaxDocument &document, int number)
{
    const TiffPage &page = document.Pages().Page(number);
    const QSizeF paper = document.PageSize(number);
    constexpr double millimetres = 25.4;
    const auto times = [](int one, int other, const QString &unit) {
        return QString::number(one) + QStringLiteral(" \u00d7 ") + QString::number(other) + " " + unit;
    };
    QStringList parts;
    if (document.HasResolution(number))
        parts.append(times(page.lDotsPerInchX, page.lDotsPerInchY, ViewerWindow::tr("dpi")));
    parts.append(times(qRound(paper.width() * millimetres), qRound(paper.height() * millimetres),
                       ViewerWindow::tr("mm")));
    return parts.join(", ");
}

QString LocalFileIn(const QMimeData &data)
{
    for (const QUrl &url : data.urls()) {
        if (url.isLocalFile())
            return url.toLocalFile();
    }
    return {};
}

} // namespace

ViewerWindow::ViewerWindow(QWidget *parent)
    : QMainWindow(parent)
    , pageBox(new PageBox)
    , zoomBox(new ZoomBox)
    , commands(std::make_unique<ViewerCommands>(*this, *pageBox, *zoomBox))
{
    setAcceptDrops(true);
    setContextMenuPolicy(Qt::NoContextMenu); // the one that Qt has would hide the tool bar
    ConnectDocument();
    PlacePanes();
    MakeStatusBar();
    SetUpFileCommands();
    SetUpViewCommands();
    SetUpPageCommands();
    ConnectPanes();
    RestoreSettings();
    view->SetNotice(tr("No fax is open.\nPress Ctrl+O to open one, or drop a file here."));
    view->setFocus();
    ShowDocument();
}

ViewerWindow::~ViewerWindow() = default;

void ViewerWindow::PlacePanes()
{
    view = new PagesView(document, renderer);
    thumbnails = new ThumbnailPane(document, renderer);
    notice = new NoticeBar;
    auto *pages = new QWidget;
    auto *layout = new QVBoxLayout(pages);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(notice);
    layout->addWidget(view, 1);
    splitter = new QSplitter;
    splitter->addWidget(thumbnails);
    splitter->addWidget(pages);
    splitter->setStretchFactor(1, 1);
    splitter->setCollapsible(0, false);
    splitter->setCollapsible(1, false);
    thumbnails->setMinimumWidth(90);
    setCentralWidget(splitter);
    QWidget::setTabOrder(thumbnails, view);
}

void ViewerWindow::MakeStatusBar()
{
    labPaper = new QLabel(this);
    labPage = new QLabel(this);
    statusBar()->addPermanentWidget(labPaper);
    statusBar()->addPermanentWidget(labPage);
}

// Commands

void ViewerWindow::SetUpFileCommands()
{
    commands->SetCommand("mnuOpen", [this] { AskForFile(); });
    commands->SetCommand("mnuReload", [this] { ReadAgain(); });
    commands->SetCommand("mnuSaveCopy", [this] { FaxSaving::SaveCopy(document, this); });
    commands->SetCommand("mnuPrint", [this] { FaxPrinting::Print(document, this, view->CurrentPage()); });
    commands->SetCommand("mnuPrintPreview",
                         [this] { FaxPrinting::Preview(document, this, view->CurrentPage()); });
    commands->SetCommand("mnuCopyPage", [this] { FaxSaving::CopyPage(document, view->CurrentPage(), this); });
    commands->SetCommand("mnuClose", [this] { close(); });
    commands->SetCommand("mnuAbout", [this] { ShowAbout(); });
}

void ViewerWindow::SetUpViewCommands()
{
    commands->SetCommand("mnuZoomIn", [this] { view->ZoomIn(); });
    commands->SetCommand("mnuZoomOut", [this] { view->ZoomOut(); });
    commands->SetCommand("mnuActualSize", [this] { view->SetZoom(1.0); });
    commands->SetCommand("mnuFitWidth", [this] { view->SetMode(PagesView::ZoomMode::Width); });
    commands->SetCommand("mnuFitPage", [this] { view->SetMode(PagesView::ZoomMode::Page); });
    commands->SetCommand("mnuThumbnails", [this] { ShowThumbnails(!bThumbnails); });
    commands->SetCommand("mnuNextPane", [this] { GoToNextPane(); });
    commands->SetCommand("mnuFullScreen", [this] { SetFullScreen(!isFullScreen()); });
    auto *leave = new QAction(this);
    leave->setShortcut(Qt::Key_Escape);
    addAction(leave);
    connect(leave, &QAction::triggered, this, [this] {
        SetFullScreen(false);
        view->setFocus();
    });
}

void ViewerWindow::SetUpPageCommands()
{
    const auto rotate = [this](int degrees) { document.Rotate(view->CurrentPage(), degrees); };
    commands->SetCommand("mnuRotateRight", [rotate] { rotate(90); });
    commands->SetCommand("mnuRotateLeft", [rotate] { rotate(-90); });
    commands->SetCommand("mnuRotate180", [rotate] { rotate(180); });
    commands->SetCommand("mnuRotateAllRight", [this] { document.RotateAll(90); });
    commands->SetCommand("mnuRotateAllLeft", [this] { document.RotateAll(-90); });
    commands->SetCommand("mnuPreviousPage", [this] { view->GoToPage(view->CurrentPage() - 1); });
    commands->SetCommand("mnuNextPage", [this] { view->GoToPage(view->CurrentPage() + 1); });
    commands->SetCommand("mnuFirstPage", [this] { view->GoToPage(0); });
    commands->SetCommand("mnuLastPage", [this] { view->GoToPage(document.PageCount() - 1); });
    commands->SetCommand("mnuGoToPage", [this] { AskForPage(); });
}

void ViewerWindow::ConnectPanes()
{
    const auto backToView = [this] { view->setFocus(); };
    connect(view, &PagesView::CurrentPageChanged, this, &ViewerWindow::ShowPlace);
    connect(view, &PagesView::ZoomChanged, this, &ViewerWindow::ShowZoom);
    connect(view, &PagesView::ZoomedByUser, this, &ViewerWindow::ShowZoom);
    connect(view, &PagesView::MenuRequested, this,
            [this](const QPoint &place) { commands->PageMenu().popup(place); });
    connect(thumbnails, &ThumbnailPane::PageChosen, view, &PagesView::GoToPage);
    connect(pageBox, &PageBox::PageChosen, view, &PagesView::GoToPage);
    connect(pageBox, &PageBox::Left, this, backToView);
    connect(zoomBox, &ZoomBox::ZoomChosen, view, &PagesView::SetZoom);
    connect(zoomBox, &ZoomBox::Left, this, backToView);
}

/// Before the panes are connected: they ask for the new pages then.
void ViewerWindow::ConnectDocument()
{
    const auto setPages = [this] { renderer.SetPages(document.Pages()); };
    connect(&document, &FaxDocument::Opened, this, setPages);
    connect(&document, &FaxDocument::Reopened, this, setPages);
    connect(&reader, &TableReader::TableRead, this, &ViewerWindow::TakeTable);
    connect(&watch, &FileWatch::Vanished, this, &ViewerWindow::ReadAgain);
    connect(&watch, &FileWatch::Changed, this, &ViewerWindow::ReadAgain);
}

// Settings

void ViewerWindow::RestoreSettings()
{
    const ViewerSettings settings = ViewerSettings::Read();
    resize(usualSize.boundedTo(screen()->availableSize() * dMostOfScreen));
    restoreGeometry(settings.abGeometry);
    commands->ToolBar().setToolButtonStyle(settings.buttons);
    const int width =
        settings.lThumbnailWidth > 0 ? settings.lThumbnailWidth : thumbnails->sizeHint().width();
    splitter->setSizes({width, usualSize.width() - width});
    ShowThumbnails(settings.bThumbnails);
    view->SetMode(settings.mode);
    if (settings.mode == PagesView::ZoomMode::Free)
        view->SetZoom(settings.dZoom);
}

void ViewerWindow::SaveSettings()
{
    ViewerSettings settings = ViewerSettings::Read();
    settings.abGeometry = isFullScreen() ? abBeforeFull : saveGeometry();
    settings.bThumbnails = bThumbnails;
    if (thumbnails->isVisible())
        settings.lThumbnailWidth = thumbnails->width();
    settings.mode = view->Mode();
    settings.dZoom = view->Zoom();
    settings.buttons = commands->ToolBar().toolButtonStyle();
    settings.Write();
}

void ViewerWindow::closeEvent(QCloseEvent *event)
{
    SaveSettings();
    QMainWindow::closeEvent(event);
}

// The file

void ViewerWindow::Open(const QString &path)
{
    strWanted = QFileInfo(path).absoluteFilePath();
    bReadingAgain = false;
    if (document.PageCount() == 0)
        view->SetNotice(tr("Opening %1...").arg(ToShownName(strWanted)));
    reader.Read(strWanted);
}

void ViewerWindow::ReadAgain()
{
    bReadingAgain = true;
    reader.Read(document.Path());
}

void ViewerWindow::AskForFile()
{
    const QString folder = QFileInfo(strWanted).absolutePath();
    const QString path = QFileDialog::getOpenFileName(this, tr("Open a Fax"), folder,
                                                      tr("Fax files (*.tif *.tiff);;All files (*)"));
    if (!path.isEmpty())
        Open(path);
}

void ViewerWindow::TakeTable(const QString &path, const FaxPages &pages)
{
    if (bReadingAgain)
        return TakeTableAgain(pages);
    if (pages.Count() == 0 && document.PageCount() > 0) {
        notice->ShowText(ToShownName(path) + ": " + FaxDocument::ProblemOf(path));
        return;
    }
    notice->hide();
    document.Take(path, pages);
    watch.Watch(path);
    ShowDocument();
}

/// What can no longer be read leaves the pages on show, as far as they were decoded.
void ViewerWindow::TakeTableAgain(const FaxPages &pages)
{
    if (pages.Count() == 0 && document.PageCount() > 0)
        return TellLost();
    notice->hide();
    if (document.PageCount() == 0)
        document.Take(document.Path(), pages);
    else
        document.TakeAgain(pages);
    ShowDocument();
}

void ViewerWindow::TellLost()
{
    if (QFileInfo::exists(document.Path())) {
        view->SetPageNotice(tr("This page had not been loaded before its file was changed."));
        notice->ShowText(tr("The file of this fax was changed and cannot be read any more. Pages that were "
                            "loaded stay on show."));
    } else {
        view->SetPageNotice(tr("This page had not been loaded before its file was removed."));
        notice->ShowText(
            tr("The file of this fax was moved or deleted. Pages that were loaded stay on show."));
    }
}

// What the window shows

void ViewerWindow::ShowDocument()
{
    const QString name = ToShownName(document.Path());
    setWindowTitle(QString(name).replace("[*]", "[*][*]")); // a window's mark of what is not saved
    if (document.PageCount() > 0)
        view->SetPageNotice(tr("This page is damaged and cannot be shown."));
    else if (!document.Path().isEmpty())
        view->SetNotice(name + "\n" + document.Problem());
    ShowPlace();
    ShowZoom();
}

void ViewerWindow::ShowPlace()
{
    const int page = view->CurrentPage(), pages = document.PageCount();
    pageBox->ShowPage(page, pages);
    thumbnails->SetCurrentPage(page);
    commands->ShowPlace(page, pages);
    commands->Action("mnuReload").setEnabled(!document.Path().isEmpty());
    labPage->setText(pages > 0 ? tr("Page %1 of %2").arg(page + 1).arg(pages) : QString());
    labPaper->setText(pages > 0 ? DescribePaper(document, page) : QString());
}

void ViewerWindow::ShowZoom()
{
    zoomBox->ShowZoom(view->Zoom());
    zoomBox->setEnabled(document.PageCount() > 0);
    commands->Action("mnuFitWidth").setChecked(view->Mode() == PagesView::ZoomMode::Width);
    commands->Action("mnuFitPage").setChecked(view->Mode() == PagesView::ZoomMode::Page);
}

void ViewerWindow::ShowThumbnails(bool shown)
{
    bThumbnails = shown;
    thumbnails->setVisible(shown && !isFullScreen());
    commands->Action("mnuThumbnails").setChecked(shown);
    if (shown)
        thumbnails->SetCurrentPage(view->CurrentPage());
}

void ViewerWindow::GoToNextPane()
{
    if (view->hasFocus() && thumbnails->isVisible())
        thumbnails->setFocus(Qt::TabFocusReason);
    else if ((view->hasFocus() || thumbnails->hasFocus()) && pageBox->isVisible() && pageBox->isEnabled())
        pageBox->setFocus(Qt::TabFocusReason);
    else
        view->setFocus(Qt::TabFocusReason);
}

void ViewerWindow::AskForPage()
{
    bool isChosen = false;
    const int page =
        QInputDialog::getInt(this, tr("Go to Page"), tr("Page (1 to %1):").arg(document.PageCount()),
                             view->CurrentPage() + 1, 1, document.PageCount(), 1, &isChosen);
    if (isChosen)
        view->GoToPage(page - 1);
}

void ViewerWindow::SetFullScreen(bool full)
{
    if (full == isFullScreen())
        return;
    if (full)
        abBeforeFull = saveGeometry();
    setWindowState(windowState() ^ Qt::WindowFullScreen);
}

/// The desktop may end the full screen, too.
void ViewerWindow::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    if (event->type() != QEvent::WindowStateChange)
        return;
    const bool isFull = isFullScreen();
    if (isFull == menuBar()->isHidden())
        return;
    menuBar()->setHidden(isFull);
    commands->ToolBar().setHidden(isFull);
    statusBar()->setHidden(isFull);
    commands->Action("mnuFullScreen").setChecked(isFull);
    ShowThumbnails(bThumbnails);
    if (isFull)
        notice->ShowBriefly(tr("Press Esc or F11 to leave the full screen."));
}

void ViewerWindow::ShowAbout()
{
    QMessageBox::about(this, tr("About the Viewer"),
                       QGuiApplication::applicationDisplayName() + " " +
                           QCoreApplication::applicationVersion());
}

// Dropped files

void ViewerWindow::dragEnterEvent(QDragEnterEvent *event)
{
    if (!LocalFileIn(*event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void ViewerWindow::dropEvent(QDropEvent *event)
{
    event->acceptProposedAction();
    Open(LocalFileIn(*event->mimeData()));
}
