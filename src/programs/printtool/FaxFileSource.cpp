#include "FaxFileSource.h"

#include "ConversionError.h"
#include "Monochrome.h"
#include "SheetFormat.h"
#include "controls/PageScaler.h"

#include <QCoreApplication>

namespace {

constexpr SheetFormat fine{true}, standard{false};

QString Translate(const char *text)
{
    return QCoreApplication::translate("FaxFileSource", text);
}

/// Files without a resolution: what is not higher than a long page of standard resolution is one.
int DotsPerInchY(const TiffPage &page)
{
    if (page.lDotsPerInchY > 0)
        return page.lDotsPerInchY;
    return page.lHeight < page.lWidth ? standard.DotsPerInchY() : fine.DotsPerInchY();
}

int DotsPerInchX(const TiffPage &page)
{
    return page.lDotsPerInchX > 0 ? page.lDotsPerInchX : SheetFormat::DotsPerInchX;
}

bool IsFaxPage(const TiffPage &page)
{
    const int dotsPerInchY = DotsPerInchY(page);
    return page.lWidth == SheetFormat::Width && page.lDecodedBits == 1 &&
           DotsPerInchX(page) == SheetFormat::DotsPerInchX &&
           (dotsPerInchY == fine.DotsPerInchY() || dotsPerInchY == standard.DotsPerInchY());
}

/// The page's own pixels; 1 is black whatever stands in the file.
QImage ToInk(const PageBits &bits, int dotsPerInchY)
{
    const bool oneIsBlack = qGray(bits.aPalette.value(0)) > qGray(bits.aPalette.value(1));
    QImage ink = Monochrome::FromBits(bits.abBits.constData(), bits.lBytesPerLine,
                                      {bits.lWidth, bits.lHeight}, oneIsBlack);
    Monochrome::SetResolution(ink, dotsPerInchY);
    return ink;
}

} // namespace

FaxFileSource::FaxFileSource(const QString &path)
    : pages(path)
{
    if (pages.Count() == 0)
        throw ConversionError(Translate("The fax file is damaged."));
}

QSizeF FaxFileSource::PageSize(int page)
{
    const TiffPage &entry = pages.Page(page);
    return {double(entry.lWidth) / DotsPerInchX(entry), double(entry.lHeight) / DotsPerInchY(entry)};
}

PageBits FaxFileSource::Load(int page, int rotation) const
{
    PageBits bits = pages.Load(page, -rotation);
    if (bits.IsEmpty())
        throw ConversionError(Translate("Page %1 cannot be read.").arg(page + 1));
    return bits;
}

QImage FaxFileSource::Render(int page, const QSize &size, int rotation)
{
    const PageBits bits = Load(page, rotation);
    return PageScaler::Shrink(bits, size, QRect(QPoint(), size)).convertToFormat(QImage::Format_Grayscale8);
}

QImage FaxFileSource::FaxPage(int page)
{
    const TiffPage &entry = pages.Page(page);
    if (!IsFaxPage(entry))
        return {};
    const PageBits bits = Load(page, 0);
    return bits.lBitsPerPixel == 1 ? ToInk(bits, DotsPerInchY(entry)) : QImage();
}
