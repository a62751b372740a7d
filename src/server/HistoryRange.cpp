#include "server/HistoryRange.h"

#include <QCoreApplication>

namespace {

/// Before any fax.
QDate FirstDay()
{
    return {1900, 1, 1};
}

QDate FirstOfMonth(QDate day)
{
    return {day.year(), day.month(), 1};
}

HistoryRange WholeMonth(QDate firstOfMonth)
{
    return {firstOfMonth, firstOfMonth.addMonths(1).addDays(-1)};
}

/// "YYYY-MM-DD".
QString Day(QDate date)
{
    return date.toString(Qt::ISODate);
}

QString Flag(bool on)
{
    return on ? QStringLiteral("1") : QStringLiteral("0");
}

} // namespace

QStringList HistoryRange::Captions()
{
    const auto tr = [](const char *text) { return QCoreApplication::translate("HistoryRange", text); };
    return {
        tr("Today"),     tr("This week"), tr("This month"),           tr("Last month"), tr("Last two month"),
        tr("This year"), tr("Last year"), tr("This month last year"), tr("All")};
}

HistoryRange HistoryRange::Of(Choice choice, QDate today)
{
    const QDate month = FirstOfMonth(today);
    const int year = today.year();
    switch (choice) {
    case rngThisWeek:
        return {today.addDays(-(today.dayOfWeek() % 7)), today}; // from Sunday on
    case rngThisMonth:
        return {month, today};
    case rngLastMonth:
        return WholeMonth(month.addMonths(-1));
    case rngLastTwoMonth:
        return {month.addMonths(-1), today};
    case rngThisYear:
        return {QDate(year, 1, 1), today};
    case rngLastYear:
        return {QDate(year - 1, 1, 1), QDate(year - 1, 12, 31)};
    case rngThisMonthLastYear:
        return WholeMonth(month.addYears(-1));
    case rngAll:
        return {FirstDay(), today};
    default:
        return {today, today};
    }
}

QString HistoryRequest::Text(QDate today) const
{
    const HistoryRange days = bAllTime ? HistoryRange{FirstDay(), today} : range;
    return Day(days.from) + ';' + Day(days.to) + QChar(0) + Flag(bSending) + ';' + Flag(bSended) + ';' +
           Flag(bSendFail) + ';' + Flag(bReceive);
}
