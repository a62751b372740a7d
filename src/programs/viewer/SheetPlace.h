#pragma once

#include <QRectF>
#include <QSizeF>

class QImage;
class QPainter;

/// Where a page comes to lie on a sheet of paper. Lengths have any one unit.
struct SheetPlace
{
    QRectF target;        ///< of the page as it lies on the sheet
    bool bTurned = false; ///< the page lies on its side

    /// The page at its real size in the middle of `printable`, or made smaller until it fits; on its side
    /// when it stays larger that way.
    static SheetPlace Find(const QSizeF &page, const QRectF &printable);
    /// True when the page stays larger on a sheet that lies on its side.
    static bool IsLargerTurned(const QSizeF &page, const QSizeF &printable);

    /// `unit`: what the painter's pixels are to the lengths.
    void Draw(QPainter &painter, const QImage &page, double unit) const;
};
