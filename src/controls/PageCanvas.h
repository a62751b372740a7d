#pragma once

#include "controls/PagePainter.h"
#include "controls/SheetView.h"
#include "core/FaxImage.h"

#include <QString>

/// Shows one page of a fax.
class PageCanvas final : public SheetView
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

    void ScrollToEnd();
    /// The place of the page in the middle of the view, in parts of the page's sides, from 0 to 1.
    QPointF PartInMiddle() const;
    void ScrollPartToMiddle(const QPointF &part);
    /// Place of the page in the view, for the present zoom.
    QRectF PageRect() const { return geometry.PageRect(); }

    QSize sizeHint() const override { return {400, 300}; }

signals:
    void PageUpRequested();   ///< beyond the top of the page
    void PageDownRequested(); ///< beyond its end
    void ViewRequested();     ///< by a double click

protected:
    bool HasSheet() const override { return HasPage(); }
    void Fit() override;
    void EndFit() override { bAutoFit = false; }
    void paintEvent(QPaintEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void ScrollPageBy(double delta);
    void PaintSurroundings(QPainter &painter);

    PageBits page;
    bool bStretchX = false;
    bool bStretchY = false;
    QString strNotice;
    int lFitMode = PageGeometry::FitWhole;
    int lMethod = Halftone;
    bool bAutoFit = false;
    PagePainter pagePainter{true};
};
