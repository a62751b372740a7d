#include "controls/HintedTreeView.h"

#include "controls/Colors.h"

#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>

namespace {

constexpr int lMargin = 24;

} // namespace

HintedTreeView::HintedTreeView(QWidget *parent)
    : QTreeView(parent)
{
    setUniformRowHeights(true);
    setEditTriggers(NoEditTriggers);
}

void HintedTreeView::SetHint(const QString &hint)
{
    strHint = hint;
    setAccessibleDescription(hint);
    viewport()->update();
}

void HintedTreeView::scrollTo(const QModelIndex &index, ScrollHint hint)
{
    const int left = horizontalScrollBar()->value();
    QTreeView::scrollTo(index, hint);
    if (!rootIsDecorated())
        horizontalScrollBar()->setValue(left);
}

void HintedTreeView::initViewItemOption(QStyleOptionViewItem *option) const
{
    QTreeView::initViewItemOption(option);
    if (hasFocus())
        return;
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive})
        option->palette.setColor(group, QPalette::Highlight,
                                 GetQuietColor(option->palette.color(group, QPalette::Highlight)));
}

void HintedTreeView::keyPressEvent(QKeyEvent *event)
{
    if (event->keyCombination() != (Qt::SHIFT | Qt::Key_F10))
        return QTreeView::keyPressEvent(event);
    const QPoint place = visualRect(currentIndex()).center();
    QContextMenuEvent menu(QContextMenuEvent::Keyboard, place, viewport()->mapToGlobal(place));
    QCoreApplication::sendEvent(viewport(), &menu);
}

void HintedTreeView::paintEvent(QPaintEvent *event)
{
    QTreeView::paintEvent(event);
    if (strHint.isEmpty() || (model() && model()->rowCount(rootIndex()) > 0))
        return;
    QPainter painter(viewport());
    painter.setPen(GetHintColor(palette()));
    painter.drawText(viewport()->rect().adjusted(lMargin, lMargin, -lMargin, -lMargin),
                     Qt::AlignCenter | Qt::TextWordWrap, strHint);
    if (hasFocus()) { // otherwise the current row shows it
        painter.setPen(palette().color(QPalette::Highlight));
        painter.drawRect(viewport()->rect().adjusted(0, 0, -1, -1));
    }
}
