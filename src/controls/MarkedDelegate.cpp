#include "controls/MarkedDelegate.h"

#include "controls/Colors.h"
#include "controls/Icons.h"
#include "core/ModelRoles.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QPainter>
#include <QTextLayout>
#include <QToolTip>

#include <algorithm>

namespace {

constexpr QColor blue(0, 0, 255);
constexpr int lIconSize = 16;
constexpr int lRowMargin = 2; ///< what a row leaves around its icon and text

QString CountText(const QModelIndex &index)
{
    const int count = index.data(CountRole).toInt();
    return count > 0 ? "(" + QString::number(count) + ")" : QString();
}

void PaintIcon(QPainter *painter, const QStyleOptionViewItem &item, const QIcon &icon)
{
    QRect place(QPoint(), item.decorationSize);
    place.moveCenter(item.rect.center());
    icon.paint(painter, place, Qt::AlignCenter,
               item.state.testFlag(QStyle::State_Selected) ? QIcon::Selected : QIcon::Normal);
}

QColor TextColorOf(const QStyleOptionViewItem &item)
{
    QPalette::ColorGroup group = QPalette::Disabled;
    if (item.state.testFlag(QStyle::State_Enabled))
        group = item.state.testFlag(QStyle::State_Active) ? QPalette::Normal : QPalette::Inactive;
    const bool isSelected = item.state.testFlag(QStyle::State_Selected);
    return item.palette.color(group, isSelected ? QPalette::HighlightedText : QPalette::Text);
}

/// Lays a text out as one line within that width.
QTextLine LayOut(QTextLayout &layout, const QStyleOptionViewItem &item, int width)
{
    QTextOption option(QStyle::visualAlignment(item.direction, item.displayAlignment));
    option.setWrapMode(QTextOption::NoWrap);
    option.setTextDirection(item.direction);
    layout.setTextOption(option);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setLineWidth(width);
    layout.endLayout();
    return line;
}

/// Lays the text out just once when it fits, which is what a frame of a long list spends its time on.
void PaintText(QPainter *painter, const QStyleOptionViewItem &item, const QStyle &style, const QString &text)
{
    const int margin = style.pixelMetric(QStyle::PM_FocusFrameHMargin, &item, item.widget) + 1;
    const QRect place = item.rect.adjusted(margin, 0, -margin, 0);
    QTextLayout layout(text, item.font);
    QTextLine line = LayOut(layout, item, place.width());
    if (line.naturalTextWidth() > place.width()) {
        layout.setText(QFontMetrics(item.font).elidedText(text, item.textElideMode, place.width()));
        line = LayOut(layout, item, place.width());
    }
    painter->setPen(TextColorOf(item));
    layout.draw(painter, place.topLeft() + QPointF(0, (place.height() - line.height()) / 2));
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
        option->decorationSize = QSize(lIconSize, lIconSize);
    }
}

/// The style draws the cell. What stands alone in it is drawn here: an icon in the middle, as in the header,
/// and a text in a third of the time that the style takes.
void MarkedDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                           const QModelIndex &index) const
{
    QStyleOptionViewItem styled = option;
    initStyleOption(&styled, index);
    const QIcon icon = styled.icon;
    const QString text = styled.text;
    const bool isAlone = icon.isNull() != text.isEmpty() && !styled.state.testFlag(QStyle::State_HasFocus);
    if (isAlone) {
        styled.icon = {};
        styled.text.clear();
        styled.features &= ~(QStyleOptionViewItem::HasDisplay | QStyleOptionViewItem::HasDecoration);
    }
    const QStyle *style = styled.widget ? styled.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &styled, painter, styled.widget);
    if (isAlone && text.isEmpty())
        PaintIcon(painter, styled, icon);
    else if (isAlone)
        PaintText(painter, styled, *style, text);
}

/// Rows with and without icons are of one height.
QSize MarkedDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const QSize size = QStyledItemDelegate::sizeHint(option, index);
    const int text = option.fontMetrics.height() + 2 * lRowMargin;
    return {size.width(), std::max({size.height(), text, lIconSize + 2 * lRowMargin})};
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
    // Plain text, whatever a fax from outside calls itself; as rich text it is wrapped.
    if (!text.isEmpty())
        text = "<qt>" + text.toHtmlEscaped() + "</qt>";
    QToolTip::showText(event->globalPos(), text, view);
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

/// Of a text that is too long the end is left out, never the count.
void CountedDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                            const QModelIndex &index) const
{
    const QString count = CountText(index);
    if (count.isEmpty())
        return MarkedDelegate::paint(painter, option, index);
    QStyleOptionViewItem styled = option;
    initStyleOption(&styled, index);
    const QStyle *style = styled.widget ? styled.widget->style() : QApplication::style();
    const QRect text = style->subElementRect(QStyle::SE_ItemViewItemText, &styled, styled.widget);
    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, &styled, styled.widget) + 1;
    const QFontMetrics &metrics = styled.fontMetrics;
    styled.text = metrics.elidedText(styled.text, Qt::ElideRight,
                                     text.width() - 2 * margin - metrics.horizontalAdvance(' ' + count));
    style->drawControl(QStyle::CE_ItemViewItem, &styled, painter, styled.widget);
    const int left = text.left() + margin + metrics.horizontalAdvance(styled.text + ' ');
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    painter->save();
    painter->setFont(styled.font);
    painter->setPen(isSelected
                        ? option.palette.color(QPalette::HighlightedText)
                        : GetReadableColor(blue, option.palette.color(QPalette::Base), dSmallContrast));
    painter->drawText(QRect(left, option.rect.top(), option.rect.right() - left + 1, option.rect.height()),
                      Qt::AlignVCenter | Qt::AlignLeft, count);
    painter->restore();
}
