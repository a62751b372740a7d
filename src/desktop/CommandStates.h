#pragma once

#include "mailbox/FolderFamily.h"

#include <QMap>
#include <QString>
#include <QStringList>

struct FolderNode;

/// Which commands of the main window are enabled. Menu items and tool bar buttons go by their own names.
namespace CommandStates {

/// Enabled or not, by command. Commands that a routine does not speak of stay as they are.
using States = QMap<QString, bool>;

/// The commands that need the server. `key` is the selected folder.
States SetCommMenu(bool enabled, const QString &key);

/// What the commands of the list depend on.
struct GridInput
{
    QString strKey;    ///< selected folder; empty for none
    QString strBranch; ///< "1005", "1006" or "1007" when the folder stands there
    FolderFamily Family = FolderFamily::Root;
    int lRows = 0;
    bool bHasImage = false;    ///< the preview shows a page
    bool bHasFileName = false; ///< `txtFileName` is not empty
    bool bIsSocketBusy = false;
    bool bOnline = false;
};

/// The commands that depend on the folder and the selection.
States SetGridCommands(const GridInput &input);

/// The commands on the selected folder, null for none.
States SetFolderCommands(const FolderNode *node);
/// The commands on the whole Recycle bin.
States SetRecycleBinCommands(bool isEmpty);

/// The menu item that a tool bar button, or an item of the list's or page's own menu, runs; empty for any
/// other name.
QString GetMenuOfTool(const QString &tool);

/// The items of the list's own menu in their order; an empty name for a separator.
QStringList GetRightMenu();

} // namespace CommandStates
