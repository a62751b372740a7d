#include "compose/ConversionOptions.h"

#include "core/FaxImage.h"

#include <algorithm>

namespace {

enum ResolutionFlag { flagNormal = 0, flagFine = 1 };

int ServerFlag(const FaxDefaults &defaults)
{
    return defaults.lServerResolve == 1 ? flagNormal : flagFine;
}

int ResolutionOf(const QString &strSendOption, int readyResolution, const FaxDefaults &defaults)
{
    if (readyResolution == 1)
        return flagNormal;
    if (readyResolution == 2)
        return flagFine;
    if (strSendOption.isEmpty())
        return defaults.lResolve == 0 ? ServerFlag(defaults) : defaults.lResolve;
    const int pixel = SendOptions::Parse(strSendOption).Pixel();
    if (pixel == 0)
        return ServerFlag(defaults);
    return pixel == 1 ? flagFine : flagNormal;
}

} // namespace

ConversionOptions ConversionOptions::Choose(const QString &strSendOption, int readyResolution,
                                            const FaxDefaults &defaults)
{
    ConversionOptions chosen;
    chosen.lResolution = ResolutionOf(strSendOption, readyResolution, defaults);
    chosen.lThreshold = defaults.lDeepness;
    if (!strSendOption.isEmpty()) {
        const SendOptions options = SendOptions::Parse(strSendOption);
        chosen.lThreshold = options.Deepness();
        chosen.lFitting = options.ImagePrint();
    }
    if (chosen.lThreshold == -1)
        chosen.lThreshold = defaults.lServerDeepness;
    return chosen;
}

int ReadyResolution(const QStringList &entries)
{
    const auto entry = std::find_if(entries.begin(), entries.end(),
                                    [](const QString &text) { return text.startsWith('*'); });
    if (entry == entries.end())
        return 0;
    const FaxPages pages(entry->mid(1));
    switch (pages.Count() > 0 ? pages.Page(0).lDotsPerInchY : 0) {
    case 98:
        return 1;
    case 196:
        return 2;
    default:
        return 0;
    }
}
