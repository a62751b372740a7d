#include "controls/PageScaler.h"

#include <algorithm>
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

/// Rows of a page, each added up over the new pixels of a row. A row gives one or three levels per new pixel.
class RowSource
{
public:
    RowSource(const PageBits &shownPage, std::vector<qint64> edgesInRow, int levelsPerPixel)
        : page(shownPage)
        , edges(std::move(edgesInRow))
        , lLevels(levelsPerPixel)
        , aSums((edges.size() - 1) * static_cast<std::size_t>(levelsPerPixel))
    {
    }
    virtual ~RowSource() = default;
    RowSource(const RowSource &) = delete;
    RowSource &operator=(const RowSource &) = delete;

    /// False when the row adds nothing.
    virtual bool Read(int row) = 0;
    /// A level that was added up, as one of 0 to 255; `area` is what it was added up over.
    virtual int LevelOf(qint64 sum, qint64 area) const = 0;

    const std::vector<qint64> &Edges() const { return edges; }
    const std::vector<int> &Sums() const { return aSums; }
    int Levels() const { return lLevels; }

protected:
    const uchar *Bytes(int row) const
    {
        return reinterpret_cast<const uchar *>(page.abBits.constData()) + qint64(row) * page.lBytesPerLine;
    }

    const PageBits &page;
    const std::vector<qint64> edges;
    const int lLevels;
    std::vector<int> aSums; ///< by new pixel and level, times the parts of a pixel
};

/// A page of ink and paper: the ink is counted, and most rows of a fax have none.
class InkSource final : public RowSource
{
public:
    InkSource(const PageBits &shownPage, std::vector<qint64> edgesInRow)
        : RowSource(shownPage, std::move(edgesInRow), 1)
        , lPaper(std::max(qGray(page.aPalette.value(0)), qGray(page.aPalette.value(1))))
        , lInk(std::min(qGray(page.aPalette.value(0)), qGray(page.aPalette.value(1))))
        , bInkIsZero(qGray(page.aPalette.value(0)) < qGray(page.aPalette.value(1)))
        , abInk((static_cast<std::size_t>(page.lWidth) + 7) / 8 + 1)
        , aCounts(abInk.size())
    {
    }

    bool Read(int row) override
    {
        if (!ReadInk(Bytes(row)))
            return false;
        int count = 0;
        for (std::size_t byte = 0; byte < abInk.size(); ++byte) {
            aCounts[byte] = count;
            count += std::popcount(abInk[byte]);
        }
        qint64 before = InkUpTo(edges.front());
        for (std::size_t pixel = 0; pixel < aSums.size(); ++pixel) {
            const qint64 upTo = InkUpTo(edges[pixel + 1]);
            aSums[pixel] = static_cast<int>(upTo - before);
            before = upTo;
        }
        return true;
    }

    int LevelOf(qint64 sum, qint64 area) const override
    {
        return static_cast<int>((lPaper * area - (lPaper - lInk) * sum + area / 2) / area);
    }

private:
    /// False for an empty row.
    bool ReadInk(const uchar *bytes)
    {
        const uchar turn = bInkIsZero ? 0xff : 0;
        const std::size_t whole = abInk.size() - 1; // one empty byte stands behind the row
        uchar any = 0;
        for (std::size_t byte = 0; byte < whole; ++byte)
            any |= abInk[byte] = bytes[byte] ^ turn;
        if (page.lWidth % 8 != 0)
            abInk[whole - 1] &= static_cast<uchar>(0xff00 >> page.lWidth % 8);
        return any != 0;
    }

    qint64 InkUpTo(qint64 place) const
    {
        const auto pixel = static_cast<std::size_t>(place >> partBits);
        const unsigned ink = abInk[pixel / 8];
        const unsigned bit = pixel % 8;
        const int before = aCounts[pixel / 8] + std::popcount(ink >> (8 - bit));
        return (qint64(before) << partBits) + (place & partMask) * (ink >> (7 - bit) & 1);
    }

    const int lPaper, lInk;
    const bool bInkIsZero;
    std::vector<uchar> abInk;
    std::vector<int> aCounts; ///< ink left of each byte
};

/// A page of any colours.
class ColorSource final : public RowSource
{
public:
    ColorSource(const PageBits &shownPage, std::vector<qint64> edgesInRow)
        : RowSource(shownPage, std::move(edgesInRow), 3)
    {
    }

    bool Read(int row) override
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
            aSums[3 * pixel] = red;
            aSums[3 * pixel + 1] = green;
            aSums[3 * pixel + 2] = blue;
        }
        return true;
    }

    int LevelOf(qint64 sum, qint64 area) const override { return static_cast<int>((sum + area / 2) / area); }

private:
    QRgb ColorAt(const uchar *bytes, int pixel) const
    {
        if (page.lBitsPerPixel == 32)
            return reinterpret_cast<const QRgb *>(bytes)[pixel];
        const int entry = page.lBitsPerPixel == 8 ? bytes[pixel] : bytes[pixel / 8] >> (7 - pixel % 8) & 1;
        return page.aPalette.value(entry);
    }
};

void WriteRow(const RowSource &source, const std::vector<qint64> &sums, qint64 height, QImage &image, int y)
{
    const std::vector<qint64> &edges = source.Edges();
    for (std::size_t pixel = 0; pixel + 1 < edges.size(); ++pixel) {
        const qint64 area = std::max<qint64>(1, (edges[pixel + 1] - edges[pixel]) * height);
        const auto level = [&](std::size_t which) { return source.LevelOf(sums[which], area); };
        if (source.Levels() == 1)
            image.scanLine(y)[pixel] = static_cast<uchar>(level(pixel));
        else
            reinterpret_cast<QRgb *>(image.scanLine(y))[pixel] =
                qRgb(level(3 * pixel), level(3 * pixel + 1), level(3 * pixel + 2));
    }
}

QImage ShrinkRows(RowSource &source, const std::vector<qint64> &edges)
{
    const auto format = source.Levels() == 1 ? QImage::Format_Grayscale8 : QImage::Format_RGB32;
    QImage image(static_cast<int>(source.Edges().size()) - 1, static_cast<int>(edges.size()) - 1, format);
    std::vector<qint64> sums(source.Sums().size());
    qint64 rowRead = -1;
    bool addsAnything = false;
    for (int y = 0; y < image.height(); ++y) {
        const qint64 from = edges[static_cast<std::size_t>(y)], to = edges[static_cast<std::size_t>(y) + 1];
        std::fill(sums.begin(), sums.end(), 0);
        for (qint64 at = from; at < to;) {
            const qint64 row = at >> partBits;
            const qint64 end = std::min(to, (row + 1) << partBits);
            if (row != rowRead)
                addsAnything = source.Read(static_cast<int>(rowRead = row));
            for (std::size_t which = 0; addsAnything && which < sums.size(); ++which)
                sums[which] += source.Sums()[which] * (end - at);
            at = end;
        }
        WriteRow(source, sums, to - from, image, y);
    }
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
    if (page.lBitsPerPixel == 1 && IsGray(page.aPalette)) {
        InkSource ink(page, std::move(columns));
        return ShrinkRows(ink, rows);
    }
    ColorSource colors(page, std::move(columns));
    return ShrinkRows(colors, rows);
}
