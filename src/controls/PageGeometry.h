#pragma once

#include <QPointF>
#include <QRectF>
#include <QSize>
#include <QSizeF>

/// Where a page lies in a view: zoom, fit, scroll position, and which scroll bars that takes. All lengths are
/// pixels of the widget; a page of none has the size 0.
class PageGeometry final
{
public:
    enum Fit { FitWhole = 0, FitWidth = 1, FitHeight = 2 };

    /// The page's size at zoom 1.
    void SetPage(const QSizeF &size);
    const QSizeF &Page() const { return page; }
    /// What is fitted in place of the page, of which it is a part; an empty size stands for the page itself.
    void SetFitted(const QSizeF &size) { fitted = size; }
    /// What page and scroll bars have together, and how wide a bar is.
    void SetSpace(const QSize &size, int widthOfBar);

    double Zoom() const { return dZoom; }
    /// Zooms, within the bounds, so that what lies at `place` of the view stays there.
    void ZoomAround(const QPointF &place, double zoom);
    /// Fits the page; the part on show stays on show.
    void FitToView(Fit fit);

    bool HasBarX() const { return bBarX; }
    bool HasBarY() const { return bBarY; }
    /// The space without the bars.
    QSizeF View() const;
    /// The page in the view; centred where it is smaller.
    QRectF PageRect() const;
    bool CanScroll() const { return bBarX || bBarY; }

    /// Of the view in the page.
    const QPointF &Offset() const { return offset; }
    /// The offset of the page's end.
    QPointF LastOffset() const;
    /// Scrolls as far as the page goes.
    void ScrollTo(const QPointF &place);

private:
    double FitZoom(Fit fit) const;
    double MostZoom() const;
    void PlaceBars();

    QSizeF page{0, 0};
    QSizeF fitted;
    QSizeF space{0, 0};
    double dBar = 0;
    double dZoom = 1.0;
    QPointF offset;
    bool bBarX = false;
    bool bBarY = false;
};
