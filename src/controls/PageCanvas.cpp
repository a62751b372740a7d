#include "controls/PageCanvas.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace {

constexpr double dMostOfView = 0.9;

} // namespace

PageCanvas::PageCanvas(QWidget *parent)
    : SheetView(parent)
{
}

void PageCanvas::SetPage(const PageBits &shownPage, bool stretchX, bool stretchY, bool keepView)
{
    page = shownPage;
    bStretchX = stretchX;
    bStretchY = stretchY;
    pagePainter.Forget();
    geometry.SetPage({page.lWidth * (bStretchX ? 2.0 : 1.0), page.lHeight * (bStretchY ? 2.0 : 1.0)});
    if (!keepView)
        geometry.ScrollTo({});
    TakeSpace();
}

void PageCanvas::DropPage()
{
    page = {};
    pagePainter.Forget();
}

void PageCanvas::Clear(const QString &notice)
{
    DropPage();
    strNotice = notice;
    setAccessibleDescription(notice);
    geometry.SetPage({0, 0});
    ShowGeometry();
}

// Zoom

/// Fits only where it is wanted: this runs whenever page or view have another size.
void PageCanvas::Fit()
{
    if (bAutoFit)
        geometry.FitToView(static_cast<PageGeometry::Fit>(lFitMode));
}

void PageCanvas::FitToView()
{
    geometry.FitToView(static_cast<PageGeometry::Fit>(lFitMode));
    ShowGeometry();
}

void PageCanvas::SetZAutoFit(bool autoFit)
{
    bAutoFit = autoFit;
    if (bAutoFit)
        FitToView();
}

void PageCanvas::SetZMethod(int method)
{
    lMethod = method;
    viewport()->update();
}

void PageCanvas::SetZValue(double zoom)
{
    geometry.ZoomAround(Middle(), zoom);
    ShowGeometry();
}

// Scrolling

/// Down or up by most of a view; at the end of the page, to the next one.
void PageCanvas::ScrollPageBy(double delta)
{
    const QPointF before = geometry.Offset();
    ScrollBy({0, delta * geometry.View().height() * dMostOfView});
    if (geometry.Offset() == before && delta > 0)
        emit PageDownRequested();
    else if (geometry.Offset() == before)
        emit PageUpRequested();
}

void PageCanvas::ScrollToEnd()
{
    ScrollTo({OffsetX(), geometry.LastOffset().y()});
}

QPointF PageCanvas::PartInMiddle() const
{
    const QRectF shown = PageRect();
    if (shown.isEmpty())
        return {};
    const QPointF place = Middle() - shown.topLeft();
    return {place.x() / shown.width(), place.y() / shown.height()};
}

void PageCanvas::ScrollPartToMiddle(const QPointF &part)
{
    const QSizeF size = PageRect().size();
    ScrollTo(QPointF(part.x() * size.width(), part.y() * size.height()) - Middle());
}

// Painting

void PageCanvas::paintEvent(QPaintEvent *)
{
    QPainter painter(viewport());
    if (HasPage()) {
        PaintSurroundings(painter);
        pagePainter.Paint(painter, page, PageRect(), viewport()->rect(), lMethod == Halftone);
    } else {
        PaintNotice(painter, strNotice);
    }
    PaintFocus(painter);
}

/// Under the page's edge, which may lie between two pixels, but not under all of it.
void PageCanvas::PaintSurroundings(QPainter &painter)
{
    const QRect place = PageRect().toRect();
    const QRegion frame = place.adjusted(-1, -1, 1, 1);
    for (const QRect &part : QRegion(viewport()->rect()) - frame)
        painter.fillRect(part, palette().color(QPalette::Mid));
    for (const QRect &part : frame - place.adjusted(1, 1, -1, -1))
        painter.fillRect(part, palette().color(QPalette::Dark));
}

// Mouse and keys

void PageCanvas::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        emit ViewRequested();
}

void PageCanvas::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_PageUp:
        return ScrollPageBy(-1);
    case Qt::Key_PageDown:
        return ScrollPageBy(1);
    case Qt::Key_Space:
        return ScrollPageBy(event->modifiers().testFlag(Qt::ShiftModifier) ? -1 : 1);
    case Qt::Key_Home:
        return ScrollBy(-geometry.LastOffset());
    case Qt::Key_End:
        return ScrollToEnd();
    default:
        SheetView::keyPressEvent(event);
    }
}
