#include "core/Utilities.h"

#include "core/Message.h"
#include "core/ports/Ids.h"

#include <QCoreApplication>
#include <QLocale>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr long white = 16777215;

/// How an apostrophe of free text is written in statements and rows.
constexpr QLatin1StringView escapedApostrophe("~$@~");

QString WithoutTrailingBlanks(QString text)
{
    while (text.endsWith(' '))
        text.chop(1);
    return text;
}

QString FormatNumber(qint64 size, qint64 divisor, int decimals, const QString &suffix)
{
    return QString::number(double(size) / double(divisor), 'f', decimals) + suffix;
}

} // namespace

QString TrimNull(const QString &text)
{
    return WithoutTrailingBlanks(text.left(text.indexOf(QChar(u'\0'))));
}

QString CleanFileName(const QString &text)
{
    QString cleaned = text;
    return cleaned.removeIf([](QChar character) { return QStringView(u"\\/:*?\"<>|").contains(character); });
}

QString CleanReceiverText(const QString &text)
{
    QString cleaned = text;
    cleaned.remove('"');
    for (QChar &character : cleaned) {
        if (character == '<' || character == '[')
            character = '(';
        else if (character == '>' || character == ']')
            character = ')';
        else if (character == ';')
            character = ',';
    }
    return cleaned;
}

QString RemoveLastChar(const QString &text, const QString &character)
{
    QString trimmed = WithoutTrailingBlanks(text);
    if (!character.isEmpty() && trimmed.endsWith(character))
        trimmed.chop(character.size());
    return trimmed;
}

int CountOf(const QString &text, const QString &part)
{
    return part.isEmpty() ? 0 : static_cast<int>(text.count(part));
}

long ColorFromHex(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("\\A#[0-9A-Fa-f]{6}\\z"));
    if (!form.match(text).hasMatch())
        return white;
    const long rgb = text.mid(1).toLong(nullptr, 16);
    return (rgb & 0xff) << 16 | (rgb & 0xff00) | rgb >> 16;
}

QString FormatFileSize(qint64 size)
{
    constexpr qint64 kilobyte = 1024, megabyte = kilobyte * 1024, gigabyte = megabyte * 1024;
    const qint64 k = size / kilobyte;
    if (size < kilobyte)
        return QLocale(QLocale::English, QLocale::UnitedStates).toString(size);
    if (k < 10)
        return FormatNumber(size, kilobyte, 2, QStringLiteral(" KB"));
    if (k < 1000)
        return FormatNumber(size, kilobyte, 1, QStringLiteral(" KB"));
    if (k < 10000)
        return FormatNumber(size, megabyte, 2, QStringLiteral(" MB"));
    if (k < 1000000)
        return FormatNumber(size, megabyte, 1, QStringLiteral(" MB"));
    return FormatNumber(size, gigabyte, 2, QStringLiteral(" GB"));
}

double NumericPrefix(const QString &text)
{
    bool isWhole = false;
    const int whole = text.toInt(&isWhole);
    if (isWhole) // nearly always, and far quicker
        return whole;
    static const QRegularExpression form(
        QStringLiteral("\\A\\s*([+-]?(?:[0-9]+\\.?[0-9]*|\\.[0-9]+)(?:[eE][+-]?[0-9]+)?)"));
    return form.match(text).captured(1).toDouble();
}

int ToNumber(const QString &text)
{
    constexpr double lowest = std::numeric_limits<int>::min(), highest = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(std::nearbyint(NumericPrefix(text)), lowest, highest));
}

bool ReadsAsTrue(const QString &stored)
{
    return stored.trimmed().compare("True", Qt::CaseInsensitive) == 0 || NumericPrefix(stored) != 0;
}

QString EscapeText(const QString &text)
{
    // QString::replace would move the rest of a long text again and again.
    return text.contains('\'') ? text.split('\'').join(escapedApostrophe) : text;
}

QString UnescapeText(const QString &text)
{
    return text.contains(escapedApostrophe) ? text.split(escapedApostrophe).join('\'') : text;
}

QString NewFaxID(Ids &ids, Message &message)
{
    const QString id = NewFaxID(ids);
    if (id.isEmpty())
        message.ShowMessage(QCoreApplication::translate("core", "Error while creating GUID!"));
    return id;
}

QString NewFaxID(Ids &ids)
{
    constexpr qsizetype guidSize = 16;
    const QByteArray guid = ids.NewGuid();
    return guid.size() == guidSize ? QString::fromLatin1(guid.toHex().toUpper()) : QString();
}

bool IsSafeFaxID(const QString &id)
{
    static const QRegularExpression form(QStringLiteral("\\A[A-Za-z0-9_-]{1,64}\\z"));
    return form.match(id).hasMatch();
}
