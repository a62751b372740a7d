#include "mailbox/FaxList.h"

#include "core/Globals.h"
#include "mailbox/FaxSort.h"

#include <algorithm>
#include <iterator>

namespace {

long SumFirstField(const QString &sql)
{
    long sum = 0;
    const auto row = Global().objDB->SelectEx(sql);
    while (row->Next())
        sum += row->Number(0);
    return sum;
}

FaxRow MakeSummaryRow(const FaxListQueries::SummaryLine &line)
{
    FaxRow row;
    row.bSummary = true;
    row.aCells = {line.strLabel, QString::number(SumFirstField(line.strUnreadSql)),
                  QString::number(SumFirstField(line.strTotalSql))};
    return row;
}

} // namespace

FaxList::FaxList()
    : aColumns(GetFaxListColumns(0))
{
    ResetOrder();
}

void FaxList::SetLayout(int layout)
{
    emit AboutToReset();
    lLayout = layout;
    aColumns = GetFaxListColumns(layout);
    aRows.clear();
    ResetOrder();
    emit Reset();
}

int FaxList::RowOf(const QString &id) const
{
    const auto found =
        std::find_if(aRows.rbegin(), aRows.rend(), [&](const FaxRow &row) { return row.strID == id; });
    return found == aRows.rend() ? 0 : static_cast<int>(found - aRows.rbegin()) + 1;
}

QStringList FaxList::Ids() const
{
    QStringList ids;
    for (const FaxRow &row : aRows)
        ids.append(row.strID);
    return ids;
}

int FaxList::UnreadCount() const
{
    return static_cast<int>(
        std::count_if(aRows.begin(), aRows.end(), [](const FaxRow &row) { return !row.bRead; }));
}

void FaxList::Clear()
{
    Replace({});
}

void FaxList::LoadSummary(const FaxListQueries::Subtrees &subtrees, const QString &dateRange)
{
    Rows rows;
    for (const FaxListQueries::SummaryLine &line : FaxListQueries::ForSummary(subtrees, dateRange))
        rows.push_back(MakeSummaryRow(line));
    std::reverse(rows.begin(), rows.end());
    Replace(std::move(rows));
}

void FaxList::LoadFaxes(FaxListQueries::Selection selection, bool clearFirst)
{
    selection.aListed = clearFirst ? QStringList() : Ids();
    Rows rows;
    for (const FaxListQueries::Query &query : FaxListQueries::ForFolder(selection)) {
        const auto statement = Global().objDB->SelectEx(query.strSql);
        while (statement->Next())
            rows.push_back(ReadFaxRow(*statement, selection.lMode, query.lFaxTable));
    }
    if (clearFirst)
        Replace(std::move(rows));
    else
        AddOnTop(std::move(rows));
}

void FaxList::Replace(Rows rows)
{
    emit AboutToReset();
    aRows = std::move(rows);
    strHovered.clear();
    SortRows();
    emit Reset();
}

void FaxList::AddOnTop(Rows rows)
{
    if (rows.empty())
        return;
    emit AboutToInsertOnTop(static_cast<int>(rows.size()));
    std::move(rows.begin(), rows.end(), std::back_inserter(aRows));
    emit InsertedOnTop();
}

void FaxList::ReloadRow(int row, const QString &id, int mode)
{
    FaxRow &fax = aRows[Place(row)];
    const auto statement = Global().objDB->SelectEx(FaxListQueries::ForFax(id, mode, fax.lFaxTable));
    if (!statement->Next())
        return;
    ReadFaxRowAgain(fax, *statement, mode);
    emit RowChanged(row);
}

void FaxList::Remove(int row)
{
    emit AboutToRemove(row);
    aRows.erase(aRows.begin() + static_cast<Rows::difference_type>(Place(row)));
    emit Removed();
}

void FaxList::SetRead(const QStringList &ids, bool read)
{
    const QSet<QString> wanted(ids.begin(), ids.end());
    for (int row = 1; row <= RowCount(); ++row) {
        FaxRow &fax = aRows[Place(row)];
        if (fax.bRead == read || !wanted.contains(fax.strID))
            continue;
        fax.bRead = read;
        emit RowChanged(row);
    }
}

void FaxList::SetHoveredRow(int row)
{
    const QString id = row > 0 ? Row(row).strID : QString();
    if (id == strHovered)
        return;
    const int before = strHovered.isEmpty() ? 0 : RowOf(strHovered);
    strHovered = id;
    for (const int changed : {before, row}) {
        if (changed > 0) {
            aRows[Place(changed)].bHovered = changed == row;
            emit RowChanged(changed);
        }
    }
}

// Order

void FaxList::ResetOrder()
{
    lSortColumn = 0;
    lMarkedColumn = 0;
    bDescending = true;
    descendingNext.clear();
    for (int i = 0; i < aColumns.size(); ++i) {
        if (aColumns.at(i).bSorted)
            lMarkedColumn = i + 1;
    }
}

void FaxList::SortBy(int column)
{
    if (lLayout == 0 || column < colFirstText || column > aColumns.size())
        return;
    bDescending = descendingNext.remove(column);
    if (!bDescending)
        descendingNext.insert(column);
    lSortColumn = lMarkedColumn = column;
    emit AboutToSort();
    SortRows();
    emit Sorted();
    emit HeaderChanged();
}

void FaxList::SortRows()
{
    if (lSortColumn > 0)
        SortFaxRows(aRows, lSortColumn, aColumns.at(lSortColumn - 1).strKey, !bDescending);
}

QString FaxList::HeaderImageKey(int column) const
{
    if (column == lMarkedColumn)
        return bDescending ? "imgSortDown" : "imgSortUp";
    return aColumns.at(column - 1).strIcon;
}
