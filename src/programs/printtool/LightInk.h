#pragma once

#include "SheetBlocks.h"

#include <QImage>

#include <vector>

/// Light letters and lines that a threshold would take for paper, such as yellow text or the gray grid of a
/// table. They are known by being of very few levels on the whole sheet, which what is scanned or
/// photographed never is, and by being thin: light areas stay paper, and so do patterns behind text.
class LightInk final
{
public:
    /// Of a sheet of `Format_Grayscale8`, as wide as a fax.
    LightInk(const QImage &gray, int threshold, int dotsPerInchY);

    bool IsEmpty() const { return aLevels.empty(); }
    /// Sets the flags of such pixels in a row of the sheet.
    void AddTo(int row, const uchar *grays, uchar *flags) const;

private:
    /// One level, and the blocks in which it is ink.
    struct Level
    {
        uchar lLevel = 0;
        std::vector<uchar> marks;
    };

    const SheetBlocks blocks;
    std::vector<Level> aLevels;
};
