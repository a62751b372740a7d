#pragma once

#include "mailbox/FaxListColumns.h"
#include "mailbox/FaxListQueries.h"
#include "mailbox/FaxRow.h"

#include <QObject>
#include <QSet>
#include <QStringList>

#include <vector>

/// The rows of the list on the screen and their columns. Rows are numbered from 1, the newest fax first.
/// Routines that read the database raise its errors and then leave the list as it was.
class FaxList final : public QObject
{
    Q_OBJECT

public:
    FaxList();

    int Layout() const { return lLayout; }
    const QList<FaxColumn> &Columns() const { return aColumns; }
    /// Rebuilds the columns, which empties the list.
    void SetLayout(int layout);

    int RowCount() const { return static_cast<int>(aRows.size()); }
    const FaxRow &Row(int row) const { return aRows[Place(row)]; }
    /// The row of a fax; 0 when it is not listed.
    int RowOf(const QString &id) const;
    /// The rows of those faxes that are listed, from the top.
    QList<int> RowsOf(const QStringList &ids) const;
    /// The ids of all rows, quoted for a statement.
    QString QuotedIds() const;
    int UnreadCount() const;
    /// The same, as statements count them: not those whose state was missing or no number as they were read.
    int StoredUnreadCount() const;

    /// Fills the list for mode 0.
    void LoadSummary(const FaxListQueries::Subtrees &subtrees, const QString &dateRange);
    /// Fills the list for modes 1 to 7. `clearFirst` false adds on top what is not listed yet.
    void LoadFaxes(FaxListQueries::Selection selection, bool clearFirst);

    /// Brings some faxes up to date that changed in the tables, among them perhaps some that are not listed:
    /// those that `selection` gives no more go, and with them the `hidden` ones; new ones come on top, the
    /// others are read again where they stand. Ids must be safe for a statement. Gives the new number of
    /// `row`, or of the one that took its place; 0 for 0.
    int FollowFaxes(FaxListQueries::Selection selection, const QStringList &ids, const QStringList &hidden,
                    int row);

    /// Reads a fax again into a row; a fax that is gone leaves the row as it was. `mode` is 1 to 7.
    void ReloadRow(int row, const QString &id, int mode);
    /// Takes faxes out. The row where the first of them stood; 0 when none is listed.
    int Remove(const QSet<QString> &ids);

    /// Shows faxes as read or unread.
    void SetRead(const QStringList &ids, bool read);
    /// The row whose icon invites a click; 0 for none.
    void SetHoveredRow(int row);

    /// Sorts by a column from 4 on: ascending at first, then the other way round at each call. The summary is
    /// not sorted.
    void SortBy(int column);
    /// The icon of a column's header: that of its order, or its own.
    QString HeaderImageKey(int column) const;

signals:
    void AboutToReset();
    void Reset();
    void AboutToInsertOnTop(int count);
    void InsertedOnTop();
    void AboutToRemove(int first, int last);
    void Removed();
    void RowsChanged(int first, int last);
    void AboutToSort();
    /// `rows` holds the new row of each row, both counted from 0.
    void Sorted(const std::vector<int> &rows);
    void HeaderChanged();

private:
    using Rows = std::vector<FaxRow>;
    /// Rows that stand next to each other.
    struct Block
    {
        int lFirst;
        int lLast;
    };

    std::size_t Place(int row) const { return aRows.size() - static_cast<std::size_t>(row); }
    static Rows ReadRows(const FaxListQueries::Selection &selection);
    void Replace(Rows rows);
    Rows ReplaceListed(Rows rows);
    std::vector<Block> FindBlocks(const QSet<QString> &ids) const;
    void RemoveBlock(const Block &block);
    void RemoveInOnePass(const std::vector<Block> &blocks);
    void AddOnTop(Rows rows);
    QString KindOfTexts(int column) const;
    std::vector<int> SortRows();
    void ResetOrder();

    int lLayout = 0;
    QList<FaxColumn> aColumns;
    int lSortColumn = 0;   ///< 0 while the rows stand as they were loaded
    int lMarkedColumn = 0; ///< whose header shows the order
    bool bDescending = false;
    QSet<int> descendingNext; ///< columns that the next click sorts in descending order
    QString strHovered;
    Rows aRows; ///< oldest first, so that adding on top is cheap
};
