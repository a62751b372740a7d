#include "mailbox/FaxSort.h"

#include "core/Utilities.h"

#include <QCollator>

#include <algorithm>
#include <numeric>

namespace {

/// "MM/DD/YYYY hh:mm:ss" with the year in front; other texts as they stand.
QString TimeKey(const QString &shown)
{
    const bool isTime = shown.size() > 10 && shown.at(2) == '/' && shown.at(5) == '/';
    return isTime ? shown.mid(6, 4) + shown.left(5) + shown.mid(10) : shown;
}

/// Places of the rows in their order by the keys.
template <typename Key>
std::vector<std::size_t> OrderOf(const std::vector<Key> &keys, bool descending)
{
    std::vector<std::size_t> order(keys.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t one, std::size_t other) {
        return descending ? keys[other] < keys[one] : keys[one] < keys[other];
    });
    return order;
}

template <typename MakeKey>
std::vector<std::size_t> OrderBy(const std::vector<FaxRow> &rows, bool descending, MakeKey makeKey)
{
    std::vector<decltype(makeKey(rows.front()))> keys;
    keys.reserve(rows.size());
    for (const FaxRow &row : rows)
        keys.push_back(makeKey(row));
    return OrderOf(keys, descending);
}

} // namespace

std::vector<std::size_t> OrderFaxRows(const std::vector<FaxRow> &rows, int column, const QString &key,
                                      bool descending)
{
    if (key == "PageCount")
        return OrderBy(rows, descending, [&](const FaxRow &row) { return NumericPrefix(row.Cell(column)); });
    if (key.endsWith("Time"))
        return OrderBy(rows, descending, [&](const FaxRow &row) { return TimeKey(row.Cell(column)); });
    QCollator collator;
    collator.setNumericMode(true);
    // Folded by hand: the plain locale knows no case.
    return OrderBy(rows, descending,
                   [&](const FaxRow &row) { return collator.sortKey(row.Cell(column).toCaseFolded()); });
}
