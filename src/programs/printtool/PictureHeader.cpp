#include "PictureHeader.h"

#include <QFile>
#include <QtEndian>

#include <algorithm>
#include <limits>

namespace {

constexpr double metresPerInch = 0.0254, centimetresPerInch = 2.54;

template <typename Number>
Number BigEndian(const QByteArray &bytes, qsizetype at)
{
    return qFromBigEndian<Number>(bytes.constData() + at);
}

qint32 LittleEndian(const QByteArray &bytes, qsizetype at)
{
    return qFromLittleEndian<qint32>(bytes.constData() + at);
}

int Side(quint32 pixels)
{
    return static_cast<int>(std::min<quint32>(pixels, std::numeric_limits<int>::max()));
}

/// The chunk of the density stands in front of the pixels.
PictureHeader ReadPng(const QByteArray &head)
{
    constexpr qsizetype widthAt = 16, heightAt = 20, firstChunk = 8, lengthAndName = 8, check = 4;
    constexpr qsizetype depthAt = 24, heightOfDensity = 4, unitOfDensity = 8, densitySize = 9;
    PictureHeader header;
    const bool hasDeepColors = head.mid(depthAt, 2) == QByteArray("\x10\x02", 2);
    if (head.size() >= heightAt + 4)
        header.size = {Side(BigEndian<quint32>(head, widthAt)), Side(BigEndian<quint32>(head, heightAt))};
    qsizetype at = firstChunk;
    while (at + lengthAndName + densitySize <= head.size()) {
        const qint64 size = BigEndian<quint32>(head, at);
        const QByteArray name = head.mid(at + 4, 4);
        const qsizetype data = at + lengthAndName;
        if (name == "pHYs" && head[data + unitOfDensity] == 1)
            header.dotsPerInch =
                QSizeF(BigEndian<quint32>(head, data), BigEndian<quint32>(head, data + heightOfDensity)) *
                metresPerInch;
        if (name == "tRNS" && hasDeepColors)
            header.lClearColorAt = data;
        at = name == "IDAT" ? head.size() : data + size + check;
    }
    return header;
}

/// JFIF stands at once behind the file's first marker.
PictureHeader ReadJpeg(const QByteArray &head)
{
    constexpr qsizetype nameAt = 6, unitAt = 13, densityAt = 14, end = 18;
    enum { PerInch = 1, PerCentimetre = 2 };
    PictureHeader header;
    if (head.size() < end || !head.mid(nameAt).startsWith("JFIF"))
        return header;
    const QSizeF density(BigEndian<quint16>(head, densityAt), BigEndian<quint16>(head, densityAt + 2));
    if (head[unitAt] == PerInch)
        header.dotsPerInch = density;
    else if (head[unitAt] == PerCentimetre)
        header.dotsPerInch = density * centimetresPerInch;
    return header;
}

/// A negative height tells that the rows lie from top to bottom.
PictureHeader ReadBmp(const QByteArray &head)
{
    constexpr qsizetype headerSizeAt = 14, widthAt = 18, heightAt = 22, densityAt = 38, end = 46;
    constexpr qint32 withDensity = 40;
    PictureHeader header;
    if (head.size() < end || LittleEndian(head, headerSizeAt) < withDensity)
        return header;
    const qint64 height = LittleEndian(head, heightAt);
    header.size = {LittleEndian(head, widthAt), Side(static_cast<quint32>(std::abs(height)))};
    header.dotsPerInch =
        QSizeF(LittleEndian(head, densityAt), LittleEndian(head, densityAt + 4)) * metresPerInch;
    return header;
}

} // namespace

PictureHeader PictureHeader::Read(const QString &path)
{
    constexpr qint64 headSize = 64 * 1024;
    QFile file(path);
    const QByteArray head = file.open(QIODevice::ReadOnly) ? file.read(headSize) : QByteArray();
    if (head.startsWith("\x89PNG"))
        return ReadPng(head);
    if (head.startsWith("\xff\xd8"))
        return ReadJpeg(head);
    return head.startsWith("BM") ? ReadBmp(head) : PictureHeader();
}
