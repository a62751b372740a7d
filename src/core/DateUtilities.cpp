#include "core/Utilities.h"

#include <QDateTime>
#include <QRegularExpression>

namespace {

QDate ReadDate(const QRegularExpressionMatch &match)
{
    const auto number = [&](const char *part) { return match.captured(QLatin1StringView(part)).toInt(); };
    if (match.hasCaptured(QStringLiteral("isoYear")))
        return {number("isoYear"), number("isoMonth"), number("isoDay")};
    return {number("year"), number("month"), number("day")};
}

/// Midnight when the text has no time.
QTime ReadTime(const QRegularExpressionMatch &match)
{
    constexpr int halfDay = 12;
    int hour = match.captured(QStringLiteral("hour")).toInt();
    const QString half = match.captured(QStringLiteral("half")).toUpper();
    if (!half.isEmpty()) {
        if (hour < 1 || hour > halfDay)
            return {};
        hour = hour % halfDay + (half == "PM" ? halfDay : 0);
    }
    return {hour, match.captured(QStringLiteral("minute")).toInt(),
            match.captured(QStringLiteral("second")).toInt()};
}

} // namespace

QDateTime ToDateTime(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral("\\A\\s*"
                       "(?:(?<isoYear>\\d{4})-(?<isoMonth>\\d{1,2})-(?<isoDay>\\d{1,2})"
                       "|(?<month>\\d{1,2})/(?<day>\\d{1,2})/(?<year>\\d{4}))"
                       "(?:(?:T|\\s+)(?<hour>\\d{1,2}):(?<minute>\\d{1,2})(?::(?<second>\\d{1,2}))?"
                       "(?:\\s*(?<half>[AP]M))?)?\\s*\\z"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(text);
    const QDate date = ReadDate(match);
    const QTime time = ReadTime(match);
    if (!match.hasMatch() || !date.isValid() || !time.isValid())
        return {};
    const QDateTime local(date, time);
    // The server's clock may show an hour that summer time leaves out here.
    return local.isValid() ? local : QDateTime(date, time.addSecs(60 * 60));
}
