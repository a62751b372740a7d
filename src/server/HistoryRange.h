#pragma once

#include <QDate>
#include <QString>
#include <QStringList>

/// Days from which faxes are fetched again, both included.
struct HistoryRange
{
    /// The choices that are offered, in their order.
    enum Choice {
        rngToday,
        rngThisWeek,
        rngThisMonth,
        rngLastMonth,
        rngLastTwoMonth,
        rngThisYear,
        rngLastYear,
        rngThisMonthLastYear,
        rngAll,
        Choices
    };

    QDate from;
    QDate to;

    /// The captions of all choices.
    static QStringList Captions();
    static HistoryRange Of(Choice choice, QDate today);

    bool operator==(const HistoryRange &) const = default;
};

/// Which faxes the user wants to have from the server again.
struct HistoryRequest
{
    bool bAllTime = false; ///< else those of the range
    HistoryRange range;
    bool bSending = true;
    bool bSended = true;
    bool bSendFail = true;
    bool bReceive = true;

    /// False when it asks for no kind of fax.
    bool IsAny() const { return bSending || bSended || bSendFail || bReceive; }
    /// As the server takes it: the two days, the byte 0 and the four kinds.
    QString Text(QDate today) const;
};
