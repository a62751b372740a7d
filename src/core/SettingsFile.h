#pragma once

#include <QString>

/// INI files as the system's profile routines read them: keys and sections without regard to case, the first
/// match wins, values trimmed, 254 characters at most. The file is UTF-8.

/// Sets one value and leaves every other line and comment of the file as it stands. The file is replaced in
/// one step, so that a crash leaves the old or the new one. An empty `file` means "config.ini" in
/// `programFolder`.
bool WriteIniValue(const QString &section, const QString &key, const QString &value, const QString &file,
                   const QString &programFolder = {});
/// The value; empty for a missing file, section or key.
QString ReadIniValue(const QString &section, const QString &key, const QString &file,
                     const QString &programFolder = {});
