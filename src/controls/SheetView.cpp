#include "controls/SheetView.h"

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

void ShowInBar(QScrollBar &bar, double last, double view, double offset)
{
    bar.setRange(0, static_cast<int>(std::ceil(last)));
    bar.setPageStep(static_cast<int>(view));
    bar.setSingleStep(static_cast<int>(dLinePixels));
    bar.setValue(static_cast<int>(std::lround(offset)));
}

} // namespace

SheetView::SheetView(QWidget *parent)
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

// Zoom

void SheetView::TakeSpace()
{
    const int spacing = style()->pixelMetric(QStyle::PM_ScrollView_ScrollBarSpacing, nullptr, this);
    geometry.SetSpace(contentsRect().size(), verticalScrollBar()->sizeHint().width() + spacing);
    Fit();
    ShowGeometry();
}

QPointF SheetView::Middle() const
{
    return {geometry.View().width() / 2, geometry.View().height() / 2};
}

void SheetView::ZoomByUser(const QPointF &place, double zoom)
{
    if (!HasSheet())
        return;
    EndFit();
    geometry.ZoomAround(place, zoom);
    ShowGeometry();
    emit ZoomedByUser();
}

void SheetView::ZoomIn()
{
    ZoomByUser(Middle(), geometry.Zoom() * dZoomStep);
}

void SheetView::ZoomOut()
{
    ZoomByUser(Middle(), geometry.Zoom() / dZoomStep);
}

// Scrolling

/// The scroll bars follow the geometry, and it follows them when the user moves them.
void SheetView::ShowGeometry()
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
    OnMoved();
}

void SheetView::scrollContentsBy(int, int)
{
    if (bShowingGeometry)
        return;
    geometry.ScrollTo(QPointF(horizontalScrollBar()->value(), verticalScrollBar()->value()));
    viewport()->update();
    OnMoved();
}

void SheetView::ScrollTo(const QPointF &place)
{
    geometry.ScrollTo(place);
    ShowGeometry();
}

// Painting

void SheetView::PaintNotice(QPainter &painter, const QString &notice) const
{
    constexpr int margin = 20;
    const QRect view = viewport()->rect();
    painter.fillRect(view, palette().color(QPalette::Base));
    painter.setPen(GetHintColor(palette()));
    painter.drawText(view.adjusted(margin, margin, -margin, -margin), Qt::AlignCenter | Qt::TextWordWrap,
                     notice);
}

void SheetView::PaintFocus(QPainter &painter) const
{
    if (!hasFocus() || window()->isFullScreen())
        return;
    painter.setPen(palette().color(QPalette::Highlight));
    painter.drawRect(viewport()->rect().adjusted(0, 0, -1, -1));
}

void SheetView::resizeEvent(QResizeEvent *)
{
    if (!bShowingGeometry)
        TakeSpace();
}

void SheetView::focusInEvent(QFocusEvent *)
{
    viewport()->update();
}

void SheetView::focusOutEvent(QFocusEvent *)
{
    viewport()->update();
}

void SheetView::changeEvent(QEvent *event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        TakeSpace();
    viewport()->update();
}

// Mouse and keys

void SheetView::ShowCursor()
{
    if (!HasSheet() || !geometry.CanScroll())
        viewport()->unsetCursor();
    else
        viewport()->setCursor(bDragging ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
}

void SheetView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    bDragging = true;
    lastDragPlace = event->pos();
    ShowCursor();
}

void SheetView::mouseMoveEvent(QMouseEvent *event)
{
    if (!bDragging)
        return;
    const QPointF moved = event->pos() - lastDragPlace;
    lastDragPlace = event->pos();
    ScrollBy(-moved * dMoveFactor);
}

void SheetView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::RightButton)
        emit MenuRequested(event->globalPosition().toPoint());
    if (event->button() != Qt::LeftButton)
        return;
    bDragging = false;
    ShowCursor();
}

/// The mouse has asked with its button's release, which some desktops do not wait for.
void SheetView::contextMenuEvent(QContextMenuEvent *event)
{
    if (event->reason() == QContextMenuEvent::Keyboard)
        emit MenuRequested(viewport()->mapToGlobal(Middle().toPoint()));
}

void SheetView::wheelEvent(QWheelEvent *event)
{
    const QPointF turns = QPointF(event->angleDelta()) / 120.0;
    if (event->modifiers().testFlag(Qt::ControlModifier)) {
        ZoomByUser(event->position(), geometry.Zoom() * std::pow(dZoomStep, turns.y()));
    } else {
        const QPointF pixels(event->pixelDelta());
        const QPointF delta = pixels.isNull() ? turns * 3 * dLinePixels : pixels;
        const bool isSideways = event->modifiers().testFlag(Qt::ShiftModifier);
        ScrollBy(isSideways ? QPointF(-delta.y(), 0) : -delta);
    }
    event->accept();
}

void SheetView::keyPressEvent(QKeyEvent *event)
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
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        return ZoomIn();
    case Qt::Key_Minus:
        return ZoomOut();
    default:
        event->ignore();
    }
}
