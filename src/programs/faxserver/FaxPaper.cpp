#include "FaxPaper.h"

namespace {

constexpr int lInkBelow = 150; ///< grey values that a machine sees as black
constexpr int lSenderLineBottom = 44;

QImage ToInk(const QImage &grey)
{
    QImage page(grey.size(), QImage::Format_Mono);
    page.setColorTable({qRgb(255, 255, 255), qRgb(0, 0, 0)});
    page.fill(0);
    for (int y = 0; y < grey.height(); ++y) {
        const uchar *from = grey.constScanLine(y);
        uchar *to = page.scanLine(y);
        for (int x = 0; x < grey.width(); ++x) {
            if (from[x] < lInkBelow)
                to[x / 8] |= uchar(0x80 >> (x % 8));
        }
    }
    return page;
}

} // namespace

FaxPaper::FaxPaper(Resolution resolution)
    : lResolution(resolution)
    , imgPage(lWidth, resolution == resFine ? lHeight : lHeight / 2, QImage::Format_Grayscale8)
{
    imgPage.fill(Qt::white);
    objPainter.begin(&imgPage);
    objPainter.scale(1.0, double(imgPage.height()) / lHeight);
    objPainter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    objPainter.setPen(QPen(Qt::black, 3));
}

QFont FaxPaper::FontOf(int size, bool isBold) const
{
    QFont font(strFamily);
    font.setPixelSize(size);
    font.setBold(isBold);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

void FaxPaper::Text(int x, int y, int size, const QString &text, bool isBold)
{
    objPainter.setFont(FontOf(size, isBold));
    objPainter.drawText(x, y, text);
}

void FaxPaper::TextRight(int x, int y, int size, const QString &text, bool isBold)
{
    Text(x - QFontMetrics(FontOf(size, isBold)).horizontalAdvance(text), y, size, text, isBold);
}

void FaxPaper::TextCentred(int x, int y, int size, const QString &text, bool isBold)
{
    Text(x - QFontMetrics(FontOf(size, isBold)).horizontalAdvance(text) / 2, y, size, text, isBold);
}

int FaxPaper::Paragraph(int y, int size, const QString &text)
{
    return ParagraphIn(lMargin, y, lTextWidth, size, text);
}

int FaxPaper::ParagraphIn(int x, int y, int width, int size, const QString &text)
{
    objPainter.setFont(FontOf(size, false));
    QRect used;
    objPainter.drawText(QRect(x, y, width, lHeight), Qt::TextWordWrap, text, &used);
    return used.bottom() + size * 2 / 3;
}

void FaxPaper::Line(int x1, int y1, int x2, int y2, int width)
{
    objPainter.setPen(QPen(Qt::black, width));
    objPainter.drawLine(x1, y1, x2, y2);
}

void FaxPaper::Frame(int x, int y, int width, int height, int pen)
{
    objPainter.setPen(QPen(Qt::black, pen));
    objPainter.setBrush(Qt::NoBrush);
    objPainter.drawRect(x, y, width, height);
}

QImage FaxPaper::Finish(const QString &senderLine)
{
    objPainter.resetTransform();
    objPainter.scale(1.0, double(imgPage.height()) / lHeight);
    strFamily = "Liberation Mono";
    objPainter.setPen(Qt::black);
    Text(60, lSenderLineBottom - 8, 26, senderLine, true);
    objPainter.end();
    return ToInk(imgPage);
}
