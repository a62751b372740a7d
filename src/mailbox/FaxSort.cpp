#include "mailbox/FaxSort.h"

#include "core/RowOrder.h"
#include "core/Utilities.h"

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

} // namespace

std::vector<std::size_t> OrderFaxRows(const std::vector<FaxRow> &rows, int column, const QString &key,
                                      bool descending)
{
    if (key == "PageCount")
        return OrderRows(rows, descending,
                         [&](const FaxRow &row) { return NumericPrefix(row.Cell(column)); });
    if (key.endsWith("Time"))
        return OrderRows(rows, descending, [&](const FaxRow &row) { return KeyOfTime(row.Cell(column)); });
    const WordOrder words;
    return OrderRows(rows, descending, [&](const FaxRow &row) { return words.KeyOf(row.Cell(column)); });
}
