#pragma once

#include <QList>
#include <QString>

/// The statements that fill the fax list.
namespace FaxListQueries {

struct Selection
{
    QString strKey;         ///< folder id
    int lMode = 0;          ///< list mode 1 to 7
    QString strExtraFilter; ///< further text of the condition
    bool bAllFolders = false;
    QString strListed;    ///< quoted ids that the list has already, see `QuoteIds`
    QString strDateRange; ///< see `DateFilter::Text`
};

/// A query, and the table that its rows come from: 0 `ReceiveFax`, 1 `SendFax`.
struct Query
{
    QString strSql;
    int lFaxTable = 0;
};

/// All queries give the oldest fax first. The Recycle bin takes two.
QList<Query> ForFolder(const Selection &selection);

/// Reads one listed fax again, for `FaxRow::ReadAgain`. `mode` is the list's, `faxTable` that of the fax.
QString ForFax(const QString &id, int mode, int faxTable);

/// One line of the summary.
struct SummaryLine
{
    QString strLabel;
    QString strUnreadSql; ///< field 0 of all rows is summed
    QString strTotalSql;
};

/// Ids below the system folders, each as `FolderTree::CollectSubtreeFolderIds` gives them.
struct Subtrees
{
    QString strIncoming, strDraft, strSent, strOutgoing;
};

QList<SummaryLine> ForSummary(const Subtrees &subtrees, const QString &dateRange);

} // namespace FaxListQueries
