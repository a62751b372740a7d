#include "controls/PageGeometry.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double dSmallestZoom = 0.02;
constexpr double dLargestZoom = 8.0;

/// Of a side as shown: scroll bars count in whole numbers, and so does who draws on a screen of four times as
/// many pixels.
constexpr double dLongestSide = 5e8;

/// A page that was fitted is not too large by what a rounding adds.
constexpr double dRounding = 0.01;

double Origin(double view, double shown, double offset)
{
    return shown < view ? std::floor((view - shown) / 2) : -offset;
}

} // namespace

void PageGeometry::SetPage(const QSizeF &size)
{
    page = size;
    PlaceBars();
}

void PageGeometry::SetSpace(const QSize &size, int widthOfBar)
{
    space = size;
    dBar = widthOfBar;
    PlaceBars();
}

void PageGeometry::ZoomAround(const QPointF &place, double zoom)
{
    const QPointF inPage = (place - PageRect().topLeft()) / dZoom;
    dZoom = std::clamp(zoom, dSmallestZoom, std::min(dLargestZoom, MostZoom()));
    offset = inPage * dZoom - place;
    PlaceBars();
}

void PageGeometry::FitToView(Fit fit)
{
    if (page.isEmpty())
        return;
    const QPointF inPage = offset / dZoom;
    dZoom = std::min(FitZoom(fit), MostZoom());
    offset = inPage * dZoom;
    PlaceBars();
}

double PageGeometry::MostZoom() const
{
    return dLongestSide / std::max({1.0, page.width(), page.height()});
}

/// What is fitted to one side may need the bar of the other, which takes of its room.
double PageGeometry::FitZoom(Fit fit) const
{
    const auto notZero = [](double zoom) { return zoom > 0 ? zoom : 1.0; };
    const QSizeF wanted = fitted.isEmpty() ? page : fitted;
    const double zoomX = space.width() / wanted.width();
    const double zoomY = space.height() / wanted.height();
    const double zoomXBesideBar = (space.width() - dBar) / wanted.width();
    const double whole = std::min(zoomX, zoomY);
    if (fit == FitWidth && page.height() * zoomX > space.height())
        return notZero(zoomXBesideBar);
    if (fit == FitHeight && page.width() * zoomY > space.width())
        return notZero((space.height() - dBar) / wanted.height());
    if (fit == FitWhole && page.height() * whole > space.height() + dRounding)
        return notZero(std::min(zoomXBesideBar, zoomY));
    return notZero(whole);
}

void PageGeometry::PlaceBars()
{
    const QSizeF shown = page * dZoom;
    const auto exceeds = [](double length, double room) { return length > room + dRounding; };
    bBarY = exceeds(shown.height(), space.height());
    bBarX = exceeds(shown.width(), space.width() - (bBarY ? dBar : 0));
    bBarY = exceeds(shown.height(), space.height() - (bBarX ? dBar : 0));
    ScrollTo(offset);
}

QSizeF PageGeometry::View() const
{
    return {std::max(1.0, space.width() - (bBarY ? dBar : 0)),
            std::max(1.0, space.height() - (bBarX ? dBar : 0))};
}

QRectF PageGeometry::PageRect() const
{
    const QSizeF size = page * dZoom, view = View();
    return {QPointF(Origin(view.width(), size.width(), offset.x()),
                    Origin(view.height(), size.height(), offset.y())),
            size};
}

QPointF PageGeometry::LastOffset() const
{
    const QSizeF over = page * dZoom - View();
    return {std::max(0.0, over.width()), std::max(0.0, over.height())};
}

void PageGeometry::ScrollTo(const QPointF &place)
{
    const QPointF last = LastOffset();
    offset = {std::clamp(place.x(), 0.0, last.x()), std::clamp(place.y(), 0.0, last.y())};
}
