#pragma once

#include <QPointer>
#include <QSplitter>
#include <QSplitterHandle>

/// A splitter between two panes. A strip shows where the border would go while it is dragged; the panes move
/// as it is let go. Both panes keep 2000 twips, or 500 of their height where there is no room for that.
class PaneSplitter final : public QSplitter
{
    Q_OBJECT

public:
    explicit PaneSplitter(QWidget *parent = nullptr);

    /// What each pane keeps, in pixels.
    int Clearance() const;
    /// The place nearest to `position`, in pixels from the edge, at which the border may stand.
    int KeepClear(int position) const;
    /// Gives the border to the arrow keys; Return and Escape give the keyboard back. False while there is no
    /// border to move.
    bool TakeKeyboard();

protected:
    QSplitterHandle *createHandle() override;
    void resizeEvent(QResizeEvent *event) override;

private:
    int Room() const;
};
