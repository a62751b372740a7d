#include "mailbox/FolderTreeModel.h"

#include "core/ModelRoles.h"
#include "mailbox/FolderRules.h"
#include "mailbox/FolderTree.h"
#include "mailbox/ShownText.h"

#include <QMimeData>

namespace {

constexpr char strFolderMimeType[] = "application/x-velmar-folder"; ///< a folder's key

} // namespace

FolderTreeModel::FolderTreeModel(FolderTree &shownTree, QObject *parent)
    : QAbstractItemModel(parent)
    , tree(shownTree)
{
    connect(&tree, &FolderTree::AboutToLoad, this, [this] { beginResetModel(); });
    connect(&tree, &FolderTree::Loaded, this, [this] { endResetModel(); });
    connect(&tree, &FolderTree::NodesChanged, this,
            [this](FolderNode *first, FolderNode *last) { emit dataChanged(IndexOf(first), IndexOf(last)); });
    connect(&tree, &FolderTree::AboutToAdd, this, [this](FolderNode *above) {
        const int row = static_cast<int>(above->aChildren.size());
        beginInsertRows(IndexOf(above), row, row);
    });
    connect(&tree, &FolderTree::Added, this, [this] { endInsertRows(); });
    connect(&tree, &FolderTree::AboutToMove, this, [this](FolderNode *node, FolderNode *target) {
        beginMoveRows(IndexOf(node->parent), node->lRow, node->lRow, IndexOf(target),
                      static_cast<int>(target->aChildren.size()));
    });
    connect(&tree, &FolderTree::Moved, this, [this] { endMoveRows(); });
    connect(&tree, &FolderTree::AboutToRemove, this,
            [this](FolderNode *node) { beginRemoveRows(IndexOf(node->parent), node->lRow, node->lRow); });
    connect(&tree, &FolderTree::Removed, this, [this] { endRemoveRows(); });
}

QModelIndex FolderTreeModel::IndexOf(FolderNode *node) const
{
    return node ? createIndex(node->lRow, 0, node) : QModelIndex();
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
        return ToListText(node->strText);
    case Qt::AccessibleTextRole: {
        const QString text = ToListText(node->strText);
        return node->lUnread > 0 ? tr("%1, %n unread", nullptr, static_cast<int>(node->lUnread)).arg(text)
                                 : text;
    }
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

// Dragging

/// Every folder takes drops, and the view asks that of the invalid index, too; `canDropMimeData` decides.
Qt::ItemFlags FolderTreeModel::flags(const QModelIndex &index) const
{
    Qt::ItemFlags flags = QAbstractItemModel::flags(index) | Qt::ItemIsDropEnabled;
    if (CanDragFolder(NodeOf(index)))
        flags |= Qt::ItemIsDragEnabled;
    return flags;
}

QStringList FolderTreeModel::mimeTypes() const
{
    return {strFolderMimeType};
}

QMimeData *FolderTreeModel::mimeData(const QModelIndexList &indexes) const
{
    if (indexes.isEmpty())
        return nullptr;
    auto *data = new QMimeData;
    data->setData(strFolderMimeType, indexes.first().data(KeyRole).toString().toUtf8());
    return data;
}

bool FolderTreeModel::canDropMimeData(const QMimeData *data, Qt::DropAction action, int, int,
                                      const QModelIndex &target) const
{
    const FolderNode *source = tree.Find(QString::fromUtf8(data->data(strFolderMimeType)));
    return action == Qt::MoveAction && CanDragFolder(source) && CanDropFolder(source, NodeOf(target));
}

bool FolderTreeModel::dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                                   const QModelIndex &target)
{
    if (!canDropMimeData(data, action, row, column, target))
        return false;
    emit FolderDropped(QString::fromUtf8(data->data(strFolderMimeType)), NodeOf(target)->strKey);
    return true;
}
