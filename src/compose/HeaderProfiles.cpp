#include "compose/HeaderProfiles.h"

#include "core/HeaderFiles.h"
#include "core/Message.h"
#include "core/Utilities.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <algorithm>

namespace {

constexpr QLatin1StringView newProfile{"<New Profile...>"};

/// Without what no file can be named by, and what would steer the list.
QString CleanName(const QString &text)
{
    QString name = CleanFileName(text);
    name.removeIf([](QChar character) { return character.category() == QChar::Other_Control; });
    return name.trimmed();
}

/// The names of all profiles in the folder, each once. Sorted: the directory's own order means nothing to a
/// reader.
QStringList NamesIn(const QString &headerFolder)
{
    QStringList names;
    const QStringList files =
        QDir(headerFolder)
            .entryList({QStringLiteral("*.GNI")}, QDir::Files | QDir::Hidden, QDir::Name | QDir::IgnoreCase);
    for (const QString &file : files) {
        const QString name = file.chopped(4);
        if (!name.isEmpty() && CleanName(name) == name && !names.contains(name))
            names.append(name);
    }
    return names;
}

bool IsStandard(const QString &name)
{
    return StandardHeaderProfiles().contains(name, Qt::CaseInsensitive);
}

} // namespace

QStringList HeaderProfiles::Entries(const QString &headerFolder)
{
    const QStringList names = NamesIn(headerFolder);
    QStringList entries{noHeaderProfile};
    for (const QString &name : StandardHeaderProfiles()) {
        if (names.contains(name, Qt::CaseInsensitive))
            entries.append('*' + name);
    }
    std::copy_if(names.begin(), names.end(), std::back_inserter(entries),
                 [](const QString &name) { return !IsStandard(name); });
    return entries << newProfile;
}

HeaderProfiles::Commands HeaderProfiles::CommandsOf(const QStringList &entries, qsizetype index)
{
    const bool isNew = index > 0 && index == entries.size() - 1;
    const bool isProfile = index > 0 && index < entries.size() - 1;
    return {isNew, isProfile, isProfile && !entries[index].startsWith('*')};
}

qsizetype HeaderProfiles::Insert(QStringList &entries, const QString &name)
{
    const qsizetype index = entries.size() - 1;
    entries.insert(index, name);
    return index;
}

qsizetype HeaderProfiles::Remove(QStringList &entries, qsizetype index)
{
    entries.removeAt(index);
    return index == entries.size() - 1 ? index - 1 : index;
}

QString HeaderProfiles::PathOf(const QString &headerFolder, const QString &entry)
{
    const QString file = HeaderProfileFileName(entry);
    const QString path = FindHeaderFile(headerFolder, file);
    return path.isEmpty() ? QDir(headerFolder).filePath(file) : path;
}

bool HeaderProfiles::Delete(const QString &headerFolder, const QString &entry, Message &message)
{
    const QString question = QCoreApplication::translate(
        "compose", "This profile will be delete and cannot be recovered, do you want to continue?");
    if (message.ShowMessage(question, mbYesNo | mbQuestion | mbDefaultButton2) != mbAnswerYes)
        return false;
    if (const QString file = FindHeaderFile(headerFolder, HeaderProfileFileName(entry)); !file.isEmpty())
        QFile::remove(file);
    return true;
}

HeaderProfile HeaderProfiles::NewProfile()
{
    constexpr int topMargin = 30;
    HeaderProfile profile;
    profile.headerSpace.lTopMargin = profile.footerSpace.lTopMargin = topMargin;
    return profile;
}

QString HeaderProfiles::AskName(const QString &headerFolder, Message &message)
{
    const QString name =
        CleanName(message.AskText(QCoreApplication::translate("compose", "Please enter a profile name: "),
                                  QCoreApplication::translate("compose", "New Profile")));
    if (name.isEmpty() || FindHeaderFile(headerFolder, HeaderProfileFileName(name)).isEmpty())
        return name;
    message.ShowMessage(QCoreApplication::translate("compose", "The specified file already exists."),
                        mbExclamation);
    return {};
}

bool HeaderProfiles::Save(const QString &path, const HeaderProfile &profile, Message &message)
{
    if (WriteHeaderProfile(path, profile))
        return true;
    message.ShowMessage(QCoreApplication::translate("compose", "Cannot save the profile."), mbExclamation);
    return false;
}

FileDialogSetup HeaderProfiles::DialogSetup(const QString &userFolder)
{
    return {QStringLiteral("%1|*.gni")
                .arg(QCoreApplication::translate("compose", "Velmar Headers & Footers Config file")),
            userFolder,
            QStringLiteral("gni"),
            {}};
}

bool HeaderProfiles::SaveAs(const QString &path, const HeaderProfile &profile, Message &message)
{
    if (path.isEmpty())
        return false;
    if (FileExists(path)) {
        const QString question = QCoreApplication::translate(
            "compose", "The spcified file already exists.\r\nDo you want to replace?");
        if (message.ShowMessage(question, mbYesNo | mbExclamation) != mbAnswerYes)
            return false;
    }
    return Save(path, profile, message);
}
