#include "desktop/forms/frmMain.h"

#include "controls/HintedTreeView.h"
#include "controls/Icons.h"
#include "controls/PageCanvas.h"
#include "core/Globals.h"
#include "core/Message.h"
#include "core/RaisedError.h"
#include "desktop/About.h"
#include "desktop/Leftovers.h"
#include "desktop/forms/PaneLayout.h"
#include "mailbox/ShownMailbox.h"
#include "mailbox/forms/AddressPane.h"
#include "mailbox/forms/DateBar.h"
#include "mailbox/forms/FolderPane.h"
#include "mailbox/forms/ListPane.h"
#include "mailbox/forms/PreviewPane.h"
#include "ui_frmMain.h"

#include <QCloseEvent>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QProgressBar>
#include <QScopedValueRollback>
#include <QTimer>

namespace {

/// Commands that are enabled without regard to the mailbox and the session.
bool IsFreeCommand(const QString &name)
{
    static const QStringList dependent = [] {
        QStringList names = CommandStates::SetCommMenu(true, {}).keys();
        names += CommandStates::SetGridCommands({}).keys();
        return names;
    }();
    return !dependent.contains(name);
}

} // namespace

frmMain::frmMain(ShownMailbox &shownMailbox, Message &messageBox, QWidget *parent)
    : QMainWindow(parent)
    , mailbox(shownMailbox)
    , message(messageBox)
    , ui(std::make_unique<Ui::frmMain>())
{
    ui->setupUi(this);
    PlacePanes();
    SetUpStatusBar();
    MakeGridMenu();
    SetUpActions();
    SetUpOwnCommands();
    connect(&mailbox, &ShownMailbox::CommandsChanged, this, &frmMain::SetGridCommands);
    connect(&mailbox, &ShownMailbox::FaxFileMissing, this, [this] {
        Apply({{"mnuInterResend", false}, {"tbResend", false}});
    });
    connect(&mailbox, &ShownMailbox::StatusChanged, this, &frmMain::ShowStatus);
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
    ui->picVSource->setStretchFactor(0, 0);
    ui->picVSource->setStretchFactor(1, 1);
    ui->picHSource_2->setStretchFactor(0, 2);
    ui->picHSource_2->setStretchFactor(1, 3);
    ui->picVSource->setSizes({220, 804});
    ui->picHSource_2->setSizes({230, 370});
    tvAddressbook->hide();
    paneLayout = std::make_unique<PaneLayout>(PaneLayout::Panes{this, ui->picVSource, ui->picSource,
                                                                ui->picHSource_2, tvFolder, tvAddressbook,
                                                                upper, picPreview, frmeHistory});
    QWidget::setTabOrder(tvFolder, tvAddressbook);
    tvFolder->setFocus();
}

void frmMain::SetUpStatusBar()
{
    labToday = new QLabel(this);
    labTotals = new QLabel(this);
    labTotals->setObjectName("labTotals");
    labTotals->setMinimumWidth(fontMetrics().horizontalAdvance(QString(22, ' ')));
    labServer = new QLabel(this);
    labServer->setObjectName("labServer");
    pbTotal = new QProgressBar(this);
    pbTotal->setMaximumWidth(140);
    pbTotal->setAccessibleName(tr("Progress of the transfer"));
    auto *welcome = new QLabel(tr("Welcome to Velmar Client, please press F1 for Help"), this);
    welcome->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // the panels come first
    ui->stbInfo->addWidget(welcome, 1);
    for (QWidget *panel : {static_cast<QWidget *>(pbTotal), static_cast<QWidget *>(labToday),
                           static_cast<QWidget *>(labTotals), static_cast<QWidget *>(labServer)})
        ui->stbInfo->addPermanentWidget(panel);
    for (QLabel *label : {labTotals, labServer})
        label->setTextFormat(Qt::PlainText);
    SetTotalPercent(-1);
    SetServerPanel(tr("Offline"));
    ShowToday();
}

void frmMain::ShowToday()
{
    const QLocale locale;
    const QDate today = QDate::currentDate();
    labToday->setText(tr(" Today : ") + locale.toString(today, QLocale::ShortFormat) + "  " +
                      locale.dayName(today.dayOfWeek()) + " ");
}

void frmMain::ShowStatus()
{
    labTotals->setText(mailbox.StatusText());
}

// Commands

/// The menu of the list: each item is a command of the menu bar under another name. Of two commands with the
/// same mnemonic, the first keeps it.
void frmMain::MakeGridMenu()
{
    auto *menu = new QMenu(this);
    menu->setObjectName("GridRightMenu");
    QStringList letters;
    for (const QString &name : CommandStates::GetRightMenu()) {
        const QString item = CommandStates::GetMenuOfTool(name);
        if (item.isEmpty()) {
            menu->addSeparator();
            continue;
        }
        const auto *command = findChild<QAction *>(item);
        QString text = command->text();
        const QString letter = text.mid(text.indexOf('&') + 1, 1).toLower();
        if (letters.contains(letter))
            text.remove('&');
        letters.append(letter);
        QAction *action = menu->addAction(text);
        action->setObjectName(name);
        action->setToolTip(command->toolTip());
    }
}

void frmMain::SetUpActions()
{
    for (QAction *action : findChildren<QAction *>()) {
        const QString name = action->objectName();
        const QString command = CommandStates::GetMenuOfTool(name);
        const QString menuItem = command.isEmpty() ? name : command;
        if (name.startsWith("tb"))
            action->setIcon(Icons::Get(name));
        else if (!menuItem.startsWith("mnu") || name.startsWith("mnuFaxview_"))
            continue;
        action->setEnabled(false);
        connect(action, &QAction::triggered, this, [this, menuItem] { RunCommand(menuItem); });
    }
    const QMap<QString, QString> menuIcons{
        {"mnuNewFax", "tbNewFax"},
        {"mnuPrint", "tbPrintFax"},
        {"mnuFaxProperty", "tbFaxProperty"},
        {"mnuEditDelete", "tbDeleteFax"},
        {"mnuFindFax", "tbFindFax"},
        {"mnuRefresh", "mnuRefresh"},
        {"mnuSendReceive", "tbSendReceive"},
        {"mnuSend", "tbSendFax"},
        {"mnuReceive", "tbReceiveFax"},
        {"mnuInterResend", "tbResend"},
        {"mnuNewContact", "tbNewContact"},
        {"mnuFindContact", "tbFindContact"},
        {"mnuLoginServer", "mnuLoginServer"},
        {"mnuLogoutServer", "mnuLogoutServer"},
        {"mnuOption", "mnuOption"},

    };
    for (auto it = menuIcons.begin(); it != menuIcons.end(); ++it)
        findChild<QAction *>(it.key())->setIcon(Icons::Get(it.value()));
    ui->mnuPage->addActions(picPreview->PageActions());
}

void frmMain::SetUpOwnCommands()
{
    SetCommand("mnuExit", [this] { close(); });
    SetCommand("mnuRefresh", [this] { mailbox.ReloadCurrentFolder(true); });
    SetCommand("mnuSelectAll", [this] { listPane->SelectAll(); });
    SetCommand("mnuReverseSel", [this] { listPane->ReverseSelection(); });
    SetCommand("mnuHadRead", [this] { mailbox.Marks().mnuHadRead(); });
    SetCommand("mnuUnRead", [this] { mailbox.Marks().mnuUnRead(); });
    SetCommand("mnuNextPane", [this] { GoToNextPane(); });
    SetCommand("mnuPreview", [this] { paneLayout->SetVisible(picPreview, ui->mnuPreview->isChecked()); });
    SetCommand("mnuHistory", [this] { paneLayout->SetVisible(frmeHistory, ui->mnuHistory->isChecked()); });
    SetCommand("mnuViewAddressBook",
               [this] { paneLayout->SetVisible(tvAddressbook, ui->mnuViewAddressBook->isChecked()); });
    SetCommand("mnuAbout", [this] {
        message.ShowMessage(GetAboutText(QCoreApplication::applicationVersion()), mbInformation);
    });
    const auto view = [this] {
        if (ui->mnuViewFax->isEnabled())
            RunCommand("mnuViewFax");
    };
    connect(listPane, &ListPane::ViewRequested, this, view);
    connect(listPane, &ListPane::MenuRequested, this,
            [this](const QPoint &place) { findChild<QMenu *>("GridRightMenu")->popup(place); });
    connect(picPreview, &PreviewPane::ViewRequested, this, view);
}

void frmMain::SetCommand(const QString &name, std::function<void()> run)
{
    commands.insert(name, std::move(run));
    if (IsFreeCommand(name))
        wanted.insert(name, true);
    Apply(wanted);
}

void frmMain::RunCommand(const QString &name)
{
    const auto run = commands.value(name);
    if (run)
        RunGuarded(name, run);
}

/// Commands begin at an event: what they raise ends here.
void frmMain::RunGuarded(const QString &routine, const std::function<void()> &run)
{
    try {
        run();
    } catch (const RaisedError &error) {
        message.ShowMessage("error in " + routine + "\r\n" + error.Description(), mbExclamation);
    }
}

void frmMain::Apply(const CommandStates::States &states)
{
    for (auto it = states.begin(); it != states.end(); ++it)
        wanted.insert(it.key(), it.value());
    for (QAction *action : findChildren<QAction *>()) {
        const QString name = action->objectName();
        const QString command = CommandStates::GetMenuOfTool(name);
        const QString menuItem = command.isEmpty() ? name : command;
        if (wanted.contains(menuItem))
            action->setEnabled(wanted.value(menuItem) && commands.contains(menuItem));
    }
}

void frmMain::SetCommMenu(bool enabled)
{
    Apply(CommandStates::SetCommMenu(enabled, mailbox.SelectedFolder()));
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
    Apply(CommandStates::SetGridCommands(ReadGridInput()));
}

void frmMain::GoToNextPane()
{
    const QList<QWidget *> panes{tvFolder, tvAddressbook, &listPane->Grid(), &picPreview->Canvas()};
    int current = -1;
    for (int i = 0; i < panes.size(); ++i) {
        if (panes.at(i)->hasFocus() || panes.at(i)->isAncestorOf(focusWidget()))
            current = i;
    }
    for (int step = 1; step <= panes.size(); ++step) {
        QWidget *next = panes.at((current + step) % static_cast<int>(panes.size()));
        if (next->isVisible())
            return next->setFocus(Qt::TabFocusReason);
    }
}

// The window

void frmMain::Load()
{
    LoadControlPostion();
    mailbox.LoadFaxFolderTree();
    show();
}

void frmMain::LoadControlPostion()
{
    RunGuarded("LoadControlPostion",
               [this] { paneLayout->Restore(ReadMainLayout(Global().strUserName, Global().strIniFile)); });
    ui->mnuViewAddressBook->setChecked(!tvAddressbook->isHidden());
    ui->mnuPreview->setChecked(!picPreview->isHidden());
    ui->mnuHistory->setChecked(!frmeHistory->isHidden());
}

/// A layout that cannot be stored keeps nobody from closing: the next start shows the last one.
void frmMain::StoreLayout()
{
    WriteMainLayout(paneLayout->Collect(), Global().strUserName, Global().strIniFile);
}

/// The layout first, then the log off, which runs events: another close meanwhile is passed over.
void frmMain::closeEvent(QCloseEvent *event)
{
    if (bClosing) {
        event->ignore();
        return;
    }
    const QScopedValueRollback<bool> isClosing(bClosing, true);
    RunGuarded("Form_Unload", [this] {
        DeleteLeftovers(Global().strOutputBoxPath);
        StoreLayout();
        if (closing)
            closing();
    });
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
    labServer->setText(text);
}

void frmMain::SetTotalPercent(int percent)
{
    pbTotal->setVisible(percent >= 0);
    pbTotal->setValue(qBound(0, percent, 100));
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
        ShowToday();
}
