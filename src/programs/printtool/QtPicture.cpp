#include "QtPicture.h"

#include "PictureHeader.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>

#include <algorithm>

namespace {

/// JPEG is decoded smaller at once, so that only its packed form counts.
constexpr qint64 mostJpegPixels = 256'000'000;

/// What `mostPixels` of the deepest form take is more than Qt allows by itself.
void AllowLargePictures()
{
    constexpr int megabytes = 1100;
    static const bool once = (QImageReader::setAllocationLimit(megabytes), true);
    Q_UNUSED(once)
}

void SetUp(QImageReader &reader)
{
    AllowLargePictures();
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(false);
}

constexpr int opaque = 255;

/// In parts, since the forms between take four bytes for a pixel. What has the colour `clear` is white, too.
QImage ToGrayOverWhite(const QImage &image, QRgb clear = 0)
{
    constexpr int partHeight = 64;
    QImage gray = PictureFile::MakeGray(image.size());
    for (int top = 0; top < image.height(); top += partHeight) {
        const QImage part = image.copy(0, top, image.width(), std::min(partHeight, image.height() - top))
                                .convertToFormat(QImage::Format_ARGB32);
        for (int y = 0; y < part.height(); ++y) {
            const auto *from = reinterpret_cast<const QRgb *>(part.constScanLine(y));
            std::transform(from, from + part.width(), gray.scanLine(top + y), [clear](QRgb color) {
                const int alpha = color == clear ? 0 : qAlpha(color);
                return static_cast<uchar>(opaque - (opaque - qGray(color)) * alpha / opaque);
            });
        }
    }
    return gray;
}

} // namespace

QtPicture::QtPicture(const QString &path)
    : strPath(path)
{
    QImageReader reader(path);
    SetUp(reader);
    bJpeg = reader.format() == "jpeg";
    const PictureHeader header = PictureHeader::Read(path);
    const qint64 most = bJpeg ? mostJpegPixels : MostPixels;
    // Qt does not tell the size of what it finds too large by itself.
    if (!header.size.isEmpty())
        CheckSize(header.size, most);
    lClearColorAt = header.lClearColorAt;
    picture = {reader.size(), header.dotsPerInch, reader.transformation()};
    CheckSize(picture.size, most);
}

QImage QtPicture::ReadGray(int, const QSize &least)
{
    if (lClearColorAt > 0)
        return ReadWithClearColor();
    QImageReader reader(strPath);
    SetUp(reader);
    if (bJpeg) {
        int share = 1; // the decoder knows these: 1, 2, 4, 8
        while (share < 8 && picture.size.width() / (2 * share) >= least.width() &&
               picture.size.height() / (2 * share) >= least.height())
            share *= 2;
        reader.setScaledSize((picture.size + QSize(share - 1, share - 1)) / share);
    }
    const QImage image = reader.read();
    if (image.isNull())
        RefuseDamaged();
    return ToGrayOverWhite(image);
}

/// Qt would leave parts of such a picture unset: it gets to see no clear colour.
QImage QtPicture::ReadWithClearColor() const
{
    constexpr qsizetype colorSize = 6; // of each sample the upper byte counts here
    QFile file(strPath);
    QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    if (bytes.size() < lClearColorAt + colorSize)
        RefuseDamaged();
    const char *color = bytes.data() + lClearColorAt;
    const QRgb clear = qRgb(uchar(color[0]), uchar(color[2]), uchar(color[4]));
    bytes[lClearColorAt - 1] = 's'; // now its name means nothing
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer);
    SetUp(reader);
    const QImage image = reader.read();
    if (image.isNull())
        RefuseDamaged();
    return ToGrayOverWhite(image, clear);
}
