#pragma once

#include <QAbstractItemModel>

class FolderTree;
struct FolderNode;

/// Shows a `FolderTree`, in the roles of `ModelRole`. It holds nothing of its own. A drop of a folder is told
/// by a signal and changes nothing by itself.
class FolderTreeModel final : public QAbstractItemModel
{
    Q_OBJECT

public:
    explicit FolderTreeModel(FolderTree &tree, QObject *parent = nullptr);

    QModelIndex IndexOf(FolderNode *node) const;
    /// Null for an invalid index.
    FolderNode *NodeOf(const QModelIndex &index) const;

    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &index) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

    // Dragging
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }
    QStringList mimeTypes() const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    bool canDropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                         const QModelIndex &target) const override;
    bool dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                      const QModelIndex &target) override;

signals:
    /// The user has dropped a folder where it may go.
    void FolderDropped(const QString &sourceKey, const QString &targetKey);

private:
    FolderTree &tree;
};
