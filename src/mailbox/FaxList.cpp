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

/// More blocks of rows than these are not taken out one by one: views look through their selection each time.
constexpr std::size_t lMostBlocks = 50;

/// Finds the rows of some faxes among many others quickly.
class FaxFinder
{
public:
    explicit FaxFinder(QSet<QString> wanted)
        : ids(std::move(wanted))
    {
        hashes.reserve(ids.size());
        for (const QString &id : std::as_const(ids))
            hashes.insert(FaxRow::HashOf(id.toStdString()));
    }

    bool Finds(const FaxRow &row) const { return hashes.contains(row.IdHash()) && ids.contains(row.ID()); }

private:
    QSet<QString> ids;
    QSet<quint32> hashes;
};

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
    const quint32 hash = FaxRow::HashOf(id.toStdString());
    const auto found = std::find_if(aRows.rbegin(), aRows.rend(), [&](const FaxRow &row) {
        return row.IdHash() == hash && row.ID() == id;
    });
    return found == aRows.rend() ? 0 : static_cast<int>(found - aRows.rbegin()) + 1;
}

QList<int> FaxList::RowsOf(const QStringList &ids) const
{
    const FaxFinder finder(QSet<QString>(ids.begin(), ids.end()));
    QList<int> rows;
    for (int row = 1; row <= RowCount(); ++row) {
        if (finder.Finds(Row(row)))
            rows.append(row);
    }
    return rows;
}

QString FaxList::QuotedIds() const
{
    constexpr qsizetype usualSize = 35; // 32 digits, the quotes and a comma
    QByteArray ids;
    ids.reserve(usualSize * RowCount());
    for (const FaxRow &row : aRows) {
        const std::string_view id = row.StoredID();
        ids += ids.isEmpty() ? "'" : ",'";
        ids.append(id.data(), static_cast<qsizetype>(id.size())).append('\'');
    }
    return QString::fromUtf8(ids);
}

int FaxList::UnreadCount() const
{
    return static_cast<int>(
        std::count_if(aRows.begin(), aRows.end(), [](const FaxRow &row) { return !row.bRead; }));
}

int FaxList::StoredUnreadCount() const
{
    return static_cast<int>(
        std::count_if(aRows.begin(), aRows.end(), [](const FaxRow &row) { return row.IsStoredUnread(); }));
}

void FaxList::LoadSummary(const FaxListQueries::Subtrees &subtrees, const QString &dateRange)
{
    Rows rows;
    for (const FaxListQueries::SummaryLine &line : FaxListQueries::ForSummary(subtrees, dateRange))
        rows.emplace_back(line.strLabel, SumFirstField(line.strUnreadSql), SumFirstField(line.strTotalSql));
    std::reverse(rows.begin(), rows.end());
    Replace(std::move(rows));
}

void FaxList::LoadFaxes(FaxListQueries::Selection selection, bool clearFirst)
{
    selection.strListed = clearFirst ? QString() : QuotedIds();
    Rows rows = ReadRows(selection);
    if (clearFirst)
        Replace(std::move(rows));
    else
        AddOnTop(std::move(rows));
}

FaxList::Rows FaxList::ReadRows(const FaxListQueries::Selection &selection)
{
    Rows rows;
    for (const FaxListQueries::Query &query : FaxListQueries::ForFolder(selection)) {
        const auto statement = Global().objDB->SelectEx(query.strSql);
        while (statement->Next())
            rows.emplace_back(*statement, selection.lMode, query.lFaxTable);
    }
    return rows;
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

int FaxList::FollowFaxes(FaxListQueries::Selection selection, const QStringList &ids,
                         const QStringList &hidden, int row)
{
    QSet<QString> leaving(ids.begin(), ids.end());
    Rows rows;
    if (!ids.isEmpty()) {
        selection.strExtraFilter += " and Fax_ID in('" + ids.join("','") + "')";
        rows = ReadRows(selection);
    }
    for (const FaxRow &fax : rows)
        leaving.remove(fax.ID());
    leaving.unite(QSet<QString>(hidden.begin(), hidden.end()));
    rows = ReplaceListed(std::move(rows));
    int above = 0;
    for (const Block &block : FindBlocks(leaving))
        above += std::clamp(row - block.lFirst, 0, block.lLast - block.lFirst + 1);
    Remove(leaving);
    const int added = static_cast<int>(rows.size());
    AddOnTop(std::move(rows));
    return row == 0 ? 0 : std::min(row - above + added, RowCount());
}

/// Puts rows that were read again in the place of the old ones; those that are not listed yet come back.
FaxList::Rows FaxList::ReplaceListed(Rows rows)
{
    QMultiHash<QString, std::size_t> places;
    for (std::size_t i = 0; i < rows.size(); ++i)
        places.insert(rows[i].ID(), i);
    const QList<int> listed = RowsOf(places.uniqueKeys());
    std::vector<bool> isUsed(rows.size());
    for (const int row : listed) {
        FaxRow &fax = aRows[Place(row)];
        const auto found = places.find(fax.ID());
        if (found == places.end()) // two rows of one id, of which one has left
            continue;
        isUsed[*found] = true;
        fax = std::move(rows[*found]);
        places.erase(found);
        emit RowsChanged(row, row);
    }
    Rows others;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (!isUsed[i])
            others.push_back(std::move(rows[i]));
    }
    return others;
}

void FaxList::ReloadRow(int row, const QString &id, int mode)
{
    FaxRow &fax = aRows[Place(row)];
    const auto statement = Global().objDB->SelectEx(FaxListQueries::ForFax(id, mode, fax.FaxTable()));
    if (!statement->Next())
        return;
    fax.ReadAgain(*statement, mode);
    emit RowsChanged(row, row);
}

int FaxList::Remove(const QSet<QString> &ids)
{
    const std::vector<Block> blocks = FindBlocks(ids);
    if (blocks.empty())
        return 0;
    if (blocks.size() > lMostBlocks)
        RemoveInOnePass(blocks);
    else // from the bottom, so that the others keep their numbers
        std::for_each(blocks.rbegin(), blocks.rend(), [this](const Block &block) { RemoveBlock(block); });
    return blocks.front().lFirst;
}

/// The rows of these faxes, from the top.
std::vector<FaxList::Block> FaxList::FindBlocks(const QSet<QString> &ids) const
{
    const FaxFinder finder(ids);
    std::vector<Block> blocks;
    for (int row = 1; row <= RowCount(); ++row) {
        if (!finder.Finds(Row(row)))
            continue;
        if (blocks.empty() || blocks.back().lLast < row - 1)
            blocks.push_back({row, row});
        else
            blocks.back().lLast = row;
    }
    return blocks;
}

void FaxList::RemoveInOnePass(const std::vector<Block> &blocks)
{
    emit AboutToReset();
    auto block = blocks.rbegin();
    std::erase_if(aRows, [&](const FaxRow &fax) {
        const int row = RowCount() - static_cast<int>(&fax - aRows.data()); // from the bottom up
        if (block != blocks.rend() && row < block->lFirst)
            ++block;
        return block != blocks.rend() && row <= block->lLast;
    });
    emit Reset();
}

void FaxList::RemoveBlock(const Block &block)
{
    emit AboutToRemove(block.lFirst, block.lLast);
    aRows.erase(aRows.begin() + static_cast<Rows::difference_type>(Place(block.lLast)),
                aRows.begin() + static_cast<Rows::difference_type>(Place(block.lFirst)) + 1);
    emit Removed();
}

void FaxList::SetRead(const QStringList &ids, bool read)
{
    const FaxFinder finder(QSet<QString>(ids.begin(), ids.end()));
    int first = 0;
    int last = 0;
    for (int row = 1; row <= RowCount(); ++row) {
        FaxRow &fax = aRows[Place(row)];
        if (fax.bRead == read || !finder.Finds(fax))
            continue;
        fax.bRead = read;
        first = first == 0 ? row : first;
        last = row;
    }
    if (first > 0)
        emit RowsChanged(first, last);
}

void FaxList::SetHoveredRow(int row)
{
    const QString id = row > 0 ? Row(row).ID() : QString();
    if (id == strHovered)
        return;
    const int before = strHovered.isEmpty() ? 0 : RowOf(strHovered);
    strHovered = id;
    for (const int changed : {before, row}) {
        if (changed > 0) {
            aRows[Place(changed)].bHovered = changed == row;
            emit RowsChanged(changed, changed);
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
    emit Sorted(SortRows());
    emit HeaderChanged();
}

/// The Recycle bin shows each value from the title on one column left of its caption.
QString FaxList::KindOfTexts(int column) const
{
    const bool isShifted = lLayout == GetColumnLayout(FolderFamily::Recyle) && column > colFirstText;
    return aColumns.value(isShifted ? column : column - 1).strKey;
}

/// The new row of each row, counted from 0; empty without an order.
std::vector<int> FaxList::SortRows()
{
    if (lSortColumn == 0)
        return {};
    // The last place is the first row, so the greatest goes first where the smallest is wanted on top.
    const std::vector<std::size_t> order =
        OrderFaxRows(aRows, lSortColumn, KindOfTexts(lSortColumn), !bDescending);
    std::vector<int> newRows(aRows.size());
    Rows sorted;
    sorted.reserve(aRows.size());
    for (const std::size_t place : order) {
        newRows[aRows.size() - 1 - place] = static_cast<int>(aRows.size() - 1 - sorted.size());
        sorted.push_back(std::move(aRows[place]));
    }
    aRows = std::move(sorted);
    return newRows;
}

QString FaxList::HeaderImageKey(int column) const
{
    if (column == lMarkedColumn)
        return bDescending ? "imgSortDown" : "imgSortUp";
    return aColumns.at(column - 1).strIcon;
}
