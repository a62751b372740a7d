#include "platform/DesktopShell.h"

#include "core/ports/Folders.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

namespace {
bool IsAddress(const QString &file)
{
    const QString scheme = QUrl(file).scheme();
    return scheme == QLatin1String("http") || scheme == QLatin1String("https") ||
           scheme == QLatin1String("mailto");
}

int Start(const QString &program, const QStringList &arguments, const QString &folder)
{
    return QProcess::startDetached(program, arguments, folder) ? DesktopShell::Started
                                                               : DesktopShell::AccessDenied;
}
} // namespace

QString DesktopShell::FindProgram(const QString &file) const
{
    if (!file.contains(u'/'))
        return QStandardPaths::findExecutable(file);
    const QFileInfo program(file);
    const bool ours = program.absolutePath() == QFileInfo(folders.Program()).absoluteFilePath();
    return ours && program.isFile() && program.isExecutable() ? program.absoluteFilePath() : QString();
}

int DesktopShell::Open(const QString &file, const QString &, const QStringList &parameters,
                       const QString &folder, int)
{
    if (file.isEmpty())
        return FileNotFound;
    const bool address = IsAddress(file);
    const QString program = address ? QString() : FindProgram(file);
    if (!program.isEmpty())
        return Start(program, parameters, folder);
    if (!address && !QFileInfo::exists(file))
        return FileNotFound;
    const QString opener = QStandardPaths::findExecutable(QStringLiteral("xdg-open"));
    if (opener.isEmpty())
        return NoAssociation;
    return Start(opener, {address ? file : QFileInfo(file).absoluteFilePath()}, folder);
}
