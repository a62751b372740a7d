#pragma once

#include "compose/ContactTable.h"
#include "compose/SelectedReceivers.h"

#include <QAbstractListModel>
#include <QAbstractTableModel>

/// Shows a `ContactTable`, in the roles of `ModelRole`, and changes it.
class ContactTableModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    const ContactTable &Table() const { return table; }
    /// See `ContactTable`.
    void Load(const PickerGroup &group);
    void SortBy(int column);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QString ShownText(int row, int column) const;

    ContactTable table;
};

/// Shows the chosen recipients and changes them.
class SelectedReceiversModel final : public QAbstractListModel
{
    Q_OBJECT

public:
    using QAbstractListModel::QAbstractListModel;

    const SelectedReceivers &Receivers() const { return receivers; }
    void Replace(const QList<SelectedReceiver> &all);
    /// Adds those that are not there yet. The place of the last one that was; -1 for none.
    int Add(const QList<SelectedReceiver> &more);
    /// See `SelectedReceivers`.
    void Remove(const QList<int> &unwanted);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

private:
    SelectedReceivers receivers;
};
