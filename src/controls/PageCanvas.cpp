#include "controls/PageCanvas.h"

#include "controls/Colors.h"
#include "controls/PageScaler.h"

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QResizeEvent>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr double dSmallestZoom = 0.02;
constexpr double dLargestZoom = 8.0;
constexpr double dZoomStep = 1.2;
constexpr double dLinePixels = 40.0;
constexpr int lMargin = 8;

} // namespace

PageCanvas::PageCanvas(QWidget *parent)
    : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(120, 80);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void PageCanvas::SetPage(const PageBits &shownPage, bool stretchX, bool stretchY, bool keepView)
{
    page = shownPage;
    bStretchX = stretchX;
    bStretchY = stretchY;
    picture = {};
    scaledPage = {};
    strNotice.clear();
    if (!keepView)
        offset = {};
    if (bAutoFit)
        FitToView();
    ClampOffset();
    ShowCursor();
    update();
}

void PageCanvas::Clear(const QString &notice)
{
    page = {};
    picture = {};
    scaledPage = {};
    strNotice = notice;
    offset = {};
    ShowCursor();
    update();
}

QSizeF PageCanvas::PageSize() const
{
    return {page.lWidth * (bStretchX ? 2.0 : 1.0), page.lHeight * (bStretchY ? 2.0 : 1.0)};
}

QRectF PageCanvas::PageRect() const
{
    const QSizeF size = PageSize() * dZoom;
    const double x = size.width() < width() ? std::floor((width() - size.width()) / 2) : -offset.x();
    const double y = size.height() < height() ? std::floor((height() - size.height()) / 2) : -offset.y();
    return {QPointF(x, y), size};
}

// Zoom

void PageCanvas::FitToView()
{
    const QSizeF size = PageSize();
    if (size.isEmpty())
        return;
    const double zoomX = std::max(1, width() - 2 * lMargin) / size.width();
    const double zoomY = std::max(1, height() - 2 * lMargin) / size.height();
    const double zoom = lFitMode == FitWidth ? zoomX : lFitMode == FitHeight ? zoomY : std::min(zoomX, zoomY);
    const double place = dZoom > 0 ? offset.y() / dZoom : 0;
    dZoom = zoom > 0 ? zoom : 1.0;
    offset = {0, place * dZoom};
    ClampOffset();
    update();
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
    update();
}

void PageCanvas::SetZValue(double zoom)
{
    ZoomAround(QPointF(width() / 2.0, height() / 2.0), zoom);
}

void PageCanvas::ZoomAround(const QPointF &place, double zoom)
{
    const QPointF inPage = (place - PageRect().topLeft()) / dZoom;
    dZoom = std::clamp(zoom, dSmallestZoom, dLargestZoom);
    offset = inPage * dZoom - place;
    ClampOffset();
    ShowCursor();
    update();
}

void PageCanvas::ZoomByUser(const QPointF &place, double factor)
{
    if (!HasPage())
        return;
    bAutoFit = false;
    ZoomAround(place, dZoom * factor);
    emit ZoomedByUser();
}

void PageCanvas::ClampOffset()
{
    const QSizeF size = PageSize() * dZoom;
    offset.setX(std::max(0.0, std::min(offset.x(), size.width() - width())));
    offset.setY(std::max(0.0, std::min(offset.y(), size.height() - height())));
}

void PageCanvas::ScrollBy(const QPointF &delta)
{
    offset += delta;
    ClampOffset();
    update();
}

/// Down or up by most of a view; at the end of the page, to the next one.
void PageCanvas::ScrollPageBy(double delta)
{
    const QPointF before = offset;
    ScrollBy({0, delta * height() * 0.9});
    if (offset == before && delta > 0)
        emit PageDownRequested();
    else if (offset == before)
        emit PageUpRequested();
}

// Painting

void PageCanvas::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(HasPage() ? QPalette::Mid : QPalette::Base));
    if (HasPage()) {
        const QRectF place = PageRect();
        painter.fillRect(place.adjusted(-1, -1, 1, 1), palette().color(QPalette::Dark));
        PaintPage(painter, place.intersected(rect()));
    } else {
        painter.setPen(GetHintColor(palette()));
        painter.drawText(rect().adjusted(20, 20, -20, -20), Qt::AlignCenter | Qt::TextWordWrap, strNotice);
    }
    if (hasFocus()) {
        painter.setPen(palette().color(QPalette::Highlight));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
}

void PageCanvas::PaintPage(QPainter &painter, const QRectF &visible)
{
    const QRectF place = PageRect();
    const double ratio = devicePixelRatioF();
    const QSize deviceSize = (place.size() * ratio).toSize().expandedTo({1, 1});
    if (deviceSize.width() < page.lWidth || deviceSize.height() < page.lHeight) {
        // Whole device pixels, or the averaged page would be averaged a second time.
        const QPointF corner((place.topLeft() * ratio).toPoint());
        const QPixmap &scaled = ScaledPage(deviceSize);
        painter.drawPixmap(QRectF(corner / ratio, QSizeF(deviceSize) / ratio), scaled, QRectF(scaled.rect()));
        return;
    }
    if (picture.isNull())
        picture = PageScaler::ToImage(page);
    const double scaleX = page.lWidth / place.width();
    const double scaleY = page.lHeight / place.height();
    const QRectF source((visible.x() - place.x()) * scaleX, (visible.y() - place.y()) * scaleY,
                        visible.width() * scaleX, visible.height() * scaleY);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, lMethod == Halftone);
    painter.drawImage(visible, picture, source);
}

const QPixmap &PageCanvas::ScaledPage(const QSize &size)
{
    if (scaledPage.size() != size)
        scaledPage = QPixmap::fromImage(PageScaler::Shrink(page, size));
    return scaledPage;
}

void PageCanvas::resizeEvent(QResizeEvent *)
{
    if (bAutoFit)
        FitToView();
    ClampOffset();
    ShowCursor();
}

void PageCanvas::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    update();
}

// Mouse and keys

void PageCanvas::ShowCursor()
{
    const QSizeF size = PageSize() * dZoom;
    const bool canMove = HasPage() && (size.width() > width() || size.height() > height());
    if (!canMove)
        unsetCursor();
    else
        setCursor(bDragging ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
}

void PageCanvas::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    bDragging = true;
    lastDragPlace = event->pos();
    ShowCursor();
}

void PageCanvas::mouseMoveEvent(QMouseEvent *event)
{
    if (!bDragging)
        return;
    const QPointF moved = event->pos() - lastDragPlace;
    lastDragPlace = event->pos();
    ScrollBy(-moved * dMoveFactor);
}

void PageCanvas::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    bDragging = false;
    ShowCursor();
}

void PageCanvas::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && HasPage())
        emit ViewRequested();
}

void PageCanvas::wheelEvent(QWheelEvent *event)
{
    const QPointF turns = QPointF(event->angleDelta()) / 120.0;
    if (event->modifiers().testFlag(Qt::ControlModifier)) {
        ZoomByUser(event->position(), std::pow(dZoomStep, turns.y()));
    } else {
        const QPointF pixels(event->pixelDelta());
        const QPointF delta = pixels.isNull() ? turns * 3 * dLinePixels : pixels;
        const bool isSideways = event->modifiers().testFlag(Qt::ShiftModifier);
        ScrollBy(isSideways ? QPointF(-delta.y(), 0) : -delta);
    }
    event->accept();
}

void PageCanvas::keyPressEvent(QKeyEvent *event)
{
    const QPointF middle(width() / 2.0, height() / 2.0);
    switch (event->key()) {
    case Qt::Key_Left:
        return ScrollBy({-dLinePixels, 0});
    case Qt::Key_Right:
        return ScrollBy({dLinePixels, 0});
    case Qt::Key_Up:
        return ScrollBy({0, -dLinePixels});
    case Qt::Key_Down:
        return ScrollBy({0, dLinePixels});
    case Qt::Key_PageUp:
        return ScrollPageBy(-1);
    case Qt::Key_PageDown:
    case Qt::Key_Space:
        return ScrollPageBy(1);
    case Qt::Key_Home:
        return ScrollBy({0, -PageSize().height() * dZoom});
    case Qt::Key_End:
        return ScrollBy({0, PageSize().height() * dZoom});
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        return ZoomByUser(middle, dZoomStep);
    case Qt::Key_Minus:
        return ZoomByUser(middle, 1 / dZoomStep);
    default:
        event->ignore();
    }
}
