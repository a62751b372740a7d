#include "PageMaker.h"

#include "Monochrome.h"
#include "SheetLayout.h"
#include "controls/HeaderPainter.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <utility>

namespace {

/// For what is black and white already, and gray only since it was made smaller.
constexpr int thresholdOfInk = 192;

bool HasInk(const QImage &sheet, int row)
{
    const uchar *line = sheet.constScanLine(row);
    return std::any_of(line, line + sheet.width() / 8, [](uchar byte) { return byte != 0; });
}

/// From the first row with ink to the last; an empty span when there is none.
RowSpan FindInk(const QImage &sheet)
{
    RowSpan ink{0, sheet.height()};
    while (ink.lFirst < ink.lEnd && !HasInk(sheet, ink.lFirst))
        ++ink.lFirst;
    while (ink.lEnd > ink.lFirst && !HasInk(sheet, ink.lEnd - 1))
        --ink.lEnd;
    return ink;
}

/// The sheet with its rows that much farther down; what comes in is white.
QImage MoveRows(const QImage &sheet, int down)
{
    QImage moved = Monochrome::MakeBlank(sheet.height(), Monochrome::DotsPerInchY(sheet));
    const int rows = sheet.height() - std::abs(down);
    if (rows > 0)
        std::memcpy(moved.scanLine(std::max(0, down)), sheet.constScanLine(std::max(0, -down)),
                    std::size_t(rows * sheet.bytesPerLine()));
    return moved;
}

/// The page in its place on a white sheet, still gray; only those rows of the sheet are drawn.
QImage DrawGray(PageSource &source, int page, const SheetLayout &layout, const RowSpan &rows)
{
    const QImage drawn = source.Render(page, layout.place.size(), layout.lRotation);
    QImage sheet(SheetFormat::Width, layout.lSheetHeight, QImage::Format_Grayscale8);
    sheet.fill(255);
    const int top = layout.place.top(), end = std::min(rows.lEnd, top + drawn.height());
    const auto count = std::size_t(std::min(drawn.width(), SheetFormat::Width - layout.place.left()));
    for (int row = std::max(rows.lFirst, top); row < end; ++row)
        std::memcpy(sheet.scanLine(row) + layout.place.left(), drawn.constScanLine(row - top), count);
    return sheet;
}

/// A header that was painted for the other resolution: its ink, with each row twice or two rows in one.
void AddInk(QImage &sheet, const QImage &header)
{
    for (int row = 0; row < sheet.height(); ++row) {
        const int first = row * header.height() / sheet.height();
        const int end = std::max(first + 1, (row + 1) * header.height() / sheet.height());
        uchar *line = sheet.scanLine(row);
        for (int from = first; from < end; ++from) {
            const uchar *ink = header.constScanLine(from);
            std::transform(line, line + sheet.width() / 8, ink, line, std::bit_or<uchar>());
        }
    }
}

} // namespace

PageMaker::PageMaker(PageOptions pageOptions)
    : options(std::move(pageOptions))
{
}

QImage PageMaker::Make(PageSource &source, const Document &document, int page, int faxPage,
                       int faxPageCount) const
{
    const QImage ready = document.bReady ? source.FaxPage(page) : QImage();
    QImage sheet =
        ready.isNull() ? MakeSheet(source, document, page, faxPage) : MakeReady(source, ready, page, faxPage);
    if (options.header)
        PaintHeader(sheet, faxPage, faxPageCount);
    return sheet;
}

QImage PageMaker::MakeSheet(PageSource &source, const Document &document, int page, int faxPage) const
{
    const bool isDocument = document.kind == Document::Pdf || document.kind == Document::Office;
    const QSizeF size = source.PageSize(page);
    const SheetLayout layout = isDocument ? LayDocumentPage(size, options.format)
                                          : LayPicture(size, options.fitting, options.format);
    const int dotsPerInchY = options.format.DotsPerInchY();
    const auto draw = [&](const SheetLayout &place, const RowSpan &rows) {
        return Monochrome::WithTones(DrawGray(source, page, place, rows), options.lThreshold, dotsPerInchY);
    };
    const bool keepWidth = !isDocument && options.fitting == Fitting::Stretch;
    return LeaveRoom(draw(layout, {0, layout.lSheetHeight}), layout, keepWidth, faxPage, draw);
}

QImage PageMaker::MakeReady(PageSource &source, const QImage &ready, int page, int faxPage) const
{
    const SheetLayout layout{ready.height(), 0, ready.rect()};
    return LeaveRoom(ready, layout, false, faxPage, [&](const SheetLayout &place, const RowSpan &rows) {
        return Monochrome::ByThreshold(DrawGray(source, page, place, rows), thresholdOfInk,
                                       Monochrome::DotsPerInchY(ready));
    });
}

/// The rows between header and footer.
RowSpan PageMaker::RoomOn(const QImage &sheet, int faxPage) const
{
    if (!options.header)
        return {0, sheet.height()};
    const int own = Monochrome::DotsPerInchY(sheet), painted = options.format.DotsPerInchY();
    const auto rows = [&](int height) { return (height * own + painted - 1) / painted; };
    const int header = rows(options.header->HeaderHeight(faxPage));
    const int footer = rows(options.header->FooterHeight(faxPage));
    // A short ready page may have less room than they take: it keeps its pixels then.
    return header + footer < sheet.height() ? RowSpan{header, sheet.height() - footer}
                                            : RowSpan{0, sheet.height()};
}

template <typename Draw>
QImage PageMaker::LeaveRoom(const QImage &sheet, const SheetLayout &layout, bool keepWidth, int faxPage,
                            const Draw &draw) const
{
    const RowSpan ink = FindInk(sheet), room = RoomOn(sheet, faxPage);
    if (ink.Height() == 0 || room.Contains(ink))
        return sheet;
    const SheetLayout fitted = FitInk(layout, ink, room, keepWidth);
    if (fitted.place.size() == layout.place.size())
        return MoveRows(sheet, fitted.place.top() - layout.place.top());
    return draw(fitted, room);
}

void PageMaker::PaintHeader(QImage &sheet, int faxPage, int faxPageCount) const
{
    const HeaderFields fields{faxPage, faxPageCount, options.dateTime, options.strCompanyName,
                              options.strRecipients};
    const int own = Monochrome::DotsPerInchY(sheet), painted = options.format.DotsPerInchY();
    if (own == painted) {
        options.header->Paint(sheet, fields);
        return;
    }
    QImage header = Monochrome::MakeBlank(sheet.height() * painted / own, painted);
    options.header->Paint(header, fields);
    AddInk(sheet, header);
}
