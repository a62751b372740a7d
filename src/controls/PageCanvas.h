#pragma once

#include "controls/PageGeometry.h"
#include "controls/PagePainter.h"
#include "core/FaxImage.h"

#include <QAbstractScrollArea>
#include <QString>

/// Shows one page of a fax. The left button drags it, the wheel scrolls it and, with Ctrl, zooms around the
/// cursor; the arrow and page keys, "+" and "-" do the same.
class PageCanvas final : public QAbstractScrollArea
{
    Q_OBJECT
    Q_PROPERTY(double ZValue READ ZValue WRITE SetZValue)
    Q_PROPERTY(bool ZAutoFit READ ZAutoFit WRITE SetZAutoFit)
    Q_PROPERTY(double ZMovAcc READ ZMovAcc WRITE SetZMovAcc)
    Q_PROPERTY(int FitMode READ FitMode WRITE SetFitMode)
    Q_PROPERTY(int ZMethod READ ZMethod WRITE SetZMethod)

public:
    /// How an enlarged page is drawn: with hard pixels, or with smooth ones. A page made smaller is always
    /// averaged: thin strokes would get lost otherwise.
    enum StretchMethod { ColorOnColor = 3, Halftone = 4 };
    using Fit = PageGeometry::Fit;

    explicit PageCanvas(QWidget *parent = nullptr);

    /// Shows a page, each pixel stretched by whole factors, from its top left when `keepView` is false.
    void SetPage(const PageBits &shownPage, bool stretchX, bool stretchY, bool keepView);
    /// Gives the memory of the page back; one of the two others follows before anything is drawn.
    void DropPage();
    /// Drops the page and shows a text in its place.
    void Clear(const QString &notice);
    bool HasPage() const { return !page.IsEmpty(); }

    double ZValue() const { return geometry.Zoom(); }
    /// Zooms around the middle of the view.
    void SetZValue(double zoom);
    bool ZAutoFit() const { return bAutoFit; }
    /// On: the zoom follows the size of the view.
    void SetZAutoFit(bool autoFit);
    double ZMovAcc() const { return dMoveFactor; }
    void SetZMovAcc(double factor) { dMoveFactor = factor; }
    int FitMode() const { return lFitMode; }
    void SetFitMode(int mode) { lFitMode = mode; }
    int ZMethod() const { return lMethod; }
    void SetZMethod(int method);
    void FitToView();

    // What the user does; it ends the fitting
    void ZoomIn();
    void ZoomOut();

    /// Of the view in the page, in pixels of the widget.
    double OffsetX() const { return geometry.Offset().x(); }
    double OffsetY() const { return geometry.Offset().y(); }
    void ScrollToEnd();
    /// Place of the page in the view, for the present zoom.
    QRectF PageRect() const { return geometry.PageRect(); }

    QSize sizeHint() const override { return {400, 300}; }

signals:
    /// The user zoomed by wheel, key or command.
    void ZoomedByUser();
    void PageUpRequested();   ///< beyond the top of the page
    void PageDownRequested(); ///< beyond its end
    void ViewRequested();     ///< by a double click
    /// The right button was released, or the menu key pressed, at a place on the screen.
    void MenuRequested(const QPoint &place);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void TakeSpace();
    void ShowGeometry();
    void ScrollBy(const QPointF &delta);
    void ScrollPageBy(double delta);
    void ZoomByUser(const QPointF &place, double factor);
    QPointF Middle() const;
    void PaintSurroundings(QPainter &painter);
    void ShowCursor();

    PageBits page;
    bool bStretchX = false;
    bool bStretchY = false;
    QString strNotice;
    PageGeometry geometry;
    double dMoveFactor = 1.0;
    int lFitMode = PageGeometry::FitWhole;
    int lMethod = Halftone;
    bool bAutoFit = false;
    PagePainter pagePainter{true};
    QPoint lastDragPlace;
    bool bDragging = false;
    bool bShowingGeometry = false;
};
