#pragma once

#include "mailbox/DateFilter.h"
#include "mailbox/FaxList.h"
#include "mailbox/FaxPreview.h"
#include "mailbox/FolderChanges.h"
#include "mailbox/FolderTree.h"
#include "mailbox/Mailbox.h"
#include "mailbox/ReadMarks.h"

#include <QObject>
#include <QStringList>

#include <functional>
#include <optional>

class Clock;
class Ids;
class Message;

/// The mailbox as it stands on the screen: the folders, the selected one, its list, the selected faxes and
/// the one on show. The panes show it and hand it the user's choices. Its public routines trap the errors of
/// the database and show a box.
class ShownMailbox final : public QObject, public Mailbox
{
    Q_OBJECT

public:
    ShownMailbox(Message &message, const Clock &clock, Ids &ids);

    FolderTree &Folders() { return folders; }
    FolderChanges &Changes() { return changes; }
    FaxList &List() { return list; }
    const FaxList &List() const { return list; }
    FaxPreview &Preview() { return preview; }
    const FaxPreview &Preview() const { return preview; }
    ReadMarks &Marks() { return marks; }
    const DateFilter &Dates() const { return dates; }
    /// What the list was narrowed to when it was loaded. The range may have changed since: the Recycle bin is
    /// not loaded again.
    struct Narrowing
    {
        QDate firstDay; ///< invalid for all faxes
        QDate lastDay;
        bool bFiltered = false; ///< by a further condition
    };
    const Narrowing &ListNarrowing() const { return narrowing; }

    /// Loads the folders of the open profile and selects the first one.
    void LoadFaxFolderTree();

    // What runs of the server ask
    QString SelectedFolder() const override;
    void LoadGridItem(const QString &key, int mode, const QString &extraFilter, bool allFolders,
                      bool clearFirst) override;
    int RowCount() const override { return list.RowCount(); }
    void SelectRow(int row) override;
    void SelectCurrentRow() override;
    void ReloadSelectedFolder() override;
    void RefreshFolderUnreadCounts() override;
    void NotifySaveFax(int kind, bool isNew, const QString &id) override;
    bool DropFirstWaiting() override;
    void ChangeFaxID(const QString &oldID, const QString &newID) override;
    void FollowFaxes(const QStringList &ids, const QStringList &hidden) override;

    // What the user does
    void SelectFolder(const QString &key);
    /// Ids in the order of the list; `current` is the fax to show.
    void SelectFaxes(const QStringList &ids, const QString &current);
    void SelectYear(int index);
    void ClickMonth(int month);
    /// Loads the selected folder's list again; the Recycle bin's stays as it is.
    void ReloadCurrentFolder(bool clearFirst);

    FolderNode *SelectedNode() const { return selected; } ///< null when none is selected
    const QStringList &SelectedFaxes() const { return aSelected; }
    /// Row of the fax on show, from 1; 0 for none.
    int SelectedRow() const;
    /// The selected faxes by their table, in the order of the list. Tells when the file of one is missing.
    /// Raises the errors of the database.
    struct GridSelection
    {
        QStringList aReceived;
        QStringList aSent;
    };
    GridSelection GetGridSelectedID();
    /// The table of the selected fax: 0 `ReceiveFax`, 1 `SendFax`.
    int GetFaxTable() const;
    /// Reads a fax again and shows it in that row. `kind` is the list mode, 1 to 7.
    void ChangeRowText(int row, const QString &id, int kind);
    /// Takes a fax out of the list. `refresh` then selects the row that took its place, or the last one.
    void DeleteSpecItemFromGrid(const QString &id, bool refresh);
    /// The same for many faxes, in one pass over the list: the row that took the place of the first.
    void DeleteSpecItemFromGrid(const QStringList &ids, bool refresh);
    /// Sets a folder's unread count; -1 counts the unread rows of the list. A null node means the selected
    /// one.
    void SetFolderTreeText(long count, FolderNode *node);

    /// What stands over the list: the folder, the year and the month.
    QString labFolderTip() const;
    /// Number of faxes and unread ones; empty for the summary.
    const QString &StatusText() const { return strStatus; }

    /// While set, selections are not followed: rows and folders are being changed in bulk.
    void SetReloading(bool reloading) { bReloading = reloading; }

signals:
    void FolderSelected(FolderNode *node);
    /// The selected rows changed other than by `SelectFaxes`; `row` counts from 1, 0 for none.
    void RowSelected(int row);
    /// A fax came on show by a selection.
    void FaxSelected(const QString &id);
    /// Commands that depend on the folder or the selection have to be looked at again.
    void CommandsChanged();
    /// A selected fax has no file: there is nothing to send again.
    void FaxFileMissing();
    void DatesChanged();
    void TipChanged();
    void StatusChanged();

private:
    void Trap(const QString &heading, const std::function<void()> &run);
    void Guard(const QString &routine, const std::function<void()> &run);
    bool IsCountedAsListed(const QString &key) const;
    std::optional<long> LoadList(const QString &key, int mode, const QString &extraFilter, bool allFolders,
                                 bool clearFirst);
    void LoadSummary();
    void ShowFolder(FolderNode *node);
    void LeaveFolder(const FolderNode *removed);
    void ShowFax(const QString &id);
    int ModeOfSelected() const;
    void SelectRowOrNone(int row);
    void NotifyDraft(bool isNew, const QString &id);
    void NotifyOutgoing(bool isNew, const QString &id);
    void NotifySending(bool isNew, const QString &id);
    void Recount(QStringList keys);
    void SelectAfterLoad(const QString &previousFax);
    void KeepSelection(int row);
    void ClearSelection();
    void ResetPreview();
    void ShowStatus(const char *format, std::optional<long> unread = {});
    void ApplyDates();

    Message &message;
    const Clock &clock;
    FolderTree folders;
    FolderChanges changes;
    FaxList list;
    FaxPreview preview;
    DateFilter dates;
    FaxListQueries::Selection loaded; ///< what the list was filled with last
    Narrowing narrowing;
    ReadMarks marks;
    FolderNode *selected = nullptr;
    QStringList aSelected;
    QString strCurrent; ///< id of the fax on show: a row's number changes when faxes come in on top
    QString strStatus;
    bool bReloading = false;
};
