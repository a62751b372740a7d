#include "PageTiles.h"

#include <QPainter>

#include <algorithm>

namespace {

/// Wide, since the rows of a page are read as a whole.
constexpr int tileWidth = 1024, tileHeight = 256;

} // namespace

/// The tiles that an area of the page touches.
QList<QRect> PageTiles::TilesIn(const QSize &size, const QRect &area)
{
    QList<QRect> tiles;
    const QRect page(QPoint(), size), touched = area.intersected(page);
    if (touched.isEmpty())
        return tiles;
    for (int y = touched.top() / tileHeight * tileHeight; y <= touched.bottom(); y += tileHeight) {
        for (int x = touched.left() / tileWidth * tileWidth; x <= touched.right(); x += tileWidth)
            tiles.append(QRect(x, y, tileWidth, tileHeight).intersected(page));
    }
    return tiles;
}

QList<PagePart> PageTiles::Missing(const PlacedPage &placed, const QRect &area) const
{
    const auto page = pages.constFind(placed.lPage);
    QList<PagePart> missing;
    if (page != pages.constEnd() && page->bUnreadable)
        return missing;
    for (const QRect &tile : TilesIn(placed.rect.size(), area.translated(-placed.rect.topLeft()))) {
        if (page == pages.constEnd() || !page->now.tiles.contains(tile.topLeft()))
            missing.append({placed.lPage, placed.lRotation, placed.rect.size(), tile});
    }
    return missing;
}

bool PageTiles::Add(const PagePart &part, const QImage &picture)
{
    const auto page = pages.find(part.lPage);
    if (page == pages.end() || page->now.size != part.size || page->now.lRotation != part.lRotation)
        return false;
    page->bUnreadable = picture.isNull();
    if (!picture.isNull())
        page->now.tiles.insert(part.rect.topLeft(), picture);
    return true;
}

QRegion PageTiles::Paint(QPainter &painter, const PlacedPage &placed, const QRect &view) const
{
    const Page page = pages.value(placed.lPage);
    QRegion missing = placed.rect.intersected(view);
    for (const QRect &tile : TilesIn(placed.rect.size(), view.translated(-placed.rect.topLeft()))) {
        const auto picture = page.now.tiles.constFind(tile.topLeft());
        if (picture == page.now.tiles.constEnd())
            continue;
        const QRect place = tile.translated(placed.rect.topLeft());
        painter.drawImage(place.topLeft(), *picture);
        missing -= place;
    }
    if (missing.isEmpty())
        return missing;
    for (const QRect &part : missing)
        painter.fillRect(part, Qt::white);
    return missing - PaintStretched(painter, page.before, placed.rect, missing);
}

/// The result is what has been covered.
QRegion PageTiles::PaintStretched(QPainter &painter, const Level &level, const QRect &place,
                                  const QRegion &region)
{
    QRegion covered;
    if (level.size.isEmpty())
        return covered;
    const double scaleX = double(place.width()) / level.size.width();
    const double scaleY = double(place.height()) / level.size.height();
    painter.save();
    painter.setClipRegion(region);
    for (auto it = level.tiles.cbegin(); it != level.tiles.cend(); ++it) {
        const QRectF stretched(place.x() + it.key().x() * scaleX, place.y() + it.key().y() * scaleY,
                               it->width() * scaleX, it->height() * scaleY);
        if (!region.intersects(stretched.toAlignedRect()))
            continue;
        painter.drawImage(stretched, *it);
        covered += stretched.toAlignedRect();
    }
    painter.restore();
    return covered;
}

void PageTiles::Keep(const QList<PlacedPage> &placed, const QRect &area)
{
    QHash<int, Page> kept;
    for (const PlacedPage &one : placed) {
        Page page = pages.take(one.lPage);
        Fit(page, one, area.translated(-one.rect.topLeft()));
        kept.insert(one.lPage, page);
    }
    pages = kept;
}

/// `area` in the page.
void PageTiles::Fit(Page &page, const PlacedPage &placed, const QRect &area)
{
    if (page.now.lRotation != placed.lRotation)
        page.now = page.before = {};
    if (page.now.size != placed.rect.size()) {
        if (!page.now.tiles.isEmpty()) // else the zooms follow each other faster than the tiles
            page.before = page.now;
        page.now = {placed.rect.size(), placed.lRotation, {}};
        return;
    }
    page.now.tiles.removeIf([&](QHash<QPoint, QImage>::iterator tile) {
        return !QRect(tile.key(), tile->size()).intersects(area);
    });
    const QList<QRect> wanted = TilesIn(page.now.size, area);
    if (std::all_of(wanted.begin(), wanted.end(),
                    [&page](const QRect &tile) { return page.now.tiles.contains(tile.topLeft()); }))
        page.before = {};
}

void PageTiles::Outdate()
{
    for (Page &page : pages) {
        page.before = page.now;
        page.now.tiles.clear();
        page.bUnreadable = false;
    }
}
