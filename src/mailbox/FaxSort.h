#pragma once

#include "mailbox/FaxRow.h"

#include <QString>

#include <vector>

/// Places of the rows in the order of the shown texts of a column, of which `key` tells the kind: page counts
/// as numbers, times by their year first, all else as words. Equal rows stay in their order. `descending`
/// puts the greatest first.
std::vector<std::size_t> OrderFaxRows(const std::vector<FaxRow> &rows, int column, const QString &key,
                                      bool descending);
