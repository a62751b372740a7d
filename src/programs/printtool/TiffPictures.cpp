#include "TiffPictures.h"

#include "TiffSamples.h"

#include <QFile>

#include <algorithm>
#include <vector>

#include <tiffio.h>

namespace {

constexpr int mostPages = 5000;

/// What a page may make the decoder take at once.
constexpr tmsize_t mostBytes = tmsize_t(1) << 29;

int KeepQuiet(TIFF *, void *, const char *, const char *, va_list)
{
    return 1;
}

TIFF *OpenQuietly(const QString &path)
{
    const std::unique_ptr<TIFFOpenOptions, void (*)(TIFFOpenOptions *)> options(TIFFOpenOptionsAlloc(),
                                                                                TIFFOpenOptionsFree);
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), KeepQuiet, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), KeepQuiet, nullptr);
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), mostBytes);
    // Not mapped into memory: the file may become shorter meanwhile.
    return TIFFOpenExt(QFile::encodeName(path).constData(), "rm", options.get());
}

QSizeF DotsPerInch(TIFF *tiff)
{
    constexpr double centimetresPerInch = 2.54;
    float x = 0, y = 0;
    uint16_t unit = RESUNIT_INCH;
    if (TIFFGetField(tiff, TIFFTAG_XRESOLUTION, &x) != 1 || TIFFGetField(tiff, TIFFTAG_YRESOLUTION, &y) != 1)
        return {};
    TIFFGetFieldDefaulted(tiff, TIFFTAG_RESOLUTIONUNIT, &unit);
    if (unit == RESUNIT_NONE)
        return {};
    return QSizeF(x, y) * (unit == RESUNIT_CENTIMETER ? centimetresPerInch : 1);
}

uint16_t OrientationOf(TIFF *tiff)
{
    uint16_t orientation = ORIENTATION_TOPLEFT;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_ORIENTATION, &orientation);
    return orientation;
}

QImageIOHandler::Transformations TurnOf(TIFF *tiff)
{
    using Turn = QImageIOHandler;
    static constexpr Turn::Transformation turns[] = {
        Turn::TransformationNone,     Turn::TransformationNone,
        Turn::TransformationMirror,   Turn::TransformationRotate180,
        Turn::TransformationFlip,     Turn::TransformationFlipAndRotate90,
        Turn::TransformationRotate90, Turn::TransformationMirrorAndRotate90,
        Turn::TransformationRotate270};
    const uint16_t orientation = OrientationOf(tiff);
    return orientation < std::size(turns) ? turns[orientation] : Turn::TransformationNone;
}

bool IsPreview(TIFF *tiff)
{
    uint32_t type = 0;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SUBFILETYPE, &type);
    return (type & (FILETYPE_REDUCEDIMAGE | FILETYPE_MASK)) != 0;
}

QSize SizeOf(TIFF *tiff)
{
    constexpr uint32_t most = 1'000'000;
    uint32_t width = 0, height = 0;
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height);
    return {static_cast<int>(std::min(width, most)), static_cast<int>(std::min(height, most))};
}

/// The decoder's pixels hold their colours times their alpha.
uchar GrayOverWhite(uint32_t pixel)
{
    constexpr uint32_t opaque = 255;
    const int gray = qGray(int(TIFFGetR(pixel)), int(TIFFGetG(pixel)), int(TIFFGetB(pixel)));
    return static_cast<uchar>(std::min<uint32_t>(opaque, opaque - TIFFGetA(pixel) + uint32_t(gray)));
}

/// Null when the decoder does not know the pixels' form.
QImage ReadColors(TIFF *tiff, const QSize &size)
{
    const auto width = static_cast<size_t>(size.width()), height = static_cast<size_t>(size.height());
    std::vector<uint32_t> pixels(width * height);
    // The file's own orientation leaves the rows as they lie.
    if (TIFFReadRGBAImageOriented(tiff, uint32_t(width), uint32_t(height), pixels.data(), OrientationOf(tiff),
                                  1) != 1)
        return {};
    QImage gray = PictureFile::MakeGray(size);
    for (size_t y = 0; y < height; ++y) {
        const uint32_t *from = pixels.data() + y * width;
        std::transform(from, from + width, gray.scanLine(int(y)), GrayOverWhite);
    }
    return gray;
}

} // namespace

TiffPictures::TiffPictures(const QString &path)
    : file(OpenQuietly(path), TIFFClose)
{
    if (!file)
        RefuseDamaged();
    ListPages();
    if (aPages.isEmpty())
        RefuseDamaged();
}

void TiffPictures::ListPages()
{
    TIFF *tiff = file.get();
    do {
        const QSize size = SizeOf(tiff);
        CheckSize(size);
        if (aPages.size() == mostPages)
            RefuseDamaged();
        if (!IsPreview(tiff) || (aPages.isEmpty() && TIFFLastDirectory(tiff)))
            aPages.append({TIFFCurrentDirOffset(tiff), {size, DotsPerInch(tiff), TurnOf(tiff)}});
        if (TIFFLastDirectory(tiff))
            return;
    } while (TIFFReadDirectory(tiff) == 1);
    RefuseDamaged(); // half of the pages must not pass for all
}

QImage TiffPictures::ReadGray(int number, const QSize &)
{
    TIFF *tiff = file.get();
    const QSize size = aPages[number].picture.size;
    // Whoever writes the file meanwhile must not surprise the decoder.
    if (TIFFSetSubDirectory(tiff, aPages[number].lOffset) != 1 || SizeOf(tiff) != size)
        RefuseDamaged();
    char reason[1024];
    // The decoder may find out only later that it does not know a form.
    QImage gray = TIFFRGBAImageOK(tiff, reason) == 1 ? ReadColors(tiff, size) : QImage();
    if (gray.isNull())
        gray = TiffSamples::ReadGray(tiff, size);
    if (gray.isNull())
        RefuseDamaged();
    return gray;
}
