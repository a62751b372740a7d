#pragma once

#include "compose/SendOptions.h"

#include <QDateTime>
#include <QStringList>

#include <optional>

/// What the window of the send options shows, control by control.
struct SendOptionChoices
{
    enum Resend { rsServer, rsOwn, rsNever };

    static constexpr int Importances = 3, Pixels = 3, ImagePrints = 5; ///< radio buttons of each
    static constexpr int LowestDeepness = 1, HighestDeepness = 255;
    static constexpr int HighestNumber = 1000; ///< of the two boxes

    bool bSendTime = false; ///< later, not at once
    QDate date;
    QString strTime;
    int lImportance = 1;
    Resend resend = rsServer;
    int lDelay = 10; ///< minutes
    int lTryTime = 3;
    int lPixel = 1;
    bool bPixelFixed = false; ///< by a ready fax among the files
    QString strServerPixel;   ///< caption of the first resolution
    bool bServerDeepness = false;
    int lDeepness = 150;    ///< of the slider
    int lOwnDeepness = 150; ///< where the slider goes back to when the server's value is left
    int lImagePrint = 0;

    /// `fixedResolution`: see `ReadyResolution`.
    static SendOptionChoices Load(const QString &strSendOption, int fixedResolution,
                                  const FaxDefaults &defaults, const QDateTime &now);
    /// The text `strSendOption`; nothing when the sending time lies in the past.
    std::optional<QString> Store(const FaxDefaults &defaults, const QDateTime &now) const;

    /// The check box of the server's threshold.
    void SetServerDeepness(bool server, const FaxDefaults &defaults);
    /// The slider.
    void SetDeepness(int value);

    /// "00:00" to "23:45".
    static QStringList QuarterHours();
    /// The time of day that is offered first.
    static QString DefaultTime(const QTime &now);
    /// What stands beside the choice of the server's resending.
    static QString ServerText(Resend resend, const FaxDefaults &defaults);
};
