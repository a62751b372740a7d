#include "controls/HeaderTexts.h"

#include "controls/HeaderPainter.h"

#include <QLatin1StringView>

#include <algorithm>
#include <tuple>
#include <utility>

namespace {

constexpr qsizetype longestText = 500; ///< more than fits on any line
constexpr int leastMiddle = 5;         ///< this part of a line is left to the middle text

struct Macro
{
    QLatin1StringView strWord;
    QString (*value)(const HeaderFields &fields);
};

constexpr std::array<Macro, 6> macros{{
    {QLatin1StringView("[Page]"), [](const HeaderFields &fields) { return QString::number(fields.lPage); }},
    {QLatin1StringView("[PageCount]"),
     [](const HeaderFields &fields) { return QString::number(fields.lPageCount); }},
    {QLatin1StringView("[Date]"),
     [](const HeaderFields &fields) { return fields.dateTime.toString(u"yyyy-MM-dd"); }},
    {QLatin1StringView("[Time]"),
     [](const HeaderFields &fields) { return fields.dateTime.toString(u"HH:mm"); }},
    {QLatin1StringView("[CompanyName]"), [](const HeaderFields &fields) { return fields.strCompanyName; }},
    {QLatin1StringView("[Recipients]"), [](const HeaderFields &fields) { return fields.strRecipients; }},
}};

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

} // namespace

QString HeaderTexts::Expand(const QString &text, const HeaderFields &fields)
{
    QString expanded;
    QStringView rest = text;
    while (!rest.isEmpty() && expanded.size() < longestText) {
        const auto isNext = [&](const Macro &macro) { return rest.startsWith(macro.strWord); };
        const auto macro = std::find_if(macros.begin(), macros.end(), isNext);
        const bool isMacro = macro != macros.end();
        expanded += isMacro ? ToOneLine(macro->value(fields)) : QString(rest.front());
        rest = rest.mid(isMacro ? macro->strWord.size() : 1);
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
