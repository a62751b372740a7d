#include "controls/MarkedHeader.h"

#include "controls/Icons.h"
#include "core/ModelRoles.h"

#include <QAbstractItemModel>

MarkedHeader::MarkedHeader(QWidget *parent)
    : QHeaderView(Qt::Horizontal, parent)
{
    setHighlightSections(false);
    setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

void MarkedHeader::initStyleOptionForIndex(QStyleOptionHeader *option, int logicalIndex) const
{
    QHeaderView::initStyleOptionForIndex(option, logicalIndex);
    const QString imageKey = model()->headerData(logicalIndex, Qt::Horizontal, ImageKeyRole).toString();
    option->icon = Icons::Get(imageKey);
    if (option->text.isEmpty())
        option->iconAlignment = Qt::AlignCenter;
}
