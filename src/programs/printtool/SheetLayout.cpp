#include "SheetLayout.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double sheetWidth = double(SheetFormat::Width) / SheetFormat::DotsPerInchX;
/// Heights in inches. A Letter page counts as one also after it was reduced to the sheet's width.
constexpr double letter = 10.9, legal = 14;

/// Paper of nearly that height counts as A4: its sizes are rounded to whole points or millimetres.
constexpr double nearlyA4 = 0.05;

/// A page counts as larger when one sees it.
constexpr double visiblyLarger = 1.01;

/// A page that is reduced anyway is reduced by that much more when it then fits on an A4 sheet.
constexpr double slack = 1.03;

double A4Height(const SheetFormat &format)
{
    return double(format.A4Height()) / format.DotsPerInchY();
}

/// The factor by which a page has to become smaller, or may become larger, to fit.
double ScaleToFit(const QSizeF &size, double width, double height)
{
    return std::min(width / size.width(), height / size.height());
}

SheetLayout Place(const QSizeF &size, double scaleX, double scaleY, const SheetFormat &format)
{
    const double height = size.height() * scaleY;
    const int rows = std::max(1, int(std::lround(height * format.DotsPerInchY())));
    const int dots = int(std::lround(size.width() * scaleX * SheetFormat::DotsPerInchX));
    const int width = std::clamp(dots, 1, int(SheetFormat::Width));
    SheetLayout layout;
    const bool isA4 = std::abs(height - A4Height(format)) < nearlyA4;
    layout.lSheetHeight = height < letter || isA4 ? format.A4Height() : rows;
    layout.place = QRect((SheetFormat::Width - width) / 2, 0, width, rows);
    return layout;
}

SheetLayout PlaceOnA4(const QSizeF &size, double scaleX, double scaleY, const SheetFormat &format)
{
    SheetLayout layout = Place(size, scaleX, scaleY, format);
    layout.lSheetHeight = std::max(format.A4Height(), layout.place.height());
    return layout;
}

/// Real size, or what the longest sheet allows.
double DocumentScale(const QSizeF &size, const SheetFormat &format)
{
    const double scale = std::min(1.0, ScaleToFit(size, sheetWidth, legal));
    const double height = size.height() * scale, a4 = A4Height(format);
    const bool fitsWithSlack = scale * visiblyLarger < 1 && height > a4 && height < a4 * slack;
    return fitsWithSlack ? a4 / size.height() : scale;
}

/// Lays the page as it stands, or turned when `scaleOf` says that it shows larger so.
template <typename Scale, typename Placing>
SheetLayout LayTheLargerWay(const QSizeF &size, const Scale &scaleOf, const Placing &place)
{
    const QSizeF turned = size.transposed();
    if (scaleOf(turned) <= scaleOf(size) * visiblyLarger)
        return place(size, scaleOf(size));
    SheetLayout layout = place(turned, scaleOf(turned));
    layout.lRotation = 270;
    return layout;
}

QSizeF SizeOrSheet(const QSizeF &size, const SheetFormat &format)
{
    return size.isEmpty() ? QSizeF(sheetWidth, A4Height(format)) : size;
}

} // namespace

SheetLayout LayDocumentPage(const QSizeF &size, const SheetFormat &format)
{
    return LayTheLargerWay(
        SizeOrSheet(size, format), [&](const QSizeF &page) { return DocumentScale(page, format); },
        [&](const QSizeF &page, double scale) { return Place(page, scale, scale, format); });
}

SheetLayout LayPicture(const QSizeF &size, Fitting fitting, const SheetFormat &format)
{
    const QSizeF picture = SizeOrSheet(size, format);
    const double a4 = A4Height(format), toWidth = sheetWidth / picture.width();
    const auto place = [&](const QSizeF &page, double scale) {
        return PlaceOnA4(page, scale, scale, format);
    };
    switch (fitting) {
    case Fitting::Stretch:
        return PlaceOnA4(picture, toWidth, a4 / picture.height(), format);
    case Fitting::Width:
        return place(picture, std::min(toWidth, legal / picture.height()));
    case Fitting::Height:
        return place(picture, ScaleToFit(picture, sheetWidth, a4));
    case Fitting::Original:
        return LayTheLargerWay(
            picture, [&](const QSizeF &page) { return std::min(1.0, ScaleToFit(page, sheetWidth, a4)); },
            place);
    case Fitting::Match:
        break;
    }
    return LayTheLargerWay(
        picture, [&](const QSizeF &page) { return ScaleToFit(page, sheetWidth, a4); }, place);
}

SheetLayout FitInk(const SheetLayout &layout, const RowSpan &ink, const RowSpan &room, bool keepWidth)
{
    SheetLayout fitted = layout;
    if (ink.Height() <= room.Height()) {
        const int down = std::max(0, room.lFirst - ink.lFirst), up = std::max(0, ink.lEnd - room.lEnd);
        fitted.place.translate(0, down - up);
        return fitted;
    }
    // One row less: what is drawn anew can end half a row lower.
    const double scale = std::max(1.0, room.Height() - 1.0) / ink.Height();
    const QRect &place = layout.place;
    const int width = keepWidth ? place.width() : std::max(1, int(std::lround(place.width() * scale)));
    const int height = std::max(1, int(place.height() * scale));
    const int above = int(std::floor((ink.lFirst - place.top()) * scale));
    fitted.place = QRect((SheetFormat::Width - width) / 2, room.lFirst - above, width, height);
    return fitted;
}
