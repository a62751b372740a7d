#include "LetterFax.h"

#include <QFile>
#include <QFont>
#include <QImage>
#include <QPainter>

#include <tiffio.h>

namespace {

/// A page of a letter, at the resolution of a fine fax.
QImage DrawLetter(int number)
{
    constexpr int width = 1728, height = 2292, left = 150, lineHeight = 46;
    QImage page(width, height, QImage::Format_Mono);
    page.fill(1);
    QPainter painter(&page);
    QFont font("Liberation Serif");
    font.setPixelSize(34);
    painter.setFont(font);
    for (int line = 0; line < 44; ++line)
        painter.drawText(left, 160 + line * lineHeight,
                         QString("Page %1, line %2: the goods of your order have left our house today.")
                             .arg(number)
                             .arg(line));
    return page;
}

} // namespace

bool LetterFax::Write(const QString &path, int pages)
{
    TIFF *tiff = TIFFOpen(QFile::encodeName(path).constData(), "w");
    bool isWritten = tiff != nullptr;
    for (int number = 0; isWritten && number < pages; ++number) {
        QImage page = DrawLetter(number);
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, page.width());
        TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, page.height());
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, page.height());
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_CCITTFAX4);
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
        TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 204.0);
        TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 196.0);
        for (int row = 0; row < page.height(); ++row)
            isWritten = isWritten && TIFFWriteScanline(tiff, page.scanLine(row), uint32_t(row)) == 1;
        isWritten = isWritten && TIFFWriteDirectory(tiff) == 1;
    }
    if (tiff)
        TIFFClose(tiff);
    return isWritten;
}
