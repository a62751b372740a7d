#pragma once

#include "mailbox/FolderFamily.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QString>

#include <memory>
#include <vector>

/// One folder. Nodes belong to their tree and live until it is loaded again.
struct FolderNode
{
    QString strKey; ///< the folder's id
    QString strText;
    FolderFamily Family = FolderFamily::Root;
    long lUnread = 0;
    FolderNode *parent = nullptr;
    QList<FolderNode *> aChildren;

    int Row() const { return parent ? static_cast<int>(parent->aChildren.indexOf(this)) : 0; }
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
    FolderNode *Find(const QString &key) const { return nodes.value(key); }
    int Count() const { return static_cast<int>(nodes.size()); }

    /// Unread faxes of one folder, under the date range (see `DateFilter`); empty for no range.
    static long GetNotReadCount(const FolderNode &node, const QString &dateFilter);
    /// Recounts all folders.
    void RefreshFolderUnreadCounts(const QString &dateFilter);
    void SetUnread(FolderNode *node, long count);

    /// The quoted keys of all descendants are added to `FolderIdList`. The result is that list with "," in
    /// front, or nothing when it is empty.
    QString CollectSubtreeFolderIds(const FolderNode *node);
    QString FolderIdList; ///< emptied by its users, not by `CollectSubtreeFolderIds`

signals:
    void AboutToLoad();
    void Loaded();
    void NodeChanged(FolderNode *node);

private:
    FolderNode *AddNode(FolderNode *parent, const QString &key, const QString &text, FolderFamily family);
    void AddTopNodes();
    void AddSubtrees();
    void CountTable(const QString &sql, bool add);

    std::vector<std::unique_ptr<FolderNode>> aNodes;
    QHash<QString, FolderNode *> nodes;
    FolderNode *root = nullptr;
};

/// "1005", "1006" or "1007" when the folder is one of these or stands below it; empty otherwise.
QString GetNodeParentKey(const FolderNode *node);

/// The folder's text up to its last "(". A folder called "Plans (old)" gives "Plans ".
QString GetTreeItemText(const FolderNode *node);

/// The texts of ids as a list for a statement: "'a','b'".
QString QuoteIds(const QStringList &ids);
