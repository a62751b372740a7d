#include "compose/SafeNames.h"

#include "compose/SourceFiles.h"
#include "core/RaisedError.h"
#include "core/Utilities.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <algorithm>

namespace {

bool IsSeparator(QChar character)
{
    return character == '|' || character < ' ';
}

/// The request holds a full list of paths of this length.
bool IsShort(const QString &path)
{
    constexpr qsizetype longest = 1000; // bytes
    return path.toUtf8().size() <= longest;
}

} // namespace

QStringList SafeNames::Replace(const QStringList &entries)
{
    QStringList safe;
    for (const QString &entry : entries) {
        const QString path = SourceFiles::PathOf(entry);
        const bool isSafe = IsShort(path) && std::none_of(path.begin(), path.end(), IsSeparator);
        safe.append(isSafe ? entry : (entry.startsWith('*') ? "*" : "") + LinkTo(path));
    }
    return safe;
}

QString SafeNames::LinkTo(const QString &path)
{
    constexpr long pathNotFound = 76;
    if (!folder)
        folder = std::make_unique<QTemporaryDir>();
    QString name = GetBareName(path); // which the user reads while the file is converted
    std::replace_if(name.begin(), name.end(), IsSeparator, QChar('_'));
    const QString place = folder->filePath(QString::number(++lLinks)); // equal names do not meet
    const QString link = place + '/' + name;
    if (!QDir().mkpath(place) || !QFile::link(path, link))
        throw RaisedError(
            pathNotFound, ProgramFileName(),
            QCoreApplication::translate("SafeNames", "The file cannot be handed over: %1").arg(path));
    return link;
}
