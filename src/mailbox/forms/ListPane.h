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

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

signals:
    /// A double click or Return on a fax.
    void ViewRequested();
    /// The right button, or the menu key, at a place on the screen.
    void MenuRequested(const QPoint &place);

private:
    void SetUpGrid();
    void BeginReset();
    void ShowColumns();
    void ShowTip();
    void ShowHint();
    void FollowMailbox(int row);
    void TakeSelection();
    void ClickCell(const QModelIndex &index);
    void HoverOver(const QPoint &place);

    ShownMailbox &mailbox;
    FaxListModel *model;
    QLabel *labFolderTip;
    HintedTreeView *grdFaxList;
    QHash<int, QList<int>> widths; ///< of the columns, by layout, as the user has left them
    int lShownLayout = -1;
    bool bFollowing = false;
};
