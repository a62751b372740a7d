#include "server/forms/ProgressModel.h"

#include <QIcon>

#include <algorithm>

namespace {

/// The picture of an image key, in its own colours on a selected row too.
QIcon IconOf(const QString &image)
{
    const QString file = ":/progress/" + image + ".svg";
    QIcon icon;
    for (QIcon::Mode mode : {QIcon::Normal, QIcon::Selected})
        icon.addFile(file, {}, mode);
    return icon;
}

} // namespace

ProgressModel::ProgressModel(const Progress &progress, QObject *parent)
    : QAbstractTableModel(parent)
    , progress(progress)
    , aRows(progress.Rows())
    , strFileHeader(progress.FileHeader())
    , strStateHeader(progress.StateHeader())
{
}

int ProgressModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(aRows.size());
}

int ProgressModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : colCount;
}

QVariant ProgressModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const ProgressRow &row = aRows.at(index.row());
    if (index.column() == colImage) {
        if (role == Qt::DecorationRole && !row.strImage.isEmpty())
            return IconOf(row.strImage);
        return role == Qt::AccessibleTextRole ? QVariant(row.strState) : QVariant();
    }
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole)
        return index.column() == colFile ? row.strFile : row.strState;
    return {};
}

QVariant ProgressModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case colFile:
        return strFileHeader;
    case colState:
        return strStateHeader;
    default:
        return QString();
    }
}

void ProgressModel::Refresh()
{
    const QList<ProgressRow> rows = progress.Rows();
    if (rows.size() < aRows.size())
        Shrink(static_cast<int>(rows.size()));
    for (int row = 0; row < aRows.size(); ++row) {
        if (aRows.at(row) == rows.at(row))
            continue;
        aRows[row] = rows.at(row);
        emit dataChanged(index(row, 0), index(row, colCount - 1));
    }
    if (rows.size() > aRows.size())
        Grow(rows);
}

void ProgressModel::RefreshHeads()
{
    if (strFileHeader == progress.FileHeader() && strStateHeader == progress.StateHeader())
        return;
    strFileHeader = progress.FileHeader();
    strStateHeader = progress.StateHeader();
    emit headerDataChanged(Qt::Horizontal, colFile, colState);
}

void ProgressModel::Shrink(int count)
{
    beginRemoveRows({}, count, static_cast<int>(aRows.size()) - 1);
    aRows.resize(count);
    endRemoveRows();
}

void ProgressModel::Grow(const QList<ProgressRow> &rows)
{
    beginInsertRows({}, static_cast<int>(aRows.size()), static_cast<int>(rows.size()) - 1);
    aRows = rows;
    endInsertRows();
}
