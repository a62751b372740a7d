#include "mailbox/forms/FaxGrid.h"

#include "mailbox/FaxListColumns.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>

namespace {

bool IsTyped(const QKeyEvent &key)
{
    constexpr auto commandKeys = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    return !(key.modifiers() & commandKeys) && !key.text().isEmpty() && key.text().front().isPrint();
}

} // namespace

// Keyboard

bool FaxGrid::IsSearching() const
{
    return sinceTyped.isValid() && !sinceTyped.hasExpired(QApplication::keyboardInputInterval());
}

void FaxGrid::keyboardSearch(const QString &search)
{
    if (IsSearching() || !search.trimmed().isEmpty()) // a blank alone selects
        sinceTyped.start();
    const QModelIndex current = currentIndex();
    if (current.isValid() && current.column() < colFirstText - 1)
        selectionModel()->setCurrentIndex(current.siblingAtColumn(colFirstText - 1),
                                          QItemSelectionModel::NoUpdate);
    HintedTreeView::keyboardSearch(search);
}

bool FaxGrid::event(QEvent *event)
{
    // The letters of a name that is being typed are no commands.
    if (event->type() == QEvent::ShortcutOverride && IsSearching() &&
        IsTyped(static_cast<QKeyEvent &>(*event))) {
        event->accept();
        return true;
    }
    return HintedTreeView::event(event);
}

void FaxGrid::keyPressEvent(QKeyEvent *event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && !(event->modifiers() & ~Qt::KeypadModifier)) {
        if (currentIndex().isValid())
            emit OpenRequested();
        return;
    }
    HintedTreeView::keyPressEvent(event);
}

// Mouse

int FaxGrid::RowOfIcon(const QPoint &place) const
{
    const QModelIndex index = indexAt(place);
    return index.column() == colIsReaded - 1 ? index.row() + 1 : 0;
}

void FaxGrid::mouseMoveEvent(QMouseEvent *event)
{
    HintedTreeView::mouseMoveEvent(event);
    emit IconHovered(event->buttons() == Qt::NoButton ? RowOfIcon(event->position().toPoint()) : 0);
}

bool FaxGrid::viewportEvent(QEvent *event)
{
    if (event->type() == QEvent::Leave)
        emit IconHovered(0);
    return HintedTreeView::viewportEvent(event);
}

void FaxGrid::mouseDoubleClickEvent(QMouseEvent *event)
{
    HintedTreeView::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton && indexAt(event->position().toPoint()).isValid())
        emit OpenRequested();
}

QPoint FaxGrid::PlaceOfCurrentRow() const
{
    const QRect row = visualRect(currentIndex());
    const QRect seen = viewport()->rect();
    return {seen.left() + indentation(), qBound(seen.top(), row.bottom(), seen.bottom())};
}

void FaxGrid::contextMenuEvent(QContextMenuEvent *event)
{
    const bool isKey = event->reason() == QContextMenuEvent::Keyboard;
    emit MenuRequested(isKey ? viewport()->mapToGlobal(PlaceOfCurrentRow()) : event->globalPos());
}
