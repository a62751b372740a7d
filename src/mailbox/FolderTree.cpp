#include "mailbox/FolderTree.h"

#include "core/Globals.h"
#include "core/Utilities.h"

#include <QStringList>

namespace {

/// An id becomes part of statements.
bool IsFolderID(const QString &id)
{
    return !id.isEmpty() && !id.contains('\'');
}

void AppendTo(FolderNode *parent, FolderNode *node)
{
    node->parent = parent;
    node->lRow = static_cast<int>(parent->aChildren.size());
    parent->aChildren.append(node);
}

void TakeFromParent(FolderNode *node)
{
    QList<FolderNode *> &siblings = node->parent->aChildren;
    siblings.removeAt(node->lRow);
    for (qsizetype row = node->lRow; row < siblings.size(); ++row)
        siblings.at(row)->lRow = static_cast<int>(row);
}

} // namespace

FolderTree::FolderTree()
{
    root = AddNode(nullptr, "1000", tr("My Faxes"), FolderFamily::Root);
}

FolderTree::~FolderTree() = default;

FolderNode *FolderTree::Find(const QString &key) const
{
    const auto found = nodes.find(key);
    return found == nodes.end() ? nullptr : found->second.get();
}

FolderNode *FolderTree::AddNode(FolderNode *parent, const QString &key, const QString &text,
                                FolderFamily family)
{
    std::unique_ptr<FolderNode> &node = nodes[key];
    node = std::make_unique<FolderNode>();
    node->strKey = key;
    node->strText = text;
    node->Family = family;
    if (parent)
        AppendTo(parent, node.get());
    return node.get();
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

FolderTree::FolderRows FolderTree::ReadFolderRows()
{
    FolderRows rows;
    const auto row =
        Global().objDB->SelectEx("Select folder_id,folder_name,folder_type,parentID from  FaxFolder");
    while (row->Next()) {
        if (IsFolderID(row->Text(0)))
            rows[row->Text(3)].append({row->Text(0), row->Text(1), row->Number(2)});
    }
    return rows;
}

/// A folder that is listed already is skipped, which also ends a circle.
FolderNode *FolderTree::AddListed(FolderNode *parent, const FolderRow &row, FolderFamily &previous)
{
    if (Find(row.strID))
        return nullptr;
    previous = GetFamilyOfType(row.lType, previous);
    return AddNode(parent, row.strID, UnescapeText(row.strName), previous);
}

/// Adds the subtree of a folder, parents before children. One read and a stack of our own: asking the table
/// again at each node would be quadratic, and a chain of folders may be deeper than the call stack.
void FolderTree::AddFolderNode(FolderNode *parentNode, const FolderRows &rows)
{
    FolderFamily previous = parentNode->Family;
    QList<std::pair<FolderNode *, int>> path{{parentNode, 0}};
    while (!path.isEmpty()) {
        auto &[node, next] = path.last();
        const auto children = rows.constFind(node->strKey);
        if (children == rows.constEnd() || next >= children->size()) {
            path.removeLast();
            continue;
        }
        if (FolderNode *child = AddListed(node, children->at(next++), previous))
            path.append({child, 0});
    }
}

/// First what stands below the system's folders, then the user's own ones beside them.
void FolderTree::AddSubtrees()
{
    const FolderRows rows = ReadFolderRows();
    for (FolderNode *top : QList<FolderNode *>(root->aChildren))
        AddFolderNode(top, rows);
    FolderFamily previous = root->Family;
    for (const FolderRow &row : rows.value(root->strKey)) {
        if (FolderNode *top = AddListed(root, row, previous))
            AddFolderNode(top, rows);
    }
}

void FolderTree::LoadFaxFolderTree()
{
    emit AboutToLoad();
    nodes.clear();
    AddTopNodes();
    try {
        AddSubtrees();
    } catch (...) {
        emit Loaded();
        throw;
    }
    emit Loaded();
}

// Changes

FolderNode *FolderTree::Add(FolderNode *parent, const QString &key, const QString &text)
{
    emit AboutToAdd(parent);
    FolderNode *node = AddNode(parent, key, text, parent->Family);
    emit Added(node);
    return node;
}

void FolderTree::Rename(FolderNode *node, const QString &text)
{
    node->strText = text;
    emit NodesChanged(node, node);
    emit Renamed(node);
}

void FolderTree::Move(FolderNode *node, FolderNode *target)
{
    emit AboutToMove(node, target);
    TakeFromParent(node);
    AppendTo(target, node);
    emit Moved(node);
}

void FolderTree::Remove(FolderNode *node)
{
    emit AboutToRemove(node);
    TakeFromParent(node);
    QList<FolderNode *> open{node};
    while (!open.isEmpty()) {
        const FolderNode *next = open.takeLast();
        open += next->aChildren;
        nodes.erase(QString(next->strKey)); // the key goes with the node
    }
    emit Removed();
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
