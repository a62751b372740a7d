#pragma once

#include "controls/HintedTreeView.h"

#include <QElapsedTimer>

/// The grid of the fax list under mouse and keyboard. Rows count from 1, as in `FaxList`.
class FaxGrid final : public HintedTreeView
{
    Q_OBJECT

public:
    using HintedTreeView::HintedTreeView;

    /// Typing searches the current column, or the first one with text. Letters that are commands stay so,
    /// unless a search is under way.
    void keyboardSearch(const QString &search) override;

signals:
    /// A double click, or Return, on a row.
    void OpenRequested();
    /// The right button, or the menu key; a place on the screen.
    void MenuRequested(const QPoint &place);
    /// The pointer moved over the icon of the row's read state; 0 when it is over none.
    void IconHovered(int row);

protected:
    bool event(QEvent *event) override;
    bool viewportEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    bool IsSearching() const;
    int RowOfIcon(const QPoint &place) const;
    QPoint PlaceOfCurrentRow() const;

    QElapsedTimer sinceTyped;
};
