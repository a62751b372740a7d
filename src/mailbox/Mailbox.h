#pragma once

#include <QString>
#include <QStringList>

/// What the runs of the server room ask of the mailbox on the screen. Folder keys are the ids of the folders.
class Mailbox
{
public:
    virtual ~Mailbox() = default;

    /// Key of the selected folder; empty when none is selected.
    virtual QString SelectedFolder() const = 0;

    /// Fills the list: `mode` 0 summary, 1 draft, 2 received, 3 recycle bin, 4 outgoing, 5 sending, 6 sent,
    /// 7 undelivered. `clearFirst` false adds only what is not listed yet.
    virtual void LoadGridItem(const QString &key, int mode, const QString &extraFilter, bool allFolders,
                              bool clearFirst) = 0;

    /// Rows of the list.
    virtual int RowCount() const = 0;
    /// Selects a row, counted from 1, and shows its fax.
    virtual void SelectRow(int row) = 0;
    /// Selects the current row again, so that its fax is shown anew.
    virtual void SelectCurrentRow() = 0;

    /// Selects the selected folder again, as a click on it does, and then the fax that was on show.
    virtual void ReloadSelectedFolder() = 0;

    /// A fax changed hands; the list and the unread counts follow, as far as the selected folder shows it.
    /// `kind` 0: a draft was saved; 1: it went to Outgoing; 2: it went to Sending. `isNew` says that it was
    /// in no folder before, `id` which fax of the list it is.
    /// `kind` 3 loads the list anew, narrowed by a filter: `id` is then the further text of the condition,
    /// and `isNew` lists all folders of the family.
    virtual void NotifySaveFax(int kind, bool isNew, const QString &id) = 0;

    /// Takes the first row out while drafts or waiting faxes are on show, and shows the next one. False when
    /// other faxes are on show.
    virtual bool DropFirstWaiting() = 0;

    /// A fax of the list has got another id.
    virtual void ChangeFaxID(const QString &oldID, const QString &newID) = 0;

    /// Sent faxes changed in the tables, perhaps their folder: a list of sent faxes takes out those that
    /// left, puts new ones on top, and shows the others anew. Those of `hidden` it takes out wherever they
    /// are. The selection stays with its faxes; when the one on show goes, the one that took its place is
    /// selected. The counts follow with `RefreshFolderUnreadCounts`.
    virtual void FollowFaxes(const QStringList &ids, const QStringList &hidden) = 0;

    /// Recounts the unread faxes of all folders under the date range on the screen.
    virtual void RefreshFolderUnreadCounts() = 0;
};
