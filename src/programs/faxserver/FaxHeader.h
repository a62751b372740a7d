#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>

/// What a client tells of a fax before it sends the file.
struct FaxHeader
{
    static constexpr qsizetype lMostBytes = 262144;
    static constexpr int lMostRecipients = 5000;

    /// Reads the 11 fields, a NUL between them. Raises `ServerError` for what is no header.
    static FaxHeader Parse(const QByteArray &body);
    /// What is to be dialled for a recipient that was typed in, such as `"Shop"<123>`.
    static QString NumberOf(const QString &typed);

    QString strTitle;
    QString strFileName;
    int lLevel = 1; ///< 0 high, 1 normal, 2 low
    QString strRemark;
    QDateTime timWanted;   ///< invalid for at once
    QStringList aContacts; ///< ids of public contacts
    QStringList aUsers;    ///< ids of accounts
    QStringList aTyped;    ///< as the user typed them, without ";"
    int lResends = 0;      ///< 0 here and below: as the server does by itself
    int lInterval = 0;     ///< minutes
    QString strOriginalSender;
};
