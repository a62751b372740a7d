#include "controls/HeaderPainter.h"

#include "controls/HeaderTexts.h"

#include <QFont>
#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

/// What is darker becomes black. A little above the middle: a fax loses thin strokes.
constexpr uchar ink = 140;
constexpr double tenthsPerInch = 254, pointsPerInch = 72;
/// In tenths of a millimetre: what a header takes at most, so that a page keeps room for its content, and
/// what parts two texts of a line.
constexpr int tallestBlock = 1200, gapOfTexts = 40;

int ToDots(int tenths, int dotsPerInch)
{
    return static_cast<int>(std::lround(tenths * dotsPerInch / tenthsPerInch));
}

/// Hinted to the unequal dots: unhinted letters of 6 points run together at 98 dots per inch.
///
/// Each thread makes its own: the copies of a font share its engine.
QFont MakeFont(const HeaderText &text, int dotsPerInchX, int dotsPerInchY)
{
    const double size = std::clamp(text.dFontSize, 1.0, double(largestHeaderFont)) / pointsPerInch;
    const double height = size * dotsPerInchY, width = size * dotsPerInchX;
    const int rows = std::max(1, static_cast<int>(std::lround(height)));
    QFont font(text.strFontName);
    font.setPixelSize(rows);
    font.setStretch(static_cast<int>(std::lround(100 * width / rows)));
    font.setBold(text.bBold);
    font.setItalic(text.bItalic);
    font.setUnderline(text.bUnderline);
    font.setStrikeOut(text.bStrikeOut);
    font.setStyleStrategy(QFont::StyleStrategy(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
    font.setHintingPreference(QFont::PreferFullHinting);
    return font;
}

/// What of the text fits; nothing where not even the dots do.
QString Shorten(const QString &text, const QFont &font, int width, int room)
{
    if (width <= room)
        return text;
    const QFontMetrics metrics(font);
    const QString shortened = metrics.elidedText(text, Qt::ElideRight, room);
    return metrics.horizontalAdvance(shortened) <= room ? shortened : QString();
}

/// The ink of up to eight grays, the first of them in the highest bit.
uchar InkOf(const uchar *grays, int count)
{
    unsigned bits = 0;
    for (int which = 0; which < count; ++which)
        bits |= static_cast<unsigned>(grays[which] < ink) << (7 - which);
    return static_cast<uchar>(bits);
}

/// Adds the ink of some rows of grays to the sheet, from its row `top` on.
void AddInk(QImage &sheet, const QImage &grays, int top)
{
    static constexpr std::array<uchar, 8> paper{0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff};
    const int rows = std::min(grays.height(), sheet.height() - top);
    for (int row = std::max(0, -top); row < rows; ++row) {
        const uchar *gray = grays.constScanLine(row);
        uchar *line = sheet.scanLine(top + row);
        for (int x = 0; x < grays.width(); x += 8) {
            const int count = std::min(8, grays.width() - x);
            if (!std::equal(gray + x, gray + x + count, paper.begin()))
                line[x / 8] |= InkOf(gray + x, count);
        }
    }
}

} // namespace

HeaderPainter::HeaderPainter(const HeaderProfile &headerProfile, int dotsPerInchX, int dotsPerInchY)
    : lDotsPerInchX(dotsPerInchX)
    , lDotsPerInchY(dotsPerInchY)
    , header(MakeBlock(std::span(headerProfile.aTexts).first<6>(), headerProfile.headerSpace, false))
    , footer(MakeBlock(std::span(headerProfile.aTexts).last<6>(), headerProfile.footerSpace, true))
    , bOnlyFirstHeader(headerProfile.bOnlyFirstHeader)
    , bOnlyFirstFooter(headerProfile.bOnlyFirstFooter)
{
}

HeaderPainter::Line HeaderPainter::MakeLine(std::span<const HeaderText, 3> texts) const
{
    Line line;
    int descent = 0;
    for (std::size_t which = 0; which < line.aTexts.size(); ++which) {
        line.aTexts[which] = texts[which];
        if (texts[which].strText.trimmed().isEmpty())
            continue;
        const QFontMetrics metrics(MakeFont(texts[which], lDotsPerInchX, lDotsPerInchY));
        line.lAscent = std::max(line.lAscent, metrics.ascent());
        descent = std::max(descent, metrics.descent());
    }
    line.lHeight = line.lAscent + descent;
    return line;
}

HeaderPainter::Block HeaderPainter::MakeBlock(std::span<const HeaderText, 6> texts, const HeaderSpace &space,
                                              bool isFooter) const
{
    Block block;
    const int edge = ToDots(space.lTopMargin, lDotsPerInchY), row = ToDots(space.lLineSpace, lDotsPerInchY);
    block.lLeft = ToDots(space.lLeftMargin, lDotsPerInchX);
    block.lRight = ToDots(space.lRightMargin, lDotsPerInchX);
    block.lHeight = isFooter ? 0 : edge;
    for (Line line : {MakeLine(texts.first<3>()), MakeLine(texts.last<3>())}) {
        if (line.lHeight == 0)
            continue;
        const int height = std::max(row, line.lHeight);
        line.lTop = block.lHeight + (isFooter ? height - line.lHeight : 0);
        block.lHeight += height;
        block.aLines.append(line);
    }
    if (block.aLines.isEmpty())
        return {};
    block.lHeight += isFooter ? edge : 0;
    block.lHeight = std::min(block.lHeight, ToDots(tallestBlock, lDotsPerInchY));
    return block;
}

void HeaderPainter::Paint(QImage &sheet, const HeaderFields &fields) const
{
    if (HeaderHeight(fields.lPage) > 0)
        PaintBlock(sheet, header, 0, fields);
    if (FooterHeight(fields.lPage) > 0)
        PaintBlock(sheet, footer, sheet.height() - footer.lHeight, fields);
}

void HeaderPainter::PaintBlock(QImage &sheet, const Block &block, int top, const HeaderFields &fields) const
{
    for (const Line &line : block.aLines) {
        const int rows = std::min(line.lHeight, block.lHeight - line.lTop);
        if (rows <= 0)
            break;
        QImage grays(sheet.width(), rows, QImage::Format_Grayscale8);
        grays.fill(Qt::white);
        DrawLine(grays, block, line, fields);
        AddInk(sheet, grays, top + line.lTop);
    }
}

void HeaderPainter::DrawLine(QImage &grays, const Block &block, const Line &line,
                             const HeaderFields &fields) const
{
    std::array<QFont, 3> fonts;
    std::array<QString, 3> texts;
    std::array<int, 3> widths{};
    for (std::size_t which = 0; which < texts.size(); ++which) {
        fonts[which] = MakeFont(line.aTexts[which], lDotsPerInchX, lDotsPerInchY);
        texts[which] = HeaderTexts::Expand(line.aTexts[which].strText, fields);
        widths[which] = QFontMetrics(fonts[which]).horizontalAdvance(texts[which]);
    }
    const int room = grays.width() - block.lLeft - block.lRight;
    const auto places = HeaderTexts::Place(widths, room, ToDots(gapOfTexts, lDotsPerInchX));
    QPainter painter(&grays);
    for (std::size_t which = 0; which < texts.size(); ++which) {
        const QString shown = Shorten(texts[which], fonts[which], widths[which], places.aWidth[which]);
        painter.setFont(fonts[which]);
        painter.drawText(block.lLeft + places.aLeft[which], line.lAscent, shown);
    }
}
