#pragma once

#include <QString>

class QDateTime;
class clsStatement;

/// The columns of a waiting fax that the server is told, as they stand in its row.
struct OutgoingFax
{
    QString OuterReceiver;
    QString InnerReceiver;
    QString TempReceiver;
    QString Title;
    QString FileName;
    QString Pages;
    QString FaxLevel;
    QString ReMark;
    QString timingSend; ///< date, line break, time; "-1", "0" or nothing for at once
    QString resendTimes;
    QString reTryInterval;
    QString originalSender;
    QString isDontRetry;

    static OutgoingFax FromRow(const clsStatement &row);
};

/// The fields with which the fax goes to the server, a NUL between them. `userID` stands in for a sender that
/// the row does not name.
QString FaxInfo(const OutgoingFax &fax, const QDateTime &now, const QString &userID);
