#pragma once

#include "SheetFormat.h"

#include <algorithm>
#include <cstddef>

/// A sheet cut into blocks of about one millimetre, numbered row by row.
struct SheetBlocks
{
    static constexpr int Width = 8; ///< dots
    static constexpr int Columns = SheetFormat::Width / Width;

    SheetBlocks(int sheetHeight, int dotsPerInchY)
        : lHeight(dotsPerInchY * Width / SheetFormat::DotsPerInchX + 1)
        , lRows((sheetHeight + lHeight - 1) / lHeight)
        , lSheetHeight(sheetHeight)
    {
    }

    std::size_t Count() const { return std::size_t(lRows) * Columns; }
    /// First row of the sheet in a row of blocks, and the one after the last.
    int Top(int row) const { return row * lHeight; }
    int End(int row) const { return std::min(lSheetHeight, Top(row) + lHeight); }
    /// Number of the first block that a row of the sheet runs through.
    std::size_t FirstAt(int sheetRow) const { return std::size_t(sheetRow / lHeight) * Columns; }

    /// Of those that touch the block, at a side or a corner; and the block itself.
    template <typename Visit>
    void ForNeighbours(std::size_t block, const Visit &visit) const
    {
        const int column = int(block) % Columns, row = int(block) / Columns;
        for (int y = std::max(0, row - 1); y <= std::min(lRows - 1, row + 1); ++y)
            for (int x = std::max(0, column - 1); x <= std::min(Columns - 1, column + 1); ++x)
                visit(std::size_t(y) * Columns + std::size_t(x));
    }

    const int lHeight; ///< of a block, in rows of the sheet
    const int lRows;   ///< of blocks

private:
    const int lSheetHeight;
};
