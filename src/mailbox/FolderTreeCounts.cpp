// The unread faxes of the folders, as the tree counts them.

#include "core/Globals.h"
#include "mailbox/FolderTree.h"

#include <algorithm>

namespace {

using Counts = QHash<QString, long>;

QString AndDate(const QString &column, const QString &dateFilter)
{
    return dateFilter.isEmpty() ? QString() : column + dateFilter;
}

/// Field `field` of all rows, summed.
long SumRows(const QString &sql, int field)
{
    long sum = 0;
    const auto row = Global().objDB->SelectEx(sql);
    while (row->Next())
        sum += row->Number(field);
    return sum;
}

/// Takes rows of a folder's id and its count.
void SetCounts(Counts &counts, const QString &sql)
{
    const auto row = Global().objDB->SelectEx(sql);
    while (row->Next())
        counts[row->Text(0)] = row->Number(1);
}

void AddCounts(Counts &counts, const QString &sql)
{
    const auto row = Global().objDB->SelectEx(sql);
    while (row->Next())
        counts[row->Text(0)] += row->Number(1);
}

Counts CountUnread(const QString &dateFilter)
{
    const QString byReceive = AndDate(" and ReceiveTime ", dateFilter);
    const QString byModify = AndDate(" and ModifyTime ", dateFilter);
    Counts counts;
    SetCounts(counts, "select ReceiveFax.FolderID,Count(*) From ReceiveFax Where IsReaded=0 " + byReceive +
                          "and  RecyleID=''  Group by ReceiveFax.FolderID");
    SetCounts(counts, "select FolderID,Count(*) From SendFax Where IsReaded=0 " + byModify +
                          " and RecyleID='' Group by FolderID");
    SetCounts(counts, "select RecyleID,Count(*) from receiveFax where  recyleID>'' " + byReceive +
                          " and isReaded=0 Group by RecyleID");
    AddCounts(counts, "select RecyleID,Count(*) from SendFax where  recyleID>'' " + byModify +
                          " and isReaded=0 Group by RecyleID");
    return counts;
}

} // namespace

void FolderTree::SetUnread(FolderNode *node, long count)
{
    if (node->lUnread == count)
        return;
    node->lUnread = count;
    emit NodesChanged(node, node);
}

long FolderTree::GetNotReadCount(const FolderNode &node, const QString &dateFilter)
{
    const QString byReceive = AndDate(" and  ReceiveTime ", dateFilter);
    const QString byModify = AndDate(" and  ModifyTime ", dateFilter);
    switch (node.Family) {
    case FolderFamily::Received:
        return SumRows("Select Count(*) From ReceiveFax Where FolderID='" + node.strKey +
                           "' and isReaded=0 and RecyleID=''" + byReceive,
                       0);
    case FolderFamily::Recyle:
        // The date range stands behind "Group by" and so only splits the groups: the bin counts all dates.
        return SumRows("select recyleID,Count(*) from receiveFax where  RecyleID='" + node.strKey +
                           "'  and isReaded=0 and isReaded=0 Group by RecyleID" + byReceive,
                       1) +
               SumRows("select recyleID,Count(*) from SendFax where  RecyleID='" + node.strKey +
                           "'  and isReaded=0 and isReaded=0  Group by RecyleID " + byModify,
                       1);
    default:
        return SumRows("Select Count(*) From SendFax Where FolderID='" + node.strKey +
                           "' and isReaded=0 and RecyleID='' " + byModify,
                       0);
    }
}

/// The children of a folder change together: a signal for each of ten thousand siblings would have the views
/// look for each of them.
void FolderTree::RefreshFolderUnreadCounts(const QString &dateFilter)
{
    const Counts counts = CountUnread(dateFilter);
    QHash<FolderNode *, std::pair<int, int>> changed; // first and last row by parent
    for (const auto &[key, node] : nodes) {
        const long count = counts.value(key);
        if (node->lUnread == count)
            continue;
        node->lUnread = count;
        const auto range = changed.constFind(node->parent);
        const auto [first, last] = range == changed.cend() ? std::pair(node->lRow, node->lRow) : *range;
        changed.insert(node->parent, {std::min(first, node->lRow), std::max(last, node->lRow)});
    }
    for (auto range = changed.cbegin(); range != changed.cend(); ++range) {
        const QList<FolderNode *> siblings = range.key() ? range.key()->aChildren : QList{root};
        emit NodesChanged(siblings.at(range->first), siblings.at(range->second));
    }
}

bool FolderTree::IsRecycleBinEmpty()
{
    bool isEmpty = false; // also without a row
    const auto row =
        Global().objDB->SelectEx("Select count(*) From SendFax Where   RecyleID>'' union Select count(*) "
                                 "From ReceiveFax Where   RecyleID>''");
    while (row->Next()) {
        if (row->Number(0) > 0)
            return false;
        isEmpty = true;
    }
    return isEmpty;
}
