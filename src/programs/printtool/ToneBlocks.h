#pragma once

#include "SheetBlocks.h"

#include <QImage>

#include <vector>

/// What the gray pixels of one block of a sheet look like.
struct ToneBlock
{
    enum Kind : uchar {
        noTone,
        filled,       ///< more than half of it is of one level exactly, as what a program fills is
        flat,         ///< nearly of one level, as part of a gradient is
        photographed, ///< smooth grays
        shaded,       ///< the same, nearly black: ink where it is not part of a photograph
        flatShade,    ///< the same for a gradient
    };

    /// By that much a text differs from what it stands on.
    static constexpr int TextContrast = 48;

    Kind kind = noTone;
    uchar lLevel = 0; ///< of a filled or flat one
    uchar lTones = 0; ///< pixels that are neither black nor white
};

/// The blocks of a sheet of `Format_Grayscale8`, as wide as a fax; nothing when none has tones. A photograph
/// is darker than the threshold.
std::vector<ToneBlock> FindToneBlocks(const QImage &gray, const SheetBlocks &layout, int threshold);
