#pragma once

#include "core/TiffTable.h"

#include <QByteArray>
#include <QList>
#include <QString>

class QIODevice;

/// One decoded page: rows from top to bottom, 1 bit, 8 bit with palette, or 32 bit 0xffRRGGBB per pixel.
struct PageBits
{
    int lWidth = 0;        ///< pixels
    int lHeight = 0;       ///< pixels
    int lBitsPerPixel = 0; ///< 1, 8 or 32
    int lBytesPerLine = 0;
    int lDotsPerInchX =
        0; ///< whole dpi of the page as it lies in the file, turned or not; 0 when it does not say
    int lDotsPerInchY = 0;
    QByteArray abBits;
    QList<quint32> aPalette; ///< 0xffRRGGBB, for 1 and 8 bit

    bool IsEmpty() const { return abBits.isEmpty(); }
};

/// The pages of one fax file. The table is read once, and each page is looked at again before it is decoded:
/// the file may be written or deleted meanwhile, and such a page cannot be read.
class FaxPages final
{
public:
    FaxPages() = default;
    /// No pages when the file is missing or no TIFF that can be shown.
    explicit FaxPages(const QString &path);

    int Count() const { return static_cast<int>(aPages.size()); }
    /// What the page table tells of the zero-based page.
    const TiffPage &Page(int page) const { return aPages[page]; }
    /// Decodes the zero-based page turned by `rotation` degrees, a multiple of 90, counter-clockwise. An
    /// empty result when it cannot be read.
    PageBits Load(int page, int rotation) const;
    /// True when decoding and drawing the page may take longer than 50 ms.
    bool IsLarge(int page) const;

private:
    QString strPath;
    QList<TiffPage> aPages;
};

/// Reading fax files. Every file is untrusted: its page table is looked at before a page is decoded, and a
/// file beyond the bounds (10,000 x 50,000 pixels, 64 MiB for a decoded page and 48 MiB for a packed one,
/// 5,000 pages) or with a damaged table counts as unreadable. A received file that carries its own size in
/// its first four bytes is read as if they were not there.
namespace FaxImage {

/// Pages of the file; 0 when it is missing or no TIFF that can be shown.
int GetPageCount(const QString &path);

/// `FaxPages::Load` for one page of a file.
PageBits LoadPage(const QString &path, int page, int rotation);

/// True when the first four bytes of the file are its own size without them, in front of a TIFF.
bool HasSizePrefix(const QString &path);

/// Copies a file, without those four bytes if it has them; a file of the name `to` is replaced. False when
/// that failed; there is no half copy then.
bool CopyWithoutSizePrefix(const QString &path, const QString &to);

/// The same into an open device, which may have got a part of the file when that failed.
bool CopyWithoutSizePrefix(const QString &path, QIODevice &to);

} // namespace FaxImage
