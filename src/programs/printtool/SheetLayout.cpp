#include "SheetLayout.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double sheetWidth = double(SheetFormat::Width) / SheetFormat::DotsPerInchX;
constexpr double longest = 14.0;

SheetLayout Place(const QSizeF &size, double scale, const SheetFormat &format)
{
    SheetLayout layout;
    const int width = std::clamp(int(std::lround(size.width() * scale * SheetFormat::DotsPerInchX)), 1,
                                 int(SheetFormat::Width));
    const int height = std::max(1, int(std::lround(size.height() * scale * format.DotsPerInchY())));
    layout.lSheetHeight = std::max(format.A4Height(), height);
    layout.place = QRect((SheetFormat::Width - width) / 2, 0, width, height);
    return layout;
}

} // namespace

SheetLayout LayDocumentPage(const QSizeF &size, const SheetFormat &format)
{
    const QSizeF page = size.isEmpty() ? QSizeF(sheetWidth, 11.69) : size;
    return Place(page, std::min({1.0, sheetWidth / page.width(), longest / page.height()}), format);
}

SheetLayout LayPicture(const QSizeF &size, Fitting, const SheetFormat &format)
{
    return LayDocumentPage(size, format);
}
