#include "controls/MarkedDelegate.h"

#include "controls/Colors.h"
#include "controls/Icons.h"
#include "core/ModelRoles.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace {

constexpr QColor blue(0, 0, 255);

QString CountText(const QModelIndex &index)
{
    const int count = index.data(CountRole).toInt();
    return count > 0 ? "(" + QString::number(count) + ")" : QString();
}

} // namespace

void MarkedDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    option->font.setBold(index.data(BoldRole).toBool());
    const QVariant color = index.data(ColorRole);
    if (color.isValid()) {
        const QColor wanted = QColor::fromRgb(color.toUInt());
        option->palette.setColor(QPalette::Text,
                                 GetReadableColor(wanted, option->palette.color(QPalette::Base)));
    }
    const QString imageKey = index.data(ImageKeyRole).toString();
    if (!imageKey.isEmpty()) {
        option->icon = Icons::Get(imageKey);
        option->features |= QStyleOptionViewItem::HasDecoration;
        option->decorationSize = QSize(16, 16);
        if (option->text.isEmpty())
            option->decorationAlignment = Qt::AlignCenter;
    }
}

bool MarkedDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                               const QModelIndex &index)
{
    if (!event || !view || event->type() != QEvent::ToolTip || index.data(Qt::ToolTipRole).isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    QString text = index.data(Qt::DisplayRole).toString();
    if (text.isEmpty())
        text = index.data(Qt::AccessibleTextRole).toString();
    else if (sizeHint(option, index).width() <= view->visualRect(index).width())
        text.clear();
    // Plain text, whatever a fax from outside calls itself.
    QToolTip::showText(event->globalPos(), text.toHtmlEscaped(), view);
    return true;
}

QSize CountedDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QSize size = MarkedDelegate::sizeHint(option, index);
    const QString count = CountText(index);
    if (!count.isEmpty())
        size.rwidth() += option.fontMetrics.horizontalAdvance(' ' + count);
    return size;
}

void CountedDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                            const QModelIndex &index) const
{
    const QString count = CountText(index);
    MarkedDelegate::paint(painter, option, index);
    if (count.isEmpty())
        return;
    QStyleOptionViewItem styled = option;
    initStyleOption(&styled, index);
    const QStyle *style = styled.widget ? styled.widget->style() : QApplication::style();
    const QRect text = style->subElementRect(QStyle::SE_ItemViewItemText, &styled, styled.widget);
    const int left =
        text.left() + MarkedDelegate::sizeHint(option, index).width() - (text.left() - option.rect.left());
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    painter->save();
    painter->setFont(styled.font);
    painter->setPen(isSelected ? option.palette.color(QPalette::HighlightedText)
                               : GetReadableColor(blue, option.palette.color(QPalette::Base)));
    painter->drawText(QRect(left, option.rect.top(), option.rect.right() - left + 1, option.rect.height()),
                      Qt::AlignVCenter | Qt::AlignLeft, count);
    painter->restore();
}
