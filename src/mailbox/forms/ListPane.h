#pragma once

#include "mailbox/FaxColumnWidths.h"

#include <QItemSelection>
#include <QWidget>

class FaxGrid;
class FaxListModel;
class QLabel;
class QMenu;
class ShownMailbox;

/// The fax list: the folder's name over `grdFaxList`.
class ListPane final : public QWidget
{
    Q_OBJECT

public:
    explicit ListPane(ShownMailbox &mailbox, QWidget *parent = nullptr);

    FaxGrid &Grid() const { return *grdFaxList; }
    /// The columns to sort by, for those who have no pointer to click on a header.
    QMenu &SortMenu() const { return *sortMenu; }
    void SelectAll();
    void ReverseSelection();

    /// The widths of the columns as the user has left them.
    FaxColumnWidths Widths();
    void SetWidths(const FaxColumnWidths &widths);

signals:
    /// A double click or Return on a fax.
    void ViewRequested();
    /// The right button, or the menu key, at a place on the screen.
    void MenuRequested(const QPoint &place);

private:
    void SetUpGrid();
    void KeepWidths();
    void ShowColumns();
    void FillSortMenu();
    void Sort(int column);
    void ShowTip();
    void ShowHint();
    QString WhyEmpty() const;
    /// Rows of the view, from 0, in their order.
    QList<int> SelectedRows() const;
    QItemSelection AllRows() const;
    QItemSelection RowsOf(const QStringList &ids) const;
    void FollowMailbox(int row);
    void TakeSelection();
    void ClickCell(const QModelIndex &index);
    void HoverOver(int row);

    ShownMailbox &mailbox;
    FaxListModel *model;
    QLabel *labFolderTip;
    FaxGrid *grdFaxList;
    QMenu *sortMenu;
    FaxColumnWidths widths; ///< of the layouts shown before
    int lShownLayout = -1;
    bool bFollowing = false;
};
