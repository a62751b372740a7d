#include "OleStorage.h"

#include <QtEndian>

#include <algorithm>

namespace {

constexpr qint64 headerSize = 512, entrySize = 128;
constexpr qsizetype sectorShiftAt = 30, directoryAt = 48, moreTablesAt = 68, tablesAt = 76;

/// Sector numbers from here on mark something else.
constexpr quint32 lastSector = 0xfffffffa, freeSector = 0xffffffff;

/// Sectors of chains: those of a file of 2 GiB.
constexpr qsizetype mostTables = 32768;

constexpr qsizetype mostEntries = 10'000;

/// Streams below this size are kept in pieces of their own size.
constexpr quint32 smallest = 4096;

quint32 Long(const QByteArray &bytes, qsizetype at)
{
    return qFromLittleEndian<quint32>(bytes.constData() + at);
}

quint16 Short(const QByteArray &bytes, qsizetype at)
{
    return qFromLittleEndian<quint16>(bytes.constData() + at);
}

} // namespace

OleStorage::OleStorage(const QString &path)
    : file(path)
{
    bWhole = file.open(QIODevice::ReadOnly) && ReadHeader() && ReadChains() && ReadEntries();
}

bool OleStorage::ReadHeader()
{
    constexpr int smallSectors = 9, largeSectors = 12;
    abHeader = file.read(headerSize);
    if (abHeader.size() != headerSize || !abHeader.startsWith(Signature))
        return false;
    const int shift = Short(abHeader, sectorShiftAt);
    if (shift != smallSectors && shift != largeSectors)
        return false;
    lSectorSize = qint64(1) << shift;
    return true;
}

/// The sector's bytes; short or empty when it lies beyond the file's end.
QByteArray OleStorage::Sector(quint32 number)
{
    return file.seek((qint64(number) + 1) * lSectorSize) ? file.read(lSectorSize) : QByteArray();
}

/// The sectors that hold the chains: the header names the first ones, further sectors the rest.
QList<quint32> OleStorage::ListTables()
{
    QList<quint32> tables;
    const auto take = [&](const QByteArray &bytes, qsizetype from, qsizetype end) {
        for (qsizetype at = from; at < end && Long(bytes, at) < lastSector; at += 4)
            tables.append(Long(bytes, at));
    };
    take(abHeader, tablesAt, headerSize);
    quint32 more = Long(abHeader, moreTablesAt);
    while (more < lastSector && tables.size() < mostTables) {
        const QByteArray sector = Sector(more);
        const qsizetype known = tables.size();
        if (sector.size() == lSectorSize)
            take(sector, 0, lSectorSize - 4);
        if (tables.size() == known) // missing, or going round in circles
            break;
        more = Long(sector, lSectorSize - 4);
    }
    return tables;
}

bool OleStorage::ReadChains()
{
    const QList<quint32> tables = ListTables();
    for (const quint32 table : tables) {
        const QByteArray sector = Sector(table);
        if (sector.size() != lSectorSize)
            return false;
        for (qsizetype at = 0; at < sector.size(); at += 4)
            aNext.append(Long(sector, at));
    }
    qsizetype used = aNext.size();
    while (used > 0 && aNext[used - 1] == freeSector)
        --used;
    // The last sector may be cut short, since what fills it means nothing.
    return used > 0 && file.size() > used * lSectorSize;
}

bool OleStorage::ReadEntries()
{
    constexpr qsizetype nameSizeAt = 64, startAt = 116, sizeAt = 120, mostName = 64;
    quint32 sector = Long(abHeader, directoryAt);
    while (sector < lastSector) {
        const QByteArray bytes = Sector(sector);
        if (bytes.size() != lSectorSize || aEntries.size() > mostEntries || sector >= quint32(aNext.size()))
            return false;
        for (qsizetype at = 0; at < bytes.size(); at += entrySize) {
            const qsizetype nameSize = std::min<qsizetype>(Short(bytes, at + nameSizeAt), mostName);
            QString name;
            for (qsizetype character = 0; character + 2 < nameSize; character += 2) // a NUL ends it
                name += QChar(Short(bytes, at + character));
            aEntries.append({name, Long(bytes, at + startAt), Long(bytes, at + sizeAt)});
        }
        sector = aNext[sector];
    }
    return !aEntries.isEmpty();
}

bool OleStorage::Has(QStringView name) const
{
    return std::any_of(aEntries.begin(), aEntries.end(),
                       [&](const Entry &entry) { return entry.strName == name; });
}

QByteArray OleStorage::Begin(QStringView name)
{
    for (const Entry &entry : std::as_const(aEntries)) {
        if (entry.strName == name)
            return entry.lSize < smallest ? BeginSmall(entry) : Sector(entry.lStart);
    }
    return {};
}

/// Small streams share the sectors of the first entry's.
QByteArray OleStorage::BeginSmall(const Entry &entry)
{
    constexpr qint64 pieceSize = 64;
    quint32 sector = aEntries.first().lStart;
    const qint64 offset = entry.lStart * pieceSize;
    for (qint64 passed = lSectorSize; passed <= offset && sector < quint32(aNext.size());
         passed += lSectorSize)
        sector = aNext[sector];
    return Sector(sector).mid(offset % lSectorSize, pieceSize);
}
