#include "core/formats/PrintRequest.h"

#include "core/RaisedError.h"
#include "core/Utilities.h"

#include <algorithm>
#include <limits>

namespace {

constexpr QChar fieldSeparator{2};
constexpr QChar fileSeparator{'|'};

enum Field {
    fieldFiles,
    fieldUserFolder,
    fieldHeader,
    fieldCompanyName,
    fieldRecipients,
    fieldThreshold,
    fieldFitting,
    fieldResolve,
    fieldApplicationData,
    fieldCount
};

[[noreturn]] void RaiseBadRequest(const QString &description)
{
    constexpr long badCall = 5;
    throw RaisedError(badCall, ProgramFileName() + QStringLiteral(".PrintRequest"), description);
}

/// Such texts come from a database and from what a user typed.
QString WithoutControls(QString text)
{
    constexpr char16_t firstPrintable = u' ';
    std::replace_if(
        text.begin(), text.end(), [](QChar character) { return character.unicode() < firstPrintable; }, u' ');
    return text;
}

QString PackFiles(const QStringList &files)
{
    QString packed;
    for (const QString &file : files) {
        if (file.contains(fileSeparator) || WithoutControls(file) != file)
            RaiseBadRequest(QStringLiteral("The path \"%1\" holds a separator").arg(file));
        packed += file + fileSeparator;
    }
    return packed;
}

QStringList ParseFiles(const QString &packed)
{
    QStringList files = packed.split(fileSeparator);
    if (files.size() < 2 || !files.takeLast().isEmpty())
        RaiseBadRequest(QStringLiteral("The list of files has no end"));
    for (const QString &file : files) {
        if (file.isEmpty() || file == QLatin1String("*"))
            RaiseBadRequest(QStringLiteral("The list of files has an empty entry"));
    }
    return files;
}

/// A path that was cut at its front would be taken from the folder in which the tool was started.
QString ParseFolder(const QString &path)
{
    if (!path.startsWith('/'))
        RaiseBadRequest(QStringLiteral("\"%1\" is no full path").arg(path));
    return path;
}

int ParseNumber(const QString &text)
{
    bool isNumber = false;
    const qlonglong number = text.trimmed().toLongLong(&isNumber);
    if (!isNumber)
        RaiseBadRequest(QStringLiteral("\"%1\" is no number").arg(text));
    using Range = std::numeric_limits<int>;
    return static_cast<int>(std::clamp<qlonglong>(number, Range::min(), Range::max()));
}

/// A negative number stands for a setting that only the client knows. Taken as it is it would make every page
/// white.
int ParseThreshold(const QString &text)
{
    constexpr int highest = 255;
    const int number = ParseNumber(text);
    return number < 0 ? PrintRequest().lThreshold : std::min(number, highest);
}

int ParseFitting(const QString &text)
{
    constexpr int highest = 4;
    const int number = ParseNumber(text);
    return number < 0 || number > highest ? PrintRequest().lFitting : number;
}

} // namespace

QString PrintRequest::Pack() const
{
    const QStringList fields{PackFiles(aFiles),
                             WithoutControls(strUserFolder),
                             WithoutControls(strHeader),
                             WithoutControls(strCompanyName),
                             WithoutControls(strRecipients),
                             QString::number(lThreshold),
                             QString::number(lFitting),
                             QString::number(lResolution),
                             WithoutControls(strApplicationData)};
    return fields.join(fieldSeparator);
}

PrintRequest PrintRequest::Parse(const QString &text)
{
    const QStringList fields = text.split(fieldSeparator);
    if (fields.size() != fieldCount)
        RaiseBadRequest(QStringLiteral("The request has %1 fields instead of %2")
                            .arg(QString::number(fields.size()), QString::number(fieldCount)));
    PrintRequest request;
    request.aFiles = ParseFiles(fields[fieldFiles]);
    request.strUserFolder = ParseFolder(fields[fieldUserFolder]);
    request.strHeader = fields[fieldHeader];
    request.strCompanyName = fields[fieldCompanyName];
    request.strRecipients = fields[fieldRecipients];
    request.lThreshold = ParseThreshold(fields[fieldThreshold]);
    request.lFitting = ParseFitting(fields[fieldFitting]);
    request.lResolution = ParseNumber(fields[fieldResolve]);
    request.strApplicationData = ParseFolder(fields[fieldApplicationData]);
    return request;
}
