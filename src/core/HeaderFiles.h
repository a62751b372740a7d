#pragma once

#include <QString>
#include <QStringList>

/// The list's entry for a fax without header and footer.
inline constexpr QLatin1StringView noHeaderProfile{"<None>"};

/// "General", "Compact", "Detailed": the profiles that can be edited but not deleted. Lists show them with a
/// "*" in front.
const QStringList &StandardHeaderProfiles();
/// The file of a profile by its name in a list: "*General" is "General.GNI", any other name gets the ending.
/// Empty for no profile, and for a text that would leave its folder.
QString HeaderProfileFileName(const QString &shownName);
/// The full path of that file in a folder, looked up as it is spelled, then without regard to the case of its
/// ending, then of the whole; empty when it is missing.
QString FindHeaderFile(const QString &folder, const QString &fileName);
