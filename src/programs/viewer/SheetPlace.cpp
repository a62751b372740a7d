#include "SheetPlace.h"

#include <QImage>
#include <QPainter>

#include <algorithm>

namespace {

/// 1 at the most: a small page keeps its size.
double ScaleToFit(const QSizeF &page, const QSizeF &space)
{
    return std::min({1.0, space.width() / page.width(), space.height() / page.height()});
}

} // namespace

bool SheetPlace::IsLargerTurned(const QSizeF &page, const QSizeF &printable)
{
    return ScaleToFit(page, printable.transposed()) > ScaleToFit(page, printable);
}

SheetPlace SheetPlace::Find(const QSizeF &page, const QRectF &printable)
{
    SheetPlace place;
    place.bTurned = IsLargerTurned(page, printable.size());
    const QSizeF lying = place.bTurned ? page.transposed() : page;
    place.target.setSize(lying * ScaleToFit(lying, printable.size()));
    place.target.moveCenter(printable.center());
    return place;
}

void SheetPlace::Draw(QPainter &painter, const QImage &page, double unit) const
{
    constexpr double quarterTurn = 90;
    const QSizeF size = (bTurned ? target.size().transposed() : target.size()) * unit;
    painter.save();
    painter.setRenderHints(QPainter::LosslessImageRendering | QPainter::SmoothPixmapTransform);
    painter.translate(target.center() * unit);
    if (bTurned)
        painter.rotate(-quarterTurn);
    painter.drawImage(QRectF(QPointF(-size.width() / 2, -size.height() / 2), size), page);
    painter.restore();
}
