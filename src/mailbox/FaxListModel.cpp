#include "mailbox/FaxListModel.h"

#include "core/ModelRoles.h"
#include "mailbox/FaxList.h"
#include "mailbox/ShownText.h"

namespace {

QString ImageKey(const FaxRow &row, int column)
{
    if (row.IsSummary())
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
    connect(&list, &FaxList::AboutToRemove, this,
            [this](int first, int last) { beginRemoveRows({}, first - 1, last - 1); });
    connect(&list, &FaxList::Removed, this, [this] { endRemoveRows(); });
    connect(&list, &FaxList::RowsChanged, this, [this](int first, int last) {
        emit dataChanged(index(first - 1, 0), index(last - 1, columnCount() - 1));
    });
    connect(&list, &FaxList::AboutToSort, this,
            [this] { emit layoutAboutToBeChanged({}, VerticalSortHint); });
    connect(&list, &FaxList::Sorted, this, &FaxListModel::MoveIndexes);
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
        return row.ID();
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
    if (row.IsSummary())
        return row.Cell(column);
    if (column == colIsReaded)
        return row.bRead ? tr("Read") : tr("Unread");
    if (column == colLevel)
        return row.Level() == 0   ? tr("Urgent")
               : row.Level() == 2 ? tr("Low priority")
                                  : tr("Normal priority");
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

/// A selection goes with its faxes.
void FaxListModel::MoveIndexes(const std::vector<int> &newRows)
{
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex &old : before)
        after.append(index(newRows[static_cast<std::size_t>(old.row())], old.column()));
    changePersistentIndexList(before, after);
    emit layoutChanged({}, VerticalSortHint);
}
