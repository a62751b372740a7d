#pragma once

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QString>

/// One page as the page table tells of it.
struct TiffPage
{
    qint64 lOffset = 0;    ///< where the page's entry stands
    int lWidth = 0;        ///< pixels
    int lHeight = 0;       ///< pixels
    int lDecodedBits = 0;  ///< of one pixel while it is decoded
    int lDotsPerInchX = 0; ///< whole dpi, 0 when the file does not say
    int lDotsPerInchY = 0;

    bool operator==(const TiffPage &) const = default;
};

/// The bytes of a TIFF file of unknown origin as a decoder sees them: size bytes in front of it do not exist,
/// and once a page was chosen, there is no other.
class TiffFile final
{
public:
    /// Size bytes that may stand in front of a received file.
    static constexpr qint64 PrefixSize = 4;

    explicit TiffFile(const QString &path);

    bool HasSizePrefix() const { return lStart > 0; }

    /// All pages; empty when the table is damaged, goes round in circles or exceeds the bounds.
    QList<TiffPage> ReadPages();
    /// Makes the file look as if that page were all it holds. False when its entry is no longer the one that
    /// `ReadPages` has seen, or its bytes exceed what a sane page takes.
    bool ShowOnly(const TiffPage &page);

    // What decoders ask for

    qint64 Read(char *buffer, qint64 size);
    /// `origin` as for fseek. True on success.
    bool Seek(qint64 offset, int origin);
    qint64 Position() const { return lPosition; }
    qint64 Size() const { return file.size() - lStart; }

private:
    struct Patch
    {
        qint64 lOffset;
        QByteArray abBytes;
    };

    bool FindStart();
    bool CanDecode(const TiffPage &page);
    bool IsBigEndian() { return BytesAt(0, 1) == "M"; }
    /// Where the page's entry names the next one; -1 when the file ends before that.
    qint64 PointerToNext(const TiffPage &page);
    QByteArray BytesAt(qint64 offset, qint64 size);
    void ApplyPatches(char *buffer, qint64 size) const;

    QFile file;
    QList<Patch> aPatches;
    qint64 lStart = 0;     ///< of the TIFF in the file
    qint64 lPosition = 0;  ///< within the TIFF
    qint64 lBytesLeft = 0; ///< what may still be read
    bool bOpen = false;
};
