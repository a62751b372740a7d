#pragma once

#include "desktop/CommandStates.h"

#include <QHash>
#include <QMap>
#include <QObject>

#include <functional>

class QAction;
class QMainWindow;
class QMenu;

/// The commands of the main window: each has a menu item, and may have a tool bar button and an item in the
/// menu of the list. All of a command's actions run one routine and are enabled together.
class CommandActions final : public QObject
{
    Q_OBJECT

public:
    using Routine = std::function<void()>;

    /// Takes the actions whose names begin with "mnu" and "tb" from the window, makes the menu of the list
    /// and gives all of them their icons, tips and texts. A command without a routine stays disabled. `run`
    /// is handed the name and the routine of a command that the user has chosen.
    CommandActions(QMainWindow &window, std::function<void(const QString &, const Routine &)> run);

    void SetCommand(const QString &name, Routine routine);
    void Apply(const CommandStates::States &states);
    /// Runs a command as if the user had chosen it; not while it is disabled.
    void Trigger(const QString &name);
    /// Runs a command's routine, which then judges by itself whether there is anything to do.
    void Run(const QString &name);

    QMenu &GridMenu() { return *GridRightMenu; }

private:
    void Register(QAction *action, const QString &command);
    void MakeGridMenu();
    void SetIcons();
    void SetTips();
    void Enable(const QString &command);

    QMainWindow &window;
    std::function<void(const QString &, const Routine &)> runRoutine;
    QMenu *GridRightMenu;
    QHash<QString, QAction *> menuItems;    ///< by command
    QMultiHash<QString, QAction *> actions; ///< all of a command's, the menu item included
    QHash<QString, Routine> routines;       ///< by command
    CommandStates::States wanted;           ///< as they would be if every command had its routine
};
