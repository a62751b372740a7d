#pragma once

/// The sheet of a fax page: 1728 pixels across at 204 dots per inch; fine and standard differ in height only.
struct SheetFormat
{
    static constexpr int Width = 1728;
    static constexpr int DotsPerInchX = 204;

    bool bFine = true;

    int DotsPerInchY() const { return bFine ? 196 : 98; }
    /// Rows of an A4 sheet.
    int A4Height() const { return bFine ? 2292 : 1146; }
};
