#include "LightInk.h"

#include <algorithm>
#include <array>

namespace {

/// What is lighter cannot be read on paper either.
constexpr int lightest = 236;
constexpr int paper = 250;

constexpr int fewestPixels = 24;

/// What is scanned spreads over all levels: at most so many of those around one are about as frequent.
constexpr int around = 8, mostAround = 4;

/// Levels of one sheet that can be ink; with more it is a picture of few levels.
constexpr std::size_t mostLevels = 6;

using Counts = std::array<int, 256>;

/// Light pixels by level. Most sheets have none, which whole scan lines tell.
Counts CountLevels(const QImage &gray, int threshold)
{
    Counts counts{};
    const auto first = static_cast<uchar>(threshold), range = static_cast<uchar>(lightest - threshold);
    for (int row = 0; row < gray.height(); ++row) {
        const uchar *line = gray.constScanLine(row);
        int light = 0;
        for (int x = 0; x < SheetFormat::Width; ++x)
            light += static_cast<uchar>(line[x] - first) <= range;
        if (light > 0)
            std::for_each(line, line + SheetFormat::Width, [&](uchar level) { ++counts[level]; });
    }
    return counts;
}

bool StandsAlone(const Counts &counts, int level)
{
    const auto least = std::max(1, counts[std::size_t(level)] / 8);
    const auto first = counts.begin() + (level - around), end = counts.begin() + (level + around + 1);
    return std::count_if(first, end, [&](int count) { return count >= least; }) <= mostAround;
}

std::vector<uchar> FindLevels(const QImage &gray, int threshold)
{
    const Counts counts = CountLevels(gray, threshold);
    std::vector<uchar> levels;
    for (int level = std::max(threshold, around); level <= lightest; ++level) {
        if (counts[std::size_t(level)] >= fewestPixels && StandsAlone(counts, level))
            levels.push_back(static_cast<uchar>(level));
    }
    return levels.size() > mostLevels ? std::vector<uchar>() : levels;
}

/// Pixels of one block.
struct Block
{
    uchar lLight = 0; ///< of the level in question
    uchar lDark = 0, lPaper = 0;
};

class StrokeFinder
{
public:
    StrokeFinder(const QImage &graySheet, const SheetBlocks &sheetBlocks, int threshold, uchar inkLevel)
        : gray(graySheet)
        , layout(sheetBlocks)
        , lThreshold(threshold)
        , lLevel(inkLevel)
        , blocks(layout.Count())
    {
        for (int row = 0; row < gray.height(); ++row)
            CountRow(row);
    }

    /// Nothing when the level is no ink at all.
    std::vector<uchar> Find()
    {
        std::vector<uchar> marks(blocks.size());
        if (IsBackground())
            return {};
        bool any = false;
        for (std::size_t seed = 0; seed < blocks.size(); ++seed) {
            if (blocks[seed].lLight > 0 && marks[seed] == unseen)
                any |= Decide(seed, marks);
        }
        std::replace(marks.begin(), marks.end(), uchar(area), uchar(unseen));
        return any ? std::move(marks) : std::vector<uchar>();
    }

private:
    enum Mark : uchar { unseen = 0, stroke = 1, area = 2 };

    void CountRow(int row);
    bool IsBackground() const;
    bool IsArea(std::size_t block) const;
    bool Decide(std::size_t seed, std::vector<uchar> &marks) const;

    const QImage &gray;
    const SheetBlocks &layout;
    const int lThreshold;
    const uchar lLevel;
    std::vector<Block> blocks;
};

void StrokeFinder::CountRow(int row)
{
    const uchar *line = gray.constScanLine(row);
    Block *block = &blocks[layout.FirstAt(row)];
    for (int column = 0; column < SheetBlocks::Columns; ++column, ++block) {
        for (int x = 0; x < SheetBlocks::Width; ++x, ++line) {
            block->lLight += *line == lLevel;
            block->lDark += *line < lThreshold;
            block->lPaper += *line >= paper;
        }
    }
}

/// A pattern behind the text is in a good part of the text's blocks.
bool StrokeFinder::IsBackground() const
{
    const auto withText =
        std::count_if(blocks.begin(), blocks.end(), [](const Block &block) { return block.lDark > 0; });
    const auto withBoth = std::count_if(
        blocks.begin(), blocks.end(), [](const Block &block) { return block.lDark > 0 && block.lLight > 0; });
    return withBoth * 3 > withText;
}

/// Filled all around, or with little more than dark text on it.
bool StrokeFinder::IsArea(std::size_t index) const
{
    const Block &block = blocks[index];
    const int size = SheetBlocks::Width * layout.lHeight;
    if (block.lDark > 0 && block.lLight * 4 >= size && block.lPaper * 5 <= size)
        return true;
    int filled = 0;
    layout.ForNeighbours(index, [&](std::size_t other) { filled += blocks[other].lLight * 8 >= size * 7; });
    return block.lLight * 8 >= size * 7 && filled >= 4;
}

/// All blocks that hang together are one thing. True when it is a stroke.
bool StrokeFinder::Decide(std::size_t seed, std::vector<uchar> &marks) const
{
    std::vector<std::size_t> found{seed};
    marks[seed] = stroke;
    bool isArea = false;
    for (std::size_t next = 0; next < found.size(); ++next) {
        isArea |= IsArea(found[next]);
        layout.ForNeighbours(found[next], [&](std::size_t other) {
            if (blocks[other].lLight == 0 || marks[other] != unseen)
                return;
            marks[other] = stroke;
            found.push_back(other);
        });
    }
    if (isArea)
        std::for_each(found.begin(), found.end(), [&](std::size_t block) { marks[block] = area; });
    return !isArea;
}

} // namespace

LightInk::LightInk(const QImage &gray, int threshold, int dotsPerInchY)
    : blocks(gray.height(), dotsPerInchY)
{
    if (threshold > lightest)
        return;
    for (const uchar level : FindLevels(gray, threshold)) {
        std::vector<uchar> marks = StrokeFinder(gray, blocks, threshold, level).Find();
        if (!marks.empty())
            aLevels.push_back({level, std::move(marks)});
    }
}

void LightInk::AddTo(int row, const uchar *grays, uchar *flags) const
{
    for (const Level &level : aLevels) {
        const uchar *marks = &level.marks[blocks.FirstAt(row)];
        for (int x = 0; x < SheetFormat::Width; ++x)
            flags[x] |= marks[x / SheetBlocks::Width] & uchar(grays[x] == level.lLevel);
    }
}
