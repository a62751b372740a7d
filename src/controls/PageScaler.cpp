#include "controls/PageScaler.h"

#include <algorithm>
#include <array>
#include <bit>
#include <vector>

namespace {

/// Lengths between the page's pixels are counted in parts of a pixel.
constexpr int partBits = 8, partMask = (1 << partBits) - 1;

/// Where the new pixels from `first` on begin, and where the last one ends, in parts of the page's pixels.
std::vector<qint64> EdgesOf(int first, int count, int pageSide, int newSide)
{
    std::vector<qint64> edges;
    edges.reserve(static_cast<std::size_t>(count) + 1);
    for (qint64 at = first; at <= qint64(first) + count; ++at)
        edges.push_back((at * pageSide << partBits) / newSide);
    return edges;
}

/// What all sources of rows share. A source adds each row of a page up over the new pixels of a row, and has
/// one or three levels for each of these.
struct RowSums
{
    RowSums(const PageBits &shownPage, std::vector<qint64> edgesInRow, std::size_t levels)
        : page(shownPage)
        , edges(std::move(edgesInRow))
        , aSums((edges.size() - 1) * levels)
    {
    }

    const uchar *Bytes(int row) const
    {
        return reinterpret_cast<const uchar *>(page.abBits.constData()) + qint64(row) * page.lBytesPerLine;
    }

    const PageBits &page;
    const std::vector<qint64> edges;
    std::vector<int> aSums; ///< by new pixel and level, times the parts of a pixel
};

/// Ones in each byte.
constexpr auto aOnes = [] {
    std::array<uchar, 256> ones{};
    for (unsigned byte = 0; byte < ones.size(); ++byte)
        ones[byte] = static_cast<uchar>(std::popcount(byte));
    return ones;
}();

/// A page of ink and paper: the ink is counted, and most rows of a fax have none.
class InkSource final : public RowSums
{
public:
    static constexpr std::size_t Levels = 1;

    InkSource(const PageBits &shownPage, std::vector<qint64> edgesInRow)
        : RowSums(shownPage, std::move(edgesInRow), Levels)
        , lPaper(std::max(qGray(page.aPalette.value(0)), qGray(page.aPalette.value(1))))
        , lInk(std::min(qGray(page.aPalette.value(0)), qGray(page.aPalette.value(1))))
        , lTurn(qGray(page.aPalette.value(0)) < qGray(page.aPalette.value(1)) ? 0xff : 0)
        , lBytes((static_cast<std::size_t>(page.lWidth) + 7) / 8)
        , abPaper(lBytes, static_cast<uchar>(lTurn))
        , abInk(lBytes + 1)
        , aCounts(lBytes + 1)
    {
        for (const qint64 edge : edges) {
            const qint64 pixel = edge >> partBits;
            places.push_back({static_cast<int>(pixel / 8), static_cast<uchar>(pixel % 8),
                              static_cast<uchar>(edge & partMask)});
        }
    }

    /// False when the row adds nothing.
    bool Read(int row)
    {
        const uchar *bytes = Bytes(row);
        if (std::equal(abPaper.begin(), abPaper.end(), bytes))
            return false;
        CountInk(bytes);
        int before = InkUpTo(places.front());
        for (std::size_t pixel = 0; pixel < aSums.size(); ++pixel) {
            const int upTo = InkUpTo(places[pixel + 1]);
            aSums[pixel] = upTo - before;
            before = upTo;
        }
        return true;
    }

    /// A mean of what was added up, as a level of 0 to 255.
    int LevelOf(double mean) const { return static_cast<int>(lPaper - (lPaper - lInk) * mean + 0.5); }

private:
    struct Place
    {
        int lByte;
        uchar lBit, lPart;
    };

    /// What stands behind the row's last pixel in its last byte is never asked for.
    void CountInk(const uchar *bytes)
    {
        int count = 0;
        for (std::size_t byte = 0; byte < lBytes; ++byte) {
            aCounts[byte] = count;
            abInk[byte] = static_cast<uchar>(bytes[byte] ^ lTurn);
            count += aOnes[abInk[byte]];
        }
        aCounts[lBytes] = count; // one empty byte stands behind the row
    }

    int InkUpTo(const Place &place) const
    {
        const auto byte = static_cast<std::size_t>(place.lByte);
        const unsigned ink = abInk[byte];
        const int before = aCounts[byte] + aOnes[ink >> (8 - place.lBit)];
        return (before << partBits) + place.lPart * static_cast<int>(ink >> (7 - place.lBit) & 1);
    }

    const int lPaper, lInk, lTurn;
    const std::size_t lBytes;
    const std::vector<uchar> abPaper; ///< an empty row
    std::vector<uchar> abInk;
    std::vector<int> aCounts; ///< ink left of each byte
    std::vector<Place> places;
};

/// A page of any colours.
class ColorSource final : public RowSums
{
public:
    static constexpr std::size_t Levels = 3;

    ColorSource(const PageBits &shownPage, std::vector<qint64> edgesInRow)
        : RowSums(shownPage, std::move(edgesInRow), Levels)
    {
    }

    bool Read(int row)
    {
        const uchar *bytes = Bytes(row);
        for (std::size_t pixel = 0; pixel + 1 < edges.size(); ++pixel) {
            int red = 0, green = 0, blue = 0;
            for (qint64 at = edges[pixel]; at < edges[pixel + 1];) {
                const qint64 end = std::min(edges[pixel + 1], ((at >> partBits) + 1) << partBits);
                const QRgb color = ColorAt(bytes, static_cast<int>(at >> partBits));
                const int share = static_cast<int>(end - at);
                red += qRed(color) * share;
                green += qGreen(color) * share;
                blue += qBlue(color) * share;
                at = end;
            }
            aSums[Levels * pixel] = red;
            aSums[Levels * pixel + 1] = green;
            aSums[Levels * pixel + 2] = blue;
        }
        return true;
    }

    static int LevelOf(double mean) { return static_cast<int>(mean + 0.5); }

private:
    QRgb ColorAt(const uchar *bytes, int pixel) const
    {
        if (page.lBitsPerPixel == 32)
            return reinterpret_cast<const QRgb *>(bytes)[pixel];
        const int entry = page.lBitsPerPixel == 8 ? bytes[pixel] : bytes[pixel / 8] >> (7 - pixel % 8) & 1;
        return page.aPalette.value(entry);
    }
};

/// A page of grays only, a byte for each pixel.
class GraySource final : public RowSums
{
public:
    static constexpr std::size_t Levels = 1;

    GraySource(const PageBits &shownPage, std::vector<qint64> edgesInRow)
        : RowSums(shownPage, std::move(edgesInRow), Levels)
    {
        for (std::size_t entry = 0; entry < aLevels.size(); ++entry)
            aLevels[entry] = qGray(page.aPalette.value(static_cast<qsizetype>(entry)));
    }

    bool Read(int row)
    {
        const uchar *bytes = Bytes(row);
        for (std::size_t pixel = 0; pixel < aSums.size(); ++pixel)
            aSums[pixel] = SumOf(bytes, edges[pixel], edges[pixel + 1]);
        return true;
    }

    static int LevelOf(double mean) { return static_cast<int>(mean + 0.5); }

private:
    int SumOf(const uchar *bytes, qint64 from, qint64 to) const
    {
        const qint64 first = from >> partBits, last = to >> partBits;
        const int before = static_cast<int>(from & partMask), within = static_cast<int>(to & partMask);
        int sum = 0;
        for (qint64 at = first; at < last; ++at)
            sum += aLevels[bytes[at]];
        sum = (sum << partBits) - aLevels[bytes[first]] * before;
        return within > 0 ? sum + aLevels[bytes[last]] * within : sum;
    }

    std::array<int, 256> aLevels; ///< of the palette's entries
};

/// The new rows, one after the other.
template <typename Source>
class Shrinker
{
public:
    explicit Shrinker(Source &rowSource)
        : source(rowSource)
        , lWidth(source.edges.size() - 1)
        , sums(source.aSums.size())
    {
        for (std::size_t pixel = 0; pixel < lWidth; ++pixel)
            shares.push_back(1.0 /
                             double(std::max<qint64>(1, source.edges[pixel + 1] - source.edges[pixel])));
    }

    /// The new row between two places down the page.
    void Write(qint64 from, qint64 to, QRgb *line)
    {
        std::fill(sums.begin(), sums.end(), 0);
        bool isEmpty = true;
        for (qint64 at = from; at < to;) {
            const qint64 row = at >> partBits;
            const qint64 end = std::min(to, (row + 1) << partBits);
            if (row != rowRead)
                rowAdds = source.Read(static_cast<int>(rowRead = row));
            if (rowAdds)
                Add(end - at);
            isEmpty = isEmpty && !rowAdds;
            at = end;
        }
        if (isEmpty)
            std::fill_n(line, lWidth, ColorOf(0, 0));
        else
            WriteLine(1.0 / double(to - from), line);
    }

private:
    void Add(qint64 share)
    {
        const int *added = source.aSums.data();
        for (std::size_t which = 0; which < sums.size(); ++which)
            sums[which] += added[which] * share;
    }

    void WriteLine(double share, QRgb *line)
    {
        for (std::size_t pixel = 0; pixel < lWidth; ++pixel)
            line[pixel] = ColorOf(pixel, share * shares[pixel]);
    }

    QRgb ColorOf(std::size_t pixel, double share) const
    {
        const auto level = [&](std::size_t which) {
            return source.LevelOf(double(sums[Source::Levels * pixel + which]) * share);
        };
        if constexpr (Source::Levels == 1) {
            const int gray = level(0);
            return qRgb(gray, gray, gray);
        } else {
            return qRgb(level(0), level(1), level(2));
        }
    }

    Source &source;
    const std::size_t lWidth;
    std::vector<qint64> sums;
    std::vector<double> shares; ///< of a part of a pixel in each new one
    qint64 rowRead = -1;
    bool rowAdds = false;
};

template <typename Source>
QImage ShrinkRows(Source source, const std::vector<qint64> &edges)
{
    QImage image(static_cast<int>(source.edges.size()) - 1, static_cast<int>(edges.size()) - 1,
                 QImage::Format_RGB32);
    Shrinker<Source> shrinker(source);
    for (int y = 0; y < image.height(); ++y)
        shrinker.Write(edges[static_cast<std::size_t>(y)], edges[static_cast<std::size_t>(y) + 1],
                       reinterpret_cast<QRgb *>(image.scanLine(y)));
    return image;
}

bool IsGray(const QList<quint32> &palette)
{
    return std::all_of(palette.begin(), palette.end(), [](quint32 color) {
        return qRed(color) == qGreen(color) && qGreen(color) == qBlue(color);
    });
}

QImage::Format GetFormat(int bitsPerPixel)
{
    switch (bitsPerPixel) {
    case 1:
        return QImage::Format_Mono;
    case 8:
        return QImage::Format_Indexed8;
    case 32:
        return QImage::Format_RGB32;
    default:
        return QImage::Format_Invalid;
    }
}

bool IsComplete(const PageBits &page)
{
    const qint64 bitsPerLine = static_cast<qint64>(page.lWidth) * page.lBitsPerPixel;
    return page.lWidth > 0 && page.lHeight > 0 && page.lBytesPerLine >= (bitsPerLine + 7) / 8 &&
           page.abBits.size() >= static_cast<qint64>(page.lBytesPerLine) * page.lHeight &&
           GetFormat(page.lBitsPerPixel) != QImage::Format_Invalid;
}

} // namespace

QImage PageScaler::Crop(const PageBits &page, const QRect &part)
{
    if (!IsComplete(page))
        return {};
    QImage whole(reinterpret_cast<const uchar *>(page.abBits.constData()), page.lWidth, page.lHeight,
                 page.lBytesPerLine, GetFormat(page.lBitsPerPixel));
    if (page.lBitsPerPixel <= 8)
        whole.setColorTable(page.aPalette);
    return whole.copy(part.intersected(whole.rect())).convertToFormat(QImage::Format_RGB32);
}

QImage PageScaler::Shrink(const PageBits &page, const QSize &size, const QRect &part)
{
    const QRect shown = part.intersected(QRect(QPoint(), size));
    if (!IsComplete(page) || shown.isEmpty())
        return {};
    const std::vector<qint64> rows = EdgesOf(shown.top(), shown.height(), page.lHeight, size.height());
    std::vector<qint64> columns = EdgesOf(shown.left(), shown.width(), page.lWidth, size.width());
    if (page.lBitsPerPixel == 1 && IsGray(page.aPalette))
        return ShrinkRows(InkSource(page, std::move(columns)), rows);
    if (page.lBitsPerPixel == 8 && IsGray(page.aPalette))
        return ShrinkRows(GraySource(page, std::move(columns)), rows);
    return ShrinkRows(ColorSource(page, std::move(columns)), rows);
}
