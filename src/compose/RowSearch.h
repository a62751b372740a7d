#pragma once

#include <QString>

#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Looks for a text in the rows of a long list, whatever the letter case.
class RowSearch final
{
public:
    void Clear();
    int RowCount() const { return static_cast<int>(aStarts.size()); }
    /// Adds a row of so many cells, UTF-8 as they are shown.
    void AddRow(std::span<const std::string_view> cells);
    /// The first row that holds the text in one cell, or across some with character 1 between them; -1 for
    /// none. Rows count from 0.
    int Find(const QString &text) const;

private:
    std::string strText; ///< of all rows, in one letter case, each row ended by a NUL
    std::vector<std::size_t> aStarts;
};
