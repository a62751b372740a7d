#include "desktop/forms/frmMain.h"

#include "controls/PageCanvas.h"
#include "core/Globals.h"
#include "core/Message.h"
#include "desktop/About.h"
#include "desktop/Leftovers.h"
#include "desktop/forms/CommandActions.h"
#include "desktop/forms/PaneLayout.h"
#include "desktop/forms/StatusPanels.h"
#include "mailbox/OpenFolders.h"
#include "mailbox/ShownMailbox.h"
#include "mailbox/forms/AddressPane.h"
#include "mailbox/forms/DateBar.h"
#include "mailbox/forms/FaxGrid.h"
#include "mailbox/forms/FolderPane.h"
#include "mailbox/forms/ListPane.h"
#include "mailbox/forms/PreviewPane.h"
#include "ui_frmMain.h"

#include <QActionGroup>
#include <QCloseEvent>
#include <QMenu>
#include <QScopeGuard>
#include <QScopedValueRollback>
#include <QTimer>

frmMain::frmMain(ShownMailbox &shownMailbox, Message &messageBox, QWidget *parent)
    : QMainWindow(parent)
    , mailbox(shownMailbox)
    , message(messageBox)
    , ui(std::make_unique<Ui::frmMain>())
{
    ui->setupUi(this);
    setContextMenuPolicy(Qt::NoContextMenu); // the one that Qt has would hide the tool bar
    panels = new StatusPanels(*ui->stbInfo);
    PlacePanes();
    SetUpCommands();
    ConnectPanes();
    SetUpFolderCommands();
    SetCommMenu(false);
    SetGridCommands();
}

frmMain::~frmMain() = default;

void frmMain::PlacePanes()
{
    tvFolder = new FolderPane(mailbox, this);
    tvAddressbook = new AddressPane(this);
    frmeHistory = new DateBar(mailbox, this);
    listPane = new ListPane(mailbox, this);
    picPreview = new PreviewPane(mailbox, this);
    ui->picSource->addWidget(tvFolder);
    ui->picSource->addWidget(tvAddressbook);
    auto *upper = new QWidget(this);
    auto *layout = new QVBoxLayout(upper);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(frmeHistory);
    layout->addWidget(listPane);
    ui->picHSource_2->addWidget(upper);
    ui->picHSource_2->addWidget(picPreview);
    ui->picSource->setMinimumWidth(ui->picVSource->Clearance());
    paneLayout = std::make_unique<PaneLayout>(
        PaneLayout::Panes{this, ui->picVSource, ui->picSource, ui->picHSource_2, tvFolder, tvAddressbook,
                          upper, picPreview, frmeHistory, ui->tbClient});
    paneLayout->Design();
    QWidget::setTabOrder(tvFolder, tvAddressbook);
    tvFolder->setFocus();
}

// Commands

void frmMain::SetUpCommands()
{
    commands = std::make_unique<CommandActions>(
        *this, [this](const QString &name, const CommandActions::Routine &run) { RunGuarded(name, run); });
    ui->mnuPage->addActions(picPreview->PageActions());
    ui->mnuView->insertMenu(ui->mnuPage->menuAction(), &listPane->SortMenu());
    listPane->Grid().addActions(picPreview->PageActions()); // for their keys
    SetUpToolBar();
    SetUpOwnCommands();
}

void frmMain::SetUpOwnCommands()
{
    SetCommand("mnuExit", [this] { Unload(); });
    SetCommand("mnuRefresh", [this] { mailbox.ReloadCurrentFolder(true); });
    SetCommand("mnuSelectAll", [this] { listPane->SelectAll(); });
    SetCommand("mnuReverseSel", [this] { listPane->ReverseSelection(); });
    SetCommand("mnuHadRead", [this] { RunOnSelection([this] { mailbox.Marks().mnuHadRead(); }); });
    SetCommand("mnuUnRead", [this] { RunOnSelection([this] { mailbox.Marks().mnuUnRead(); }); });
    SetCommand("mnuNextPane", [this] { GoToPane(1); });
    SetCommand("mnuPreviousPane", [this] { GoToPane(-1); });
    SetCommand("mnuMoveBorder", [this] { MoveNextBorder(); });
    SetCommand("mnuPreview", [this] { paneLayout->SetVisible(picPreview, ui->mnuPreview->isChecked()); });
    SetCommand("mnuHistory", [this] { paneLayout->SetVisible(frmeHistory, ui->mnuHistory->isChecked()); });
    SetCommand("mnuViewAddressBook",
               [this] { paneLayout->SetVisible(tvAddressbook, ui->mnuViewAddressBook->isChecked()); });
    SetCommand("mnuAbout", [this] {
        message.ShowMessage(GetAboutText(QCoreApplication::applicationVersion()), mbInformation);
    });
}

/// The styles of the tool bar stand in the view menu, and in the tool bar's own.
void frmMain::SetUpToolBar()
{
    auto *styles = new QActionGroup(this);
    const QMap<QString, Qt::ToolButtonStyle> styleOf{{"mnuToolBarIcons", Qt::ToolButtonIconOnly},
                                                     {"mnuToolBarTextUnder", Qt::ToolButtonTextUnderIcon},
                                                     {"mnuToolBarTextBeside", Qt::ToolButtonTextBesideIcon}};
    for (auto it = styleOf.begin(); it != styleOf.end(); ++it) {
        auto *action = findChild<QAction *>(it.key());
        styles->addAction(action);
        const Qt::ToolButtonStyle style = it.value();
        SetCommand(it.key(), [this, style] { ui->tbClient->setToolButtonStyle(style); });
        connect(ui->tbClient, &QToolBar::toolButtonStyleChanged, action,
                [action, style](Qt::ToolButtonStyle shown) { action->setChecked(shown == style); });
        action->setChecked(ui->tbClient->toolButtonStyle() == style);
    }
    ui->tbClient->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(ui->tbClient, &QWidget::customContextMenuRequested, this,
            [this](const QPoint &place) { ui->mnuToolBar->popup(ui->tbClient->mapToGlobal(place)); });
}

void frmMain::ConnectPanes()
{
    connect(&mailbox, &ShownMailbox::CommandsChanged, this, &frmMain::SetGridCommands);
    connect(&mailbox, &ShownMailbox::FaxFileMissing, this, [this] {
        commands->Apply({{"mnuInterResend", false}, {"tbResend", false}});
    });
    connect(&mailbox, &ShownMailbox::StatusChanged, this,
            [this] { panels->SetTotals(mailbox.StatusText()); });
    // In the trees these keys mean something else.
    for (QAction *action : {ui->mnuEditDelete, ui->mnuHadRead, ui->mnuUnRead}) {
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        listPane->addAction(action);
        picPreview->addAction(action);
    }
    // Not through the menu item: a draft without pages is opened, too.
    connect(listPane, &ListPane::ViewRequested, this, [this] { commands->Run("mnuViewFax"); });
    connect(picPreview, &PreviewPane::ViewRequested, this, [this] { commands->Run("mnuViewFax"); });
    connect(listPane, &ListPane::MenuRequested, this,
            [this](const QPoint &place) { commands->GridMenu().popup(place); });
}

void frmMain::SetUpFolderCommands()
{
    SetCommand("mnuDeleteFolder", [this] { mailbox.Changes().mnuDeleteFolder(); });
    tvFolder->addActions({ui->mnuAddFolder, ui->mnuEditFolder, ui->mnuDeleteFolder});
    connect(&mailbox, &ShownMailbox::FolderSelected, this, &frmMain::SetFolderCommands);
    connect(&mailbox.Folders(), &FolderTree::Moved, this, &frmMain::SetFolderCommands);
    connect(&mailbox.Folders(), &FolderTree::Moved, this, &frmMain::SetGridCommands); // another branch
    connect(ui->mnuFolder, &QMenu::aboutToShow, this, [this] {
        RunGuarded("IsRecycleBinEmpty", [this] {
            commands->Apply(CommandStates::SetRecycleBinCommands(FolderTree::IsRecycleBinEmpty()));
        });
    });
    connect(tvFolder, &FolderPane::MenuRequested, this,
            [this](const QPoint &place) { ui->mnuFolder->popup(place); });
}

void frmMain::SetFolderCommands()
{
    commands->Apply(CommandStates::SetFolderCommands(mailbox.SelectedNode()));
}

void frmMain::SetCommand(const QString &name, std::function<void()> run)
{
    commands->SetCommand(name, std::move(run));
}

/// All faxes of a large folder may be selected. The pointer of the window waits, but not that of a question.
void frmMain::RunOnSelection(const std::function<void()> &run)
{
    setCursor(Qt::WaitCursor);
    const auto restore = qScopeGuard([this] { unsetCursor(); });
    run();
}

/// Commands begin at an event: what they raise ends here.
void frmMain::RunGuarded(const QString &routine, const std::function<void()> &run)
{
    message.RunGuarded("error in " + routine, run);
}

void frmMain::SetCommMenu(bool enabled)
{
    commands->Apply(CommandStates::SetCommMenu(enabled, mailbox.SelectedFolder()));
}

CommandStates::GridInput frmMain::ReadGridInput() const
{
    const SessionState session = sessionState ? sessionState() : SessionState();
    const FolderNode *node = mailbox.SelectedNode();
    CommandStates::GridInput input;
    input.strKey = mailbox.SelectedFolder();
    input.strBranch = GetNodeParentKey(node);
    input.Family = node ? node->Family : FolderFamily::Root;
    input.lRows = node ? mailbox.RowCount() : 0;
    input.bHasImage = mailbox.Preview().HasImage();
    input.bHasFileName = !mailbox.Preview().Texts().strFileName.isEmpty();
    input.bIsSocketBusy = session.bIsSocketBusy;
    input.bOnline = session.bOnline;
    return input;
}

void frmMain::SetGridCommands()
{
    commands->Apply(CommandStates::SetGridCommands(ReadGridInput()));
}

/// Goes round the panes that are shown, forward by 1 or back by -1.
void frmMain::GoToPane(int step)
{
    QWidgetList panes{tvFolder, tvAddressbook, &listPane->Grid(), &picPreview->Canvas()};
    panes.removeIf([](const QWidget *pane) { return !pane->isVisible(); });
    if (panes.isEmpty())
        return;
    const qsizetype current = panes.indexOf(focusWidget());
    const qsizetype next = current < 0 ? 0 : current + step + panes.size();
    panes.at(next % panes.size())->setFocus(Qt::TabFocusReason);
}

/// The borders get the arrow keys in turn.
void frmMain::MoveNextBorder()
{
    const QList<PaneSplitter *> borders{ui->picVSource, ui->picHSource_2, ui->picSource};
    int current = -1;
    for (int i = 0; i < borders.size(); ++i) {
        if (borders.at(i)->handle(1)->hasFocus())
            current = i;
    }
    for (int step = 1; step <= borders.size(); ++step) {
        if (borders.at((current + step) % static_cast<int>(borders.size()))->TakeKeyboard())
            return;
    }
}

// The window

void frmMain::Load()
{
    LoadControlPostion();
    RunGuarded("frmMain Load", [this] { mailbox.LoadFaxFolderTree(); });
    show();
}

void frmMain::LoadControlPostion()
{
    RunGuarded("LoadControlPostion",
               [this] { paneLayout->Restore(ReadMainLayout(Global().strUserName, Global().strIniFile)); });
    listPane->SetWidths(ReadFaxColumnWidths(Global().strUserName, Global().strIniFile));
    tvFolder->SetOpenFolders(ReadOpenFolders(Global().strUserName, Global().strIniFile));
    ui->mnuViewAddressBook->setChecked(!tvAddressbook->isHidden());
    ui->mnuPreview->setChecked(!picPreview->isHidden());
    ui->mnuHistory->setChecked(!frmeHistory->isHidden());
}

/// Closes for good, from the tray too.
void frmMain::Unload()
{
    if (bClosing) // Qt would take a second close for an accepted one
        return;
    const QScopedValueRollback<bool> unloading(bUnloading, true);
    close();
}

bool frmMain::MayHideInTray() const
{
    return Global().CloseToTray && hasTrayIcon && hasTrayIcon();
}

/// A layout that cannot be stored keeps nobody from closing: the next start shows the last one.
void frmMain::StoreLayout()
{
    WriteMainLayout(paneLayout->Collect(), Global().strUserName, Global().strIniFile);
    WriteFaxColumnWidths(listPane->Widths(), Global().strUserName, Global().strIniFile);
    WriteOpenFolders(tvFolder->OpenFolders(), Global().strUserName, Global().strIniFile);
}

/// The layout first, then the log off, which runs events: another close meanwhile is passed over.
void frmMain::closeEvent(QCloseEvent *event)
{
    if (bClosing) {
        event->ignore();
        return;
    }
    if (!bUnloading && MayHideInTray()) {
        event->ignore();
        hide();
        return;
    }
    const QScopedValueRollback<bool> isClosing(bClosing, true);
    if (mayClose && !mayClose()) {
        event->ignore();
        return;
    }
    RunGuarded("Form_Unload", [this] {
        DeleteLeftovers(Global().strOutputBoxPath);
        StoreLayout();
    });
    if (closing) // whatever failed above: nothing else ends the program
        RunGuarded("Form_Unload", closing);
    event->accept();
}

void frmMain::SetEnabled(bool enabled)
{
    if (enabled == isEnabled())
        return;
    if (!enabled)
        focusBefore = focusWidget();
    setEnabled(enabled);
    if (enabled && focusBefore)
        focusBefore->setFocus();
}

void frmMain::Raise()
{
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void frmMain::SetServerPanel(const QString &text)
{
    panels->SetServer(text);
}

void frmMain::SetTotalPercent(int percent)
{
    panels->SetTotalPercent(percent);
}

void frmMain::SetBusyPointer(bool busy)
{
    if (busy)
        setCursor(Qt::BusyCursor);
    else
        unsetCursor();
}

void frmMain::showEvent(QShowEvent *event)
{
    QMainWindow::showEvent(event);
    if (bShownOnce)
        return;
    bShownOnce = true;
    QTimer::singleShot(0, this, [this] {
        if (firstActivation)
            RunGuarded("Form_Activate - frmMain", firstActivation);
    });
}

void frmMain::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        panels->ShowToday();
    // Queued: a window does not hide well while it is still being minimised.
    if (event->type() == QEvent::WindowStateChange && isMinimized() && MayHideInTray())
        QTimer::singleShot(0, this, &QWidget::hide);
}
