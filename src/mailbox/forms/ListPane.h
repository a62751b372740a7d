#pragma once

#include <QHash>
#include <QList>
#include <QWidget>

class FaxListModel;
class HintedTreeView;
class QLabel;
class ShownMailbox;

/// The fax list: the folder's name over `grdFaxList`.
class ListPane final : public QWidget
{
    Q_OBJECT

public:
    explicit ListPane(ShownMailbox &mailbox, QWidget *parent = nullptr);

    HintedTreeView &Grid() const { return *grdFaxList; }
    void SelectAll();
    void ReverseSelection();

signals:
    /// A double click or Return on a fax.
    void ViewRequested();

private:
    void SetUpGrid();
    void BeginReset();
    void ShowColumns();
    void ShowTip();
    void ShowHint();
    void FollowMailbox(int row);
    void TakeSelection();

    ShownMailbox &mailbox;
    FaxListModel *model;
    QLabel *labFolderTip;
    HintedTreeView *grdFaxList;
    QHash<int, QList<int>> widths; ///< of the columns, by layout, as the user has left them
    int lShownLayout = -1;
    bool bFollowing = false;
};
