#include "PictureSource.h"

#include "ConversionError.h"
#include "controls/PageScaler.h"

#include <QCoreApplication>
#include <QTransform>

namespace {

constexpr int quarterTurn = 90;

bool IsSane(const QSizeF &dotsPerInch)
{
    constexpr double fewest = 30, most = 4800, mostUnequal = 2.5; // a fax is twice as fine one way
    const double x = dotsPerInch.width(), y = dotsPerInch.height();
    return x >= fewest && y >= fewest && x <= most && y <= most && x <= y * mostUnequal &&
           y <= x * mostUnequal;
}

bool LiesOnItsSide(const StoredPicture &picture)
{
    return picture.turn.testFlag(QImageIOHandler::TransformationRotate90);
}

PageBits ToPageBits(const QImage &gray)
{
    PageBits bits;
    bits.lWidth = gray.width();
    bits.lHeight = gray.height();
    bits.lBitsPerPixel = 8;
    bits.lBytesPerLine = static_cast<int>(gray.bytesPerLine());
    bits.abBits =
        QByteArray::fromRawData(reinterpret_cast<const char *>(gray.constBits()), gray.sizeInBytes());
    for (int level = 0; level < 256; ++level)
        bits.aPalette.append(qRgb(level, level, level));
    return bits;
}

/// Smaller by the mean of the pixels, larger by what lies between them.
QImage Scale(const QImage &gray, const QSize &size)
{
    const QSize smaller = size.boundedTo(gray.size());
    QImage scaled = gray;
    if (smaller != gray.size())
        scaled = PageScaler::Shrink(ToPageBits(gray), smaller, QRect(QPoint(), smaller));
    if (smaller != size)
        scaled = scaled.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    return scaled.convertToFormat(QImage::Format_Grayscale8);
}

QImage Turn(const QImage &image, int rotation)
{
    return rotation % 360 == 0 ? image : image.transformed(QTransform().rotate(rotation));
}

/// As the file says that it stands upright.
QImage SetUpright(const QImage &image, QImageIOHandler::Transformations turn)
{
    const bool mirror = turn.testFlag(QImageIOHandler::TransformationMirror);
    const bool flip = turn.testFlag(QImageIOHandler::TransformationFlip);
    const QImage mirrored = mirror || flip ? image.mirrored(mirror, flip) : image;
    return Turn(mirrored, turn.testFlag(QImageIOHandler::TransformationRotate90) ? quarterTurn : 0);
}

} // namespace

PictureSource::PictureSource(const QString &path)
    : file(PictureFile::Open(path))
{
}

QSizeF PictureSource::PageSize(int page)
{
    constexpr double screen = 96;
    const StoredPicture picture = file->Look(page);
    const QSizeF density = IsSane(picture.dotsPerInch) ? picture.dotsPerInch : QSizeF(screen, screen);
    const QSizeF size(picture.size.width() / density.width(), picture.size.height() / density.height());
    return LiesOnItsSide(picture) ? size.transposed() : size;
}

QImage PictureSource::Render(int page, const QSize &size, int rotation)
{
    const StoredPicture picture = file->Look(page);
    const bool turned = (rotation / quarterTurn % 2 != 0) != LiesOnItsSide(picture);
    const QSize stored = turned ? size.transposed() : size;
    // Made smaller first: what is turned then is a page at most.
    const QImage scaled = Scale(file->ReadGray(page, stored), stored);
    if (scaled.isNull())
        throw ConversionError(
            QCoreApplication::translate("PictureSource", "There is not enough memory for the picture."));
    return Turn(SetUpright(scaled, picture.turn), rotation).convertToFormat(QImage::Format_Grayscale8);
}
