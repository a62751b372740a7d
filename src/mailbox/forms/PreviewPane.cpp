#include "mailbox/forms/PreviewPane.h"

#include "controls/Icons.h"
#include "controls/PageCanvas.h"
#include "mailbox/ShownMailbox.h"
#include "ui_PreviewPane.h"

#include <QAction>
#include <QMenu>

namespace {

constexpr double dZoomStep = 1.2;

} // namespace

PreviewPane::PreviewPane(ShownMailbox &shownMailbox, QWidget *parent)
    : QWidget(parent)
    , mailbox(shownMailbox)
    , ui(std::make_unique<Ui::PreviewPane>())
{
    ui->setupUi(this);
    MakeActions();
    SetUpButtons();
    ui->txtPage->setMaximumWidth(fontMetrics().horizontalAdvance("0000 / 0000") + 12);
    PageCanvas &canvas = Canvas();
    canvas.SetFitMode(PageCanvas::FitWidth);
    canvas.SetZMethod(PageCanvas::ColorOnColor);
    canvas.setContextMenuPolicy(Qt::CustomContextMenu);
    connect(&canvas, &QWidget::customContextMenuRequested, this, &PreviewPane::ShowRightMenu);
    connect(&canvas, &PageCanvas::ZoomedByUser, this, [this] { mailbox.Preview().SetFreeZoom(); });
    connect(&canvas, &PageCanvas::PageDownRequested, this, &PreviewPane::NextPage);
    connect(&canvas, &PageCanvas::PageUpRequested, this, &PreviewPane::PreviousPage);
    connect(&canvas, &PageCanvas::ViewRequested, this, &PreviewPane::ViewRequested);
    connect(&mailbox.Preview(), &FaxPreview::FaxChanged, this, &PreviewPane::ShowHeader);
    connect(&mailbox.Preview(), &FaxPreview::PageChanged, this, &PreviewPane::ShowPage);
    connect(&mailbox.Preview(), &FaxPreview::ZoomChanged, this, &PreviewPane::ShowZoom);
    connect(&mailbox, &ShownMailbox::CommandsChanged, this, &PreviewPane::ShowHeader);
    ShowHeader();
    ShowPage();
    ShowZoom();
}

PreviewPane::~PreviewPane() = default;

PageCanvas &PreviewPane::Canvas() const
{
    return *ui->picPreviewImage;
}

// Commands

void PreviewPane::AddAction(const QString &name, const QString &text, const QString &shortcut,
                            void (PreviewPane::*run)())
{
    auto *action = new QAction(text, this);
    action->setObjectName(name);
    action->setShortcut(QKeySequence(shortcut));
    connect(action, &QAction::triggered, this, run);
    aActions.append(action);
}

void PreviewPane::MakeActions()
{
    AddAction("mnuFaxview_FixWidth", tr("Fit &Width"), "W", &PreviewPane::FitWidth);
    AddAction("mnuFaxview_ActualSize", tr("&Actual Size"), "0", &PreviewPane::ActualSize);
    AddAction("mnuFaxview_ZoomIn", tr("Zoom &In"), "+", &PreviewPane::ZoomIn);
    AddAction("mnuFaxview_ZoomOut", tr("Zoom &Out"), "-", &PreviewPane::ZoomOut);
    AddAction("mnuFaxview_RotateLeft90", tr("Rotate &Left"), "Shift+R", &PreviewPane::RotateLeft);
    AddAction("mnuFaxview_Rotate180", tr("&Turn Upside Down"), {}, &PreviewPane::RotatePlane);
    AddAction("mnuFaxview_RotateRight90", tr("&Rotate Right"), "R", &PreviewPane::RotateRight);
    AddAction("mnuFaxview_PreviousPage", tr("&Previous Page"), "Alt+Up", &PreviewPane::PreviousPage);
    AddAction("mnuFaxview_NextPage", tr("&Next Page"), "Alt+Down", &PreviewPane::NextPage);
    AddAction("mnuFaxview_FirstPage", tr("&First Page"), "Alt+Home", &PreviewPane::FirstPage);
    AddAction("mnuFaxview_LastPage", tr("La&st Page"), "Alt+End", &PreviewPane::LastPage);
    for (const char *name : {"mnuFaxview_FixWidth", "mnuFaxview_ActualSize"})
        findChild<QAction *>(name)->setCheckable(true);
}

void PreviewPane::SetUpButtons()
{
    const auto follow = [this](QToolButton *button, const QString &actionName) {
        auto *action = findChild<QAction *>(actionName);
        action->setIcon(Icons::Get(button->objectName()));
        action->setIconVisibleInMenu(false); // it would not read on the highlight of a menu
        button->setDefaultAction(action);
        button->setIconSize({20, 20});
        button->setAccessibleName(action->text().remove('&'));
    };
    follow(ui->btnPreviousPage, "mnuFaxview_PreviousPage");
    follow(ui->btnNextPage, "mnuFaxview_NextPage");
    follow(ui->btnFixWidth, "mnuFaxview_FixWidth");
    follow(ui->btnZoom100, "mnuFaxview_ActualSize");
    follow(ui->btnRotateLeft, "mnuFaxview_RotateLeft90");
    follow(ui->btnRotatePlane, "mnuFaxview_Rotate180");
    follow(ui->btnRotateRight, "mnuFaxview_RotateRight90");
}

void PreviewPane::FirstPage()
{
    mailbox.Preview().FirstPage();
}

void PreviewPane::PreviousPage()
{
    mailbox.Preview().PreviousPage();
}

void PreviewPane::NextPage()
{
    mailbox.Preview().NextPage();
}

void PreviewPane::LastPage()
{
    mailbox.Preview().LastPage();
}

void PreviewPane::FitWidth()
{
    mailbox.Preview().SetFitWidth();
}

void PreviewPane::ActualSize()
{
    mailbox.Preview().SetZoom100();
}

void PreviewPane::RotateLeft()
{
    mailbox.Preview().Rotate(90);
}

void PreviewPane::RotatePlane()
{
    mailbox.Preview().Rotate(180);
}

void PreviewPane::RotateRight()
{
    mailbox.Preview().Rotate(-90);
}

void PreviewPane::ZoomIn()
{
    mailbox.Preview().SetFreeZoom();
    Canvas().SetZValue(Canvas().ZValue() * dZoomStep);
}

void PreviewPane::ZoomOut()
{
    mailbox.Preview().SetFreeZoom();
    Canvas().SetZValue(Canvas().ZValue() / dZoomStep);
}

// What the pane shows

void PreviewPane::ShowHeader()
{
    const FaxPreview &preview = mailbox.Preview();
    const auto show = [](QLineEdit *box, const QString &text) {
        if (box->text() == text)
            return;
        box->setText(text);
        box->setCursorPosition(0);
        box->setToolTip(text.toHtmlEscaped());
    };
    show(ui->txtSender, preview.Texts().strSender);
    show(ui->txtReceiver, preview.Texts().strReceiver);
    show(ui->txtTitle, preview.Texts().strTitle);
    show(ui->txtFileName, preview.Texts().strFileName);
    if (!preview.HasImage())
        Canvas().Clear(preview.Complaint().isEmpty() ? tr("Choose a fax to see its pages.")
                                                     : preview.Complaint());
}

void PreviewPane::ShowPage()
{
    const FaxPreview &preview = mailbox.Preview();
    if (preview.HasImage())
        Canvas().SetPage(preview.Page(), preview.IsStretchedX(), preview.IsStretchedY(), false);
    else if (!preview.PageText().isEmpty())
        Canvas().Clear(tr("This page cannot be read."));
    ui->txtPage->setText(preview.PageText());
    ShowStates();
}

void PreviewPane::ShowZoom()
{
    const FaxPreview &preview = mailbox.Preview();
    Canvas().SetZAutoFit(preview.IsFitWidth());
    if (preview.IsZoom100())
        Canvas().SetZValue(1.0);
    ShowStates();
}

void PreviewPane::ShowStates()
{
    const FaxPreview &preview = mailbox.Preview();
    for (QAction *action : aActions)
        action->setEnabled(!preview.PageText().isEmpty());
    for (const char *name : {"mnuFaxview_PreviousPage", "mnuFaxview_FirstPage"})
        findChild<QAction *>(name)->setEnabled(preview.CanGoBack());
    for (const char *name : {"mnuFaxview_NextPage", "mnuFaxview_LastPage"})
        findChild<QAction *>(name)->setEnabled(preview.CanGoForward());
    findChild<QAction *>("mnuFaxview_FixWidth")->setChecked(preview.IsFitWidth());
    findChild<QAction *>("mnuFaxview_ActualSize")->setChecked(preview.IsZoom100());
}

void PreviewPane::ShowRightMenu(const QPoint &place)
{
    auto *menu = new QMenu(this);
    menu->setObjectName("mnuFaxview_RightMenu");
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addActions(aActions);
    menu->popup(Canvas().mapToGlobal(place));
}
