#pragma once

#include <QDate>
#include <QString>
#include <QStringList>

/// The date range of the bar above the list: a year or one of its months, or all faxes.
class DateFilter
{
public:
    /// Lists the years up to that of `day`.
    explicit DateFilter(QDate day);
    /// The program may run for weeks: the months up to that of `day` are enabled.
    void SetToday(QDate day) { today = day; }

    /// "All faxes", then ten years, newest first.
    QStringList Years() const;
    int YearIndex() const { return lYear; } ///< 0 for all faxes
    QString YearText() const;               ///< empty for all faxes

    /// `month` counts from 0.
    bool IsMonthEnabled(int month) const;
    bool IsMonthPressed(int month) const { return lMonth == month; }
    QString MonthCaption(int month) const; ///< empty while no year is selected
    QString PressedCaption() const;        ///< caption of the pressed month; empty for none

    /// Selects a year; the months are released.
    void SelectYear(int index);
    /// Presses a month, or releases it, which brings the year's range back. Without a year, or for a month
    /// that is not enabled, nothing happens.
    void ClickMonth(int month);
    /// Releases the months; the range stays.
    void ReleaseMonths() { lMonth = -1; }

    /// What follows a column's name in a statement, such as " between '2006-03-01' and  '2006-04-01'". The
    /// upper bound is the day after the range, compared as text. Empty for all faxes.
    QString Text() const { return strText; }

    /// First and last day of the range; invalid for all faxes.
    QDate FirstDay() const { return first; }
    QDate LastDay() const { return first.isValid() ? end.addDays(-1) : QDate(); }

private:
    int Year() const { return lNewestYear - lYear + 1; }
    void SetRange(QDate from, QDate to);

    QDate today;
    int lNewestYear; ///< of those listed
    int lYear = 0;
    int lMonth = -1;
    QDate first;
    QDate end; ///< the day after the range
    QString strText;
};
