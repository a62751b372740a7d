#pragma once

#include <QAbstractTableModel>

#include <vector>

class FaxList;
class FaxRow;

/// Shows a `FaxList`, in the roles of `ModelRole`. Row 0 is the list's row 1; column 0 is the hidden id.
class FaxListModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    explicit FaxListModel(FaxList &list, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QString AccessibleText(const FaxRow &row, int column) const;

    void MoveIndexes(const std::vector<int> &newRows);

    FaxList &list;
};
