#pragma once

#include <QAbstractItemModel>

class FolderTree;
struct FolderNode;

/// Shows a `FolderTree`, in the roles of `ModelRole`. It holds nothing of its own.
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

private:
    FolderTree &tree;
};
