#include "mailbox/forms/ListPane.h"

#include "controls/HintedTreeView.h"
#include "controls/MarkedDelegate.h"
#include "controls/MarkedHeader.h"
#include "core/ModelRoles.h"
#include "mailbox/FaxListModel.h"
#include "mailbox/ShownMailbox.h"

#include <QItemSelectionModel>
#include <QLabel>
#include <QLocale>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QVBoxLayout>

#include <algorithm>

ListPane::ListPane(ShownMailbox &shownMailbox, QWidget *parent)
    : QWidget(parent)
    , mailbox(shownMailbox)
    , model(new FaxListModel(shownMailbox.List(), this))
    , labFolderTip(new QLabel(this))
    , grdFaxList(new HintedTreeView(this))
{
    labFolderTip->setObjectName("labFolderTip");
    labFolderTip->setTextFormat(Qt::PlainText);
    QFont font = labFolderTip->font();
    font.setBold(true);
    labFolderTip->setFont(font);
    labFolderTip->setMargin(4);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(labFolderTip);
    layout->addWidget(grdFaxList);
    SetUpGrid();
    connect(&mailbox, &ShownMailbox::DatesChanged, this, &ListPane::ShowTip);
    connect(&mailbox, &ShownMailbox::CommandsChanged, this, &ListPane::ShowHint);
    connect(&mailbox, &ShownMailbox::RowSelected, this, &ListPane::FollowMailbox);
    ShowColumns();
    ShowTip();
    ShowHint();
}

void ListPane::SetUpGrid()
{
    grdFaxList->setObjectName("grdFaxList");
    grdFaxList->setAccessibleName(tr("Faxes"));
    grdFaxList->setHeader(new MarkedHeader(grdFaxList));
    grdFaxList->setRootIsDecorated(false);
    grdFaxList->setAllColumnsShowFocus(true);
    grdFaxList->setSelectionMode(QAbstractItemView::ExtendedSelection);
    grdFaxList->setItemDelegate(new MarkedDelegate(grdFaxList));
    connect(&mailbox.List(), &FaxList::AboutToReset, this, &ListPane::BeginReset);
    grdFaxList->setModel(model);
    connect(&mailbox.List(), &FaxList::Reset, this, &ListPane::ShowColumns);
    connect(grdFaxList->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ListPane::TakeSelection);
    connect(grdFaxList, &QAbstractItemView::activated, this, &ListPane::ViewRequested);
    connect(grdFaxList, &QAbstractItemView::clicked, this, &ListPane::ClickCell);
    connect(grdFaxList->header(), &QHeaderView::sectionClicked, this,
            [this](int section) { mailbox.List().SortBy(section + 1); });
    grdFaxList->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(grdFaxList, &QWidget::customContextMenuRequested, this,
            [this](const QPoint &place) { emit MenuRequested(grdFaxList->viewport()->mapToGlobal(place)); });
    grdFaxList->setMouseTracking(true);
    grdFaxList->viewport()->installEventFilter(this);
}

// Columns

/// The layout is about to go: its widths are kept for the next folder of this kind.
void ListPane::BeginReset()
{
    if (lShownLayout < 0)
        return;
    QList<int> &kept = widths[lShownLayout];
    kept.clear();
    for (int i = 0; i < grdFaxList->header()->count(); ++i)
        kept.append(grdFaxList->columnWidth(i));
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
    for (int i = 0; i < list.Columns().size(); ++i) {
        const FaxColumn &column = list.Columns().at(i);
        header->setSectionHidden(i, column.IsHidden());
        if (!column.IsHidden())
            header->resizeSection(i, kept.value(i, column.lWidth * logicalDpiX() / 96));
    }
}

// Texts

void ListPane::ShowTip()
{
    labFolderTip->setText(mailbox.labFolderTip().trimmed().replace("  ", "  ·  "));
}

void ListPane::ShowHint()
{
    const DateFilter &dates = mailbox.Dates();
    const auto day = [](QDate date) { return QLocale().toString(date, QLocale::ShortFormat); };
    if (!mailbox.SelectedNode())
        grdFaxList->SetHint(tr("Choose a folder to see its faxes."));
    else if (dates.FirstDay().isValid())
        grdFaxList->SetHint(
            tr("No faxes in this folder from %1 to %2.\nChoose \"All faxes\" above to see the others.")
                .arg(day(dates.FirstDay()), day(dates.LastDay())));
    else if (mailbox.SelectedNode()->Family == FolderFamily::Received)
        grdFaxList->SetHint(tr("No faxes in this folder.\nPress F9 to fetch new ones from the server."));
    else
        grdFaxList->SetHint(tr("No faxes in this folder."));
}

// Selection

void ListPane::FollowMailbox(int row)
{
    const QScopedValueRollback<bool> following(bFollowing, true);
    const QModelIndex index = model->index(row - 1, colFirstText - 1); // typing searches the current column
    if (!index.isValid()) {
        grdFaxList->selectionModel()->clear();
        return;
    }
    if (!grdFaxList->selectionModel()->isRowSelected(row - 1))
        grdFaxList->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect |
                                                                 QItemSelectionModel::Rows);
    grdFaxList->scrollTo(index);
}

void ListPane::TakeSelection()
{
    if (bFollowing)
        return;
    QModelIndexList rows = grdFaxList->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    QStringList ids;
    for (const QModelIndex &index : rows) {
        if (const QString id = index.data(KeyRole).toString(); !id.isEmpty())
            ids.append(id);
    }
    const QString current = grdFaxList->currentIndex().data(KeyRole).toString();
    mailbox.SelectFaxes(ids, ids.contains(current) ? current : ids.value(0));
}

void ListPane::SelectAll()
{
    grdFaxList->selectAll();
}

void ListPane::ReverseSelection()
{
    const QItemSelection all(model->index(0, 0),
                             model->index(model->rowCount() - 1, model->columnCount() - 1));
    grdFaxList->selectionModel()->select(all, QItemSelectionModel::Toggle);
}

// The icon of unread faxes

bool ListPane::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseMove)
        HoverOver(static_cast<QMouseEvent *>(event)->pos());
    else if (event->type() == QEvent::Leave)
        mailbox.List().SetHoveredRow(0);
    return QWidget::eventFilter(watched, event);
}

void ListPane::HoverOver(const QPoint &place)
{
    const QModelIndex index = grdFaxList->indexAt(place);
    const bool isIcon = index.isValid() && index.column() == colIsReaded - 1;
    const int row = isIcon ? index.row() + 1 : 0;
    mailbox.List().SetHoveredRow(row > 0 && !mailbox.List().Row(row).bRead ? row : 0);
}

void ListPane::ClickCell(const QModelIndex &index)
{
    if (index.column() == colIsReaded - 1)
        mailbox.Marks().ClickReadIcon(index.row() + 1);
}
