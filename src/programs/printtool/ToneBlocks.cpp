#include "ToneBlocks.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace {

/// What is neither as good as black nor as good as white. Darker ones count only beside a photograph: in a
/// scanned text they are ink.
constexpr int darkestTone = 48, lightestTone = 231, darkestShade = 7;
constexpr int paper = 240;

/// Neighbours in a photograph differ less, on the average; the soft edges of text differ more.
constexpr int smoothest = 24;

/// By that much the pixels of a flat block differ at most.
constexpr int flatness = 8;

/// Photographs begin at that threshold, also where the user's own is lower.
constexpr int leastThreshold = 160;

constexpr std::size_t width = SheetFormat::Width, columns = SheetBlocks::Columns;
constexpr int blockWidth = SheetBlocks::Width;

using ByteSums = std::array<uchar, width>;
using WordSums = std::array<quint16, width>;

/// From `first` up to before `end`.
bool IsBetween(uchar level, int first, int end)
{
    return static_cast<uchar>(level - first) < end - first;
}

uchar Difference(uchar one, uchar other)
{
    return static_cast<uchar>(std::max(one, other) - std::min(one, other));
}

template <typename Sums>
int SumOfBlock(const Sums &sums, std::size_t column)
{
    const auto first = sums.begin() + column * blockWidth;
    return std::accumulate(first, first + blockWidth, 0);
}

/// What the pixels of a row of blocks add up to in each column: scan lines are read as wholes.
struct Sums
{
    ByteSums pairs{}; ///< pixels that are like the one before
    ByteSums tones{}, shades{}, white{};
    WordSums roughness{}; ///< differences to the pixels before and above

    void Add(const uchar *line, const uchar *above, int threshold)
    {
        for (std::size_t x = 0; x < width; ++x) {
            tones[x] += IsBetween(line[x], darkestTone, threshold);
            shades[x] += IsBetween(line[x], darkestShade, darkestTone);
            white[x] += line[x] >= paper;
        }
        for (std::size_t x = 0; x < width; ++x)
            roughness[x] += Difference(line[x], above[x]);
        for (std::size_t x = 1; x < width; ++x) {
            pairs[x] += line[x] == line[x - 1];
            roughness[x] += Difference(line[x], line[x - 1]);
        }
    }
};

/// A row of blocks.
class BlockRow
{
public:
    BlockRow(const QImage &graySheet, int top, int end)
        : gray(graySheet)
        , lTop(top)
        , lEnd(end)
        , lSize((end - top) * blockWidth)
    {
    }

    /// Most sheets have no tones at all, so that little is done to know it. True when a block has tones.
    bool CountTones(ToneBlock *blocks) const;
    void FindKinds(ToneBlock *blocks, int threshold) const;

private:
    template <typename Visit>
    void ForPixels(std::size_t column, const Visit &visit) const
    {
        for (int y = lTop; y < lEnd; ++y) {
            const uchar *line = gray.constScanLine(y) + column * blockWidth;
            std::for_each(line, line + blockWidth, visit);
        }
    }
    uchar MajorityOf(std::size_t column) const;
    bool FindFill(std::size_t column, ToneBlock &block) const;
    bool IsFlat(std::size_t column, ToneBlock &block) const;
    ToneBlock::Kind KindOf(const Sums &sums, std::size_t column) const;

    const QImage &gray;
    const int lTop, lEnd;
    const int lSize; ///< pixels of a block
};

bool BlockRow::CountTones(ToneBlock *blocks) const
{
    ByteSums tones{};
    for (int y = lTop; y < lEnd; ++y) {
        const uchar *line = gray.constScanLine(y);
        for (std::size_t x = 0; x < width; ++x)
            tones[x] += IsBetween(line[x], darkestShade, lightestTone + 1);
    }
    bool any = false;
    for (std::size_t column = 0; column < columns; ++column) {
        blocks[column].lTones = static_cast<uchar>(SumOfBlock(tones, column));
        any |= blocks[column].lTones * 2 >= lSize;
    }
    return any;
}

void BlockRow::FindKinds(ToneBlock *blocks, int threshold) const
{
    Sums sums;
    for (int y = lTop; y < lEnd; ++y)
        sums.Add(gray.constScanLine(y), gray.constScanLine(std::max(lTop, y - 1)), threshold);
    for (std::size_t column = 0; column < columns; ++column) {
        ToneBlock &block = blocks[column];
        if (block.lTones * 2 < lSize)
            continue;
        // An area has many like pixels side by side, a photograph has few.
        const bool mayBeFilled = SumOfBlock(sums.pairs, column) * 4 >= lSize;
        if (!mayBeFilled || !FindFill(column, block))
            block.kind = KindOf(sums, column);
        const bool isSmooth = block.kind == ToneBlock::photographed || block.kind == ToneBlock::shaded;
        const bool mayBeFlat = isSmooth && SumOfBlock(sums.roughness, column) <= 2 * lSize;
        if (mayBeFlat && IsFlat(column, block))
            block.kind = block.kind == ToneBlock::shaded ? ToneBlock::flatShade : ToneBlock::flat;
    }
}

/// The level that more than half of the pixels have, if there is one: when two unlike pixels at a time are
/// taken away, it is what remains.
uchar BlockRow::MajorityOf(std::size_t column) const
{
    uchar candidate = 0;
    int lead = 0;
    ForPixels(column, [&](uchar level) {
        if (lead == 0)
            candidate = level;
        lead += level == candidate ? 1 : -1;
    });
    return candidate;
}

bool BlockRow::FindFill(std::size_t column, ToneBlock &block) const
{
    const uchar fill = MajorityOf(column);
    int count = 0;
    ForPixels(column, [&](uchar level) { count += level == fill; });
    if (count * 2 <= lSize || !IsBetween(fill, darkestTone, lightestTone + 1))
        return false;
    block.kind = ToneBlock::filled;
    block.lLevel = fill;
    return true;
}

bool BlockRow::IsFlat(std::size_t column, ToneBlock &block) const
{
    uchar darkest = 255, lightest = 0;
    ForPixels(column, [&](uchar level) {
        darkest = std::min(darkest, level);
        lightest = std::max(lightest, level);
    });
    block.lLevel = static_cast<uchar>((darkest + lightest) / 2);
    return lightest - darkest <= flatness;
}

ToneBlock::Kind BlockRow::KindOf(const Sums &sums, std::size_t column) const
{
    const int tones = SumOfBlock(sums.tones, column), shades = SumOfBlock(sums.shades, column);
    if ((tones + shades) * 2 < lSize || SumOfBlock(sums.white, column) * 10 > lSize ||
        SumOfBlock(sums.roughness, column) > smoothest * 2 * lSize)
        return ToneBlock::noTone;
    return tones * 2 >= lSize ? ToneBlock::photographed : ToneBlock::shaded;
}

} // namespace

std::vector<ToneBlock> FindToneBlocks(const QImage &gray, const SheetBlocks &layout, int threshold)
{
    std::vector<ToneBlock> blocks(layout.Count());
    bool any = false;
    for (int row = 0; row < layout.lRows; ++row) {
        const BlockRow blockRow(gray, layout.Top(row), layout.End(row));
        ToneBlock *first = &blocks[std::size_t(row) * columns];
        if (!blockRow.CountTones(first))
            continue;
        blockRow.FindKinds(first, std::max(threshold, leastThreshold));
        any |= std::any_of(first, first + columns,
                           [](const ToneBlock &block) { return block.kind != ToneBlock::noTone; });
    }
    return any ? std::move(blocks) : std::vector<ToneBlock>();
}
