#pragma once

#include <QString>
#include <QTreeView>

/// A tree or list that says, while it is empty, why it is and what to do.
class HintedTreeView : public QTreeView
{
    Q_OBJECT

public:
    explicit HintedTreeView(QWidget *parent = nullptr);

    const QString &Hint() const { return strHint; }
    void SetHint(const QString &hint);

    /// A list without branches never scrolls sideways to show a cell: its rows count as wholes.
    void scrollTo(const QModelIndex &index, ScrollHint hint = EnsureVisible) override;

protected:
    /// Only the view that has the keyboard shows its selection in full colour.
    void initViewItemOption(QStyleOptionViewItem *option) const override;
    /// Shift+F10 asks for the menu, as the menu key does, which many keyboards lack.
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QString strHint;
};
