#include "mailbox/FolderTreeModel.h"

#include "core/ModelRoles.h"
#include "mailbox/FolderTree.h"

FolderTreeModel::FolderTreeModel(FolderTree &shownTree, QObject *parent)
    : QAbstractItemModel(parent)
    , tree(shownTree)
{
    connect(&tree, &FolderTree::AboutToLoad, this, [this] { beginResetModel(); });
    connect(&tree, &FolderTree::Loaded, this, [this] { endResetModel(); });
    connect(&tree, &FolderTree::NodeChanged, this, [this](FolderNode *node) {
        const QModelIndex index = IndexOf(node);
        emit dataChanged(index, index);
    });
}

QModelIndex FolderTreeModel::IndexOf(FolderNode *node) const
{
    return node ? createIndex(node->Row(), 0, node) : QModelIndex();
}

FolderNode *FolderTreeModel::NodeOf(const QModelIndex &index) const
{
    return static_cast<FolderNode *>(index.internalPointer());
}

QModelIndex FolderTreeModel::index(int row, int column, const QModelIndex &parent) const
{
    if (!hasIndex(row, column, parent))
        return {};
    return createIndex(row, column, parent.isValid() ? NodeOf(parent)->aChildren.at(row) : tree.Root());
}

QModelIndex FolderTreeModel::parent(const QModelIndex &index) const
{
    return index.isValid() ? IndexOf(NodeOf(index)->parent) : QModelIndex();
}

int FolderTreeModel::rowCount(const QModelIndex &parent) const
{
    if (!parent.isValid())
        return 1;
    return parent.column() == 0 ? static_cast<int>(NodeOf(parent)->aChildren.size()) : 0;
}

int FolderTreeModel::columnCount(const QModelIndex &) const
{
    return 1;
}

QVariant FolderTreeModel::data(const QModelIndex &index, int role) const
{
    const FolderNode *node = NodeOf(index);
    if (!node)
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return node->strText;
    case Qt::AccessibleTextRole:
        return node->lUnread > 0
                   ? tr("%1, %n unread", nullptr, static_cast<int>(node->lUnread)).arg(node->strText)
                   : node->strText;
    case KeyRole:
        return node->strKey;
    case ImageKeyRole:
        return GetFamilyImageKey(node->Family);
    case CountRole:
        return static_cast<int>(node->lUnread);
    default:
        return {};
    }
}
