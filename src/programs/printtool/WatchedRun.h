#pragma once

#include "Conversion.h"

#include <functional>

/// Runs a conversion in a thread of its own, in a new work folder, while the event loop keeps watch.
class WatchedRun final
{
public:
    /// Called with the latest line for the user, about ten times a second and at least as often without a new
    /// one. False ends the conversion.
    using Watch = std::function<bool(const QString &status)>;

    /// Converts; Ctrl+C ends it as well. No file but the output is left behind when this returns. Raises
    /// `ConversionError` or the system's error when it could not begin.
    ConversionResult Convert(ConversionJob job, const Watch &watch);

    /// True when a thread did not end in time after it was told to stop: the process has to end without
    /// cleaning up behind it.
    bool IsStuck() const { return bStuck; }

private:
    bool bStuck = false;
};
