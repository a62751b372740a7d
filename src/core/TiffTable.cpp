#include "core/TiffTable.h"

#include "core/TiffHandle.h"

#include <QFileInfo>
#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>

namespace {

constexpr qint64 pointerSize = 4;
constexpr uint32_t widest = 10000, highest = 50000;
constexpr int mostPages = 5000;

/// A decoded page: A4 in colour at 400 dpi fits. A decoder holds it twice and its packed bytes besides.
constexpr quint64 mostPageBytes = 64 * 1024 * 1024;

/// A page as it lies in the file. Noise takes more than its pixels; a fax never does.
constexpr qint64 mostPackedBytes = 48 * 1024 * 1024;

/// What reading one page table may take: entries can overlap, so that a small file has a long table.
constexpr qint64 mostTableBytes = 64 * 1024 * 1024;

TiffFile &Source(thandle_t handle)
{
    return *static_cast<TiffFile *>(handle);
}

tmsize_t ReadFrom(thandle_t handle, void *buffer, tmsize_t size)
{
    return Source(handle).Read(static_cast<char *>(buffer), size);
}

tmsize_t WriteNothing(thandle_t, void *, tmsize_t)
{
    return 0;
}

toff_t SeekIn(thandle_t handle, toff_t offset, int origin)
{
    const bool found = Source(handle).Seek(static_cast<qint64>(offset), origin);
    return found ? static_cast<toff_t>(Source(handle).Position()) : static_cast<toff_t>(-1);
}

toff_t SizeOf(thandle_t handle)
{
    return static_cast<toff_t>(Source(handle).Size());
}

int LeaveOpen(thandle_t)
{
    return 0;
}

uint16_t Field(TIFF *tiff, ttag_t tag)
{
    uint16_t value = 0;
    TIFFGetFieldDefaulted(tiff, tag, &value);
    return value;
}

/// What scanners and fax machines write. FreeImage ends the whole program over some of the rest.
bool IsKnownPixelForm(TIFF *tiff)
{
    const uint16_t bits = Field(tiff, TIFFTAG_BITSPERSAMPLE), samples = Field(tiff, TIFFTAG_SAMPLESPERPIXEL);
    const uint16_t colors = Field(tiff, TIFFTAG_PHOTOMETRIC);
    if (TIFFIsTiled(tiff) || Field(tiff, TIFFTAG_SAMPLEFORMAT) != SAMPLEFORMAT_UINT)
        return false;
    if (samples == 1) {
        const bool gray = colors == PHOTOMETRIC_MINISWHITE || colors == PHOTOMETRIC_MINISBLACK;
        const bool palette = colors == PHOTOMETRIC_PALETTE;
        return (gray || palette) && (bits == 1 || bits == 4 || bits == 8 || (gray && bits == 16));
    }
    const bool inOneGo = Field(tiff, TIFFTAG_PLANARCONFIG) == PLANARCONFIG_CONTIG;
    const bool isJpeg = Field(tiff, TIFFTAG_COMPRESSION) == COMPRESSION_JPEG && bits == 8;
    return inOneGo && (samples == 3 || samples == 4) && (bits == 8 || bits == 16) &&
           (colors == PHOTOMETRIC_RGB || (isJpeg && samples == 3 && colors == PHOTOMETRIC_YCBCR));
}

/// Bits of one pixel while it is decoded, at the most.
quint64 DecodedDepth(quint64 bits, quint64 samples)
{
    if (samples > 1)
        return std::max<quint64>(bits * samples, 32);
    return bits == 4 ? 8 : bits;
}

bool IsWithinBounds(quint64 width, quint64 height, quint64 depth)
{
    return width >= 1 && height >= 1 && width <= widest && height <= highest &&
           width * height * depth / 8 <= mostPageBytes;
}

/// Pictures within a page would be decoded along with it, and nobody has looked at their size.
bool HoldsOtherPictures(TIFF *tiff)
{
    uint16_t count = 0;
    toff_t *offsets = nullptr;
    return TIFFGetField(tiff, TIFFTAG_SUBIFD, &count, &offsets) == 1 && count > 0;
}

int DotsPerInch(TIFF *tiff, ttag_t tag)
{
    constexpr float centimetresPerInch = 2.54F, most = 100000;
    float resolution = 0;
    uint16_t unit = RESUNIT_INCH;
    if (TIFFGetField(tiff, tag, &resolution) != 1)
        return 0;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_RESOLUTIONUNIT, &unit);
    if (unit == RESUNIT_CENTIMETER)
        resolution *= centimetresPerInch;
    return resolution > 0 && resolution < most ? static_cast<int>(std::lround(resolution)) : 0;
}

std::optional<TiffPage> LookAtPage(TIFF *tiff)
{
    uint32_t width = 0, height = 0;
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height);
    const quint64 depth =
        DecodedDepth(Field(tiff, TIFFTAG_BITSPERSAMPLE), Field(tiff, TIFFTAG_SAMPLESPERPIXEL));
    if (!IsKnownPixelForm(tiff) || !IsWithinBounds(width, height, depth) || HoldsOtherPictures(tiff))
        return std::nullopt;
    TiffPage page;
    page.lOffset = static_cast<qint64>(TIFFCurrentDirOffset(tiff));
    page.lWidth = static_cast<int>(width);
    page.lHeight = static_cast<int>(height);
    page.lDecodedBits = static_cast<int>(depth);
    page.lDotsPerInchX = DotsPerInch(tiff, TIFFTAG_XRESOLUTION);
    page.lDotsPerInchY = DotsPerInch(tiff, TIFFTAG_YRESOLUTION);
    return page;
}

/// What the strips say of themselves, and a decoder allots before it reads them; what exceeds the file counts
/// as the whole file.
qint64 PackedBytes(TIFF *tiff, qint64 fileSize)
{
    qint64 sum = 0;
    const uint32_t strips = TIFFNumberOfStrips(tiff);
    for (uint32_t strip = 0; strip < strips && sum <= mostPackedBytes; ++strip)
        sum +=
            static_cast<qint64>(std::min<uint64_t>(TIFFGetStrileByteCount(tiff, strip), uint64_t(fileSize)));
    return sum;
}

QList<TiffPage> WalkTable(TIFF *tiff)
{
    QList<TiffPage> pages;
    for (;;) {
        const std::optional<TiffPage> page = LookAtPage(tiff);
        if (!page || pages.size() == mostPages)
            return {};
        pages.append(*page);
        if (TIFFLastDirectory(tiff))
            return pages;
        // Damage, or an entry for the second time: half a fax must not pass for a whole one.
        if (TIFFReadDirectory(tiff) != 1)
            return {};
    }
}

/// The large variant is none: no fax comes near its 4 GiB.
bool BeginsTiff(const QByteArray &bytes)
{
    return bytes.startsWith(QByteArrayView("II*\0", 4)) || bytes.startsWith(QByteArrayView("MM\0*", 4));
}

/// A number as the file writes it.
template <typename Value>
QByteArray ToBytes(Value value, bool bigEndian)
{
    QByteArray bytes(sizeof(Value), '\0');
    bigEndian ? qToBigEndian(value, bytes.data()) : qToLittleEndian(value, bytes.data());
    return bytes;
}

} // namespace

TiffHandle OpenTiff(TiffFile &file)
{
    // Each unknown tag of each page would be told on the error output.
    TIFFSetErrorHandler(nullptr);
    TIFFSetWarningHandler(nullptr);
    return TiffHandle(TIFFClientOpen("fax", "rmDO", &file, ReadFrom, WriteNothing, SeekIn, LeaveOpen, SizeOf,
                                     nullptr, nullptr));
}

TiffFile::TiffFile(const QString &path)
    : file(path)
{
    // A pipe or device would keep its reader waiting.
    bOpen = QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly) && FindStart();
}

bool TiffFile::FindStart()
{
    const QByteArray start = BytesAt(0, 2 * PrefixSize);
    if (BeginsTiff(start))
        return true;
    if (start.size() < 2 * PrefixSize || !BeginsTiff(start.mid(PrefixSize)))
        return false;
    if (qFromLittleEndian<qint32>(start.constData()) != file.size() - PrefixSize)
        return false;
    lStart = PrefixSize;
    return true;
}

QList<TiffPage> TiffFile::ReadPages()
{
    if (!bOpen)
        return {};
    aPatches.clear();
    Seek(0, SEEK_SET);
    lBytesLeft = mostTableBytes;
    const TiffHandle tiff = OpenTiff(*this);
    const QList<TiffPage> pages = tiff ? WalkTable(tiff.get()) : QList<TiffPage>();
    // A pointer that was cut off reads as the end of the table.
    const bool whole = !pages.isEmpty() && PointerToNext(pages.last()) >= 0;
    return whole ? pages : QList<TiffPage>();
}

qint64 TiffFile::PointerToNext(const TiffPage &page)
{
    constexpr qint64 countSize = 2, entrySize = 12;
    const QByteArray count = BytesAt(page.lOffset, countSize);
    if (count.size() != countSize)
        return -1;
    const qint64 entries = IsBigEndian() ? qFromBigEndian<quint16>(count.constData())
                                         : qFromLittleEndian<quint16>(count.constData());
    const qint64 pointer = page.lOffset + countSize + entries * entrySize;
    return pointer + pointerSize <= Size() ? pointer : -1;
}

/// The header is made to point to the page, and the page to no next one. So a decoder finds it at once,
/// however many stand before it.
bool TiffFile::ShowOnly(const TiffPage &page)
{
    constexpr qint64 pointerToFirst = 4;
    const qint64 pointerToNext = PointerToNext(page);
    if (pointerToNext < 0)
        return false;
    aPatches = {{pointerToFirst, ToBytes(static_cast<quint32>(page.lOffset), IsBigEndian())},
                {pointerToNext, ToBytes(quint32(0), IsBigEndian())}};
    if (!CanDecode(page))
        return false;
    lBytesLeft = mostTableBytes + mostPackedBytes;
    return Seek(0, SEEK_SET);
}

/// The file may be another one by now, and what decodes it trusts the look that was taken.
bool TiffFile::CanDecode(const TiffPage &page)
{
    lBytesLeft = mostTableBytes;
    const TiffHandle tiff = Seek(0, SEEK_SET) ? OpenTiff(*this) : nullptr;
    return tiff && LookAtPage(tiff.get()) == page && PackedBytes(tiff.get(), Size()) <= mostPackedBytes;
}

qint64 TiffFile::Read(char *buffer, qint64 size)
{
    if (size > lBytesLeft)
        return -1;
    if (!file.seek(lStart + lPosition))
        return -1;
    const qint64 read = file.read(buffer, size);
    if (read <= 0)
        return read;
    lBytesLeft -= read;
    ApplyPatches(buffer, read);
    lPosition += read;
    return read;
}

bool TiffFile::Seek(qint64 offset, int origin)
{
    qint64 base = 0;
    if (origin == SEEK_CUR)
        base = lPosition;
    else if (origin == SEEK_END)
        base = Size();
    qint64 target = 0;
    if (qAddOverflow(base, offset, &target) || target < 0)
        return false;
    lPosition = target;
    return true;
}

QByteArray TiffFile::BytesAt(qint64 offset, qint64 size)
{
    return file.isOpen() && file.seek(lStart + offset) ? file.read(size) : QByteArray();
}

/// `buffer` has just been read at the position.
void TiffFile::ApplyPatches(char *buffer, qint64 size) const
{
    for (const Patch &patch : aPatches) {
        const qint64 first = std::max(patch.lOffset, lPosition);
        const qint64 end = std::min(patch.lOffset + patch.abBytes.size(), lPosition + size);
        for (qint64 at = first; at < end; ++at)
            buffer[at - lPosition] = patch.abBytes[at - patch.lOffset];
    }
}
