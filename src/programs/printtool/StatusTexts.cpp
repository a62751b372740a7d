#include "StatusTexts.h"

#include "Conversion.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>

namespace {

QString Translate(const char *text)
{
    return QCoreApplication::translate("printtool", text);
}

/// A translated text with a plural.
QString Translate(const char *text, int number)
{
    return QCoreApplication::translate("printtool", text, nullptr, number);
}

QString FailureLine(const FailedDocument &document)
{
    return Translate("Converting %1 failed. %2")
        .arg(StatusTexts::ShownName(document.strName), document.strReason);
}

} // namespace

QString StatusTexts::ShownName(const QString &name)
{
    constexpr qsizetype longest = 80, end = 24;
    QString shown = name;
    std::replace_if(
        shown.begin(), shown.end(),
        [](QChar character) { return !character.isPrint() && !character.isSurrogate(); }, u' ');
    shown = shown.simplified();
    return shown.size() <= longest ? shown : shown.left(longest - end - 1) + u'\u2026' + shown.right(end);
}

QString StatusTexts::ConvertingPage(const Document &document, int page, int pageCount, int number,
                                    int documentCount)
{
    const QString name = ShownName(document.Name());
    const QString count = QString::number(pageCount);
    // No comma: the client would not show the line.
    if (documentCount == 1)
        return Translate("Converting %1 (page %2 of %3)").arg(name, QString::number(page), count);
    return Translate("Converting %1 (page %2 of %3; document %4 of %5)")
        .arg(name, QString::number(page), count, QString::number(number), QString::number(documentCount));
}

QString StatusTexts::Failure(const ConversionResult &result)
{
    constexpr qsizetype mostCharacters = 16000;
    QStringList lines;
    if (!result.strReason.isEmpty())
        lines.append(Translate("The conversion failed. %1").arg(result.strReason));
    qsizetype characters = 0, named = 0;
    for (; named < result.aFailed.size() && characters < mostCharacters; ++named) {
        lines.append(FailureLine(result.aFailed[named]));
        characters += lines.last().size();
    }
    const int unnamed = static_cast<int>(result.aFailed.size() - named);
    if (unnamed > 0)
        lines.append(Translate("%n more documents failed.", unnamed));
    return lines.join(QLatin1String("\r\n"));
}

QString StatusTexts::Success(int pages)
{
    return pages == 1 ? Translate("The fax has 1 page.") : Translate("The fax has %n pages.", pages);
}
