#include "mailbox/FolderTree.h"

#include "core/Globals.h"
#include "core/Utilities.h"

#include <QStringList>

namespace {

struct FolderRow
{
    QString strID;
    QString strName;
    long lType;
};

/// The rows of the folder table by parent, in the order of the table.
QHash<QString, QList<FolderRow>> ReadFolderRows()
{
    QHash<QString, QList<FolderRow>> rows;
    const auto row =
        Global().objDB->SelectEx("Select folder_id,folder_name,folder_type,parentID from  FaxFolder");
    while (row->Next())
        rows[row->Text(3)].append({row->Text(0), row->Text(1), row->Number(2)});
    return rows;
}

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

} // namespace

FolderTree::FolderTree()
{
    root = AddNode(nullptr, "1000", tr("My Faxes"), FolderFamily::Root);
}

FolderTree::~FolderTree() = default;

FolderNode *FolderTree::AddNode(FolderNode *parent, const QString &key, const QString &text,
                                FolderFamily family)
{
    aNodes.push_back(std::make_unique<FolderNode>());
    FolderNode *node = aNodes.back().get();
    node->strKey = key;
    node->strText = text;
    node->Family = family;
    node->parent = parent;
    if (parent)
        parent->aChildren.append(node);
    nodes.insert(key, node);
    return node;
}

void FolderTree::AddTopNodes()
{
    root = AddNode(nullptr, "1000", tr("My Faxes"), FolderFamily::Root);
    AddNode(root, "1001", tr("Incoming"), FolderFamily::Received);
    AddNode(root, "1002", tr("Draft"), FolderFamily::Draft);
    AddNode(root, "1003", tr("Outgoing"), FolderFamily::WaitSend);
    AddNode(root, "1004", tr("Sent"), FolderFamily::Sended);
    AddNode(root, "1008", tr("Recycle bin"), FolderFamily::Recyle);
}

/// Walks each top folder's subtree, parents before children. One read and a stack of our own: asking the
/// table again at each node would be quadratic, and a chain of folders may be deeper than the call stack. A
/// folder that is listed already is skipped, which also ends a circle.
void FolderTree::AddSubtrees()
{
    const QHash<QString, QList<FolderRow>> rows = ReadFolderRows();
    FolderFamily previous = FolderFamily::Recyle;
    const auto addChild = [&](FolderNode *parent, const FolderRow &row) -> FolderNode * {
        if (nodes.contains(row.strID))
            return nullptr;
        previous = GetFamilyOfType(row.lType, previous);
        return AddNode(parent, row.strID, UnescapeText(row.strName), previous);
    };
    const auto addBelow = [&](FolderNode *top) {
        previous = top->Family;
        QList<std::pair<FolderNode *, int>> path{{top, 0}};
        while (!path.isEmpty()) {
            auto &[node, next] = path.last();
            const auto children = rows.constFind(node->strKey);
            if (children == rows.constEnd() || next >= children->size()) {
                path.removeLast();
                continue;
            }
            if (FolderNode *child = addChild(node, children->at(next++)))
                path.append({child, 0});
        }
    };
    for (FolderNode *top : QList<FolderNode *>(root->aChildren))
        addBelow(top);
    for (const FolderRow &row : rows.value(root->strKey)) {
        if (FolderNode *top = addChild(root, row))
            addBelow(top);
    }
}

void FolderTree::LoadFaxFolderTree()
{
    emit AboutToLoad();
    nodes.clear();
    aNodes.clear();
    AddTopNodes();
    try {
        AddSubtrees();
    } catch (...) {
        emit Loaded();
        throw;
    }
    emit Loaded();
}

void FolderTree::SetUnread(FolderNode *node, long count)
{
    if (node->lUnread == count)
        return;
    node->lUnread = count;
    emit NodeChanged(node);
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

/// Takes rows of a folder's id and its count. Folders that the tree does not show are passed over.
void FolderTree::CountTable(const QString &sql, bool add)
{
    const auto row = Global().objDB->SelectEx(sql);
    while (row->Next()) {
        if (FolderNode *node = Find(row->Text(0)))
            SetUnread(node, row->Number(1) + (add ? node->lUnread : 0));
    }
}

void FolderTree::RefreshFolderUnreadCounts(const QString &dateFilter)
{
    const QString byReceive = AndDate(" and ReceiveTime ", dateFilter);
    const QString byModify = AndDate(" and ModifyTime ", dateFilter);
    for (const auto &node : aNodes)
        SetUnread(node.get(), 0);
    CountTable("select ReceiveFax.FolderID,Count(*) From ReceiveFax Where IsReaded=0 " + byReceive +
                   "and  RecyleID=''  Group by ReceiveFax.FolderID",
               false);
    CountTable("select FolderID,Count(*) From SendFax Where IsReaded=0 " + byModify +
                   " and RecyleID='' Group by FolderID",
               false);
    CountTable("select RecyleID,Count(*) from receiveFax where  recyleID>'' " + byReceive +
                   " and isReaded=0 Group by RecyleID",
               false);
    CountTable("select RecyleID,Count(*) from SendFax where  recyleID>'' " + byModify +
                   " and isReaded=0 Group by RecyleID",
               true);
}

QString FolderTree::CollectSubtreeFolderIds(const FolderNode *node)
{
    QStringList found;
    QList<const FolderNode *> open{node};
    while (!open.isEmpty()) {
        const FolderNode *next = open.takeLast();
        for (auto child = next->aChildren.crbegin(); child != next->aChildren.crend(); ++child)
            open.append(*child);
        if (next != node)
            found.append(next->strKey);
    }
    if (!found.isEmpty())
        FolderIdList += (FolderIdList.isEmpty() ? "" : ",") + QuoteIds(found);
    return FolderIdList.isEmpty() ? QString() : "," + FolderIdList;
}

QString GetNodeParentKey(const FolderNode *node)
{
    for (; node; node = node->parent) {
        if (node->strKey == "1005" || node->strKey == "1006" || node->strKey == "1007")
            return node->strKey;
    }
    return {};
}

QString GetTreeItemText(const FolderNode *node)
{
    return node ? node->strText.left(node->strText.lastIndexOf('(')) : QString();
}

QString QuoteIds(const QStringList &ids)
{
    return ids.isEmpty() ? QString() : "'" + ids.join("','") + "'";
}
