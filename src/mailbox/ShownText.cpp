#include "mailbox/ShownText.h"

#include <algorithm>

namespace {

constexpr qsizetype lLongest = 500;

/// Control characters, line and paragraph separators, and what turns the direction of the text around it.
bool Steers(QChar character)
{
    const char16_t code = character.unicode();
    return code < 0x20 || (code >= 0x7f && code < 0xa0) || (code >= 0x2028 && code <= 0x202e) ||
           (code >= 0x2066 && code <= 0x2069);
}

} // namespace

QString ToListText(const QString &text)
{
    QString line = text.left(lLongest);
    if (line.size() < text.size()) {
        if (line.back().isHighSurrogate())
            line.chop(1);
        line += QChar(0x2026);
    }
    if (std::any_of(line.cbegin(), line.cend(), Steers))
        std::replace_if(line.begin(), line.end(), Steers, QChar(' '));
    return line;
}
