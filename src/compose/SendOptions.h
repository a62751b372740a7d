#pragma once

#include <QString>

class clsStatement;

/// What the user's settings and the server say about outgoing faxes.
struct FaxDefaults
{
    int lResolve = 1;    ///< resolution: 0 the server's, 1 fine, 2 normal
    int lDeepness = 200; ///< black and white threshold; -1 the server's
    int lServerResolve = 0;
    int lServerDeepness = 150;
    int lServerResendTimes = 0; ///< 0: the server never resends
    int lServerTryInterval = 0; ///< minutes

    /// Those of the user who is logged in.
    static FaxDefaults FromSettings();
};

/// Resending after a failure. Negative numbers stand for the server's setting.
struct Resending
{
    bool bNever = true;
    int lInterval = 0; ///< minutes
    int lTimes = 0;
};

/// The options of one fax as `strSendOption` packs them: seven fields, each followed by character 2. The
/// fields stand as they are stored; the routines read them. What does not parse counts as 0.
struct SendOptions
{
    /// "-1" for at once; else the date, CR LF, the time, CR LF.
    QString strTiming = QStringLiteral("-1");
    /// 0 high, 1 normal, 2 low.
    QString strImportance = QStringLiteral("1");
    QString strBusyResend = QStringLiteral("3");
    /// "-1" for never; else the interval, CR LF, the number of attempts.
    QString strResending = QStringLiteral("-1");
    /// 0 the server's resolution, 1 fine (204 x 196 dpi), 2 normal (204 x 98 dpi).
    QString strPixel = QStringLiteral("1");
    /// Black and white threshold, -1 for the server's.
    QString strDeepness = QStringLiteral("200");
    /// How images are fitted on the page, 0 to 4; no column of the fax keeps it.
    QString strImagePrint;

    /// An empty text, which means that the user never opened the options, gives the defaults. Fields that are
    /// missing at the end of another text are empty.
    static SendOptions Parse(const QString &packed);
    QString Pack() const;
    /// Those of a stored fax, from the columns TimingSend, FaxLevel, busyResend, IsDontRetry, RetryInterval,
    /// ResendTimes, Resolution and Deepness. Raises the database layer's errors.
    static SendOptions FromRow(const clsStatement &row);
    /// The field of that name for a fax that is sent again.
    static QString PackResending(const QString &interval, const QString &times);

    bool IsSentAtOnce() const;
    Resending ReadResending() const;
    int Importance() const;
    int Pixel() const;
    int Deepness() const;
    /// A whole number; what stands behind a decimal point is cut.
    int ImagePrint() const;
};
