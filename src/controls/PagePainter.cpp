#include "controls/PagePainter.h"

#include "controls/BusyPointer.h"
#include "controls/PageScaler.h"

#include <QPaintDevice>
#include <QPainter>

#include <optional>

namespace {

/// Bytes of a page beyond which the user may notice that it is made smaller.
constexpr qsizetype lUsualBytes = 4 * 1024 * 1024;

QSize DeviceSize(const QPainter &painter, const QRectF &place)
{
    return (place.size() * painter.device()->devicePixelRatioF()).toSize().expandedTo({1, 1});
}

void PaintEnlarged(QPainter &painter, const PageBits &page, const QRectF &place, const QRect &view,
                   bool isSmooth)
{
    const QRectF visible = place.intersected(view);
    const double scaleX = page.lWidth / place.width();
    const double scaleY = page.lHeight / place.height();
    const QRectF source((visible.x() - place.x()) * scaleX, (visible.y() - place.y()) * scaleY,
                        visible.width() * scaleX, visible.height() * scaleY);
    const QRect part = source.toAlignedRect().intersected(QRect(0, 0, page.lWidth, page.lHeight));
    painter.setRenderHint(QPainter::SmoothPixmapTransform, isSmooth);
    painter.drawImage(visible, PageScaler::Crop(page, part), source.translated(-part.topLeft()));
}

} // namespace

void PagePainter::Paint(QPainter &painter, const PageBits &page, const QRectF &place, const QRect &view,
                        bool isSmooth)
{
    const QSize deviceSize = DeviceSize(painter, place);
    if (deviceSize.width() < page.lWidth || deviceSize.height() < page.lHeight)
        PaintShrunk(painter, page, place, view);
    else
        PaintEnlarged(painter, page, place, view, isSmooth);
}

/// In whole pixels of the screen, or the averaged page would be averaged a second time.
void PagePainter::PaintShrunk(QPainter &painter, const PageBits &page, const QRectF &place,
                              const QRect &shownView)
{
    const double ratio = painter.device()->devicePixelRatioF();
    const QSize deviceSize = DeviceSize(painter, place);
    const QPoint corner = (place.topLeft() * ratio).toPoint();
    const QRect view((QPointF(shownView.topLeft()) * ratio).toPoint(),
                     (QSizeF(shownView.size()) * ratio).toSize());
    const QRect visible = view.translated(-corner).intersected(QRect(QPoint(), deviceSize));
    ShrinkVisible(page, deviceSize, visible);
    painter.drawImage(QRectF(QPointF(corner + visible.topLeft()) / ratio, QSizeF(visible.size()) / ratio),
                      shrunk, QRectF(visible.translated(-shrunkPart.topLeft())));
}

/// A page that comes on show is made smaller as far as it is visible; one that is scrolled, a view further on
/// each side, so that not every step has to.
void PagePainter::ShrinkVisible(const PageBits &page, const QSize &deviceSize, const QRect &visible)
{
    const bool isSameZoom = !shrunk.isNull() && shrunkSize == deviceSize;
    if (isSameZoom && shrunkPart.contains(visible))
        return;
    std::optional<BusyPointer> busy;
    if (bShowBusy && page.abBits.size() > lUsualBytes)
        busy.emplace();
    const QRect around =
        visible.adjusted(-visible.width(), -visible.height(), visible.width(), visible.height());
    shrunkSize = deviceSize;
    shrunkPart = isSameZoom ? around.intersected(QRect(QPoint(), deviceSize)) : visible;
    shrunk = PageScaler::Shrink(page, shrunkSize, shrunkPart);
}
