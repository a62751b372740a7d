#pragma once

#include <QString>

#include <array>

struct HeaderFields;

/// What the drawing of headers computes without drawing.
namespace HeaderTexts {

/// The text with its macro words replaced, as one line of moderate length. What a value holds stays as it is,
/// macro words included.
QString Expand(const QString &text, const HeaderFields &fields);

/// Where three texts stand on a line, from its left end.
struct Places
{
    std::array<int, 3> aLeft{};
    std::array<int, 3> aWidth{}; ///< smaller than what was asked for when the text has to be shortened
};
/// Lays a left, a middle and a right text of these widths out on a line. No text comes closer to another than
/// `gap`. The middle one gives way first: it moves aside, and then is shortened.
Places Place(const std::array<int, 3> &widths, int room, int gap);

} // namespace HeaderTexts
