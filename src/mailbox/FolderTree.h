#pragma once

#include "mailbox/FolderFamily.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QString>

#include <memory>
#include <unordered_map>

/// One folder. Nodes belong to their tree and live until they are removed or it is loaded again.
struct FolderNode
{
    QString strKey;  ///< the folder's id
    QString strText; ///< as stored: any length and any characters
    FolderFamily Family = FolderFamily::Root;
    long lUnread = 0;
    FolderNode *parent = nullptr;
    int lRow = 0; ///< place among the parent's children
    QList<FolderNode *> aChildren;
};

/// The folders of the profile, as nodes below "My Faxes". Routines that read the database raise its errors.
class FolderTree final : public QObject
{
    Q_OBJECT

public:
    FolderTree();
    ~FolderTree() override;

    /// Reads the folders anew. A row whose parent cannot be reached from the root stays invisible.
    void LoadFaxFolderTree();

    FolderNode *Root() const { return root; }
    /// Null for an unknown key.
    FolderNode *Find(const QString &key) const;
    int Count() const { return static_cast<int>(nodes.size()); }

    /// Unread faxes of one folder, under the date range (see `DateFilter`); empty for no range.
    static long GetNotReadCount(const FolderNode &node, const QString &dateFilter);
    /// Recounts all folders.
    void RefreshFolderUnreadCounts(const QString &dateFilter);
    void SetUnread(FolderNode *node, long count);
    /// True when no fax of either table is recycled.
    static bool IsRecycleBinEmpty();

    // Changes of the nodes alone; the table is the caller's.

    /// A new last child, of its parent's family.
    FolderNode *Add(FolderNode *parent, const QString &key, const QString &text);
    void Rename(FolderNode *node, const QString &text);
    /// `target` is no descendant of the node and not its parent.
    void Move(FolderNode *node, FolderNode *target);
    /// With its whole subtree.
    void Remove(FolderNode *node);

    /// The quoted keys of all descendants are added to `FolderIdList`. The result is that list with "," in
    /// front, or nothing when it is empty.
    QString CollectSubtreeFolderIds(const FolderNode *node);
    QString FolderIdList; ///< emptied by its users, not by `CollectSubtreeFolderIds`

signals:
    void AboutToLoad();
    void Loaded();
    /// The children of one folder from `first` to `last` show something else now.
    void NodesChanged(FolderNode *first, FolderNode *last);
    void Renamed(FolderNode *node);
    void AboutToAdd(FolderNode *parent);
    void Added(FolderNode *node);
    void AboutToMove(FolderNode *node, FolderNode *target);
    void Moved(FolderNode *node);
    void AboutToRemove(FolderNode *node);
    void Removed();

private:
    struct FolderRow
    {
        QString strID;
        QString strName;
        long lType;
    };
    using FolderRows = QHash<QString, QList<FolderRow>>; // by parent, in the order of the table

    static FolderRows ReadFolderRows();
    FolderNode *AddNode(FolderNode *parent, const QString &key, const QString &text, FolderFamily family);
    FolderNode *AddListed(FolderNode *parent, const FolderRow &row, FolderFamily &previous);
    void AddFolderNode(FolderNode *parentNode, const FolderRows &rows);
    void AddTopNodes();
    void AddSubtrees();

    std::unordered_map<QString, std::unique_ptr<FolderNode>> nodes;
    FolderNode *root = nullptr;
};

/// "1005", "1006" or "1007" when the folder is one of these or stands below it; empty otherwise.
QString GetNodeParentKey(const FolderNode *node);

/// The folder's text up to its last "(". A folder called "Plans (old)" gives "Plans ".
QString GetTreeItemText(const FolderNode *node);

/// The texts of ids as a list for a statement: "'a','b'".
QString QuoteIds(const QStringList &ids);
