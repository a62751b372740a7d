#pragma once

#include <QRect>
#include <QSize>

/// A part of a page as it is seen on the screen, in pixels of the screen.
struct PagePart
{
    int lPage = 0;
    int lRotation = 0; ///< degrees clockwise
    QSize size;        ///< of the whole page, turned
    QRect rect;        ///< within it

    bool operator==(const PagePart &) const = default;
};
