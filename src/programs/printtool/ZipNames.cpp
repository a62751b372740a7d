#include "ZipNames.h"

#include <QFile>
#include <QtEndian>

#include <algorithm>

namespace {

constexpr qint64 endSize = 22, entrySize = 46, headerSize = 30;

/// Behind the directory's end there may be a comment.
constexpr qint64 mostComment = 65535;

constexpr qint64 mostDirectory = 1 << 20;

quint16 Short(const QByteArray &bytes, qsizetype at)
{
    return qFromLittleEndian<quint16>(bytes.constData() + at);
}

quint32 Long(const QByteArray &bytes, qsizetype at)
{
    return qFromLittleEndian<quint32>(bytes.constData() + at);
}

QByteArray ReadAt(QFile &file, qint64 offset, qint64 size)
{
    return file.seek(offset) ? file.read(size) : QByteArray();
}

QByteArray ReadDirectory(QFile &file)
{
    constexpr qsizetype offsetAt = 16, sizeAt = 12;
    const qint64 tailSize = std::min(file.size(), endSize + mostComment);
    const QByteArray tail = ReadAt(file, file.size() - tailSize, tailSize);
    const qsizetype end = tail.lastIndexOf(QByteArrayView("PK\5\6"));
    if (end < 0 || tail.size() - end < endSize)
        return {};
    const qint64 size = Long(tail, end + sizeAt);
    const QByteArray directory = ReadAt(file, Long(tail, end + offsetAt), std::min(size, mostDirectory));
    return directory.size() == std::min(size, mostDirectory) ? directory : QByteArray();
}

} // namespace

QList<ZipEntry> ListZip(const QString &path)
{
    constexpr qsizetype methodAt = 10, nameSizeAt = 28, extraSizeAt = 30, commentSizeAt = 32, headerAt = 42;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray directory = ReadDirectory(file);
    QList<ZipEntry> entries;
    qsizetype at = 0;
    while (at + entrySize <= directory.size() && QByteArrayView(directory).sliced(at).startsWith("PK\1\2")) {
        const qsizetype nameSize = Short(directory, at + nameSizeAt);
        entries.append({directory.mid(at + entrySize, nameSize), Short(directory, at + methodAt) == 0,
                        Long(directory, at + headerAt)});
        at +=
            entrySize + nameSize + Short(directory, at + extraSizeAt) + Short(directory, at + commentSizeAt);
    }
    return entries;
}

QByteArray ReadStored(const QString &path, const ZipEntry &entry, qint64 size)
{
    constexpr qsizetype nameSizeAt = 26, extraSizeAt = 28;
    QFile file(path);
    if (!entry.bStored || !file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray header = ReadAt(file, entry.lOffset, headerSize);
    if (header.size() != headerSize || !header.startsWith("PK\3\4"))
        return {};
    return ReadAt(file, entry.lOffset + headerSize + Short(header, nameSizeAt) + Short(header, extraSizeAt),
                  size);
}
