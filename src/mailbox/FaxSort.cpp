#include "mailbox/FaxSort.h"

#include "core/Utilities.h"

#include <QCollator>

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

/// Orders times by a number, which is quick, and other texts before them by themselves.
using TimeKey = std::pair<qint64, QString>;

/// Of "MM/DD/YYYY hh:mm:ss" the digits with the year in front.
TimeKey KeyOfTime(const QString &shown)
{
    if (shown.size() < 11 || shown.at(2) != '/' || shown.at(5) != '/')
        return {-1, shown};
    qint64 number = 0;
    for (const QStringView part :
         {QStringView(shown).mid(6, 4), QStringView(shown).left(5), QStringView(shown).mid(10)}) {
        for (const QChar character : part) {
            if (character.isDigit())
                number = number * 10 + character.digitValue();
        }
    }
    return {number, {}};
}

/// A row's place beside its key: the sort runs through one block of memory.
template <typename Key>
struct KeyedPlace
{
    Key key;
    std::size_t lPlace;
};

template <typename MakeKey>
std::vector<std::size_t> OrderBy(const std::vector<FaxRow> &rows, bool descending, MakeKey makeKey)
{
    using Keyed = KeyedPlace<decltype(makeKey(rows.front()))>;
    std::vector<Keyed> keyed;
    keyed.reserve(rows.size());
    for (const FaxRow &row : rows)
        keyed.push_back({makeKey(row), keyed.size()});
    std::stable_sort(keyed.begin(), keyed.end(), [&](const Keyed &one, const Keyed &other) {
        return descending ? other.key < one.key : one.key < other.key;
    });
    std::vector<std::size_t> order;
    order.reserve(keyed.size());
    std::transform(keyed.begin(), keyed.end(), std::back_inserter(order),
                   [](const Keyed &row) { return row.lPlace; });
    return order;
}

} // namespace

std::vector<std::size_t> OrderFaxRows(const std::vector<FaxRow> &rows, int column, const QString &key,
                                      bool descending)
{
    if (key == "PageCount")
        return OrderBy(rows, descending, [&](const FaxRow &row) { return NumericPrefix(row.Cell(column)); });
    if (key.endsWith("Time"))
        return OrderBy(rows, descending, [&](const FaxRow &row) { return KeyOfTime(row.Cell(column)); });
    QCollator collator;
    collator.setNumericMode(true);
    // Folded by hand: the plain locale knows no case.
    return OrderBy(rows, descending,
                   [&](const FaxRow &row) { return collator.sortKey(row.Cell(column).toCaseFolded()); });
}
