#pragma once

#include <QStyledItemDelegate>

/// Draws rows of the logic's models: the icon, colour and weight that the roles of `ModelRole` ask for.
class MarkedDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    /// The text itself where it is cut off.
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;
};

/// The same with the number of `CountRole` in blue behind the text, as "(3)".
class CountedDelegate final : public MarkedDelegate
{
    Q_OBJECT

public:
    using MarkedDelegate::MarkedDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};
