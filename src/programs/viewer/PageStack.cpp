#include "PageStack.h"

#include <algorithm>

void PageStack::SetPages(const QList<QSizeF> &sizes)
{
    double width = 0, height = 0;
    for (const QSizeF &size : sizes) {
        width = std::max(width, size.width());
        height = std::max(height, size.height());
    }
    largest = sizes.isEmpty() ? QSizeF() : QSizeF(width + 2 * Margin, height + 2 * Margin);
    aPlaces.clear();
    double top = Margin;
    for (const QSizeF &size : sizes) {
        aPlaces.append({{(largest.width() - size.width()) / 2, top}, size});
        top += size.height() + Margin;
    }
    sheet = sizes.isEmpty() ? QSizeF() : QSizeF(largest.width(), top);
}

PageStack::Range PageStack::PagesBetween(double top, double bottom) const
{
    const auto endsAbove = [](const QRectF &place, double y) { return place.bottom() <= y; };
    const auto beginsBelow = [](double y, const QRectF &place) { return y <= place.top(); };
    const auto first = std::lower_bound(aPlaces.begin(), aPlaces.end(), top, endsAbove);
    const auto end = std::upper_bound(first, aPlaces.end(), bottom, beginsBelow);
    return {static_cast<int>(first - aPlaces.begin()), static_cast<int>(end - aPlaces.begin()) - 1};
}
