#pragma once

#include "core/FaxImage.h"

#include <QImage>
#include <QPixmap>
#include <QPointF>
#include <QString>
#include <QWidget>

/// Shows one page of a fax. The left button drags it, the wheel scrolls it and, with Ctrl, zooms around the
/// cursor; so do the arrow keys, "+" and "-".
class PageCanvas final : public QWidget
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
    enum Fit { FitWhole = 0, FitWidth = 1, FitHeight = 2 };

    explicit PageCanvas(QWidget *parent = nullptr);

    /// Shows a page, each pixel stretched by whole factors, at the top left when `keepView` is false.
    void SetPage(const PageBits &shownPage, bool stretchX, bool stretchY, bool keepView);
    /// Drops the page and shows a text in its place.
    void Clear(const QString &notice);
    bool HasPage() const { return !page.IsEmpty(); }

    double ZValue() const { return dZoom; }
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

    /// Offsets of the view in the page, in pixels of the screen.
    QPointF Offset() const { return offset; }
    /// Place of the page in the widget, for the present zoom.
    QRectF PageRect() const;

    QSize sizeHint() const override { return {400, 300}; }

signals:
    /// The user zoomed by wheel or key.
    void ZoomedByUser();
    void PageUpRequested();
    void PageDownRequested();
    void ViewRequested(); ///< by a double click

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    QSizeF PageSize() const;
    void ScrollBy(const QPointF &delta);
    void ScrollPageBy(double delta);
    void ZoomAround(const QPointF &place, double zoom);
    void ZoomByUser(const QPointF &place, double factor);
    void ClampOffset();
    void PaintPage(QPainter &painter, const QRectF &visible);
    const QPixmap &ScaledPage(const QSize &size);
    void ShowCursor();

    PageBits page;
    bool bStretchX = false;
    bool bStretchY = false;
    QString strNotice;
    QImage picture;     ///< the page in its own size, made when it is first enlarged
    QPixmap scaledPage; ///< the page made smaller for the present zoom
    double dZoom = 1.0;
    double dMoveFactor = 1.0;
    int lFitMode = FitWhole;
    int lMethod = Halftone;
    bool bAutoFit = false;
    QPointF offset;
    QPoint lastDragPlace;
    bool bDragging = false;
};
