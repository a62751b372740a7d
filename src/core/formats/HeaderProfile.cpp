#include "core/formats/HeaderProfile.h"

#include "core/AnsiText.h"
#include "core/SettingsFile.h"
#include "core/Utilities.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>

namespace {

/// A profile has four kilobytes; a larger file is none.
constexpr qint64 largestFile = 256 * 1024;

constexpr int defaultDistance = 50, largestCharset = 255;

/// Empty for what is no file of a profile's size; a pipe or a device is never opened.
QString ReadAnsiFile(const QString &path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || file.size() > largestFile || !file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = file.read(largestFile);
    const bool isUtf8 = bytes.startsWith("\xEF\xBB\xBF"); // an editor has saved it so
    return isUtf8 ? QString::fromUtf8(bytes) : AnsiText::FromAnsi(bytes);
}

double ToFontSize(const QString &value)
{
    const int size = ToNumber(value);
    return size <= 0 ? HeaderText().dFontSize : std::min(size, largestHeaderFont);
}

HeaderText ReadText(const IniText &ini, const QString &section)
{
    const auto value = [&](const char *key) { return ini.Value(section, QLatin1StringView(key)); };
    HeaderText text;
    text.strText = value("Text");
    if (const QString name = value("FontName"); !name.isEmpty())
        text.strFontName = name;
    text.dFontSize = ToFontSize(value("FontSize"));
    text.bBold = ReadsAsTrue(value("Bold"));
    text.bItalic = ReadsAsTrue(value("Italic"));
    text.bUnderline = ReadsAsTrue(value("Underline"));
    text.bStrikeOut = ReadsAsTrue(value("StrikeOut"));
    text.lCharset = std::clamp(ToNumber(value("Charset")), 0, largestCharset);
    return text;
}

HeaderSpace ReadSpace(const IniText &ini, const QString &section)
{
    const auto distance = [&](const char *key) {
        const QString value = ini.Value(section, QLatin1StringView(key));
        return value.isEmpty() ? defaultDistance : std::clamp(ToNumber(value), 0, largestHeaderDistance);
    };
    return {distance("LeftMargin"), distance("RightMargin"), distance("TopMargin"), distance("LineSpace")};
}

/// Reading takes one pair of quotes away.
QString ToValue(QString text)
{
    for (QChar &character : text) {
        if (character.category() == QChar::Other_Control)
            character = ' ';
    }
    text = text.trimmed();
    const bool isQuoted =
        text.size() >= 2 && text.front() == text.back() && (text.front() == '"' || text.front() == '\'');
    return isQuoted ? '"' + text + '"' : text;
}

/// Collects the lines of a new file.
struct IniLines
{
    void Section(const QString &name) { strLines += '[' + name + "]\r\n"; }
    void Value(const char *key, const QString &value)
    {
        strLines += QLatin1StringView(key) + '=' + ToValue(value) + "\r\n";
    }
    void Number(const char *key, int value) { Value(key, QString::number(value)); }
    void Truth(const char *key, bool value)
    {
        Value(key, value ? QStringLiteral("True") : QStringLiteral("False"));
    }

    QString strLines;
};

void AddText(IniLines &lines, const QString &section, const HeaderText &text)
{
    lines.Section(section);
    lines.Value("Text", text.strText);
    lines.Value("FontName", text.strFontName);
    lines.Value("FontSize", QString::number(text.dFontSize));
    lines.Truth("Bold", text.bBold);
    lines.Truth("Italic", text.bItalic);
    lines.Truth("Underline", text.bUnderline);
    lines.Truth("StrikeOut", text.bStrikeOut);
    lines.Number("Charset", text.lCharset);
}

void AddSpace(IniLines &lines, const QString &section, const HeaderSpace &space)
{
    lines.Section(section);
    lines.Number("LeftMargin", space.lLeftMargin);
    lines.Number("RightMargin", space.lRightMargin);
    lines.Number("TopMargin", space.lTopMargin);
    lines.Number("LineSpace", space.lLineSpace);
}

HeaderProfile FromLines(const QString &lines)
{
    const IniText ini(lines);
    HeaderProfile profile;
    for (std::size_t which = 0; which < headerSections.size(); ++which)
        profile.aTexts[which] = ReadText(ini, headerSections[which]);
    profile.headerSpace = ReadSpace(ini, QStringLiteral("HeaderSpace"));
    profile.footerSpace = ReadSpace(ini, QStringLiteral("FooterSpace"));
    profile.bOnlyFirstHeader =
        ReadsAsTrue(ini.Value(QStringLiteral("Options"), QStringLiteral("OnlyFirstHeader")));
    profile.bOnlyFirstFooter =
        ReadsAsTrue(ini.Value(QStringLiteral("Options"), QStringLiteral("OnlyFirstFooter")));
    return profile;
}

QByteArray ToBytes(const HeaderProfile &profile)
{
    IniLines lines;
    for (std::size_t which = 0; which < headerSections.size(); ++which)
        AddText(lines, headerSections[which], profile.aTexts[which]);
    AddSpace(lines, QStringLiteral("HeaderSpace"), profile.headerSpace);
    AddSpace(lines, QStringLiteral("FooterSpace"), profile.footerSpace);
    lines.Section(QStringLiteral("Options"));
    lines.Number("OnlyFirstHeader", profile.bOnlyFirstHeader);
    lines.Number("OnlyFirstFooter", profile.bOnlyFirstFooter);
    return AnsiText::ToAnsi(lines.strLines);
}

} // namespace

HeaderProfile ReadHeaderProfile(const QString &path)
{
    return FromLines(ReadAnsiFile(path));
}

bool WriteHeaderProfile(const QString &path, const HeaderProfile &profile)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(ToBytes(profile));
    return file.commit();
}

HeaderProfile AsReadBack(const HeaderProfile &profile)
{
    return FromLines(AnsiText::FromAnsi(ToBytes(profile)));
}
