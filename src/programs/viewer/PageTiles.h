#pragma once

#include "PagePart.h"

#include <QHash>
#include <QImage>
#include <QList>
#include <QPoint>
#include <QRegion>

class QPainter;

/// A page in a view, in pixels of the screen.
struct PlacedPage
{
    int lPage = 0;
    int lRotation = 0; ///< degrees clockwise
    QRect rect;        ///< in the view
};

/// The pictures of the pages in and around a view, in tiles. After a zoom the former ones, stretched, stand
/// in for those that are still to come.
class PageTiles final
{
public:
    /// Which tiles of the page within an area of the view are missing, from top to bottom.
    QList<PagePart> Missing(const PlacedPage &page, const QRect &area) const;
    /// Takes a tile; false when it is none of the present zoom and turn. A null picture marks the page as
    /// unreadable.
    bool Add(const PagePart &part, const QImage &picture);

    /// Draws what there is, on white paper. The result, in the view, is where nothing stands on the paper.
    QRegion Paint(QPainter &painter, const PlacedPage &page, const QRect &view) const;
    bool IsUnreadable(int page) const { return pages.value(page).bUnreadable; }

    /// Makes the tiles fit the pages, and drops those that lie outside of an area of the view.
    void Keep(const QList<PlacedPage> &placed, const QRect &area);
    /// The file has other contents: all tiles are replaced when theirs come.
    void Outdate();
    void Clear() { pages.clear(); }

private:
    /// The tiles of a page at one zoom, by their place in the page.
    struct Level
    {
        QSize size;
        int lRotation = 0;
        QHash<QPoint, QImage> tiles;
    };
    struct Page
    {
        Level now, before;
        bool bUnreadable = false;
    };

    static QList<QRect> TilesIn(const QSize &size, const QRect &area);
    static QRegion PaintStretched(QPainter &painter, const Level &level, const QRect &place,
                                  const QRegion &region);
    static void Fit(Page &page, const PlacedPage &placed, const QRect &area);

    QHash<int, Page> pages;
};
