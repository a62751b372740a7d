#include "HeaderChoice.h"

#include "ConversionError.h"
#include "controls/HeaderPainter.h"
#include "core/HeaderFiles.h"
#include "core/Utilities.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

namespace {

bool IsNone(const QString &name)
{
    return name.isEmpty() || name == noHeaderProfile;
}

QString HeaderFolder(const QString &folder)
{
    return QDir(folder).filePath(QStringLiteral("Header"));
}

QString ExistingProfile(const QString &path, const QString &name)
{
    if (path.isEmpty())
        throw ConversionError(
            QCoreApplication::translate("printtool", "There is no header profile \"%1\".").arg(name));
    return path;
}

} // namespace

QString HeaderChoice::FindForUser(const QString &shownName, const QString &userFolder,
                                  const QString &programFolder)
{
    if (IsNone(shownName))
        return {};
    const QString fileName = HeaderProfileFileName(shownName);
    const QString own = FindHeaderFile(HeaderFolder(userFolder), fileName);
    const QString bareName = shownName.startsWith('*') ? shownName.mid(1) : shownName;
    if (!own.isEmpty() || !StandardHeaderProfiles().contains(bareName))
        return ExistingProfile(own, shownName);
    return ExistingProfile(FindHeaderFile(HeaderFolder(programFolder), fileName), shownName);
}

QString HeaderChoice::FindForShell(const QString &pathOrName, const QString &programFolder)
{
    if (IsNone(pathOrName) || FileExists(pathOrName))
        return pathOrName == noHeaderProfile ? QString() : pathOrName;
    return ExistingProfile(FindHeaderFile(HeaderFolder(programFolder), HeaderProfileFileName(pathOrName)),
                           pathOrName);
}

std::shared_ptr<const HeaderPainter> HeaderChoice::Load(const QString &path, const SheetFormat &format)
{
    if (path.isEmpty())
        return nullptr;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw ConversionError(
            QCoreApplication::translate("printtool", "The header profile \"%1\" cannot be read: %2.")
                .arg(GetBareName(path), file.errorString()));
    file.close();
    return std::make_shared<HeaderPainter>(ReadHeaderProfile(path), SheetFormat::DotsPerInchX,
                                           format.DotsPerInchY());
}
