#include "controls/PageCanvas.h"

#include "controls/Colors.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStyle>
#include <QWheelEvent>

#include <cmath>

namespace {

constexpr double dZoomStep = 1.2;
constexpr double dLinePixels = 40.0;
constexpr double dMostOfView = 0.9;

void ShowInBar(QScrollBar &bar, double last, double view, double offset)
{
    bar.setRange(0, static_cast<int>(std::ceil(last)));
    bar.setPageStep(static_cast<int>(view));
    bar.setSingleStep(static_cast<int>(dLinePixels));
    bar.setValue(static_cast<int>(std::lround(offset)));
}

} // namespace

PageCanvas::PageCanvas(QWidget *parent)
    : QAbstractScrollArea(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(120, 80);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    horizontalScrollBar()->setAccessibleName(tr("Place across the page"));
    verticalScrollBar()->setAccessibleName(tr("Place down the page"));
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
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
void PageCanvas::TakeSpace()
{
    const int spacing = style()->pixelMetric(QStyle::PM_ScrollView_ScrollBarSpacing, nullptr, this);
    geometry.SetSpace(contentsRect().size(), verticalScrollBar()->sizeHint().width() + spacing);
    if (bAutoFit)
        geometry.FitToView(static_cast<Fit>(lFitMode));
    ShowGeometry();
}

void PageCanvas::FitToView()
{
    geometry.FitToView(static_cast<Fit>(lFitMode));
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

QPointF PageCanvas::Middle() const
{
    return {geometry.View().width() / 2, geometry.View().height() / 2};
}

void PageCanvas::ZoomByUser(const QPointF &place, double factor)
{
    if (!HasPage())
        return;
    bAutoFit = false;
    geometry.ZoomAround(place, geometry.Zoom() * factor);
    ShowGeometry();
    emit ZoomedByUser();
}

void PageCanvas::ZoomIn()
{
    ZoomByUser(Middle(), dZoomStep);
}

void PageCanvas::ZoomOut()
{
    ZoomByUser(Middle(), 1 / dZoomStep);
}

// Scrolling

/// The scroll bars follow the geometry, and it follows them when the user moves them.
void PageCanvas::ShowGeometry()
{
    const QScopedValueRollback<bool> showing(bShowingGeometry, true);
    const auto policy = [](bool shown) { return shown ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff; };
    setHorizontalScrollBarPolicy(policy(geometry.HasBarX()));
    setVerticalScrollBarPolicy(policy(geometry.HasBarY()));
    const QPointF last = geometry.LastOffset();
    ShowInBar(*horizontalScrollBar(), last.x(), geometry.View().width(), OffsetX());
    ShowInBar(*verticalScrollBar(), last.y(), geometry.View().height(), OffsetY());
    ShowCursor();
    viewport()->update();
}

void PageCanvas::scrollContentsBy(int, int)
{
    if (bShowingGeometry)
        return;
    geometry.ScrollTo(QPointF(horizontalScrollBar()->value(), verticalScrollBar()->value()));
    viewport()->update();
}

void PageCanvas::ScrollBy(const QPointF &delta)
{
    geometry.ScrollTo(geometry.Offset() + delta);
    ShowGeometry();
}

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
    geometry.ScrollTo({OffsetX(), geometry.LastOffset().y()});
    ShowGeometry();
}

// Painting

void PageCanvas::paintEvent(QPaintEvent *)
{
    QPainter painter(viewport());
    const QRect view = viewport()->rect();
    if (HasPage()) {
        PaintSurroundings(painter);
        pagePainter.Paint(painter, page, PageRect(), view, lMethod == Halftone);
    } else {
        constexpr int margin = 20;
        painter.fillRect(view, palette().color(QPalette::Base));
        painter.setPen(GetHintColor(palette()));
        painter.drawText(view.adjusted(margin, margin, -margin, -margin), Qt::AlignCenter | Qt::TextWordWrap,
                         strNotice);
    }
    if (hasFocus()) {
        painter.setPen(palette().color(QPalette::Highlight));
        painter.drawRect(view.adjusted(0, 0, -1, -1));
    }
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

void PageCanvas::resizeEvent(QResizeEvent *)
{
    if (!bShowingGeometry)
        TakeSpace();
}

void PageCanvas::focusInEvent(QFocusEvent *)
{
    viewport()->update();
}

void PageCanvas::focusOutEvent(QFocusEvent *)
{
    viewport()->update();
}

void PageCanvas::changeEvent(QEvent *event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        TakeSpace();
    viewport()->update();
}

// Mouse and keys

void PageCanvas::ShowCursor()
{
    if (!HasPage() || !geometry.CanScroll())
        viewport()->unsetCursor();
    else
        viewport()->setCursor(bDragging ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
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
    if (event->button() == Qt::RightButton)
        emit MenuRequested(event->globalPosition().toPoint());
    if (event->button() != Qt::LeftButton)
        return;
    bDragging = false;
    ShowCursor();
}

void PageCanvas::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        emit ViewRequested();
}

/// The mouse has asked with its button's release, which some desktops do not wait for.
void PageCanvas::contextMenuEvent(QContextMenuEvent *event)
{
    if (event->reason() == QContextMenuEvent::Keyboard)
        emit MenuRequested(viewport()->mapToGlobal(Middle().toPoint()));
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
        return ScrollPageBy(1);
    case Qt::Key_Space:
        return ScrollPageBy(event->modifiers().testFlag(Qt::ShiftModifier) ? -1 : 1);
    case Qt::Key_Home:
        return ScrollBy(-geometry.LastOffset());
    case Qt::Key_End:
        return ScrollToEnd();
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        return ZoomIn();
    case Qt::Key_Minus:
        return ZoomOut();
    default:
        event->ignore();
    }
}
