#include "mailbox/FaxListModel.h"

#include "core/ModelRoles.h"
#include "mailbox/FaxList.h"
#include "mailbox/ShownText.h"

#include <QHash>

namespace {

QString ImageKey(const FaxRow &row, int column)
{
    if (row.bSummary)
        return {};
    return column == colIsReaded ? row.ReadImageKey() : column == colLevel ? row.LevelImageKey() : QString();
}

} // namespace

FaxListModel::FaxListModel(FaxList &shownList, QObject *parent)
    : QAbstractTableModel(parent)
    , list(shownList)
{
    connect(&list, &FaxList::AboutToReset, this, [this] { beginResetModel(); });
    connect(&list, &FaxList::Reset, this, [this] { endResetModel(); });
    connect(&list, &FaxList::AboutToInsertOnTop, this,
            [this](int count) { beginInsertRows({}, 0, count - 1); });
    connect(&list, &FaxList::InsertedOnTop, this, [this] { endInsertRows(); });
    connect(&list, &FaxList::AboutToRemove, this, [this](int row) { beginRemoveRows({}, row - 1, row - 1); });
    connect(&list, &FaxList::Removed, this, [this] { endRemoveRows(); });
    connect(&list, &FaxList::RowChanged, this,
            [this](int row) { emit dataChanged(index(row - 1, 0), index(row - 1, columnCount() - 1)); });
    connect(&list, &FaxList::AboutToSort, this, [this] { RememberIndexes(); });
    connect(&list, &FaxList::Sorted, this, [this] { MoveIndexes(); });
    connect(&list, &FaxList::HeaderChanged, this,
            [this] { emit headerDataChanged(Qt::Horizontal, 0, columnCount() - 1); });
}

int FaxListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : list.RowCount();
}

int FaxListModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(list.Columns().size());
}

QVariant FaxListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const FaxRow &row = list.Row(index.row() + 1);
    const int column = index.column() + 1;
    switch (role) {
    case Qt::DisplayRole:
        return ToListText(row.Cell(column));
    case Qt::AccessibleTextRole:
        return AccessibleText(row, column);
    case KeyRole:
        return row.strID;
    case ImageKeyRole:
        return ImageKey(row, column);
    case BoldRole:
        return !row.bRead;
    case ColorRole:
        return row.TextColor() ? QVariant(*row.TextColor()) : QVariant();
    default:
        return {};
    }
}

QString FaxListModel::AccessibleText(const FaxRow &row, int column) const
{
    if (row.bSummary)
        return row.Cell(column);
    if (column == colIsReaded)
        return row.bRead ? tr("Read") : tr("Unread");
    if (column == colLevel)
        return row.lLevel == 0 ? tr("Urgent") : row.lLevel == 2 ? tr("Low priority") : tr("Normal priority");
    return ToListText(row.Cell(column));
}

QVariant FaxListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= list.Columns().size())
        return {};
    const FaxColumn &column = list.Columns().at(section);
    switch (role) {
    case Qt::DisplayRole:
        return column.strIcon.isEmpty() ? column.strCaption : QString();
    case Qt::ToolTipRole:
    case Qt::AccessibleTextRole:
        return column.strCaption;
    case ImageKeyRole:
        return list.HeaderImageKey(section + 1);
    default:
        return {};
    }
}

void FaxListModel::RememberIndexes()
{
    emit layoutAboutToBeChanged({}, VerticalSortHint);
    aMovedIds.clear();
    for (const QModelIndex &index : persistentIndexList())
        aMovedIds.append(list.Row(index.row() + 1).strID);
}

/// A selection goes with its faxes.
void FaxListModel::MoveIndexes()
{
    const QModelIndexList before = persistentIndexList();
    QHash<QString, int> rows;
    for (int row = 1; row <= list.RowCount() && !before.isEmpty(); ++row)
        rows.insert(list.Row(row).strID, row - 1);
    QModelIndexList after;
    for (int i = 0; i < before.size(); ++i)
        after.append(index(rows.value(aMovedIds.at(i)), before.at(i).column()));
    changePersistentIndexList(before, after);
    emit layoutChanged({}, VerticalSortHint);
}
