#pragma once

#include "SheetBlocks.h"

#include <QImage>

#include <vector>

/// Which parts of a gray sheet are to be shown by dots, since a threshold would make blots of them:
/// photographs, and filled areas that hold no lighter text. Text, also with soft edges, is none of them.
class ToneMap final
{
public:
    /// What holds for a block. Any other value is that of an area that holds darker text: what is darker than
    /// the value is ink, and the area itself is shown in a lighter tone, so that the text can be read.
    static constexpr uchar Threshold = 0, Dots = 1;

    /// Of a sheet of `Format_Grayscale8`, as wide as a fax. An area lighter than the threshold is paper.
    ToneMap(const QImage &gray, int threshold, int dotsPerInchY);

    /// True when the threshold does for the whole sheet.
    bool IsEmpty() const { return marks.empty(); }
    /// Of the blocks that a row of the sheet runs through, from the left.
    const uchar *MarksOfRow(int row) const { return &marks[blocks.FirstAt(row)]; }

private:
    const SheetBlocks blocks;
    std::vector<uchar> marks;
};
