#include "ToneMap.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <numeric>

namespace {

/// What is neither as good as black nor as good as white. Darker ones count only beside a photograph: in a
/// scanned text they are ink.
constexpr int darkestTone = 48, lightestTone = 231, darkestShade = 7;
constexpr int paper = 240;

/// By that much a text differs from what it stands on.
constexpr int textContrast = 48;

constexpr int leastTextPixels = 48;

/// Neighbours in a photograph differ less, on the average; the soft edges of text differ more.
constexpr int smoothest = 24;

/// Photographs begin at that threshold, also where the user's own is lower.
constexpr int leastThreshold = 160;

enum BlockKind : uchar { noTone, filled, photographed, shaded };

struct Block
{
    BlockKind kind = noTone;
    uchar lLevel = 0; ///< of a filled block
    uchar lTones = 0; ///< pixels that are neither black nor white
    uchar lLighter = 0, lDarker = 0;
    bool bFound = false; ///< belongs to a region
};

/// The pixels of one block.
struct BlockPixels
{
    const QImage &gray;
    int lLeft, lTop, lEnd;

    int Count() const { return (lEnd - lTop) * SheetBlocks::Width; }
    const uchar *Row(int row) const { return gray.constScanLine(row) + lLeft; }
    template <typename Visit>
    void ForEach(const Visit &visit) const
    {
        for (int row = lTop; row < lEnd; ++row)
            std::for_each(Row(row), Row(row) + SheetBlocks::Width, visit);
    }
};

/// True when half of the block is of one level exactly, as what a program fills is.
bool FindFill(const BlockPixels &pixels, Block &block)
{
    std::array<uchar, 256> counts{};
    pixels.ForEach([&](uchar level) { ++counts[level]; });
    const auto mode = std::max_element(counts.begin() + darkestTone, counts.begin() + lightestTone + 1);
    if (*mode * 2 < pixels.Count())
        return false;
    block.kind = filled;
    block.lLevel = static_cast<uchar>(mode - counts.begin());
    pixels.ForEach([&](uchar level) {
        block.lLighter += level >= block.lLevel + textContrast;
        block.lDarker += level + textContrast <= block.lLevel;
    });
    return true;
}

/// Sum of the differences between neighbours, in both directions.
int Roughness(const BlockPixels &pixels)
{
    int sum = 0;
    for (int row = pixels.lTop; row < pixels.lEnd; ++row) {
        const uchar *line = pixels.Row(row), *above = pixels.Row(std::max(pixels.lTop, row - 1));
        for (int x = 0; x < SheetBlocks::Width; ++x)
            sum += std::abs(line[x] - above[x]) + std::abs(line[x] - line[std::max(0, x - 1)]);
    }
    return sum;
}

BlockKind FindPhotograph(const BlockPixels &pixels, int threshold)
{
    int tones = 0, shades = 0, white = 0;
    pixels.ForEach([&](uchar level) {
        tones += level >= darkestTone && level < threshold;
        shades += level >= darkestShade && level < darkestTone;
        white += level >= paper;
    });
    const int half = pixels.Count() / 2;
    if (tones + shades < half || white * 10 > pixels.Count() ||
        Roughness(pixels) > smoothest * 2 * pixels.Count())
        return noTone;
    return tones >= half ? photographed : shaded;
}

/// Blocks of one kind that touch each other; filled ones are of one level.
struct Region
{
    BlockKind kind = noTone;
    uchar lLevel = 0;
    std::vector<std::size_t> aBlocks;
    int lLeft = SheetBlocks::Columns, lTop = 0, lRight = 0, lBottom = 0;
    int lLighter = 0, lDarker = 0; ///< pixels that stand out from a filled area

    int Columns() const { return lRight - lLeft + 1; }
    int Area() const { return Columns() * (lBottom - lTop + 1); }
    bool IsLargeEnough() const
    {
        const int least = kind == filled ? 3 : 5;
        return Columns() >= least && lBottom - lTop + 1 >= least && int(aBlocks.size()) >= least * least;
    }
    /// Its holes belong to it then.
    bool IsSolid() const { return int(aBlocks.size()) * 2 >= Area(); }
    uchar Mark(int threshold) const;
};

uchar Region::Mark(int threshold) const
{
    if (kind == photographed)
        return ToneMap::Dots;
    // Light text reads best when the threshold makes the area black.
    if (lLevel >= threshold || lLighter > lDarker)
        return ToneMap::Threshold;
    const bool hasText = lDarker >= std::max(leastTextPixels, int(aBlocks.size()) / 4);
    return hasText ? static_cast<uchar>(lLevel - textContrast / 2) : ToneMap::Dots;
}

class ToneFinder
{
public:
    ToneFinder(const QImage &graySheet, const SheetBlocks &sheetBlocks, int threshold)
        : gray(graySheet)
        , layout(sheetBlocks)
        , lThreshold(threshold)
        , blocks(layout.Count())
        , marks(layout.Count())
    {
    }

    /// Nothing when the threshold does for all blocks.
    std::vector<uchar> Find()
    {
        bool hasTones = false;
        for (int row = 0; row < layout.lRows; ++row)
            hasTones |= LookAtRow(row);
        if (!hasTones)
            return {};
        std::vector<Region> regions = FindRegions();
        std::sort(regions.begin(), regions.end(),
                  [](const Region &one, const Region &other) { return one.Area() > other.Area(); });
        for (const Region &region : regions)
            MarkRegion(region);
        for (const Region &region : regions)
            GrowRegion(region);
        const bool any = std::any_of(marks.begin(), marks.end(), [](uchar mark) { return mark != 0; });
        return any ? std::move(marks) : std::vector<uchar>();
    }

private:
    bool LookAtRow(int row);
    BlockPixels PixelsOf(std::size_t block) const
    {
        const int row = int(block) / SheetBlocks::Columns, column = int(block) % SheetBlocks::Columns;
        return {gray, column * SheetBlocks::Width, layout.Top(row), layout.End(row)};
    }
    std::vector<Region> FindRegions();
    Region Gather(std::size_t seed);
    void Include(std::size_t block, Region &region) const;
    void MarkRegion(const Region &region);
    void GrowRegion(const Region &region);
    bool IsEdgeOf(const Region &region, std::size_t block) const;

    const QImage &gray;
    const SheetBlocks &layout;
    const int lThreshold;
    std::vector<Block> blocks;
    std::vector<uchar> marks;
};

/// Most pages have no tones at all: these are counted by whole scan lines, and only what has some is looked
/// at further. True when a block has tones.
bool ToneFinder::LookAtRow(int row)
{
    std::array<uchar, SheetFormat::Width> counts{};
    for (int y = layout.Top(row); y < layout.End(row); ++y) {
        const uchar *line = gray.constScanLine(y);
        for (std::size_t x = 0; x < counts.size(); ++x)
            counts[x] += static_cast<uchar>(line[x] - darkestShade) <= lightestTone - darkestShade;
    }
    bool hasTones = false;
    const std::size_t first = std::size_t(row) * SheetBlocks::Columns;
    for (std::size_t column = 0; column < SheetBlocks::Columns; ++column) {
        Block &block = blocks[first + column];
        const auto count = counts.begin() + column * SheetBlocks::Width;
        block.lTones = std::accumulate(count, count + SheetBlocks::Width, uchar(0));
        const BlockPixels pixels = PixelsOf(first + column);
        if (block.lTones * 2 < pixels.Count())
            continue;
        if (!FindFill(pixels, block))
            block.kind = FindPhotograph(pixels, std::max(lThreshold, leastThreshold));
        hasTones |= block.kind != noTone;
    }
    return hasTones;
}

std::vector<Region> ToneFinder::FindRegions()
{
    std::vector<Region> regions;
    for (std::size_t seed = 0; seed < blocks.size(); ++seed) {
        if (blocks[seed].bFound || (blocks[seed].kind != filled && blocks[seed].kind != photographed))
            continue;
        Region region = Gather(seed);
        if (region.IsLargeEnough())
            regions.push_back(std::move(region));
    }
    return regions;
}

Region ToneFinder::Gather(std::size_t seed)
{
    const BlockKind kind = blocks[seed].kind;
    const uchar level = blocks[seed].lLevel;
    Region region{kind, level, {seed}};
    region.lTop = int(seed) / SheetBlocks::Columns;
    blocks[seed].bFound = true;
    for (std::size_t next = 0; next < region.aBlocks.size(); ++next) {
        Include(region.aBlocks[next], region);
        layout.ForNeighbours(region.aBlocks[next], [&](std::size_t other) {
            Block &block = blocks[other];
            const bool same = block.kind == kind && block.lLevel == level;
            if (block.bFound || !(same || (kind == photographed && block.kind == shaded)))
                return;
            block.bFound = true;
            region.aBlocks.push_back(other);
        });
    }
    return region;
}

void ToneFinder::Include(std::size_t block, Region &region) const
{
    const int row = int(block) / SheetBlocks::Columns, column = int(block) % SheetBlocks::Columns;
    region.lLeft = std::min(region.lLeft, column);
    region.lRight = std::max(region.lRight, column);
    region.lBottom = std::max(region.lBottom, row);
    // What stands out at the edge of an area belongs to what is around it.
    bool isEdge = false;
    layout.ForNeighbours(block, [&](std::size_t other) { isEdge |= blocks[other].lTones == 0; });
    if (isEdge)
        return;
    region.lLighter += blocks[block].lLighter;
    region.lDarker += blocks[block].lDarker;
}

/// The larger ones come first: what lies in an area decides for itself, but not what lies in a photograph.
void ToneFinder::MarkRegion(const Region &region)
{
    const std::size_t first = region.aBlocks.front();
    if (region.kind == filled && blocks[first].kind == photographed)
        return;
    const uchar mark = region.Mark(lThreshold);
    if (!region.IsSolid()) {
        for (const std::size_t block : region.aBlocks)
            marks[block] = mark;
        return;
    }
    for (int row = region.lTop; row <= region.lBottom; ++row) {
        const std::size_t left = std::size_t(row) * SheetBlocks::Columns + std::size_t(region.lLeft);
        std::fill_n(marks.begin() + std::ptrdiff_t(left), region.Columns(), mark);
        if (region.kind == photographed)
            std::for_each_n(blocks.begin() + std::ptrdiff_t(left), region.Columns(),
                            [](Block &block) { block.kind = photographed; });
    }
}

/// Edges lie within blocks.
void ToneFinder::GrowRegion(const Region &region)
{
    const uchar mark = marks[region.aBlocks.front()];
    if (mark == ToneMap::Threshold)
        return;
    for (const std::size_t block : region.aBlocks) {
        layout.ForNeighbours(block, [&](std::size_t other) {
            if (marks[other] == ToneMap::Threshold && IsEdgeOf(region, other))
                marks[other] = mark;
        });
    }
}

/// What lies beside a filled area can be text as well.
bool ToneFinder::IsEdgeOf(const Region &region, std::size_t block) const
{
    if (blocks[block].kind == filled)
        return false;
    if (region.kind == photographed)
        return true;
    int ofArea = 0;
    PixelsOf(block).ForEach([&](uchar level) { ofArea += level == region.lLevel; });
    return ofArea >= SheetBlocks::Width / 2;
}

} // namespace

ToneMap::ToneMap(const QImage &gray, int threshold, int dotsPerInchY)
    : blocks(gray.height(), dotsPerInchY)
    , marks(ToneFinder(gray, blocks, threshold).Find())
{
}
