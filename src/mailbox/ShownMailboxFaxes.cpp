// What happens to single faxes of the list.

#include "core/Globals.h"
#include "core/Utilities.h"
#include "mailbox/FaxFiles.h"
#include "mailbox/ShownMailbox.h"

#include <QScopedValueRollback>
#include <QSet>

#include <algorithm>

namespace {

constexpr int lFirstSentMode = 5; ///< of `LoadGridItem`: the lists of faxes that the server has got
enum SavedKind { savedDraft = 0, savedOutgoing = 1, savedSending = 2, savedFilter = 3 };

} // namespace

int ShownMailbox::GetFaxTable() const
{
    if (!selected || selected->Family == FolderFamily::Received)
        return 0;
    if (selected->Family != FolderFamily::Recyle)
        return 1;
    const int row = SelectedRow();
    return row > 0 ? list.Row(row).FaxTable() : 0;
}

ShownMailbox::GridSelection ShownMailbox::GetGridSelectedID()
{
    const QSet<QString> chosen(aSelected.begin(), aSelected.end());
    GridSelection selection;
    for (int row = 1; row <= list.RowCount(); ++row) {
        const FaxRow &fax = list.Row(row);
        if (chosen.contains(fax.ID()))
            (fax.FaxTable() == 0 ? selection.aReceived : selection.aSent).append(fax.ID());
    }
    if (!DoFaxFilesExist(selection.aReceived, false) || !DoFaxFilesExist(selection.aSent, true))
        emit FaxFileMissing();
    return selection;
}

/// By the folder's icon: the branches of "Sent" list alike.
int ShownMailbox::ModeOfSelected() const
{
    return selected->Family == FolderFamily::Sended ? 5 : GetListMode(selected->Family, {});
}

void ShownMailbox::ChangeRowText(int row, const QString &id, int kind)
{
    if (row < 1 || row > list.RowCount() || list.Row(row).IsSummary())
        return;
    Guard("ChangeRowText", [&] { list.ReloadRow(row, id, kind); });
}

void ShownMailbox::DeleteSpecItemFromGrid(const QString &id, bool refresh)
{
    DeleteSpecItemFromGrid(QStringList(id), refresh);
}

void ShownMailbox::DeleteSpecItemFromGrid(const QStringList &ids, bool refresh)
{
    QSet<QString> unwanted(ids.begin(), ids.end());
    unwanted.remove(QString()); // a line of the summary has no id
    int row = 0;
    {
        const QScopedValueRollback<bool> reloading(bReloading, true);
        row = list.Remove(unwanted);
    }
    if (row == 0)
        return;
    aSelected.removeIf([&](const QString &id) { return unwanted.contains(id); });
    if (unwanted.contains(strCurrent))
        strCurrent.clear();
    if (!refresh)
        return;
    SelectRowOrNone(std::min(row, list.RowCount()));
    emit CommandsChanged();
}

// Faxes that changed hands

void ShownMailbox::FollowFaxes(const QStringList &ids, const QStringList &hidden)
{
    if (loaded.lMode < lFirstSentMode || (ids.isEmpty() && hidden.isEmpty()))
        return;
    Guard("LoadGridItem", [&] {
        QStringList safe;
        std::copy_if(ids.begin(), ids.end(), std::back_inserter(safe), IsSafeFaxID);
        int row = SelectedRow();
        const bool hadSelection = row > 0 || list.RowCount() == 0;
        {
            const QScopedValueRollback<bool> reloading(bReloading, true);
            row = list.FollowFaxes(loaded, safe, hidden, row);
        }
        if (hadSelection)
            KeepSelection(row);
        emit CommandsChanged();
    });
}

/// After rows went and came: `row` is now that of the fax on show, or took its place.
void ShownMailbox::KeepSelection(int row)
{
    QStringList listed;
    for (const int selectedRow : list.RowsOf(aSelected))
        listed.append(list.Row(selectedRow).ID());
    aSelected = listed;
    if (aSelected.isEmpty()) {
        SelectRowOrNone(std::max(row, 1));
        return;
    }
    const bool hasLeft = SelectedRow() == 0; // the one on show, of several selected
    if (hasLeft)
        strCurrent = aSelected.first();
    emit RowSelected(SelectedRow());
    if (hasLeft)
        ShowFax(strCurrent);
}

void ShownMailbox::NotifySaveFax(int kind, bool isNew, const QString &id)
{
    if (!selected)
        return;
    switch (kind) {
    case savedDraft:
        NotifyDraft(isNew, id);
        break;
    case savedOutgoing:
        NotifyOutgoing(isNew, id);
        break;
    case savedSending:
        NotifySending(isNew, id);
        break;
    case savedFilter:
        LoadGridItem(selected->strKey, ModeOfSelected(), id, isNew, true);
        break;
    default:
        break;
    }
}

void ShownMailbox::ChangeFaxID(const QString &oldID, const QString &newID)
{
    ChangeRowText(list.RowOf(oldID), newID, selected ? ModeOfSelected() : 0);
    std::replace(aSelected.begin(), aSelected.end(), oldID, newID);
    if (strCurrent == oldID)
        strCurrent = newID;
}

void ShownMailbox::NotifyDraft(bool isNew, const QString &id)
{
    const int row = isNew ? 0 : list.RowOf(id);
    if (selected->Family == FolderFamily::Root) {
        ReloadCurrentFolder(true);
    } else if (selected->Family == FolderFamily::Draft && row > 0) {
        ChangeRowText(row, id, 1);
        if (id == strCurrent)
            Guard("LoadFaxPreview", [&] { preview.LoadFaxPreview(id, GetFaxTable()); }); // its pages, too
        emit CommandsChanged();
    } else if (selected->strKey == "1002") {
        ReloadCurrentFolder(!isNew);
    }
    Recount({"1002"});
}

void ShownMailbox::NotifyOutgoing(bool isNew, const QString &id)
{
    // Only the fax itself leaves the list: a new one was never there, whatever row is selected.
    if (selected->Family == FolderFamily::Draft && !isNew)
        DeleteSpecItemFromGrid(id, true);
    else if (selected->Family == FolderFamily::WaitSend)
        ReloadCurrentFolder(false);
    else if (selected->Family == FolderFamily::Root)
        ReloadCurrentFolder(true);
    Recount({"1002", "1003"});
}

void ShownMailbox::NotifySending(bool isNew, const QString &id)
{
    if (selected->Family == FolderFamily::Sended)
        ReloadCurrentFolder(false);
    else if (selected->Family == FolderFamily::Root)
        ReloadCurrentFolder(true);
    else if (!isNew)
        DeleteSpecItemFromGrid(id, true);
    Recount({"1003", "1005"});
}

bool ShownMailbox::DropFirstWaiting()
{
    const bool isShown =
        selected && (selected->Family == FolderFamily::Draft || selected->Family == FolderFamily::WaitSend);
    if (isShown && list.RowCount() > 0)
        DeleteSpecItemFromGrid(list.Row(1).ID(), true);
    return isShown;
}

/// Recounts folders and the selected one, in case it is a folder of the user's.
void ShownMailbox::Recount(QStringList keys)
{
    if (selected->Family != FolderFamily::Root && !keys.contains(selected->strKey))
        keys.append(selected->strKey);
    Guard("SetFolderTreeText", [&] {
        for (const QString &key : keys) {
            if (FolderNode *node = folders.Find(key))
                SetFolderTreeText(FolderTree::GetNotReadCount(*node, dates.Text()), node);
        }
    });
}
