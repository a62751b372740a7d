#include "ToneMap.h"

#include "LetterPixels.h"
#include "ToneBlocks.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace {

constexpr int columns = SheetBlocks::Columns;

/// Less ink on an area is no text.
constexpr int leastTextPixels = 48;

/// Blocks side by side that differ by no more are steps of a gradient.
constexpr int largestStep = 8;

bool IsOfArea(const ToneBlock &block)
{
    return block.kind == ToneBlock::filled || block.kind == ToneBlock::flat;
}

/// Blocks of one kind that touch each other; filled ones are of one level, or a gradient.
struct Region
{
    ToneBlock::Kind kind = ToneBlock::noTone;
    uchar lDarkest = 255, lLightest = 0; ///< levels of filled blocks
    std::vector<std::size_t> aBlocks;
    int lLeft = columns, lTop = 0, lRight = 0, lBottom = 0;
    int lLighter = 0, lDarker = 0; ///< pixels of letters on a filled area
    int lInner = 0;                ///< blocks amid others of the region
    uchar lMark = ToneMap::Threshold;

    int Columns() const { return lRight - lLeft + 1; }
    int Area() const { return Columns() * (lBottom - lTop + 1); }
    bool IsLargeEnough() const
    {
        const int least = kind == ToneBlock::filled ? 3 : 5;
        return Columns() >= least && lBottom - lTop + 1 >= least && int(aBlocks.size()) >= least * least;
    }
    /// Its holes belong to it then.
    bool IsSolid() const { return int(aBlocks.size()) * 2 >= Area(); }
    /// Large letters are not.
    bool IsThick() const { return lInner * 5 >= int(aBlocks.size()) * 2; }
    bool IsGradient() const { return lLightest - lDarkest >= ToneBlock::TextContrast / 2; }
    int LeastText() const { return std::max(leastTextPixels, int(aBlocks.size()) / 4); }
    bool HasLightText() const
    {
        return lLighter > lDarker && lLighter >= (IsGradient() ? LeastText() : leastTextPixels);
    }
    uchar Mark(int threshold) const;
    void FillHoles();
};

uchar Region::Mark(int threshold) const
{
    if (kind == ToneBlock::photographed)
        return ToneMap::Dots;
    // Light text reads best when the threshold makes the area black.
    if (lDarkest >= threshold || (lLightest < threshold && HasLightText()))
        return ToneMap::Threshold;
    const bool hasText = lDarker >= LeastText() && !IsGradient();
    if (hasText)
        return static_cast<uchar>(lDarkest - ToneBlock::TextContrast / 2);
    return IsThick() ? ToneMap::Dots : ToneMap::Threshold;
}

void Region::FillHoles()
{
    aBlocks.clear();
    for (int row = lTop; row <= lBottom; ++row) {
        for (int column = lLeft; column <= lRight; ++column)
            aBlocks.push_back(std::size_t(row) * columns + std::size_t(column));
    }
}

class MapMaker
{
public:
    MapMaker(const QImage &graySheet, const SheetBlocks &sheetBlocks, int threshold)
        : gray(graySheet)
        , layout(sheetBlocks)
        , lThreshold(threshold)
        , blocks(FindToneBlocks(gray, layout, threshold))
        , found(blocks.size())
        , marks(blocks.size())
    {
    }

    /// Nothing when the threshold does for all blocks.
    std::vector<uchar> Make()
    {
        std::vector<Region> regions = FindRegions();
        std::sort(regions.begin(), regions.end(),
                  [](const Region &one, const Region &other) { return one.Area() > other.Area(); });
        for (Region &region : regions)
            MarkRegion(region);
        for (const Region &region : regions)
            GrowRegion(region);
        const bool any = std::any_of(marks.begin(), marks.end(), [](uchar mark) { return mark != 0; });
        return any ? std::move(marks) : std::vector<uchar>();
    }

private:
    std::vector<Region> FindRegions();
    Region Gather(std::size_t seed, ToneBlock::Kind kind);
    void FindAreas(std::vector<Region> &regions);
    void FindPhotographs(std::vector<Region> &regions);
    static bool BelongTogether(ToneBlock::Kind kind, const ToneBlock &block, const ToneBlock &other);
    void Include(std::size_t block, Region &region) const;
    void MarkRegion(Region &region);
    void GrowRegion(const Region &region);
    bool IsEdgeOf(const Region &region, std::size_t block) const;

    const QImage &gray;
    const SheetBlocks &layout;
    const int lThreshold;
    std::vector<ToneBlock> blocks;
    std::vector<bool> found; ///< blocks that belong to a region
    std::vector<uchar> marks;
};

std::vector<Region> MapMaker::FindRegions()
{
    std::vector<Region> regions;
    FindAreas(regions);
    FindPhotographs(regions);
    return regions;
}

/// Few flat blocks are no area, but may be part of a photograph.
void MapMaker::FindAreas(std::vector<Region> &regions)
{
    std::vector<std::size_t> left;
    for (std::size_t seed = 0; seed < blocks.size(); ++seed) {
        if (found[seed] || !IsOfArea(blocks[seed]))
            continue;
        Region region = Gather(seed, ToneBlock::filled);
        if (region.IsLargeEnough())
            regions.push_back(std::move(region));
        else
            left.insert(left.end(), region.aBlocks.begin(), region.aBlocks.end());
    }
    for (const std::size_t block : left) {
        found[block] = blocks[block].kind == ToneBlock::filled;
        if (found[block])
            blocks[block].kind = ToneBlock::noTone;
    }
}

void MapMaker::FindPhotographs(std::vector<Region> &regions)
{
    for (std::size_t seed = 0; seed < blocks.size(); ++seed) {
        if (found[seed] || blocks[seed].kind != ToneBlock::photographed)
            continue;
        Region region = Gather(seed, ToneBlock::photographed);
        if (region.IsLargeEnough())
            regions.push_back(std::move(region));
    }
}

Region MapMaker::Gather(std::size_t seed, ToneBlock::Kind kind)
{
    Region region;
    region.kind = kind;
    region.aBlocks = {seed};
    region.lTop = int(seed) / columns;
    found[seed] = true;
    for (std::size_t next = 0; next < region.aBlocks.size(); ++next) {
        const std::size_t block = region.aBlocks[next];
        Include(block, region);
        layout.ForNeighbours(block, [&](std::size_t other) {
            if (found[other] || !BelongTogether(kind, blocks[block], blocks[other]))
                return;
            found[other] = true;
            region.aBlocks.push_back(other);
        });
    }
    return region;
}

bool MapMaker::BelongTogether(ToneBlock::Kind kind, const ToneBlock &block, const ToneBlock &other)
{
    if (kind == ToneBlock::filled)
        return (IsOfArea(other) || other.kind == ToneBlock::flatShade) &&
               std::abs(block.lLevel - other.lLevel) <= largestStep;
    return other.kind != ToneBlock::noTone && other.kind != ToneBlock::filled;
}

void MapMaker::Include(std::size_t block, Region &region) const
{
    const int row = int(block) / columns, column = int(block) % columns;
    region.lLeft = std::min(region.lLeft, column);
    region.lRight = std::max(region.lRight, column);
    region.lBottom = std::max(region.lBottom, row);
    if (region.kind != ToneBlock::filled)
        return;
    region.lDarkest = std::min(region.lDarkest, blocks[block].lLevel);
    region.lLightest = std::max(region.lLightest, blocks[block].lLevel);
    // What stands out at the edge of an area belongs to what is around it.
    bool isEdge = false, isInner = true;
    layout.ForNeighbours(block, [&](std::size_t other) {
        isEdge |= blocks[other].lTones == 0;
        isInner &= BelongTogether(region.kind, blocks[block], blocks[other]);
    });
    region.lInner += isInner;
    if (isEdge)
        return;
    const QRect part(QPoint(column * SheetBlocks::Width, layout.Top(row)),
                     QPoint((column + 1) * SheetBlocks::Width - 1, layout.End(row) - 1));
    const int level = blocks[block].lLevel;
    region.lLighter += CountLetterPixels(gray, part, level + ToneBlock::TextContrast, 255);
    region.lDarker += CountLetterPixels(gray, part, 0, level - ToneBlock::TextContrast);
}

/// The larger ones come first: what lies in an area decides for itself, but not what lies in a photograph.
void MapMaker::MarkRegion(Region &region)
{
    const bool isPhotograph = region.kind == ToneBlock::photographed;
    if (!isPhotograph && blocks[region.aBlocks.front()].kind == ToneBlock::photographed)
        return;
    region.lMark = region.Mark(lThreshold);
    if (region.IsSolid())
        region.FillHoles();
    for (const std::size_t block : region.aBlocks) {
        marks[block] = region.lMark;
        if (isPhotograph)
            blocks[block].kind = ToneBlock::photographed;
    }
}

/// Edges lie within blocks.
void MapMaker::GrowRegion(const Region &region)
{
    if (region.lMark == ToneMap::Threshold)
        return;
    for (const std::size_t block : region.aBlocks) {
        layout.ForNeighbours(block, [&](std::size_t other) {
            if (marks[other] == ToneMap::Threshold && IsEdgeOf(region, other))
                marks[other] = region.lMark;
        });
    }
}

/// What lies beside a filled area can be text as well.
bool MapMaker::IsEdgeOf(const Region &region, std::size_t block) const
{
    if (IsOfArea(blocks[block]) || region.kind == ToneBlock::photographed)
        return !IsOfArea(blocks[block]);
    const int row = int(block) / columns, left = int(block) % columns * SheetBlocks::Width;
    std::ptrdiff_t ofArea = 0;
    for (int y = layout.Top(row); y < layout.End(row); ++y) {
        const uchar *line = gray.constScanLine(y) + left;
        ofArea += std::count_if(line, line + SheetBlocks::Width, [&](uchar level) {
            return level >= region.lDarkest - largestStep && level <= region.lLightest + largestStep;
        });
    }
    return ofArea >= SheetBlocks::Width / 2;
}

} // namespace

ToneMap::ToneMap(const QImage &gray, int threshold, int dotsPerInchY)
    : blocks(gray.height(), dotsPerInchY)
    , marks(MapMaker(gray, blocks, threshold).Make())
{
}
