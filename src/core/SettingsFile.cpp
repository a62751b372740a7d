#include "core/SettingsFile.h"

#include <QFile>
#include <QList>
#include <QSaveFile>
#include <QStringTokenizer>

#include <optional>

namespace {

/// Settings are a few lines; a larger file is none of ours.
constexpr qint64 largestFile = 16 * 1024 * 1024;

/// The reading buffer of 255 characters holds a NUL as well.
constexpr int longestValue = 254;

QString FileOrDefault(const QString &file, const QString &programFolder)
{
    if (!file.isEmpty())
        return file;
    const bool hasSlash = programFolder.isEmpty() || programFolder.endsWith('/');
    return programFolder + (hasSlash ? QString() : QStringLiteral("/")) + QStringLiteral("config.ini");
}

/// The file's lines with their endings, so that joined again they are the file. A missing file has none;
/// nothing when it cannot be read.
std::optional<QList<QByteArray>> ReadLines(const QString &path)
{
    QFile file(path);
    if (!file.exists())
        return QList<QByteArray>();
    if (!file.open(QIODevice::ReadOnly) || file.size() > largestFile)
        return std::nullopt;
    QList<QByteArray> lines;
    while (!file.atEnd())
        lines.append(file.readLine());
    if (file.error() != QFileDevice::NoError)
        return std::nullopt;
    return lines;
}

bool SaveLines(const QString &path, const QList<QByteArray> &lines)
{
    QSaveFile file(path);
    const bool isNew = !QFile::exists(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    // Passwords' digests stand in it. An existing file keeps its rights.
    if (isNew && !file.setPermissions(QFile::ReadOwner | QFile::WriteOwner))
        return false;
    file.write(lines.join());
    return file.commit();
}

/// A byte order mark in front of the first line is no part of the text.
QString TextOfLine(const QByteArray &line)
{
    return QString::fromUtf8(line).trimmed();
}

/// What two names have in common that are the same.
QString Folded(const QString &name)
{
    return name.trimmed().toCaseFolded();
}

bool IsSection(const QString &text)
{
    return text.startsWith('[');
}

/// Folded; nothing for a bracket that is never closed.
std::optional<QString> SectionName(const QString &text)
{
    const qsizetype end = text.indexOf(']');
    return end < 0 ? std::nullopt : std::optional(Folded(text.mid(1, end - 1)));
}

/// Folded; nothing for a line without a key.
std::optional<QString> KeyName(const QString &text)
{
    const qsizetype end = text.startsWith(';') ? -1 : text.indexOf('=');
    return end < 0 ? std::nullopt : std::optional(Folded(text.left(end)));
}

QString ValueOf(const QString &text)
{
    QString value = text.section('=', 1).trimmed();
    const bool quoted =
        value.size() >= 2 && value.front() == value.back() && (value.front() == '"' || value.front() == '\'');
    if (quoted)
        value = value.mid(1, value.size() - 2);
    value = value.left(longestValue);
    return value.left(value.indexOf(QChar(u'\0'))).trimmed();
}

/// Where a key stands, and where it would have to go.
struct Place
{
    qsizetype lKeyLine = -1;       ///< the first line with that key in that section; -1 for none
    qsizetype lLastOfSection = -1; ///< the last line with text of the first such section; -1 for none
};

Place FindPlace(const QList<QByteArray> &lines, const QString &section, const QString &key)
{
    const QString wantedSection = Folded(section), wantedKey = Folded(key);
    Place place;
    bool inSection = false, inFirstSection = false;
    for (qsizetype line = 0; line < lines.size(); ++line) {
        const QString text = TextOfLine(lines[line]);
        if (IsSection(text)) {
            inSection = SectionName(text) == wantedSection;
            inFirstSection = inSection && place.lLastOfSection < 0;
        } else if (inSection && KeyName(text) == wantedKey) {
            place.lKeyLine = line;
            return place;
        }
        if (inFirstSection && !text.isEmpty())
            place.lLastOfSection = line;
    }
    return place;
}

/// A name that would be read back as another, or as another kind of line, cannot be written.
bool CanBeWritten(const QString &name, const QString &forbidden)
{
    const QString trimmed = name.trimmed();
    for (const QChar character : trimmed) {
        if (character.unicode() < u' ' || forbidden.contains(character))
            return false;
    }
    return !trimmed.isEmpty();
}

bool IsKeyName(const QString &key)
{
    const QString trimmed = key.trimmed();
    return CanBeWritten(key, QStringLiteral("=")) && !trimmed.startsWith(';') && !trimmed.startsWith('[');
}

/// The value up to its first line break: what follows would be a line of its own.
QString FirstLine(const QString &value)
{
    for (qsizetype position = 0; position < value.size(); ++position) {
        if (QStringView(u"\r\n\0", 3).contains(value[position]))
            return value.left(position);
    }
    return value;
}

QByteArray LineEnding(const QList<QByteArray> &lines)
{
    return !lines.isEmpty() && lines.first().endsWith("\r\n") ? "\r\n" : "\n";
}

void SetLine(QList<QByteArray> &lines, const QString &section, const QString &key, const QString &value)
{
    const QByteArray ending = LineEnding(lines);
    const QByteArray entry = (key.trimmed() + '=' + FirstLine(value)).toUtf8() + ending;
    const Place place = FindPlace(lines, section, key);
    if (!lines.isEmpty() && !lines.last().endsWith('\n'))
        lines.last() += ending;
    if (place.lKeyLine >= 0) {
        lines[place.lKeyLine] = entry;
    } else if (place.lLastOfSection >= 0) {
        lines.insert(place.lLastOfSection + 1, entry);
    } else {
        lines += {QStringLiteral("[%1]").arg(section.trimmed()).toUtf8() + ending, entry};
    }
}

} // namespace

bool WriteIniValue(const QString &section, const QString &key, const QString &value, const QString &file,
                   const QString &programFolder)
{
    return WriteIniValues(section, {{key, value}}, FileOrDefault(file, programFolder));
}

bool WriteIniValues(const QString &section, const QList<std::pair<QString, QString>> &values,
                    const QString &file)
{
    std::optional<QList<QByteArray>> lines = ReadLines(file);
    if (!lines || !CanBeWritten(section, QStringLiteral("]")))
        return false;
    const QList<QByteArray> before = *lines;
    for (const auto &[key, value] : values) {
        if (!IsKeyName(key))
            return false;
        SetLine(*lines, section, key, value);
    }
    return *lines == before || SaveLines(file, *lines);
}

QString ReadIniValue(const QString &section, const QString &key, const QString &file,
                     const QString &programFolder)
{
    const std::optional<QList<QByteArray>> lines = ReadLines(FileOrDefault(file, programFolder));
    if (!lines)
        return {};
    const Place place = FindPlace(*lines, section, key);
    return place.lKeyLine < 0 ? QString() : ValueOf(TextOfLine((*lines)[place.lKeyLine]));
}

IniText::IniText(const QString &text)
{
    std::optional<QString> section;
    for (const QStringView line : QStringTokenizer(text, u'\n')) {
        const QString entry = line.trimmed().toString();
        if (IsSection(entry)) {
            section = SectionName(entry);
        } else if (const std::optional<QString> key = KeyName(entry); key && section) {
            const std::pair place(*section, *key);
            if (!values.contains(place))
                values.insert(place, ValueOf(entry));
        }
    }
}

QString IniText::Value(const QString &section, const QString &key) const
{
    return values.value({Folded(section), Folded(key)});
}
