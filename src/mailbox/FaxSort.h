#pragma once

#include "mailbox/FaxRow.h"

#include <QString>

#include <vector>

/// Sorts rows by the shown text of a column, of which `key` tells the kind: page counts as numbers, times by
/// their year first, all else as words. The sort is stable. `descending` puts the greatest first.
void SortFaxRows(std::vector<FaxRow> &rows, int column, const QString &key, bool descending);
