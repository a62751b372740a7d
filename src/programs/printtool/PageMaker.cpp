#include "PageMaker.h"

#include "Monochrome.h"
#include "SheetLayout.h"

#include <cstring>

namespace {

/// The page in its place on a white sheet, still gray.
QImage DrawGray(PageSource &source, int page, const SheetLayout &layout)
{
    const QImage drawn = source.Render(page, layout.place.size(), layout.lRotation);
    QImage sheet(SheetFormat::Width, layout.lSheetHeight, QImage::Format_Grayscale8);
    sheet.fill(Qt::white);
    for (int y = 0; y < drawn.height(); ++y)
        std::memcpy(sheet.scanLine(layout.place.top() + y) + layout.place.left(), drawn.constScanLine(y),
                    std::size_t(drawn.width()));
    return sheet;
}

} // namespace

PageMaker::PageMaker(PageOptions pageOptions)
    : options(std::move(pageOptions))
{
}

QImage PageMaker::Make(PageSource &source, const Document &document, int page, int, int) const
{
    if (document.bReady) {
        const QImage ready = source.FaxPage(page);
        if (!ready.isNull())
            return ready;
    }
    const QSizeF size = source.PageSize(page);
    const bool isPicture = document.kind == Document::Picture;
    const SheetLayout layout =
        isPicture ? LayPicture(size, options.fitting, options.format) : LayDocumentPage(size, options.format);
    QImage sheet = Monochrome::ByThreshold(DrawGray(source, page, layout), options.lThreshold);
    Monochrome::SetResolution(sheet, options.format.DotsPerInchY());
    return sheet;
}
