#pragma once

#include "controls/PageGeometry.h"

#include <QAbstractScrollArea>
#include <QString>

/// A sheet of paper in a scrolled view. The left button drags it, the wheel scrolls it and, with Ctrl, zooms
/// around the cursor; the arrow keys, "+" and "-" do the same. What the sheet shows is its heirs' matter.
class SheetView : public QAbstractScrollArea
{
    Q_OBJECT

public:
    explicit SheetView(QWidget *parent);

    // What the user does; it ends the fitting
    virtual void ZoomIn();
    virtual void ZoomOut();

    /// Of the view in the sheet, in pixels of the widget.
    double OffsetX() const { return geometry.Offset().x(); }
    double OffsetY() const { return geometry.Offset().y(); }

signals:
    /// The user zoomed by wheel, key or command.
    void ZoomedByUser();
    /// The right button was released, or the menu key pressed, at a place on the screen.
    void MenuRequested(const QPoint &place);

protected:
    virtual bool HasSheet() const = 0;
    /// Fits the sheet, where that is wanted: it or the view has another size.
    virtual void Fit() = 0;
    /// The user wants a zoom of their own.
    virtual void EndFit() = 0;
    /// Called after each scrolling and zooming.
    virtual void OnMoved() {}

    /// Sheet or view have another size.
    void TakeSpace();
    /// To be called whenever the geometry has changed: shows it in the scroll bars and draws anew.
    void ShowGeometry();
    void ScrollTo(const QPointF &place);
    void ScrollBy(const QPointF &delta) { ScrollTo(geometry.Offset() + delta); }
    /// Zooms so that what lies at `place` of the view stays there.
    void ZoomByUser(const QPointF &place, double zoom);
    QPointF Middle() const;
    /// The view without a sheet: a text, drawn as it stands.
    void PaintNotice(QPainter &painter, const QString &notice) const;
    /// To be drawn last. A full screen has nothing else that could have the keyboard.
    void PaintFocus(QPainter &painter) const;

    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void changeEvent(QEvent *event) override;

    PageGeometry geometry; ///< of the sheet
    double dMoveFactor = 1.0;

private:
    void ShowCursor();

    QPoint lastDragPlace;
    bool bDragging = false;
    bool bShowingGeometry = false;
};
