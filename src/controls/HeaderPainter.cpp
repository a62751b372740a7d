#include "controls/HeaderPainter.h"

#include "controls/HeaderTexts.h"

#include <QFont>
#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr double tenthsPerInch = 254, pointsPerInch = 72;
constexpr int tallestBlock =
    1200;                      ///< tenths of a millimetre: what is left of a page has room for its content
constexpr int gapOfTexts = 20; ///< between two texts of a line, in tenths of a millimetre

int ToDots(int tenths, int dotsPerInch)
{
    return static_cast<int>(std::lround(tenths * dotsPerInch / tenthsPerInch));
}

/// Made anew by each thread: fonts keep their engines in what their copies share.
QFont MakeFont(const HeaderText &text, int dotsPerInchX, int dotsPerInchY)
{
    const int height =
        std::max(1, static_cast<int>(std::lround(text.dFontSize * dotsPerInchY / pointsPerInch)));
    const double width = text.dFontSize * dotsPerInchX / pointsPerInch;
    QFont font(text.strFontName);
    font.setPixelSize(height);
    font.setStretch(static_cast<int>(std::lround(100 * width / height)));
    font.setBold(text.bBold);
    font.setItalic(text.bItalic);
    font.setUnderline(text.bUnderline);
    font.setStrikeOut(text.bStrikeOut);
    font.setStyleStrategy(QFont::NoAntialias);
    font.setHintingPreference(QFont::PreferFullHinting);
    return font;
}

} // namespace

HeaderPainter::HeaderPainter(const HeaderProfile &headerProfile, int dotsPerInchX, int dotsPerInchY)
    : lDotsPerInchX(dotsPerInchX)
    , lDotsPerInchY(dotsPerInchY)
    , header(MakeBlock(headerProfile.aTexts.data(), headerProfile.headerSpace, false))
    , footer(MakeBlock(headerProfile.aTexts.data() + 6, headerProfile.footerSpace, true))
    , bOnlyFirstHeader(headerProfile.bOnlyFirstHeader)
    , bOnlyFirstFooter(headerProfile.bOnlyFirstFooter)
{
}

HeaderPainter::Line HeaderPainter::MakeLine(const HeaderText *texts) const
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

HeaderPainter::Block HeaderPainter::MakeBlock(const HeaderText *texts, const HeaderSpace &space,
                                              bool isFooter) const
{
    Block block;
    const int edge = ToDots(space.lTopMargin, lDotsPerInchY), row = ToDots(space.lLineSpace, lDotsPerInchY);
    block.lLeft = ToDots(space.lLeftMargin, lDotsPerInchX);
    block.lRight = ToDots(space.lRightMargin, lDotsPerInchX);
    block.lHeight = isFooter ? 0 : edge;
    for (const HeaderText *first : {texts, texts + 3}) {
        Line line = MakeLine(first);
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
    const int room = sheet.width() - block.lLeft - block.lRight;
    QPainter painter(&sheet);
    painter.setClipRect(0, top, sheet.width(), block.lHeight);
    for (const Line &line : block.aLines) {
        std::array<QFont, 3> fonts;
        std::array<QString, 3> texts;
        std::array<int, 3> widths{};
        for (std::size_t which = 0; which < 3; ++which) {
            fonts[which] = MakeFont(line.aTexts[which], lDotsPerInchX, lDotsPerInchY);
            texts[which] = HeaderTexts::Expand(line.aTexts[which].strText, fields);
            widths[which] = QFontMetrics(fonts[which]).horizontalAdvance(texts[which]);
        }
        const HeaderTexts::Places places =
            HeaderTexts::Place(widths, room, ToDots(gapOfTexts, lDotsPerInchX));
        for (std::size_t which = 0; which < 3; ++which) {
            painter.setFont(fonts[which]);
            const QString shown =
                QFontMetrics(fonts[which]).elidedText(texts[which], Qt::ElideRight, places.aWidth[which]);
            painter.drawText(block.lLeft + places.aLeft[which], top + line.lTop + line.lAscent, shown);
        }
    }
}
