#pragma once

#include <QList>
#include <QRectF>
#include <QSizeF>

/// Pages below each other on one sheet, each in the middle of the sheet's width, with a margin around.
/// Lengths are pixels at zoom 1.
class PageStack final
{
public:
    void SetPages(const QList<QSizeF> &sizes);

    int Count() const { return static_cast<int>(aPlaces.size()); }
    /// Of the sheet; empty without pages.
    QSizeF Size() const { return sheet; }
    /// The widest and the highest page with their margins: what is fitted to a view.
    QSizeF Largest() const { return largest; }
    QRectF Place(int page) const { return aPlaces[page]; }
    static constexpr double Margin = 8.0;

    struct Range
    {
        int lFirst = 0, lLast = -1; ///< none when the last one is smaller
    };
    /// The pages that reach into a strip of the sheet.
    Range PagesBetween(double top, double bottom) const;

private:
    QList<QRectF> aPlaces;
    QSizeF sheet, largest;
};
