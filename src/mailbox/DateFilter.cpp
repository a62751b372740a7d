#include "mailbox/DateFilter.h"

#include <QCoreApplication>
#include <QLocale>

namespace {

constexpr int lYearsListed = 10;

} // namespace

DateFilter::DateFilter(QDate day)
    : today(day)
    , lNewestYear(day.year())
{
}

QStringList DateFilter::Years() const
{
    QStringList years{QCoreApplication::translate("mailbox", "All faxes")};
    for (int i = 0; i < lYearsListed; ++i)
        years.append(QString::number(lNewestYear - i));
    return years;
}

QString DateFilter::YearText() const
{
    return lYear > 0 ? QString::number(Year()) : QString();
}

bool DateFilter::IsMonthEnabled(int month) const
{
    return lYear > 0 && (Year() < today.year() || month < today.month());
}

QString DateFilter::MonthCaption(int month) const
{
    return lYear > 0 ? QLocale().standaloneMonthName(month + 1, QLocale::ShortFormat) : QString();
}

QString DateFilter::PressedCaption() const
{
    return lMonth < 0 ? QString() : MonthCaption(lMonth);
}

void DateFilter::SelectYear(int index)
{
    lYear = index;
    lMonth = -1;
    if (index > 0) {
        SetRange(QDate(Year(), 1, 1), QDate(Year() + 1, 1, 1));
        strText = " between '" + first.toString(Qt::ISODate) + "' and '" + end.toString(Qt::ISODate) + "' ";
    } else {
        SetRange({}, {});
    }
}

void DateFilter::ClickMonth(int month)
{
    if (!IsMonthEnabled(month))
        return;
    if (lMonth == month) {
        SelectYear(lYear);
        return;
    }
    lMonth = month;
    const QDate from(Year(), month + 1, 1);
    SetRange(from, from.addMonths(1));
    strText = " between '" + first.toString(Qt::ISODate) + "' and  '" + end.toString(Qt::ISODate) + "'";
}

void DateFilter::SetRange(QDate from, QDate to)
{
    first = from;
    end = to;
    strText.clear();
}
