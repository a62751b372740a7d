#pragma once

#include "mailbox/FolderFamily.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <optional>

class FolderTree;
class Ids;
class Message;
class ShownMailbox;
struct FolderNode;

/// What the user does with the folders: makes, renames, moves and deletes them. The table is written first,
/// then the tree follows. Errors of the database are shown in a box and leave the tree as it was.
class FolderChanges final
{
    Q_DECLARE_TR_FUNCTIONS(FolderChanges)

public:
    FolderChanges(ShownMailbox &mailbox, FolderTree &tree, Message &message, Ids &ids);

    /// What the folder window is opened with.
    struct Naming
    {
        QString strKey; ///< the folder to rename, or the one in which a folder is made
        bool bRename = false;
        QString strCurrentName; ///< what the window offers; may be empty for a folder, too
        long lFolderType = 0;   ///< the type of a folder that is made
    };
    /// For the selected folder; nothing without one.
    std::optional<Naming> mnuAddFolder();
    std::optional<Naming> mnuEditFolder();

    /// Makes or renames the folder. False when it was refused, which a box has told unless the name is empty.
    bool SaveName(const Naming &naming, const QString &name);

    /// Asks, and deletes the selected folder with its subfolders. Their faxes move to the folder above.
    void mnuDeleteFolder();

    /// Moves a folder into another one, if it may go there.
    void DropFolder(const QString &sourceKey, const QString &targetKey);

private:
    bool Rename(FolderNode *node, const QString &name);
    bool Create(FolderNode *parent, const QString &name, long type);
    void Delete(FolderNode *node);

    ShownMailbox &mailbox;
    FolderTree &tree;
    Message &message;
    Ids &ids;
};
