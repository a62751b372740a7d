#include "mailbox/FolderChanges.h"

#include "core/Globals.h"
#include "core/Message.h"
#include "core/Utilities.h"
#include "mailbox/FolderRules.h"
#include "mailbox/ShownMailbox.h"

#include <QScopeGuard>

namespace {

long ReadFolderType(const QString &key)
{
    const auto row =
        Global().objDB->SelectEx("Select folder_type  from  faxfolder where folder_id='" + key + "'");
    return row->Next() ? row->Number(0) : 0;
}

/// A new name has to differ from all folders, that of a new folder only from its siblings.
bool IsNameTaken(const FolderChanges::Naming &naming, const QString &escapedName)
{
    const QString sql =
        naming.bRename
            ? QString("Select Folder_Name from faxFolder  where  Folder_Name ='%1' and   Folder_id<>'%2'")
                  .arg(escapedName, naming.strKey)
            : QString("Select Folder_Name from faxFolder  where ParentID='%1' and  Folder_Name ='%2' and   "
                      "Folder_id<>''")
                  .arg(naming.strKey, escapedName);
    return Global().objDB->SelectEx(sql)->Next();
}

/// The statements that move the faxes of folders of one family to another folder.
QStringList GetMoveStatements(FolderFamily family, const QString &target, const QString &ids)
{
    switch (family) {
    case FolderFamily::Received:
        return {QString("Update ReceiveFax Set FolderID='%1' Where FolderID in(%2)").arg(target, ids)};
    case FolderFamily::Recyle:
        return {QString("Update ReceiveFax Set RecyleID='%1' Where RecyleID in(%2) ").arg(target, ids),
                QString("Update SendFax Set RecyleID='%1' Where RecyleID in(%2) ").arg(target, ids)};
    default:
        return {QString("Update SendFax Set FolderID='%1' Where FolderID in(%2)").arg(target, ids)};
    }
}

} // namespace

FolderChanges::FolderChanges(ShownMailbox &shownMailbox, FolderTree &shownTree, Message &messageBox,
                             Ids &newIds)
    : mailbox(shownMailbox)
    , tree(shownTree)
    , message(messageBox)
    , ids(newIds)
{
}

// Names

std::optional<FolderChanges::Naming> FolderChanges::mnuAddFolder()
{
    std::optional<Naming> naming;
    if (CanAddFolder(mailbox.SelectedNode())) {
        message.RunGuarded("error in mnuAddFolder", [&] {
            const QString key = mailbox.SelectedFolder();
            naming = Naming{key, false, {}, ReadFolderType(key)};
        });
    }
    return naming;
}

std::optional<FolderChanges::Naming> FolderChanges::mnuEditFolder()
{
    const FolderNode *node = mailbox.SelectedNode();
    if (!CanChangeFolder(node))
        return std::nullopt;
    return Naming{node->strKey, true, GetTreeItemText(node), 0};
}

bool FolderChanges::SaveName(const Naming &naming, const QString &name)
{
    FolderNode *node = tree.Find(naming.strKey);
    if (!node || name.trimmed().isEmpty())
        return false;
    bool isSaved = false;
    message.RunGuarded("error in frmAddFolder", [&] {
        if (IsNameTaken(naming, EscapeText(name))) {
            message.ShowMessage(tr("The specified folder name already exists."), mbExclamation);
            return;
        }
        isSaved = naming.bRename ? Rename(node, name) : Create(node, name, naming.lFolderType);
    });
    return isSaved;
}

bool FolderChanges::Rename(FolderNode *node, const QString &name)
{
    Global().objDB->Execute(QString("Update FaxFolder set folder_name='%1' where folder_id='%2'")
                                .arg(EscapeText(name), node->strKey));
    tree.Rename(node, name);
    return true;
}

bool FolderChanges::Create(FolderNode *parent, const QString &name, long type)
{
    const QString id = NewFaxID(ids, message);
    if (id.isEmpty())
        return false;
    Global().objDB->Execute(
        QString("Insert Into FaxFolder(folder_id,folder_name,folder_type,isSystem,parentID) "
                "values('%1','%2','%3','0','%4')")
            .arg(id, EscapeText(name), QString::number(type), parent->strKey));
    tree.Add(parent, id, name);
    return true;
}

// Deleting and moving

void FolderChanges::mnuDeleteFolder()
{
    if (!CanChangeFolder(mailbox.SelectedNode()))
        return;
    const QString key = mailbox.SelectedFolder();
    if (message.ShowMessage(tr("Are you sure you want to remove this folder?"),
                            mbYesNo + mbQuestion + mbDefaultButton2) != mbAnswerYes)
        return;
    if (FolderNode *node = tree.Find(key))
        message.RunGuarded("error in mnuDeleteFolder", [&] { Delete(node); });
}

/// The order keeps the faxes reachable without a transaction: until its row goes, the folder is there for
/// what has not been moved yet.
void FolderChanges::Delete(FolderNode *node)
{
    FolderNode *parent = node->parent;
    // The ids of folders that were deleted before stay in the list and match nothing; those of a folder that
    // could not be deleted must not.
    const QString deletedBefore = tree.FolderIdList;
    auto keepList = qScopeGuard([&] { tree.FolderIdList = deletedBefore; });
    tree.FolderIdList = "'" + node->strKey + "'" + tree.CollectSubtreeFolderIds(node);
    for (const QString &sql : GetMoveStatements(node->Family, parent->strKey, tree.FolderIdList))
        Global().objDB->Execute(sql);
    mailbox.SetFolderTreeText(FolderTree::GetNotReadCount(*parent, mailbox.Dates().Text()), parent);
    Global().objDB->Execute("delete from FaxFolder where  Folder_ID in(" + tree.FolderIdList + ")");
    keepList.dismiss();
    tree.Remove(node);
}

void FolderChanges::DropFolder(const QString &sourceKey, const QString &targetKey)
{
    FolderNode *source = tree.Find(sourceKey);
    FolderNode *target = tree.Find(targetKey);
    if (!CanDragFolder(source) || !CanDropFolder(source, target))
        return;
    message.RunGuarded("error in tvFolder_DragDrop", [&] {
        Global().objDB->Execute(
            QString("Update FaxFolder set parentID='%1'  where folder_id='%2'").arg(targetKey, sourceKey));
        tree.Move(source, target);
    });
}
