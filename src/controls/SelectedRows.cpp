#include "controls/SelectedRows.h"

#include <QItemSelectionModel>

#include <algorithm>

QList<int> GetSelectedRows(const QItemSelectionModel &selection)
{
    QList<int> rows;
    for (const QItemSelectionRange &range : selection.selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.append(row);
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}
