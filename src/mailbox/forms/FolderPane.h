#pragma once

#include "controls/HintedTreeView.h"

class FolderTreeModel;
class ShownMailbox;

/// The folder tree `tvFolder`.
class FolderPane final : public HintedTreeView
{
    Q_OBJECT

public:
    explicit FolderPane(ShownMailbox &mailbox, QWidget *parent = nullptr);

protected:
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void selectionChanged(const QItemSelection &selected, const QItemSelection &deselected) override;

private:
    void ShowLoadedTree();
    void FollowMailbox();

    ShownMailbox &mailbox;
    FolderTreeModel *model;
};
