#include "mailbox/forms/FolderPane.h"

#include "controls/MarkedDelegate.h"
#include "core/ModelRoles.h"
#include "mailbox/FolderTreeModel.h"
#include "mailbox/ShownMailbox.h"

#include <QContextMenuEvent>
#include <QDropEvent>
#include <QPainter>

namespace {

constexpr int lExpandDelay = 700; ///< milliseconds over a closed folder until a drag opens it
constexpr int lTargetAlpha = 80;

} // namespace

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
    SetUpDragging();
    connect(&mailbox.Folders(), &FolderTree::Loaded, this, &FolderPane::ShowLoadedTree);
    connect(&mailbox.Folders(), &FolderTree::Added, this, &FolderPane::ShowNode);
    connect(&mailbox.Folders(), &FolderTree::Moved, this, &FolderPane::ShowNode);
    // Queued: a selection that the mailbox redirects is still being made by the view.
    connect(&mailbox, &ShownMailbox::FolderSelected, this, &FolderPane::FollowMailbox, Qt::QueuedConnection);
    ShowLoadedTree();
}

void FolderPane::SetUpDragging()
{
    setDragDropMode(InternalMove);
    setDragDropOverwriteMode(true); // drops go onto a folder, never between two
    setDropIndicatorShown(false);   // Qt's stays behind on the last folder that would have taken the drop
    setAutoExpandDelay(lExpandDelay);
    // Queued: the folder moves, and a box may come up, when the drag is over.
    connect(
        model, &FolderTreeModel::FolderDropped, this,
        [this](const QString &source, const QString &target) {
            mailbox.Changes().DropFolder(source, target);
        },
        Qt::QueuedConnection);
}

void FolderPane::ShowLoadedTree()
{
    expand(model->IndexOf(mailbox.Folders().Root()));
    expand(model->IndexOf(mailbox.Folders().Find("1004")));
    for (const QString &key : aOpenFolders)
        expand(model->IndexOf(mailbox.Folders().Find(key)));
}

QStringList FolderPane::OpenFolders() const
{
    QStringList open;
    QModelIndexList waiting{model->IndexOf(mailbox.Folders().Root())};
    while (!waiting.isEmpty()) {
        const QModelIndex index = waiting.takeLast();
        const QString key = index.data(KeyRole).toString();
        if (model->rowCount(index) > 0 && index.parent().isValid() && key != "1004" && isExpanded(index))
            open.append(key);
        for (int row = 0; row < model->rowCount(index); ++row)
            waiting.append(model->index(row, 0, index));
    }
    return open;
}

void FolderPane::ShowNode(FolderNode *node)
{
    expand(model->IndexOf(node->parent));
    scrollTo(model->IndexOf(node));
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

/// One folder is always selected: Ctrl and a click would leave none.
QItemSelectionModel::SelectionFlags FolderPane::selectionCommand(const QModelIndex &index,
                                                                 const QEvent *event) const
{
    const QItemSelectionModel::SelectionFlags flags = HintedTreeView::selectionCommand(index, event);
    return flags & (QItemSelectionModel::Deselect | QItemSelectionModel::Toggle)
               ? QItemSelectionModel::ClearAndSelect
               : flags;
}

/// The mailbox has left the folder that goes: the view would choose a neighbour on its own.
void FolderPane::rowsAboutToBeRemoved(const QModelIndex &parent, int start, int end)
{
    FollowMailbox();
    HintedTreeView::rowsAboutToBeRemoved(parent, start, end);
}

// The folder under a drag

void FolderPane::dragMoveEvent(QDragMoveEvent *event)
{
    HintedTreeView::dragMoveEvent(event);
    ShowDropTarget(event->isAccepted() ? indexAt(event->position().toPoint()) : QModelIndex());
}

void FolderPane::dragLeaveEvent(QDragLeaveEvent *event)
{
    HintedTreeView::dragLeaveEvent(event);
    ShowDropTarget({});
}

void FolderPane::dropEvent(QDropEvent *event)
{
    HintedTreeView::dropEvent(event);
    ShowDropTarget({});
}

void FolderPane::ShowDropTarget(const QModelIndex &index)
{
    dropTarget = index;
    viewport()->update();
}

void FolderPane::drawRow(QPainter *painter, const QStyleOptionViewItem &options,
                         const QModelIndex &index) const
{
    HintedTreeView::drawRow(painter, options, index);
    if (!dropTarget.isValid() || index != dropTarget)
        return;
    QColor color = palette().color(QPalette::Active, QPalette::Highlight);
    painter->save();
    painter->setPen(color);
    color.setAlpha(lTargetAlpha);
    painter->setBrush(color);
    painter->drawRect(options.rect.adjusted(0, 0, -1, -1));
    painter->restore();
}

void FolderPane::contextMenuEvent(QContextMenuEvent *event)
{
    QPoint place = event->globalPos();
    if (event->reason() == QContextMenuEvent::Keyboard) {
        scrollTo(currentIndex());
        place = viewport()->mapToGlobal(visualRect(currentIndex()).center());
    } else if (const QModelIndex index = indexAt(event->pos()); index.isValid()) {
        setCurrentIndex(index);
    }
    emit MenuRequested(place);
}
