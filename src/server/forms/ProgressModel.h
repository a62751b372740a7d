#pragma once

#include "server/Progress.h"

#include <QAbstractTableModel>

/// The tasks of the progress window: a picture, a file or task, and its state.
class ProgressModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { colImage, colFile, colState, colCount };

    explicit ProgressModel(const Progress &progress, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    /// Follows the rows as they are now, and tells the views only what is new.
    void Refresh();
    void RefreshHeads();

private:
    void Shrink(int count);
    void Grow(const QList<ProgressRow> &rows);

    const Progress &progress;
    QList<ProgressRow> aRows; ///< what the views know
    QString strFileHeader;
    QString strStateHeader;
};
