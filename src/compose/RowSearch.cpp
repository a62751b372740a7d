#include "compose/RowSearch.h"

#include <algorithm>

namespace {

constexpr char cCellEnd = '\1';
constexpr char cRowEnd = '\0';

bool IsAscii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(),
                       [](char byte) { return static_cast<signed char>(byte) >= 0; });
}

char Folded(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + ('a' - 'A')) : letter;
}

void AppendFolded(std::string &target, std::string_view text)
{
    if (IsAscii(text)) {
        const std::size_t place = target.size();
        target += text;
        std::transform(target.begin() + static_cast<std::ptrdiff_t>(place), target.end(),
                       target.begin() + static_cast<std::ptrdiff_t>(place), Folded);
        return;
    }
    const auto size = static_cast<qsizetype>(text.size());
    target += QString::fromUtf8(text.data(), size).toCaseFolded().toStdString();
}

} // namespace

void RowSearch::Clear()
{
    strText.clear();
    aStarts.clear();
}

void RowSearch::AddRow(std::span<const std::string_view> cells)
{
    aStarts.push_back(strText.size());
    for (const std::string_view cell : cells) {
        AppendFolded(strText, cell);
        strText += cCellEnd;
    }
    strText += cRowEnd;
}

int RowSearch::Find(const QString &text) const
{
    const std::size_t place = strText.find(text.toCaseFolded().toStdString());
    if (place == std::string::npos)
        return -1;
    const auto behind = std::upper_bound(aStarts.begin(), aStarts.end(), place);
    return static_cast<int>(behind - aStarts.begin()) - 1;
}
