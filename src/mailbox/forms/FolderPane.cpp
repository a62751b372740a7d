#include "mailbox/forms/FolderPane.h"

#include "controls/MarkedDelegate.h"
#include "core/ModelRoles.h"
#include "mailbox/FolderTreeModel.h"
#include "mailbox/ShownMailbox.h"

#include <QItemSelectionModel>

FolderPane::FolderPane(ShownMailbox &shownMailbox, QWidget *parent)
    : HintedTreeView(parent)
    , mailbox(shownMailbox)
    , model(new FolderTreeModel(shownMailbox.Folders(), this))
{
    setObjectName("tvFolder");
    setAccessibleName(tr("Folders"));
    setHeaderHidden(true);
    setModel(model);
    setItemDelegate(new CountedDelegate(this));
    setTextElideMode(Qt::ElideRight);
    connect(&mailbox.Folders(), &FolderTree::Loaded, this, &FolderPane::ShowLoadedTree);
    // Queued: a selection that the mailbox redirects is still being made by the view.
    connect(&mailbox, &ShownMailbox::FolderSelected, this, &FolderPane::FollowMailbox, Qt::QueuedConnection);
    ShowLoadedTree();
}

void FolderPane::ShowLoadedTree()
{
    expand(model->IndexOf(mailbox.Folders().Root()));
    expand(model->IndexOf(mailbox.Folders().Find("1004")));
}

void FolderPane::FollowMailbox()
{
    const QModelIndex index = model->IndexOf(mailbox.SelectedNode());
    if (index.isValid() && (index != currentIndex() || !selectionModel()->isSelected(index)))
        setCurrentIndex(index);
}

/// "Sent" hands the selection on to its first branch: on the way up it would be a dead end.
QModelIndex FolderPane::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers)
{
    const QModelIndex next = HintedTreeView::moveCursor(action, modifiers);
    const bool isUp = action == MoveUp || action == MovePrevious;
    return isUp && next.data(KeyRole).toString() == "1004" ? indexAbove(next) : next;
}

void FolderPane::selectionChanged(const QItemSelection &selected, const QItemSelection &deselected)
{
    HintedTreeView::selectionChanged(selected, deselected);
    const QModelIndexList chosen = selectionModel()->selectedIndexes();
    if (chosen.isEmpty())
        return;
    const QString key = chosen.first().data(KeyRole).toString();
    if (key != mailbox.SelectedFolder())
        mailbox.SelectFolder(key);
}
