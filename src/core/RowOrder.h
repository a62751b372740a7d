#pragma once

#include <QCollator>
#include <QString>

#include <algorithm>
#include <iterator>
#include <vector>

/// Places of the rows in the order of the keys that `makeKey` makes of them. Equal rows stay in their order.
/// `descending` puts the greatest first.
template <typename Row, typename MakeKey>
std::vector<std::size_t> OrderRows(const std::vector<Row> &rows, bool descending, MakeKey makeKey)
{
    using Key = decltype(makeKey(rows.front()));
    /// A row's place beside its key: the sort runs through one block of memory.
    struct KeyedPlace
    {
        Key key;
        std::size_t lPlace;
    };
    std::vector<KeyedPlace> keyed;
    keyed.reserve(rows.size());
    for (const Row &row : rows)
        keyed.push_back({makeKey(row), keyed.size()});
    std::stable_sort(keyed.begin(), keyed.end(), [&](const KeyedPlace &one, const KeyedPlace &other) {
        return descending ? other.key < one.key : one.key < other.key;
    });
    std::vector<std::size_t> order;
    order.reserve(keyed.size());
    std::transform(keyed.begin(), keyed.end(), std::back_inserter(order),
                   [](const KeyedPlace &row) { return row.lPlace; });
    return order;
}

/// Keys that order texts as words, without regard to case, and the numbers in them by their value.
class WordOrder final
{
public:
    WordOrder() { collator.setNumericMode(true); }

    /// Folded by hand: the plain locale knows no case.
    QCollatorSortKey KeyOf(const QString &text) const { return collator.sortKey(text.toCaseFolded()); }

private:
    QCollator collator;
};
