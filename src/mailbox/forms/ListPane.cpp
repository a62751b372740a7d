#include "mailbox/forms/ListPane.h"

#include "controls/Icons.h"
#include "controls/MarkedDelegate.h"
#include "controls/MarkedHeader.h"
#include "controls/SelectedRows.h"
#include "core/ModelRoles.h"
#include "mailbox/FaxListModel.h"
#include "mailbox/ShownMailbox.h"
#include "mailbox/forms/FaxGrid.h"

#include <QGuiApplication>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QScopeGuard>
#include <QScopedValueRollback>
#include <QVBoxLayout>

namespace {

/// Most pieces of a selection: every cell that is drawn looks through all of them.
constexpr int lMostPieces = 2000;

} // namespace

ListPane::ListPane(ShownMailbox &shownMailbox, QWidget *parent)
    : QWidget(parent)
    , mailbox(shownMailbox)
    , model(new FaxListModel(shownMailbox.List(), this))
    , labFolderTip(new QLabel(this))
    , grdFaxList(new FaxGrid(this))
    , sortMenu(new QMenu(tr("S&ort by"), this))
{
    labFolderTip->setObjectName("labFolderTip");
    labFolderTip->setTextFormat(Qt::PlainText);
    QFont font = labFolderTip->font();
    font.setBold(true);
    labFolderTip->setFont(font);
    labFolderTip->setContentsMargins(0, 4, 0, 4);
    labFolderTip->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // however long a folder's name
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(labFolderTip);
    layout->addWidget(grdFaxList);
    SetUpGrid();
    connect(&mailbox, &ShownMailbox::DatesChanged, this, &ListPane::ShowTip);
    connect(&mailbox, &ShownMailbox::TipChanged, this, &ListPane::ShowTip);
    connect(&mailbox, &ShownMailbox::CommandsChanged, this, &ListPane::ShowHint);
    connect(&mailbox, &ShownMailbox::RowSelected, this, &ListPane::FollowMailbox);
    connect(sortMenu, &QMenu::aboutToShow, this, &ListPane::FillSortMenu);
    ShowColumns();
    ShowTip();
    ShowHint();
}

void ListPane::SetUpGrid()
{
    grdFaxList->setObjectName("grdFaxList");
    grdFaxList->setAccessibleName(tr("Faxes"));
    grdFaxList->setHeader(new MarkedHeader(grdFaxList));
    grdFaxList->header()->setSectionsClickable(true); // setHeader has just switched it off
    grdFaxList->setRootIsDecorated(false);
    grdFaxList->setAllColumnsShowFocus(true);
    grdFaxList->setSelectionMode(QAbstractItemView::ExtendedSelection);
    grdFaxList->setItemDelegate(new MarkedDelegate(grdFaxList));
    connect(&mailbox.List(), &FaxList::AboutToReset, this, &ListPane::KeepWidths);
    grdFaxList->setModel(model);
    connect(&mailbox.List(), &FaxList::Reset, this, &ListPane::ShowColumns);
    connect(grdFaxList->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ListPane::TakeSelection);
    connect(grdFaxList, &FaxGrid::OpenRequested, this, &ListPane::ViewRequested);
    connect(grdFaxList, &FaxGrid::MenuRequested, this, &ListPane::MenuRequested);
    connect(grdFaxList, &FaxGrid::IconHovered, this, &ListPane::HoverOver);
    connect(grdFaxList, &QAbstractItemView::clicked, this, &ListPane::ClickCell);
    connect(grdFaxList->header(), &QHeaderView::sectionClicked, this,
            [this](int section) { Sort(section + 1); });
    grdFaxList->setMouseTracking(true);
}

// Columns

/// The layout is about to go: its widths are kept for the next folder of this kind.
void ListPane::KeepWidths()
{
    if (lShownLayout < 0)
        return;
    const QHeaderView *header = grdFaxList->header();
    QList<int> kept;
    for (int i = 0; i < header->count(); ++i) {
        if (!header->isSectionHidden(i))
            kept.append(qRound(header->sectionSize(i) * 96.0 / logicalDpiX()));
    }
    kept.removeLast();
    widths.insert(lShownLayout, kept);
}

FaxColumnWidths ListPane::Widths()
{
    KeepWidths();
    return widths;
}

void ListPane::SetWidths(const FaxColumnWidths &newWidths)
{
    widths = newWidths;
    lShownLayout = -1;
    ShowColumns();
}

void ListPane::ShowColumns()
{
    const FaxList &list = mailbox.List();
    if (list.Layout() == lShownLayout)
        return;
    lShownLayout = list.Layout();
    const QList<int> kept = widths.value(lShownLayout);
    QHeaderView *header = grdFaxList->header();
    header->setMinimumSectionSize(28);
    header->setStretchLastSection(true);
    int shown = 0;
    for (int i = 0; i < list.Columns().size(); ++i) {
        const FaxColumn &column = list.Columns().at(i);
        header->setSectionHidden(i, column.IsHidden());
        if (!column.IsHidden())
            header->resizeSection(i, qRound(kept.value(shown++, column.lWidth) * logicalDpiX() / 96.0));
    }
}

// Order

void ListPane::FillSortMenu()
{
    sortMenu->clear();
    const FaxList &list = mailbox.List();
    for (int column = colFirstText; column <= list.Columns().size() && list.Layout() > 0; ++column) {
        const FaxColumn &shown = list.Columns().at(column - 1);
        if (!shown.IsHidden())
            sortMenu->addAction(Icons::Get(list.HeaderImageKey(column)), shown.strCaption,
                                [this, column] { Sort(column); });
    }
    if (sortMenu->isEmpty())
        sortMenu->addAction(tr("(the summary keeps its order)"))->setEnabled(false);
}

void ListPane::Sort(int column)
{
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    const auto restore = qScopeGuard([] { QGuiApplication::restoreOverrideCursor(); });
    mailbox.List().SortBy(column);
    QItemSelectionModel *selection = grdFaxList->selectionModel();
    if (selection->selection().size() > lMostPieces)
        selection->select(grdFaxList->currentIndex(),
                          QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    grdFaxList->scrollTo(grdFaxList->currentIndex());
}

// Texts

void ListPane::ShowTip()
{
    labFolderTip->setText(mailbox.labFolderTip());
}

void ListPane::ShowHint()
{
    grdFaxList->SetHint(mailbox.SelectedNode() ? WhyEmpty() : tr("Choose a folder to see its faxes."));
}

QString ListPane::WhyEmpty() const
{
    const ShownMailbox::Narrowing &narrowing = mailbox.ListNarrowing();
    if (!narrowing.firstDay.isValid()) {
        if (narrowing.bFiltered)
            return tr("No fax matches the search.");
        return mailbox.SelectedFolder() == "1001"
                   ? tr("No faxes in this folder.\nPress F9 to fetch new ones from the server.")
                   : tr("No faxes in this folder.");
    }
    const auto day = [](QDate date) { return QLocale().toString(date, QLocale::ShortFormat); };
    const QString why = narrowing.bFiltered ? tr("No fax from %1 to %2 matches the search.")
                                            : tr("No faxes in this folder from %1 to %2.");
    // The list of the Recycle bin does not follow the range at once.
    const QString remedy = mailbox.SelectedNode()->Family == FolderFamily::Recyle
                               ? tr("Choose \"All faxes\" above and open the folder again to see the others.")
                               : tr("Choose \"All faxes\" above to see the others.");
    return why.arg(day(narrowing.firstDay), day(narrowing.lastDay)) + "\n" + remedy;
}

// Selection

QList<int> ListPane::SelectedRows() const
{
    return GetSelectedRows(*grdFaxList->selectionModel());
}

void ListPane::FollowMailbox(int row)
{
    const QScopedValueRollback<bool> following(bFollowing, true);
    const QModelIndex index = model->index(row - 1, colFirstText - 1); // typing searches the current column
    if (!index.isValid()) {
        grdFaxList->selectionModel()->clear();
        return;
    }
    const QStringList &wanted = mailbox.SelectedFaxes();
    QItemSelectionModel *selection = grdFaxList->selectionModel();
    if (selection->isRowSelected(row - 1) && SelectedRows().size() == wanted.size())
        return; // stays where its reader has scrolled it
    selection->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    if (wanted.size() > 1)
        selection->select(RowsOf(wanted), QItemSelectionModel::ClearAndSelect);
    grdFaxList->scrollTo(index);
}

QItemSelection ListPane::RowsOf(const QStringList &ids) const
{
    QItemSelection rows;
    for (const int row : mailbox.List().RowsOf(ids)) {
        const QModelIndex last = model->index(row - 1, model->columnCount() - 1);
        if (!rows.isEmpty() && rows.last().bottom() == row - 2)
            rows.last() = QItemSelectionRange(rows.last().topLeft(), last);
        else
            rows.select(model->index(row - 1, 0), last);
    }
    return rows;
}

void ListPane::TakeSelection()
{
    if (bFollowing)
        return;
    QStringList ids;
    for (const int row : SelectedRows()) {
        if (const QString id = mailbox.List().Row(row + 1).ID(); !id.isEmpty())
            ids.append(id);
    }
    const QString current = grdFaxList->currentIndex().data(KeyRole).toString();
    mailbox.SelectFaxes(ids, ids.contains(current) ? current : ids.value(0));
}

QItemSelection ListPane::AllRows() const
{
    return {model->index(0, 0), model->index(model->rowCount() - 1, model->columnCount() - 1)};
}

/// The view would look at each row.
void ListPane::SelectAll()
{
    grdFaxList->selectionModel()->select(AllRows(), QItemSelectionModel::ClearAndSelect);
}

void ListPane::ReverseSelection()
{
    grdFaxList->selectionModel()->select(AllRows(), QItemSelectionModel::Toggle);
}

// The icon of unread faxes

void ListPane::HoverOver(int row)
{
    mailbox.List().SetHoveredRow(row > 0 && !mailbox.List().Row(row).bRead ? row : 0);
}

/// A click with Ctrl or Shift selects, and that is all.
void ListPane::ClickCell(const QModelIndex &index)
{
    if (index.column() == colIsReaded - 1 && QGuiApplication::keyboardModifiers() == Qt::NoModifier)
        mailbox.Marks().ClickReadIcon(index.row() + 1);
}
