#include "compose/ReceiverModels.h"

#include "core/ModelRoles.h"
#include "mailbox/ShownText.h"

// Contacts

void ContactTableModel::Load(const PickerGroup &group)
{
    ContactTable loaded = table; // the database may refuse
    loaded.Load(group);
    beginResetModel();
    table = std::move(loaded);
    endResetModel();
}

void ContactTableModel::SortBy(int column)
{
    emit layoutAboutToBeChanged({}, VerticalSortHint);
    const std::vector<int> newRows = table.SortBy(column);
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex &old : before)
        after.append(index(newRows[static_cast<std::size_t>(old.row())], old.column()));
    changePersistentIndexList(before, after);
    emit layoutChanged({}, VerticalSortHint);
    emit headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
}

int ContactTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : table.RowCount();
}

int ContactTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ContactTable::colCount;
}

/// A blank keeps the icon of a contact without a name where those of the others stand.
QString ContactTableModel::ShownText(int row, int column) const
{
    const QString text = ToListText(table.Cell(row, column));
    return text.isEmpty() && column == ContactTable::colContact ? QStringLiteral(" ") : text;
}

QVariant ContactTableModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return ShownText(index.row(), index.column());
    case KeyRole:
        return table.Cell(index.row(), ContactTable::colID);
    case ImageKeyRole:
        return index.column() == ContactTable::colContact
                   ? SelectedReceiver::ImageKeyOf(table.Type(index.row()))
                   : QString();
    default:
        return {};
    }
}

QVariant ContactTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount())
        return {};
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        return table.Caption(section);
    case ImageKeyRole:
        if (section != table.SortColumn())
            return {};
        return table.IsDescending() ? QStringLiteral("imgSortDown") : QStringLiteral("imgSortUp");
    default:
        return {};
    }
}

// Recipients

void SelectedReceiversModel::Replace(const QList<SelectedReceiver> &all)
{
    beginResetModel();
    receivers.Replace(all);
    endResetModel();
}

int SelectedReceiversModel::Add(const QList<SelectedReceiver> &more)
{
    int lastKnown = -1;
    SelectedReceivers grown = receivers;
    for (const SelectedReceiver &receiver : more) {
        const int place = grown.PlaceOf(receiver);
        if (place < 0)
            grown.Append(receiver);
        else
            lastKnown = place;
    }
    if (grown.Count() > receivers.Count()) {
        beginInsertRows({}, receivers.Count(), grown.Count() - 1);
        receivers = std::move(grown);
        endInsertRows();
    }
    return lastKnown;
}

void SelectedReceiversModel::Remove(const QList<int> &unwanted)
{
    beginResetModel();
    receivers.Remove(unwanted);
    endResetModel();
}

int SelectedReceiversModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : receivers.Count();
}

QVariant SelectedReceiversModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const SelectedReceiver &receiver = receivers.At(index.row());
    const QString nameAndNumber = receiver.ShownName() + ", " + receiver.strNumber; // two may share a name
    switch (role) {
    case Qt::DisplayRole:
        return ToListText(receiver.ShownName());
    case Qt::ToolTipRole:
        return "<qt>" + ToListText(nameAndNumber).toHtmlEscaped() + "</qt>";
    case Qt::AccessibleTextRole:
        return ToListText(nameAndNumber);
    case ImageKeyRole:
        return SelectedReceiver::ImageKeyOf(receiver.lType);
    default:
        return {};
    }
}
