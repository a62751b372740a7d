#include "core/HeaderFiles.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

const QStringList &StandardHeaderProfiles()
{
    static const QStringList names{QStringLiteral("General"), QStringLiteral("Compact"),
                                   QStringLiteral("Detailed")};
    return names;
}

QString HeaderProfileFileName(const QString &shownName)
{
    const bool isStandard = shownName.startsWith('*') && StandardHeaderProfiles().contains(shownName.mid(1));
    const QString name = isStandard ? shownName.mid(1) : shownName;
    const auto leads = [](QChar character) {
        return character == '/' || character == '\\' || character.isNull();
    };
    if (name.isEmpty() || name == noHeaderProfile || std::any_of(name.begin(), name.end(), leads))
        return {};
    return name + QStringLiteral(".GNI");
}

QString FindHeaderFile(const QString &folder, const QString &fileName)
{
    const QDir dir(folder);
    if (fileName.isEmpty())
        return {};
    if (QFileInfo(dir.filePath(fileName)).isFile())
        return dir.filePath(fileName);
    QStringList files = dir.entryList(QDir::Files | QDir::Hidden);
    files.removeIf([&](const QString &file) { return file.compare(fileName, Qt::CaseInsensitive) != 0; });
    if (files.isEmpty())
        return {};
    const QStringView name = QStringView(fileName).left(fileName.lastIndexOf('.'));
    const auto named =
        std::find_if(files.begin(), files.end(), [&](const QString &file) { return file.startsWith(name); });
    return dir.filePath(named == files.end() ? files.first() : *named);
}
