#pragma once

#include "controls/HintedTreeView.h"

#include <QPersistentModelIndex>
#include <QStringList>

class FolderTreeModel;
class ShownMailbox;
struct FolderNode;

/// The folder tree `tvFolder`.
class FolderPane final : public HintedTreeView
{
    Q_OBJECT

public:
    explicit FolderPane(ShownMailbox &mailbox, QWidget *parent = nullptr);

    /// The keys of the folders whose branches are open, but for those that every start opens.
    QStringList OpenFolders() const;
    /// Opens these when the tree is loaded; unknown ones are passed over.
    void SetOpenFolders(const QStringList &keys) { aOpenFolders = keys; }

signals:
    /// The menu of the selected folder is asked for, at a place of the screen.
    void MenuRequested(const QPoint &place);

protected:
    void contextMenuEvent(QContextMenuEvent *event) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex &index,
                                                         const QEvent *event) const override;
    void selectionChanged(const QItemSelection &selected, const QItemSelection &deselected) override;
    void rowsAboutToBeRemoved(const QModelIndex &parent, int start, int end) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void drawRow(QPainter *painter, const QStyleOptionViewItem &options,
                 const QModelIndex &index) const override;

private:
    void SetUpDragging();
    void ShowLoadedTree();
    void ShowNode(FolderNode *node);
    void FollowMailbox();
    void ShowDropTarget(const QModelIndex &index);

    ShownMailbox &mailbox;
    FolderTreeModel *model;
    QStringList aOpenFolders;
    QPersistentModelIndex dropTarget; ///< the folder that would take what is being dragged
};
