#include "PsdPicture.h"

#include "ConversionError.h"

#include <QCoreApplication>
#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr int opaque = 255;

/// A row of the PackBits form; false when it gives more or less than the row.
bool Unpack(const QByteArray &packed, QByteArray &row)
{
    qsizetype from = 0, to = 0;
    while (from < packed.size() && to < row.size()) {
        const int code = static_cast<signed char>(packed[from++]);
        if (code == -128) // means nothing
            continue;
        const qsizetype count = code < 0 ? 1 - code : code + 1;
        const qsizetype taken = code < 0 ? 1 : count;
        if (from + taken > packed.size() || to + count > row.size())
            return false;
        if (code < 0)
            std::memset(row.data() + to, packed[from], size_t(count));
        else
            std::memcpy(row.data() + to, packed.constData() + from, size_t(count));
        from += taken;
        to += count;
    }
    return to == row.size();
}

/// Linear light, as samples of 32 bits have it, to a level.
uchar LevelOfLight(float light)
{
    constexpr double gamma = 2.2;
    return std::isfinite(light) ? static_cast<uchar>(std::lround(
                                      std::pow(std::clamp(double(light), 0.0, 1.0), 1 / gamma) * 255))
                                : uchar(0);
}

/// One level a pixel, whatever the depth.
void ToLevels(const QByteArray &row, int depth, int width, uchar *levels)
{
    for (int x = 0; x < width; ++x) {
        if (depth == 1)
            levels[x] = (row[x / 8] >> (7 - x % 8) & 1) != 0 ? 0 : opaque; // ink
        else if (depth == 32)
            levels[x] = LevelOfLight(qFromBigEndian<float>(row.constData() + 4 * qsizetype(x)));
        else
            levels[x] = static_cast<uchar>(row[qsizetype(x) * depth / 8]);
    }
}

} // namespace

PsdPicture::PsdPicture(const QString &path)
    : file(path)
{
    if (!file.open(QIODevice::ReadOnly))
        RefuseDamaged();
    ReadHeader();
    ReadPalette();
    ReadResources();
    SkipLayers();
    lPixelsAt = file.pos();
}

QByteArray PsdPicture::Take(qint64 size)
{
    QByteArray bytes = size <= file.size() - file.pos() ? file.read(size) : QByteArray();
    if (bytes.size() != size)
        RefuseDamaged();
    return bytes;
}

quint64 PsdPicture::TakeNumber(int size)
{
    quint64 number = 0;
    for (const char byte : Take(size))
        number = number << 8 | static_cast<uchar>(byte);
    return number;
}

void PsdPicture::ReadHeader()
{
    constexpr int mostChannels = 56, mostSide = 300'000, reserved = 6;
    Take(4);
    bLarge = TakeNumber(2) == 2;
    Take(reserved);
    lChannels = static_cast<int>(TakeNumber(2));
    const quint64 height = TakeNumber(4), width = TakeNumber(4);
    lDepth = static_cast<int>(TakeNumber(2));
    lMode = static_cast<int>(TakeNumber(2));
    if (width > mostSide || height > mostSide || lChannels < ColorChannels() || lChannels > mostChannels)
        RefuseDamaged();
    picture.size = {static_cast<int>(width), static_cast<int>(height)};
    CheckSize(picture.size);
    const bool isKnown =
        lMode == Bitmap ? lDepth == 1 : lDepth == 8 || (lMode != Indexed && (lDepth == 16 || lDepth == 32));
    if (!isKnown)
        RefuseDamaged();
}

void PsdPicture::ReadPalette()
{
    constexpr qsizetype colors = 3 * 256;
    const auto size = static_cast<qint64>(TakeNumber(4));
    abPalette = Take(lMode == Indexed ? std::min<qint64>(size, colors) : 0);
    if (lMode == Indexed && abPalette.size() != colors)
        RefuseDamaged();
    file.seek(file.pos() + size - abPalette.size());
}

/// Of these only the resolution is of use.
void PsdPicture::ReadResources()
{
    constexpr quint64 resolution = 0x03ed;
    constexpr double fraction = 65536; // both are fixed point numbers
    const auto size = static_cast<qint64>(TakeNumber(4));
    const qint64 end = file.pos() + size;
    while (file.pos() + 12 <= end && Take(4) == "8BIM") {
        const quint64 id = TakeNumber(2);
        const auto nameSize = static_cast<qint64>(TakeNumber(1));
        Take(nameSize + (nameSize + 1) % 2); // padded, its size included
        const auto dataSize = static_cast<qint64>(TakeNumber(4));
        const qint64 next = file.pos() + dataSize + dataSize % 2;
        if (id == resolution && dataSize >= 16) {
            const auto x = double(TakeNumber(4));
            Take(4);
            picture.dotsPerInch = QSizeF(x, double(TakeNumber(4))) / fraction;
        }
        file.seek(next);
    }
    file.seek(end);
}

/// A negative number of layers tells of a channel for what is clear.
void PsdPicture::SkipLayers()
{
    const int width = bLarge ? 8 : 4;
    const quint64 size = TakeNumber(width);
    const qint64 start = file.pos();
    if (size > quint64(file.size()))
        RefuseDamaged();
    if (size >= quint64(width) + 2 && TakeNumber(width) >= 2)
        bClear = (TakeNumber(2) & 0x8000U) != 0 && lChannels > ColorChannels();
    file.seek(start + static_cast<qint64>(size));
}

int PsdPicture::ColorChannels() const
{
    switch (lMode) {
    case Rgb:
    case Lab:
        return 3;
    case Cmyk:
        return 4;
    default:
        return 1;
    }
}

/// One channel lies behind the other; those behind the colours and the clear one mean nothing here.
QList<QImage> PsdPicture::ReadChannels()
{
    enum { Raw = 0, PackBits = 1 };
    if (!file.seek(lPixelsAt))
        RefuseDamaged();
    const auto form = TakeNumber(2);
    if (form != Raw && form != PackBits)
        throw ConversionError(
            QCoreApplication::translate("PsdPicture", "The picture is compressed in an unknown way."));
    const int width = picture.size.width(), height = picture.size.height();
    const QByteArray sizes =
        form == PackBits ? Take(qint64(bLarge ? 4 : 2) * lChannels * height) : QByteArray();
    QByteArray row((qsizetype(width) * lDepth + 7) / 8, '\0');
    QList<QImage> channels;
    for (int channel = 0; channel < ColorChannels() + (bClear ? 1 : 0); ++channel) {
        QImage levels = MakeGray(picture.size);
        for (int y = 0; y < height; ++y) {
            ReadRow(row, sizes, channel * height + y);
            ToLevels(row, lDepth, width, levels.scanLine(y));
        }
        channels.append(levels);
    }
    return channels;
}

void PsdPicture::ReadRow(QByteArray &row, const QByteArray &sizes, int number)
{
    if (sizes.isEmpty()) {
        row = Take(row.size());
        return;
    }
    const char *at = sizes.constData() + qsizetype(number) * (bLarge ? 4 : 2);
    const qint64 packed = bLarge ? qFromBigEndian<quint32>(at) : qFromBigEndian<quint16>(at);
    if (!Unpack(Take(packed), row))
        RefuseDamaged();
}

uchar PsdPicture::GrayOf(const QList<const uchar *> &channels, int x) const
{
    const int first = channels[0][x];
    switch (lMode) {
    case Rgb:
        return static_cast<uchar>(qGray(first, channels[1][x], channels[2][x]));
    case Cmyk: // ink is dark
        return static_cast<uchar>(qGray(first, channels[1][x], channels[2][x]) * channels[3][x] / opaque);
    case Indexed:
        return static_cast<uchar>(
            qGray(uchar(abPalette[first]), uchar(abPalette[first + 256]), uchar(abPalette[first + 2 * 256])));
    default: // of Lab the lightness
        return static_cast<uchar>(first);
    }
}

QImage PsdPicture::ReadGray(int, const QSize &)
{
    const QList<QImage> channels = ReadChannels();
    QImage gray = MakeGray(picture.size);
    for (int y = 0; y < gray.height(); ++y) {
        QList<const uchar *> rows;
        for (const QImage &channel : channels)
            rows.append(channel.constScanLine(y));
        uchar *to = gray.scanLine(y);
        for (int x = 0; x < gray.width(); ++x) {
            const int alpha = bClear ? rows.last()[x] : opaque;
            to[x] = static_cast<uchar>(opaque - (opaque - GrayOf(rows, x)) * alpha / opaque);
        }
    }
    return gray;
}
