#include "PictureResolution.h"

#include <QFile>
#include <QtEndian>

namespace {

constexpr double metresPerInch = 0.0254, centimetresPerInch = 2.54;

template <typename Number>
double BigEndian(const QByteArray &bytes, qsizetype at)
{
    return double(qFromBigEndian<Number>(bytes.constData() + at));
}

/// The chunk stands in front of the pixels.
QSizeF ReadPng(const QByteArray &head)
{
    constexpr qsizetype signature = 8, lengthAndName = 8, check = 4, physical = 9;
    qsizetype at = signature;
    while (at + lengthAndName + physical <= head.size()) {
        const auto size = qFromBigEndian<quint32>(head.constData() + at);
        const QByteArray name = head.mid(at + 4, 4);
        const qsizetype data = at + lengthAndName;
        if (name == "pHYs" && head[data + 8] == 1) // dots per metre
            return QSizeF(BigEndian<quint32>(head, data), BigEndian<quint32>(head, data + 4)) * metresPerInch;
        if (name == "IDAT" || size > quint32(head.size()))
            break;
        at = data + qsizetype(size) + check;
    }
    return {};
}

/// JFIF stands at once behind the file's first marker.
QSizeF ReadJpeg(const QByteArray &head)
{
    constexpr qsizetype nameAt = 6, unitAt = 13, densityAt = 14, end = 18;
    if (head.size() < end || !head.mid(nameAt).startsWith("JFIF"))
        return {};
    const QSizeF density(BigEndian<quint16>(head, densityAt), BigEndian<quint16>(head, densityAt + 2));
    switch (head[unitAt]) {
    case 1:
        return density;
    case 2:
        return density * centimetresPerInch;
    default:
        return {};
    }
}

QSizeF ReadBmp(const QByteArray &head)
{
    constexpr qsizetype headerSizeAt = 14, densityAt = 38, end = 46;
    constexpr quint32 withDensity = 40;
    if (head.size() < end || qFromLittleEndian<quint32>(head.constData() + headerSizeAt) < withDensity)
        return {};
    return QSizeF(qFromLittleEndian<qint32>(head.constData() + densityAt),
                  qFromLittleEndian<qint32>(head.constData() + densityAt + 4)) *
           metresPerInch;
}

} // namespace

QSizeF PictureResolution::Read(const QString &path)
{
    constexpr qint64 headSize = 64 * 1024;
    QFile file(path);
    const QByteArray head = file.open(QIODevice::ReadOnly) ? file.read(headSize) : QByteArray();
    if (head.startsWith("\x89PNG"))
        return ReadPng(head);
    if (head.startsWith("\xff\xd8"))
        return ReadJpeg(head);
    return head.startsWith("BM") ? ReadBmp(head) : QSizeF();
}
