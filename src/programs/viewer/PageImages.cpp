#include "PageImages.h"

#include "FaxDocument.h"
#include "SaveError.h"

#include <QSizeF>

#include <cmath>

namespace {

/// Qt writes one bit per pixel into a PDF file only with exactly this table.
const QList<QRgb> blackAndWhite{0xff000000, 0xffffffff};

QImage::Format FormatOf(const PageBits &page)
{
    if (page.lBitsPerPixel == 1)
        return QImage::Format_Mono;
    return page.lBitsPerPixel == 8 ? QImage::Format_Indexed8 : QImage::Format_RGB32;
}

QImage WithBlackFirst(QImage image)
{
    const QList<QRgb> table = image.colorTable();
    if (table == QList<QRgb>(blackAndWhite.rbegin(), blackAndWhite.rend())) {
        image.invertPixels();
        image.setColorTable(blackAndWhite);
    } else if (table != blackAndWhite) {
        image.convertTo(QImage::Format_RGB32);
    }
    return image;
}

} // namespace

QImage PageImages::FromBits(const PageBits &page)
{
    if (page.IsEmpty())
        return {};
    QImage shared(reinterpret_cast<const uchar *>(page.abBits.constData()), page.lWidth, page.lHeight,
                  page.lBytesPerLine, FormatOf(page));
    if (page.lBitsPerPixel <= 8)
        shared.setColorTable(page.aPalette);
    if (page.lBitsPerPixel == 1)
        return WithBlackFirst(shared.copy());
    if (shared.allGray())
        return shared.convertToFormat(QImage::Format_Grayscale8);
    // A conversion into the format that it has would share the page's memory.
    return page.lBitsPerPixel == 8 ? shared.convertToFormat(QImage::Format_RGB32) : shared.copy();
}

QImage PageImages::Load(const FaxDocument &fax, int page)
{
    QImage image = FromBits(fax.LoadPage(page));
    if (image.isNull())
        RaiseUnreadable(fax, page);
    return image;
}

QImage PageImages::MakeSquare(const QImage &page, const QSizeF &size)
{
    if (page.isNull() || size.isEmpty())
        return page;
    const double dotsPerInch = std::max(page.width() / size.width(), page.height() / size.height());
    const QSize square(static_cast<int>(std::lround(size.width() * dotsPerInch)),
                       static_cast<int>(std::lround(size.height() * dotsPerInch)));
    QImage image = page;
    if (square != page.size())
        image = page.convertToFormat(page.isGrayscale() ? QImage::Format_Grayscale8 : QImage::Format_RGB32)
                    .scaled(square, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    constexpr double inchesPerMetre = 1000 / 25.4;
    image.setDotsPerMeterX(static_cast<int>(std::lround(dotsPerInch * inchesPerMetre)));
    image.setDotsPerMeterY(image.dotsPerMeterX());
    return image;
}
