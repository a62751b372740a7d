#include "controls/HeaderTexts.h"

#include "controls/HeaderPainter.h"

#include <QLatin1StringView>

#include <algorithm>
#include <tuple>
#include <utility>

namespace {

constexpr qsizetype longestText = 500; ///< more than fits on any line
constexpr int leastMiddle = 5;         ///< this part of a line is left to the middle text

bool BreaksLine(QChar character)
{
    return character.category() == QChar::Other_Control || character == QChar::LineSeparator ||
           character == QChar::ParagraphSeparator;
}

/// Line breaks and what else would leave the line, several of them as one, become a blank.
QString ToOneLine(const QString &text)
{
    QString line;
    bool wasBreak = false;
    for (const QChar character : text.left(longestText)) {
        const bool isBreak = BreaksLine(character);
        if (!isBreak)
            line += character;
        else if (!wasBreak)
            line += ' ';
        wasBreak = isBreak;
    }
    return line.trimmed();
}

/// What the macro words stand for, in the order of `headerMacros`.
std::array<QString, headerMacros.size()> MacroValues(const HeaderFields &fields)
{
    return {QString::number(fields.lPage),           QString::number(fields.lPageCount),
            fields.dateTime.toString(u"yyyy-MM-dd"), fields.dateTime.toString(u"HH:mm"),
            ToOneLine(fields.strCompanyName),        ToOneLine(fields.strRecipients)};
}

} // namespace

QString HeaderTexts::Expand(const QString &text, const HeaderFields &fields)
{
    const auto values = MacroValues(fields);
    QString expanded;
    QStringView rest = text;
    while (!rest.isEmpty() && expanded.size() < longestText) {
        const auto macro = std::find_if(headerMacros.begin(), headerMacros.end(),
                                        [&](QLatin1StringView word) { return rest.startsWith(word); });
        const auto which = static_cast<std::size_t>(macro - headerMacros.begin());
        const bool isMacro = which < values.size();
        expanded += isMacro ? values[which] : QString(rest.front());
        rest = rest.mid(isMacro ? macro->size() : 1);
    }
    return ToOneLine(expanded);
}

HeaderTexts::Places HeaderTexts::Place(const std::array<int, 3> &widths, int room, int gap)
{
    auto [left, middle, right] = widths;
    const int texts = (left > 0) + (middle > 0) + (right > 0);
    const int all = std::max(room - gap * std::max(texts - 1, 0), 0);
    middle = std::min(middle, std::max(all - left - right, all / leastMiddle));
    const int sides = all - middle;
    const int shorter = std::min({left, right, sides / 2}),
              longer = std::min(std::max(left, right), sides - shorter);
    std::tie(left, right) = left <= right ? std::pair(shorter, longer) : std::pair(longer, shorter);
    const int first = left > 0 ? left + gap : 0;
    const int last = room - middle - (right > 0 ? right + gap : 0);
    const int centred = std::min(std::max((room - middle) / 2, first), std::max(last, 0));
    return {{0, centred, room - right}, {left, middle, right}};
}
