#pragma once

#include "compose/SendOptions.h"

#include <QStringList>

/// How the print tool makes the pages of a fax.
struct ConversionOptions
{
    /// 1 for 204 x 196 dpi, 0 for 204 x 98 dpi. A user's default that is neither is passed on as it is.
    int lResolution = 1;
    int lThreshold = 0; ///< black and white
    int lFitting = 0;   ///< of images, see `SendOptions`

    bool operator==(const ConversionOptions &) const = default;

    /// `readyResolution`: see `ReadyResolution`. An empty `strSendOption` leaves all to the defaults.
    static ConversionOptions Choose(const QString &strSendOption, int readyResolution,
                                    const FaxDefaults &defaults);
};

/// The resolution of the first entry of a composer's file list that is a ready fax, "*" and its path: 1 for
/// 98 dpi, 2 for 196 dpi, 0 for any other and without such an entry.
int ReadyResolution(const QStringList &entries);
