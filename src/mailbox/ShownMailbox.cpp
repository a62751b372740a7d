#include "mailbox/ShownMailbox.h"

#include "core/Globals.h"
#include "core/Message.h"
#include "core/ports/Clock.h"
#include "mailbox/ShownText.h"

namespace {

// A recount writes the colons apart from the words, a selection does not.
constexpr const char *strSelectionStatus = QT_TRANSLATE_NOOP("ShownMailbox", "Total Faxes: %1  Unread: %2");
constexpr const char *strRecountStatus = QT_TRANSLATE_NOOP("ShownMailbox", "Total Faxes : %1  Unread : %2");

} // namespace

ShownMailbox::ShownMailbox(Message &messageBox, const Clock &systemClock, Ids &ids)
    : message(messageBox)
    , clock(systemClock)
    , changes(*this, folders, messageBox, ids)
    , dates(clock.Now().date())
    , marks(*this, messageBox)
{
    connect(&folders, &FolderTree::Renamed, this, &ShownMailbox::TipChanged);
    connect(&folders, &FolderTree::AboutToRemove, this, &ShownMailbox::LeaveFolder);
}

/// Every entry from the outside goes through here: an error ends in a box, not in the event loop.
void ShownMailbox::Trap(const QString &heading, const std::function<void()> &run)
{
    message.RunGuarded(heading, run);
}

void ShownMailbox::Guard(const QString &routine, const std::function<void()> &run)
{
    Trap("error in " + routine, run);
}

// Folders

void ShownMailbox::LoadFaxFolderTree()
{
    Guard("LoadFaxFolderTree", [this] {
        selected = nullptr;
        ClearSelection();
        folders.LoadFaxFolderTree();
        ShowFolder(folders.Find(Global().SwitchTo ? "1001" : "1000"));
    });
}

QString ShownMailbox::SelectedFolder() const
{
    return selected ? selected->strKey : QString();
}

void ShownMailbox::SelectFolder(const QString &key)
{
    if (bReloading)
        return;
    FolderNode *node = folders.Find(key);
    if (node && key == "1004" && folders.Find("1005"))
        node = folders.Find("1005"); // the faxes of "Sent" stand in its branches
    if (node)
        Guard("tvFolder_SelectedNodeChanged", [&] { ShowFolder(node); });
}

void ShownMailbox::ReloadSelectedFolder()
{
    const QString shown = strCurrent;
    SelectFolder(SelectedFolder());
    if (!shown.isEmpty() && shown != strCurrent)
        SelectRow(list.RowOf(shown));
}

void ShownMailbox::ShowFolder(FolderNode *node)
{
    selected = node;
    loaded = {};
    ClearSelection();
    ResetPreview();
    Trap("Error In InitFaxList", [&] { list.SetLayout(GetColumnLayout(node->Family)); });
    emit FolderSelected(node);
    const int mode = GetListMode(node->Family, GetNodeParentKey(node));
    std::optional<long> unread;
    if (mode >= 0)
        Guard("LoadGridItem", [&] { unread = LoadList(node->strKey, mode, {}, false, true); });
    else
        emit CommandsChanged();
    dates.ReleaseMonths();
    emit DatesChanged();
    ShowStatus(strSelectionStatus, unread);
}

/// A folder goes away: if it or one below it is selected, the folder above is, where the faxes are now.
void ShownMailbox::LeaveFolder(const FolderNode *removed)
{
    const FolderNode *node = selected;
    while (node && node != removed)
        node = node->parent;
    if (node)
        Guard("tvFolder_SelectedNodeChanged", [&] { ShowFolder(removed->parent); });
}

void ShownMailbox::RefreshFolderUnreadCounts()
{
    Guard("RefreshFolderUnreadCounts", [this] {
        folders.RefreshFolderUnreadCounts(dates.Text());
        // It has told the number, but for the bin, whose status counts all dates.
        const bool isTold = selected && selected->Family != FolderFamily::Recyle;
        ShowStatus(strRecountStatus, isTold ? std::optional<long>(selected->lUnread) : std::nullopt);
    });
}

void ShownMailbox::SetFolderTreeText(long count, FolderNode *node)
{
    Guard("SetFolderTreeText", [&] {
        if (!node)
            node = selected;
        if (!node)
            return;
        folders.SetUnread(node, count > -1 ? count : list.UnreadCount());
        ShowStatus(strRecountStatus);
    });
}

void ShownMailbox::ShowStatus(const char *format, std::optional<long> unread)
{
    strStatus.clear();
    if (selected && selected->strKey != "1000") {
        if (!unread)
            unread = FolderTree::GetNotReadCount(*selected, dates.Text());
        strStatus = tr(format).arg(QString::number(list.RowCount()), QString::number(*unread));
    }
    emit StatusChanged();
}

// The list

void ShownMailbox::LoadGridItem(const QString &key, int mode, const QString &extraFilter, bool allFolders,
                                bool clearFirst)
{
    Guard("LoadGridItem",
          [&] { ShowStatus(strRecountStatus, LoadList(key, mode, extraFilter, allFolders, clearFirst)); });
}

/// The number of the Recycle bin is that of all dates.
bool ShownMailbox::IsCountedAsListed(const QString &key) const
{
    return selected && selected->strKey == key &&
           (selected->Family != FolderFamily::Recyle || dates.Text().isEmpty());
}

/// Leaves the status line and errors to the caller. The number of unread faxes of the selected folder when
/// the rows tell it: to count them in the table would take a tenth of the load again.
std::optional<long> ShownMailbox::LoadList(const QString &key, int mode, const QString &extraFilter,
                                           bool allFolders, bool clearFirst)
{
    const QString previousFax = clearFirst ? QString() : strCurrent;
    const FaxListQueries::Selection selection{key, mode, extraFilter, allFolders, {}, dates.Text()};
    if (mode == 0)
        LoadSummary();
    else
        list.LoadFaxes(selection, clearFirst);
    loaded = selection;
    narrowing = {dates.FirstDay(), dates.LastDay(), !extraFilter.isEmpty()};
    SelectAfterLoad(previousFax);
    emit CommandsChanged();
    const bool isWhole = mode > 0 && clearFirst && !allFolders && extraFilter.isEmpty();
    return isWhole && IsCountedAsListed(key) ? std::optional<long>(list.StoredUnreadCount()) : std::nullopt;
}

void ShownMailbox::LoadSummary()
{
    const auto subtree = [this](const QString &key) {
        folders.FolderIdList.clear();
        return folders.CollectSubtreeFolderIds(folders.Find(key));
    };
    FaxListQueries::Subtrees subtrees;
    subtrees.strIncoming = subtree("1001");
    subtrees.strDraft = subtree("1002");
    subtrees.strSent = subtree("1004");
    subtrees.strOutgoing = subtree("1003");
    folders.FolderIdList.clear(); // the next deletion takes what stands in it
    list.LoadSummary(subtrees, dates.Text());
}

void ShownMailbox::SelectAfterLoad(const QString &previousFax)
{
    const int previousRow = previousFax.isEmpty() ? 0 : list.RowOf(previousFax);
    if (previousRow > 0) {
        emit RowSelected(previousRow); // the fax on show stays, at the page where its reader is
    } else {
        SelectRowOrNone(1);
    }
}

void ShownMailbox::SelectRowOrNone(int row)
{
    if (list.RowCount() > 0) {
        SelectRow(row);
    } else {
        ClearSelection();
        ResetPreview();
        emit RowSelected(0);
    }
}

void ShownMailbox::ReloadCurrentFolder(bool clearFirst)
{
    if (!selected || selected->Family == FolderFamily::Recyle)
        return;
    LoadGridItem(selected->strKey, ModeOfSelected(), {}, false, clearFirst);
}

// The selected faxes

int ShownMailbox::SelectedRow() const
{
    return strCurrent.isEmpty() ? 0 : list.RowOf(strCurrent);
}

void ShownMailbox::SelectRow(int row)
{
    if (row < 1 || row > list.RowCount())
        return;
    const FaxRow &chosen = list.Row(row);
    aSelected = chosen.IsSummary() ? QStringList() : QStringList(chosen.ID());
    strCurrent = chosen.ID();
    emit RowSelected(row);
    ShowFax(strCurrent);
}

void ShownMailbox::SelectCurrentRow()
{
    SelectRow(SelectedRow());
}

void ShownMailbox::SelectFaxes(const QStringList &ids, const QString &current)
{
    if (bReloading)
        return;
    aSelected = ids;
    if (current != strCurrent) {
        strCurrent = current;
        ShowFax(current);
    } else {
        emit CommandsChanged();
    }
}

void ShownMailbox::ShowFax(const QString &id)
{
    if (bReloading)
        return;
    if (id.isEmpty()) {
        ResetPreview();
    } else {
        Guard("LoadFaxPreview", [&] { preview.LoadFaxPreview(id, GetFaxTable()); });
        emit FaxSelected(id);
    }
    emit CommandsChanged();
}

void ShownMailbox::ClearSelection()
{
    aSelected.clear();
    strCurrent.clear();
}

void ShownMailbox::ResetPreview()
{
    const QString key = SelectedFolder();
    preview.ResetPreview(list.RowCount() == 0 && key != "1000" && key != "1004");
}

// The date range

void ShownMailbox::SelectYear(int index)
{
    dates.SetToday(clock.Now().date());
    dates.SelectYear(index);
    ApplyDates();
}

void ShownMailbox::ClickMonth(int month)
{
    if (!dates.IsMonthEnabled(month))
        return;
    dates.ClickMonth(month);
    ApplyDates();
}

void ShownMailbox::ApplyDates()
{
    RefreshFolderUnreadCounts();
    emit DatesChanged();
    ReloadCurrentFolder(true);
}

QString ShownMailbox::labFolderTip() const
{
    return "    " + ToListText(GetTreeItemText(selected)) + "  " + dates.YearText() + "  " +
           dates.PressedCaption();
}
