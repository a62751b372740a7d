#include "core/FaxImage.h"

#include <QFile>
#include <QSaveFile>

#include <cstring>
#include <memory>

#include <FreeImage.h>

namespace {

struct BitmapUnloader
{
    void operator()(FIBITMAP *bitmap) const { FreeImage_Unload(bitmap); }
};
using Bitmap = std::unique_ptr<FIBITMAP, BitmapUnloader>;

TiffFile &Source(fi_handle handle)
{
    return *static_cast<TiffFile *>(handle);
}

unsigned DLL_CALLCONV ReadFrom(void *buffer, unsigned size, unsigned count, fi_handle handle)
{
    const qint64 read = Source(handle).Read(static_cast<char *>(buffer), qint64(size) * count);
    return size > 0 && read > 0 ? static_cast<unsigned>(read / size) : 0;
}

unsigned DLL_CALLCONV WriteNothing(void *, unsigned, unsigned, fi_handle)
{
    return 0;
}

int DLL_CALLCONV SeekIn(fi_handle handle, long offset, int origin)
{
    return Source(handle).Seek(offset, origin) ? 0 : -1;
}

long DLL_CALLCONV PositionIn(fi_handle handle)
{
    return static_cast<long>(Source(handle).Position());
}

/// The one page that the file shows.
Bitmap Decode(TiffFile &file)
{
    FreeImageIO access{ReadFrom, WriteNothing, SeekIn, PositionIn};
    return Bitmap(FreeImage_LoadFromHandle(FIF_TIFF, &access, &file, TIFF_DEFAULT));
}

/// 1 and 8 bits stay, everything else becomes one of the forms of `PageBits`.
Bitmap Normalise(Bitmap bitmap)
{
    const FREE_IMAGE_TYPE type = FreeImage_GetImageType(bitmap.get());
    const unsigned bits = FreeImage_GetBPP(bitmap.get());
    if (type == FIT_BITMAP && (bits == 1 || bits == 8 || bits == 32))
        return bitmap;
    const bool gray = type == FIT_UINT16 || (type == FIT_BITMAP && bits < 8);
    return Bitmap(gray ? FreeImage_ConvertTo8Bits(bitmap.get()) : FreeImage_ConvertTo32Bits(bitmap.get()));
}

Bitmap Turn(Bitmap bitmap, int rotation)
{
    constexpr int fullTurn = 360;
    const int angle = (rotation % fullTurn + fullTurn) % fullTurn;
    return angle == 0 ? std::move(bitmap) : Bitmap(FreeImage_Rotate(bitmap.get(), angle, nullptr));
}

QList<quint32> PaletteOf(FIBITMAP *bitmap)
{
    constexpr quint32 opaque = 0xff000000;
    QList<quint32> palette;
    const RGBQUAD *colors = FreeImage_GetPalette(bitmap);
    for (unsigned color = 0; colors != nullptr && color < FreeImage_GetColorsUsed(bitmap); ++color) {
        const RGBQUAD &entry = colors[color];
        palette.append(opaque | quint32(entry.rgbRed) << 16 | quint32(entry.rgbGreen) << 8 | entry.rgbBlue);
    }
    return palette;
}

void MakeOpaque(QByteArray &bits)
{
    constexpr qsizetype pixelSize = 4, alpha = 3;
    for (qsizetype at = alpha; at < bits.size(); at += pixelSize)
        bits[at] = '\xff';
}

/// FreeImage keeps the lowest row first.
QByteArray RowsFromTheTop(FIBITMAP *bitmap)
{
    const int height = static_cast<int>(FreeImage_GetHeight(bitmap));
    const unsigned pitch = FreeImage_GetPitch(bitmap);
    QByteArray bits(qsizetype(height) * pitch, Qt::Uninitialized);
    for (int row = 0; row < height; ++row)
        std::memcpy(bits.data() + qsizetype(row) * pitch, FreeImage_GetScanLine(bitmap, height - 1 - row),
                    pitch);
    if (FreeImage_GetBPP(bitmap) == 32)
        MakeOpaque(bits);
    return bits;
}

PageBits ToPageBits(FIBITMAP *bitmap, const TiffPage &page)
{
    PageBits bits;
    bits.lWidth = static_cast<int>(FreeImage_GetWidth(bitmap));
    bits.lHeight = static_cast<int>(FreeImage_GetHeight(bitmap));
    bits.lBitsPerPixel = static_cast<int>(FreeImage_GetBPP(bitmap));
    bits.lBytesPerLine = static_cast<int>(FreeImage_GetPitch(bitmap));
    bits.lDotsPerInchX = page.lDotsPerInchX;
    bits.lDotsPerInchY = page.lDotsPerInchY;
    bits.abBits = RowsFromTheTop(bitmap);
    bits.aPalette = PaletteOf(bitmap);
    return bits;
}

} // namespace

FaxPages::FaxPages(const QString &path)
    : strPath(path)
    , aPages(TiffFile(path).ReadPages())
{
}

PageBits FaxPages::Load(int page, int rotation) const
{
    TiffFile file(strPath);
    if (page < 0 || page >= aPages.size() || !file.ShowOnly(aPages[page]))
        return {};
    Bitmap bitmap = Decode(file);
    if (bitmap)
        bitmap = Normalise(std::move(bitmap));
    if (bitmap)
        bitmap = Turn(std::move(bitmap), rotation);
    return bitmap ? ToPageBits(bitmap.get(), aPages[page]) : PageBits();
}

bool FaxPages::IsLarge(int page) const
{
    constexpr qint64 usualBytes = 2 * 1024 * 1024;
    const TiffPage entry = aPages.value(page);
    return qint64(entry.lWidth) * entry.lHeight * entry.lDecodedBits / 8 > usualBytes;
}

int FaxImage::GetPageCount(const QString &path)
{
    return FaxPages(path).Count();
}

PageBits FaxImage::LoadPage(const QString &path, int page, int rotation)
{
    return FaxPages(path).Load(page, rotation);
}

bool FaxImage::HasSizePrefix(const QString &path)
{
    return TiffFile(path).HasSizePrefix();
}

bool FaxImage::CopyWithoutSizePrefix(const QString &path, const QString &to)
{
    QSaveFile copy(to);
    return copy.open(QIODevice::WriteOnly) && CopyWithoutSizePrefix(path, copy) && copy.commit();
}

bool FaxImage::CopyWithoutSizePrefix(const QString &path, QIODevice &to)
{
    constexpr qint64 blockSize = 1 << 20;
    QFile from(path);
    if (!from.open(QIODevice::ReadOnly) ||
        !from.seek(TiffFile(path).HasSizePrefix() ? TiffFile::PrefixSize : 0))
        return false;
    while (!from.atEnd()) {
        const QByteArray block = from.read(blockSize);
        if (block.isEmpty() || to.write(block) != block.size())
            return false;
    }
    return true;
}
