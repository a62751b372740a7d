#include "desktop/forms/CommandActions.h"

#include "controls/Icons.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>

namespace {

/// Menu items that share the picture of another command's button, or have one of their own.
const QMap<QString, QString> &MenuIcons()
{
    static const QMap<QString, QString> icons{
        {"mnuNewFax", "tbNewFax"},
        {"mnuSaveAs", "mnuSaveAs"},
        {"mnuPrint", "tbPrintFax"},
        {"mnuFaxProperty", "tbFaxProperty"},
        {"mnuEditDelete", "tbDeleteFax"},
        {"mnuResume", "mnuResume"},
        {"mnuMoveFax", "mnuMoveFax"},
        {"mnuHadRead", "imgReaded"},
        {"mnuUnRead", "imgNotRead"},
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
        {"mnuShowHelp", "mnuShowHelp"},
    };
    return icons;
}

/// Commands that are enabled without regard to the mailbox and the session.
bool IsFreeCommand(const QString &name)
{
    static const CommandStates::States online = CommandStates::SetCommMenu(true, {});
    static const CommandStates::States grid = CommandStates::SetGridCommands({});
    static const CommandStates::States folder = CommandStates::SetFolderCommands(nullptr);
    static const CommandStates::States bin = CommandStates::SetRecycleBinCommands(true);
    return !online.contains(name) && !grid.contains(name) && !folder.contains(name) && !bin.contains(name);
}

QString MnemonicOf(const QString &text)
{
    const qsizetype at = text.indexOf('&');
    return at < 0 ? QString() : text.mid(at + 1, 1).toLower();
}

QString ShortcutOf(const QAction *action)
{
    return action->shortcut().toString(QKeySequence::NativeText);
}

} // namespace

CommandActions::CommandActions(QMainWindow &mainWindow,
                               std::function<void(const QString &, const Routine &)> run)
    : window(mainWindow)
    , runRoutine(std::move(run))
    , GridRightMenu(new QMenu(&mainWindow))
{
    for (QAction *action : window.findChildren<QAction *>()) {
        const QString name = action->objectName();
        const QString command = CommandStates::GetMenuOfTool(name);
        if (!command.isEmpty()) {
            Register(action, command);
        } else if (name.startsWith("mnu") && !name.startsWith("mnuFaxview_")) { // those are the pane's own
            menuItems.insert(name, action);
            Register(action, name);
        }
    }
    MakeGridMenu();
    SetIcons();
    SetTips();
}

void CommandActions::Register(QAction *action, const QString &command)
{
    actions.insert(command, action);
    action->setEnabled(false);
    connect(action, &QAction::triggered, this, [this, command] { Trigger(command); });
}

/// Of two items with the same mnemonic, the first keeps it. A shortcut can belong to one action only, which
/// is the menu item: this menu just shows it.
void CommandActions::MakeGridMenu()
{
    GridRightMenu->setObjectName("GridRightMenu");
    QStringList letters;
    for (const QString &name : CommandStates::GetRightMenu()) {
        const QString command = CommandStates::GetMenuOfTool(name);
        if (command.isEmpty()) {
            GridRightMenu->addSeparator();
            continue;
        }
        const QAction *item = menuItems.value(command);
        QString text = item->text();
        if (letters.contains(MnemonicOf(text)))
            text.remove('&');
        letters.append(MnemonicOf(text));
        QAction *action = GridRightMenu->addAction(text + '\t' + ShortcutOf(item));
        action->setObjectName(name);
        Register(action, command);
    }
}

void CommandActions::SetIcons()
{
    for (auto it = actions.cbegin(); it != actions.cend(); ++it) {
        const QString name = it.value()->objectName();
        it.value()->setIcon(name.startsWith("tb") ? Icons::Get(name)
                                                  : Icons::GetForMenu(MenuIcons().value(it.key())));
    }
}

/// What the menu item says about itself holds for all actions of its command.
void CommandActions::SetTips()
{
    for (auto it = actions.cbegin(); it != actions.cend(); ++it) {
        const QAction *item = menuItems.value(it.key());
        const QString tip = item->statusTip();
        const QString shortcut = ShortcutOf(item);
        it.value()->setStatusTip(tip);
        it.value()->setToolTip(shortcut.isEmpty() ? tip : tip + " (" + shortcut + ")");
    }
}

void CommandActions::SetCommand(const QString &name, Routine routine)
{
    routines.insert(name, std::move(routine));
    if (IsFreeCommand(name))
        wanted.insert(name, true);
    Enable(name);
}

void CommandActions::Apply(const CommandStates::States &states)
{
    wanted.insert(states);
    for (auto it = states.begin(); it != states.end(); ++it)
        Enable(it.key());
}

void CommandActions::Enable(const QString &command)
{
    const bool isEnabled = wanted.value(command) && routines.contains(command);
    const QList<QAction *> ofCommand = actions.values(command);
    for (QAction *action : ofCommand)
        action->setEnabled(isEnabled);
}

void CommandActions::Trigger(const QString &name)
{
    if (menuItems.value(name)->isEnabled())
        Run(name);
}

void CommandActions::Run(const QString &name)
{
    if (routines.contains(name))
        runRoutine(name, routines.value(name));
}
