#include "PagesView.h"

#include <QGestureEvent>
#include <QKeyEvent>
#include <QNativeGestureEvent>
#include <QPainter>
#include <QPinchGesture>
#include <QScopedValueRollback>
#include <QTouchEvent>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr double dMostOfView = 0.9;
constexpr int lLateAfter = 200; // ms
constexpr std::array aZoomSteps{0.02, 0.05, 0.1,  0.15, 0.25, 0.33, 0.5, 0.67, 0.75, 0.9,
                                1.0,  1.1,  1.25, 1.5,  1.75, 2.0,  3.0, 4.0,  6.0,  8.0};

/// What is nearly a step counts as that step.
constexpr double dNearly = 1.01;

} // namespace

PagesView::PagesView(FaxDocument &faxDocument, PageRenderer &pageRenderer, QWidget *parent)
    : SheetView(parent)
    , document(faxDocument)
    , renderer(pageRenderer)
{
    setAccessibleName(tr("Pages of the fax"));
    viewport()->grabGesture(Qt::PinchGesture);
    tmrLate.setSingleShot(true);
    tmrLate.setInterval(lLateAfter);
    connect(&tmrLate, &QTimer::timeout, this, [this] {
        bLate = true;
        viewport()->update();
    });
    connect(&document, &FaxDocument::Opened, this, &PagesView::ShowDocument);
    connect(&document, &FaxDocument::Reopened, this, [this] {
        tiles.Outdate();
        ShowPagesAgain();
    });
    connect(&document, &FaxDocument::Turned, this, &PagesView::ShowPagesAgain);
    connect(&renderer, &PageRenderer::Rendered, this, &PagesView::TakePicture);
}

void PagesView::SetNotice(const QString &notice)
{
    strNotice = notice;
    if (!HasSheet())
        setAccessibleDescription(notice);
    viewport()->update();
}

void PagesView::SetPageNotice(const QString &notice)
{
    strPageNotice = notice;
    viewport()->update();
}

// Pages

void PagesView::ShowDocument()
{
    tiles.Clear();
    StackPages();
    lCurrent = -1;
    geometry.ScrollTo({});
    TakeSpace();
}

/// In another size or turn: what the user reads stays in its place.
void PagesView::ShowPagesAgain()
{
    const QRectF before = HasSheet() ? stack.Place(lCurrent) : QRectF();
    const double read = before.isEmpty() ? 0 : (OffsetY() / Zoom() - before.top()) / before.height();
    const QScopedValueRollback<bool> going(bGoing, true);
    StackPages();
    SetCurrent(std::clamp(lCurrent, 0, std::max(0, stack.Count() - 1)));
    TakeSpace();
    if (!HasSheet())
        return;
    const QRectF now = stack.Place(lCurrent);
    ScrollTo({OffsetX(), (now.top() + read * now.height()) * Zoom()});
}

void PagesView::StackPages()
{
    QList<QSizeF> sizes;
    for (int page = 0; page < document.PageCount(); ++page)
        sizes.append(document.PageSize(page) * logicalDpiX());
    stack.SetPages(sizes);
    geometry.SetFitted(stack.Largest());
    geometry.SetPage(stack.Size());
}

/// Where the view stands when the page is at its top.
double PagesView::TopOf(int page) const
{
    return (stack.Place(page).top() - PageStack::Margin) * Zoom();
}

void PagesView::GoToPage(int page)
{
    if (!HasSheet())
        return;
    const int wanted = std::clamp(page, 0, stack.Count() - 1);
    {
        const QScopedValueRollback<bool> going(bGoing, true);
        ScrollTo({OffsetX(), TopOf(wanted)});
    }
    SetCurrent(wanted);
}

void PagesView::SetCurrent(int page)
{
    if (page == lCurrent)
        return;
    lCurrent = page;
    setAccessibleDescription(tr("Page %1 of %2").arg(page + 1).arg(stack.Count()));
    emit CurrentPageChanged(page);
}

/// The first page that fills half of the view, or stands in it by more than its half.
int PagesView::FindCurrent() const
{
    const double top = OffsetY() / Zoom(), height = geometry.View().height() / Zoom();
    const PageStack::Range shown = stack.PagesBetween(top, top + height);
    for (int page = shown.lFirst; page <= shown.lLast; ++page) {
        const QRectF place = stack.Place(page);
        const double visible = std::min(place.bottom(), top + height) - std::max(place.top(), top);
        if (visible >= std::min(place.height(), height) / 2)
            return page;
    }
    return std::clamp(shown.lFirst, 0, stack.Count() - 1);
}

void PagesView::OnMoved()
{
    bComplete = false;
    if (HasSheet() && !bGoing)
        SetCurrent(FindCurrent());
}

// Zoom

void PagesView::Fit()
{
    if (mode == ZoomMode::Free)
        return;
    const double before = Zoom();
    geometry.FitToView(mode == ZoomMode::Width ? PageGeometry::FitWidth : PageGeometry::FitWhole);
    if (mode == ZoomMode::Page && lCurrent >= 0 && lCurrent < stack.Count())
        geometry.ScrollTo({OffsetX(), TopOf(lCurrent)});
    if (Zoom() != before)
        emit ZoomChanged();
}

void PagesView::SetMode(ZoomMode newMode)
{
    mode = newMode;
    TakeSpace();
    emit ZoomChanged();
}

void PagesView::SetZoom(double zoom)
{
    if (!HasSheet()) {
        EndFit();
        geometry.ZoomAround({}, zoom);
    }
    ZoomByUser(Middle(), zoom);
}

void PagesView::ZoomIn()
{
    const auto step = std::upper_bound(aZoomSteps.begin(), aZoomSteps.end(), Zoom() * dNearly);
    SetZoom(step == aZoomSteps.end() ? aZoomSteps.back() : *step);
}

void PagesView::ZoomOut()
{
    const auto step = std::lower_bound(aZoomSteps.begin(), aZoomSteps.end(), Zoom() / dNearly);
    SetZoom(step == aZoomSteps.begin() ? aZoomSteps.front() : *(step - 1));
}

bool PagesView::viewportEvent(QEvent *event)
{
    return HandleGesture(event) || SheetView::viewportEvent(event);
}

/// Fingers on the screen, or on the pad of a portable computer.
bool PagesView::HandleGesture(QEvent *event)
{
    switch (event->type()) {
    case QEvent::TouchBegin: // else it would count as a mouse, and drag while two fingers zoom
        event->accept();
        return true;
    case QEvent::TouchUpdate:
        return DragByFinger(*static_cast<QTouchEvent *>(event));
    case QEvent::NativeGesture:
        return ZoomByPad(*static_cast<QNativeGestureEvent *>(event));
    case QEvent::Gesture:
        return ZoomByFingers(*static_cast<QGestureEvent *>(event));
    default:
        return false;
    }
}

bool PagesView::DragByFinger(const QTouchEvent &event)
{
    if (event.points().size() == 1)
        ScrollBy(event.points().first().lastPosition() - event.points().first().position());
    return true;
}

bool PagesView::ZoomByPad(const QNativeGestureEvent &event)
{
    if (event.gestureType() != Qt::ZoomNativeGesture)
        return false;
    ZoomByUser(event.position(), Zoom() * (1 + event.value()));
    return true;
}

bool PagesView::ZoomByFingers(const QGestureEvent &event)
{
    const auto *pinch = static_cast<QPinchGesture *>(event.gesture(Qt::PinchGesture));
    if (!pinch)
        return false;
    if (pinch->changeFlags().testFlag(QPinchGesture::CenterPointChanged))
        ScrollBy(pinch->lastCenterPoint() - pinch->centerPoint());
    if (pinch->changeFlags().testFlag(QPinchGesture::ScaleFactorChanged))
        ZoomByUser(viewport()->mapFromGlobal(pinch->centerPoint()), Zoom() * pinch->scaleFactor());
    return true;
}

// Keys

/// A view that shows pages as a whole goes from one to the next.
void PagesView::ScrollViews(int views)
{
    if (mode == ZoomMode::Page)
        GoToPage(CurrentPage() + views);
    else
        ScrollBy({0, views * geometry.View().height() * dMostOfView});
}

void PagesView::keyPressEvent(QKeyEvent *event)
{
    const bool isBack = event->modifiers().testFlag(Qt::ShiftModifier);
    switch (event->key()) {
    case Qt::Key_PageUp:
        return ScrollViews(-1);
    case Qt::Key_PageDown:
        return ScrollViews(1);
    case Qt::Key_Space:
        return ScrollViews(isBack ? -1 : 1);
    case Qt::Key_Backspace:
        return ScrollViews(-1);
    case Qt::Key_Home:
        return ScrollTo({OffsetX(), 0});
    case Qt::Key_End:
        return ScrollTo({OffsetX(), geometry.LastOffset().y()});
    case Qt::Key_Left:
    case Qt::Key_Right:
        if (!geometry.HasBarX())
            return GoToPage(CurrentPage() + (event->key() == Qt::Key_Left ? -1 : 1));
        break;
    default:
        break;
    }
    SheetView::keyPressEvent(event);
}

// Painting, in pixels of the screen: tiles are copied there as they are

QRect PagesView::DeviceView() const
{
    return {QPoint(), (QSizeF(viewport()->size()) * devicePixelRatioF()).toSize()};
}

/// The pages that touch an area of the view.
QList<PlacedPage> PagesView::PlacePages(const QRect &area) const
{
    const double ratio = devicePixelRatioF(), scale = Zoom() * ratio;
    const QPointF sheet = geometry.PageRect().topLeft() * ratio;
    const auto inSheet = [&](double y) { return (y - sheet.y()) / scale; };
    const PageStack::Range range = stack.PagesBetween(inSheet(area.top()), inSheet(area.bottom() + 1));
    QList<PlacedPage> placed;
    for (int page = range.lFirst; page <= range.lLast; ++page) {
        const QRectF place = stack.Place(page);
        placed.append({page, document.Rotation(page),
                       QRect((sheet + place.topLeft() * scale).toPoint(),
                             (place.size() * scale).toSize().expandedTo({1, 1}))});
    }
    return placed;
}

void PagesView::paintEvent(QPaintEvent *)
{
    QPainter painter(viewport());
    if (!HasSheet()) {
        PaintNotice(painter, strNotice);
        PaintFocus(painter);
        return;
    }
    const QRect view = DeviceView();
    const QRect area = view.adjusted(-view.width() / 2, -view.height(), view.width() / 2, view.height());
    const QList<PlacedPage> placed = PlacePages(area);
    tiles.Keep(placed, area);
    painter.save();
    painter.scale(1 / devicePixelRatioF(), 1 / devicePixelRatioF());
    PaintDesk(painter, placed);
    for (const PlacedPage &page : placed) {
        if (page.rect.intersects(view))
            PaintPage(painter, page);
    }
    painter.restore();
    PaintFocus(painter);
    AskForTiles(placed, area);
}

void PagesView::PaintDesk(QPainter &painter, const QList<PlacedPage> &placed)
{
    const int edge = std::max(1, static_cast<int>(std::lround(devicePixelRatioF())));
    QRegion desk = DeviceView(), edges;
    for (const PlacedPage &page : placed) {
        desk -= page.rect.adjusted(-edge, -edge, edge, edge);
        edges += QRegion(page.rect.adjusted(-edge, -edge, edge, edge)) - page.rect;
    }
    for (const QRect &part : desk)
        painter.fillRect(part, palette().color(QPalette::Mid));
    for (const QRect &part : edges)
        painter.fillRect(part, palette().color(QPalette::Dark));
}

void PagesView::PaintPage(QPainter &painter, const PlacedPage &page)
{
    const QRegion bare = tiles.Paint(painter, page, DeviceView());
    if (bare.isEmpty())
        return;
    if (tiles.IsUnreadable(page.lPage))
        PaintOnPage(painter, bare.boundingRect(), strPageNotice);
    else if (bLate)
        PaintOnPage(painter, bare.boundingRect(), tr("Page %1").arg(page.lPage + 1));
}

/// On paper, which is white in every palette. `place` in pixels of the screen.
void PagesView::PaintOnPage(QPainter &painter, const QRect &place, const QString &text) const
{
    constexpr int margin = 12;
    painter.save();
    painter.resetTransform();
    const double ratio = devicePixelRatioF();
    const QRectF room(QPointF(place.topLeft()) / ratio, QSizeF(place.size()) / ratio);
    painter.setPen(Qt::darkGray);
    painter.drawText(room.adjusted(margin, margin, -margin, -margin), Qt::AlignCenter | Qt::TextWordWrap,
                     text);
    painter.restore();
}

// Tiles

/// What is visible first, then what is next to it.
void PagesView::AskForTiles(const QList<PlacedPage> &placed, const QRect &area)
{
    const QRect view = DeviceView();
    QList<PagePart> shown;
    QList<std::pair<int, PagePart>> around;
    for (const PlacedPage &page : placed) {
        const QRect visible = view.translated(-page.rect.topLeft());
        for (const PagePart &part : tiles.Missing(page, area)) {
            if (part.rect.intersects(visible))
                shown.append(part);
            else
                around.append({std::abs(part.rect.center().y() - visible.center().y()), part});
        }
    }
    std::stable_sort(around.begin(), around.end(),
                     [](const auto &one, const auto &other) { return one.first < other.first; });
    QList<PagePart> ahead;
    for (const auto &[distance, part] : around)
        ahead.append(part);
    renderer.Want(PageRenderer::Shown, shown);
    renderer.Want(PageRenderer::Ahead, ahead);
    NoteMissing(!shown.isEmpty());
}

void PagesView::NoteMissing(bool isMissing)
{
    bComplete = !isMissing;
    bLate = bLate && isMissing;
    if (!isMissing)
        tmrLate.stop();
    else if (!bLate && !tmrLate.isActive())
        tmrLate.start();
}

void PagesView::TakePicture(const PagePart &part, const QImage &picture)
{
    if (!tiles.Add(part, picture))
        return;
    const QRect view = DeviceView();
    for (const PlacedPage &page : PlacePages(view)) {
        if (page.lPage == part.lPage && part.rect.translated(page.rect.topLeft()).intersects(view))
            viewport()->update();
    }
}
