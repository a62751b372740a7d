#include "mailbox/forms/PreviewPane.h"

#include "controls/Icons.h"
#include "controls/PageCanvas.h"
#include "mailbox/ShownMailbox.h"
#include "mailbox/ShownText.h"
#include "ui_PreviewPane.h"

#include <QAction>
#include <QMenu>

namespace {

/// A single key, which would be taken away from where one types.
bool IsPlainKey(const QKeySequence &shortcut)
{
    return !shortcut.isEmpty() && (shortcut[0].keyboardModifiers() & ~Qt::ShiftModifier) == 0;
}

} // namespace

PreviewPane::PreviewPane(ShownMailbox &shownMailbox, QWidget *parent)
    : QWidget(parent)
    , mailbox(shownMailbox)
    , ui(std::make_unique<Ui::PreviewPane>())
{
    ui->setupUi(this);
    SetUpCanvas();
    MakeActions();
    MakeRightMenu();
    SetUpButtons();
    ui->txtPage->setMaximumWidth(fontMetrics().horizontalAdvance("0000 / 0000") + 12);
    const FaxPreview &preview = mailbox.Preview();
    connect(&preview, &FaxPreview::FaxChanged, this, &PreviewPane::ShowHeader);
    connect(&preview, &FaxPreview::PageChanged, this, &PreviewPane::ShowPage);
    connect(&preview, &FaxPreview::ZoomChanged, this, &PreviewPane::ShowZoom);
    connect(&preview, &FaxPreview::AboutToLoad, this, &PreviewPane::ShowBusy);
    connect(&preview, &FaxPreview::Loaded, this, [this] { busyPointer.reset(); });
    ShowHeader();
    ShowPage();
    ShowZoom();
}

PreviewPane::~PreviewPane() = default;

PageCanvas &PreviewPane::Canvas() const
{
    return *ui->picPreviewImage;
}

void PreviewPane::SetUpCanvas()
{
    PageCanvas &canvas = Canvas();
    canvas.SetFitMode(PageGeometry::FitWidth);
    canvas.SetZMethod(PageCanvas::ColorOnColor);
    connect(&canvas, &PageCanvas::MenuRequested, this,
            [this](const QPoint &place) { mnuFaxview_RightMenu->popup(place); });
    connect(&canvas, &PageCanvas::ZoomedByUser, this, [this] { mailbox.Preview().SetFreeZoom(); });
    connect(&canvas, &PageCanvas::PageDownRequested, this, &PreviewPane::NextPage);
    connect(&canvas, &PageCanvas::PageUpRequested, this, &PreviewPane::EndOfPreviousPage);
    connect(&canvas, &PageCanvas::ViewRequested, this, &PreviewPane::ViewRequested);
}

// Commands

void PreviewPane::AddAction(const QString &name, const QString &text, const QString &shortcut,
                            void (PreviewPane::*run)())
{
    auto *action = new QAction(text, this);
    action->setObjectName(name);
    action->setShortcut(QKeySequence(shortcut));
    if (!shortcut.isEmpty())
        action->setToolTip(QString(text).remove('&') + " (" +
                           action->shortcut().toString(QKeySequence::NativeText) + ")");
    const bool isPlain = IsPlainKey(action->shortcut());
    action->setShortcutContext(isPlain ? Qt::WidgetShortcut : Qt::WindowShortcut);
    Canvas().addAction(action);
    connect(action, &QAction::triggered, this, run);
    aActions.append(action);
}

void PreviewPane::AddSeparator()
{
    auto *separator = new QAction(this);
    separator->setSeparator(true);
    aActions.append(separator);
}

void PreviewPane::MakeActions()
{
    AddAction("mnuFaxview_FixWidth", tr("Fit &Width"), "W", &PreviewPane::FitWidth);
    AddAction("mnuFaxview_ActualSize", tr("&Actual Size"), "0", &PreviewPane::ActualSize);
    AddAction("mnuFaxview_ZoomIn", tr("Zoom &In"), "+", &PreviewPane::ZoomIn);
    AddAction("mnuFaxview_ZoomOut", tr("Zoom O&ut"), "-", &PreviewPane::ZoomOut);
    AddSeparator();
    AddAction("mnuFaxview_RotateLeft90", tr("Rotate &Left"), "Shift+R", &PreviewPane::RotateLeft);
    AddAction("mnuFaxview_Rotate180", tr("Turn Upside &Down"), {}, &PreviewPane::RotatePlane);
    AddAction("mnuFaxview_RotateRight90", tr("Rotate Ri&ght"), "R", &PreviewPane::RotateRight);
    AddSeparator();
    AddAction("mnuFaxview_PreviousPage", tr("&Previous Page"), "Alt+Up", &PreviewPane::PreviousPage);
    AddAction("mnuFaxview_NextPage", tr("&Next Page"), "Alt+Down", &PreviewPane::NextPage);
    AddAction("mnuFaxview_FirstPage", tr("&First Page"), "Alt+Home", &PreviewPane::FirstPage);
    AddAction("mnuFaxview_LastPage", tr("La&st Page"), "Alt+End", &PreviewPane::LastPage);
    for (const char *name : {"mnuFaxview_FixWidth", "mnuFaxview_ActualSize"})
        findChild<QAction *>(name)->setCheckable(true);
}

/// Three of its items are commands of the fax. The main window runs them and sets their states.
void PreviewPane::MakeRightMenu()
{
    mnuFaxview_RightMenu = new QMenu(this);
    mnuFaxview_RightMenu->setObjectName("mnuFaxview_RightMenu");
    const auto add = [this](const QString &name, const QString &text) {
        QAction *action = mnuFaxview_RightMenu->addAction(text);
        action->setObjectName(name);
        action->setEnabled(false);
    };
    add("mnuFaxview_ViewFax", tr("&Open Fax"));
    mnuFaxview_RightMenu->addSeparator();
    mnuFaxview_RightMenu->addActions(aActions);
    mnuFaxview_RightMenu->addSeparator();
    add("mnuFaxview_FaxSaveAs", tr("Sa&ve Fax As..."));
    add("mnuFaxview_Property", tr("P&roperties"));
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

/// Whoever reads backwards goes on at the end of the page.
void PreviewPane::EndOfPreviousPage()
{
    if (!mailbox.Preview().CanGoBack())
        return;
    PreviousPage();
    Canvas().ScrollToEnd();
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
    Turn(1);
}

void PreviewPane::RotatePlane()
{
    Turn(2);
}

void PreviewPane::RotateRight()
{
    Turn(-1);
}

/// Who looks at a part of the page sees that part again; a fitted page is read from its top.
void PreviewPane::Turn(int quarters)
{
    QPointF part = Canvas().PartInMiddle();
    mailbox.Preview().Rotate(quarters * 90);
    for (int turned = 0; turned < (quarters + 4) % 4; ++turned)
        part = {part.y(), 1 - part.x()};
    if (!mailbox.Preview().IsFitWidth())
        Canvas().ScrollPartToMiddle(part);
}

void PreviewPane::ZoomIn()
{
    Canvas().ZoomIn();
}

void PreviewPane::ZoomOut()
{
    Canvas().ZoomOut();
}

// What the pane shows

void PreviewPane::ShowHeader()
{
    const FaxPreview &preview = mailbox.Preview();
    const auto show = [](QLineEdit *box, const QString &text) {
        const QString shown = ToListText(text);
        if (box->text() == shown)
            return;
        box->setText(shown);
        box->setCursorPosition(0);
        box->setToolTip(shown.isEmpty() ? QString() : Qt::convertFromPlainText(shown));
    };
    show(ui->txtSender, preview.Texts().strSender);
    show(ui->txtReceiver, preview.Texts().strReceiver);
    show(ui->txtTitle, preview.Texts().strTitle);
    show(ui->txtFileName, preview.Texts().strFileName);
    ShowNotice();
}

void PreviewPane::ShowPage()
{
    const FaxPreview &preview = mailbox.Preview();
    if (preview.HasImage())
        Canvas().SetPage(preview.Page(), preview.IsStretchedX(), preview.IsStretchedY(), false);
    ui->txtPage->setText(preview.PageText());
    ShowNotice();
    ShowStates();
}

/// What stands in the place of a page.
void PreviewPane::ShowNotice()
{
    const FaxPreview &preview = mailbox.Preview();
    if (preview.HasImage())
        return;
    const bool hasFaxes = mailbox.RowCount() > 0 && !mailbox.List().Row(1).IsSummary();
    if (!preview.PageText().isEmpty())
        Canvas().Clear(tr("This page cannot be read."));
    else if (!preview.Complaint().isEmpty())
        Canvas().Clear(preview.Complaint());
    else
        Canvas().Clear(hasFaxes ? tr("Choose a fax to see its pages.") : QString());
}

void PreviewPane::ShowBusy(bool isLarge)
{
    Canvas().DropPage();
    if (isLarge)
        busyPointer.emplace();
}

void PreviewPane::ShowZoom()
{
    const FaxPreview &preview = mailbox.Preview();
    Canvas().SetZAutoFit(preview.IsFitWidth());
    const bool isReset = !preview.HasImage() && !preview.IsFitWidth();
    if (preview.IsZoom100() || isReset)
        Canvas().SetZValue(1.0);
    ShowStates();
}

void PreviewPane::ShowStates()
{
    const FaxPreview &preview = mailbox.Preview();
    for (QAction *action : aActions)
        action->setEnabled(action->isSeparator() || !preview.PageText().isEmpty());
    for (const char *name : {"mnuFaxview_PreviousPage", "mnuFaxview_FirstPage"})
        findChild<QAction *>(name)->setEnabled(preview.CanGoBack());
    for (const char *name : {"mnuFaxview_NextPage", "mnuFaxview_LastPage"})
        findChild<QAction *>(name)->setEnabled(preview.CanGoForward());
    findChild<QAction *>("mnuFaxview_FixWidth")->setChecked(preview.IsFitWidth());
    findChild<QAction *>("mnuFaxview_ActualSize")->setChecked(preview.IsZoom100());
}
