#pragma once

#include <QHash>
#include <QList>
#include <QString>

#include <utility>

/// INI files as the system's profile routines read them: keys and sections without regard to case, the first
/// match wins, values trimmed, 254 characters at most. The file is UTF-8.

/// Sets one value and leaves every other line and comment of the file as it stands. The file is replaced in
/// one step, so that a crash leaves the old or the new one. An empty `file` means "config.ini" in
/// `programFolder`.
bool WriteIniValue(const QString &section, const QString &key, const QString &value, const QString &file,
                   const QString &programFolder = {});
/// Sets several values, key and value each, in one step; all or none. A file that holds them already is left
/// alone.
bool WriteIniValues(const QString &section, const QList<std::pair<QString, QString>> &values,
                    const QString &file);
/// The value; empty for a missing file, section or key.
QString ReadIniValue(const QString &section, const QString &key, const QString &file,
                     const QString &programFolder = {});

/// All values of an INI text in whatever encoding, cut once: for files of many values.
class IniText final
{
public:
    explicit IniText(const QString &text);
    /// As `ReadIniValue` gives it.
    QString Value(const QString &section, const QString &key) const;

private:
    QHash<std::pair<QString, QString>, QString> values; ///< by section and key
};
