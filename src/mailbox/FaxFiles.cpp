#include "mailbox/FaxFiles.h"

#include "core/Globals.h"
#include "core/Utilities.h"
#include "mailbox/FaxRow.h"
#include "mailbox/FolderTree.h"

#include <QSet>

#include <filesystem>
#include <system_error>

namespace {

/// To look at each of more files takes longer than to read the names in their folder.
constexpr qsizetype lFewFiles = 50;

/// Hands over the names in a folder until `take` returns true. The folder may hold 100,000 files: it is read
/// in its own order, without a look at any of them.
template <typename Take>
void ForEachName(const QString &folder, Take take)
{
    std::error_code failed;
    std::filesystem::directory_iterator entry(folder.toStdString(), failed);
    for (; !failed && entry != std::filesystem::directory_iterator(); entry.increment(failed)) {
        if (take(QString::fromStdString(entry->path().filename().string())))
            return;
    }
}

/// The file of that name in another case; empty when there is none.
QString FindInAnotherCase(const QString &folder, const QString &name)
{
    QString found;
    ForEachName(folder, [&](const QString &candidate) {
        if (candidate.compare(name, Qt::CaseInsensitive) == 0 && FileExists(folder + candidate))
            found = folder + candidate;
        return !found.isEmpty();
    });
    return found;
}

QString BoxFolder(bool isSent)
{
    return isSent ? Global().strOutputBoxPath : Global().strInputBoxPath;
}

/// Names in the row of each of the faxes; empty for a row without one.
QStringList ReadFileNames(const QStringList &ids, bool isSent)
{
    const QString sql = isSent ? "Select FileName From SendFax Where Fax_ID in("
                               : "Select FileName From ReceiveFax Where Fax_ID in(";
    const auto row = Global().objDB->SelectEx(sql + QuoteIds(ids) + ")");
    QStringList names;
    while (row->Next())
        names.append(GetBareName(UnescapeText(row->Text(0))));
    return names;
}

} // namespace

QString FindFaxFile(const QString &folder, const QString &fileName)
{
    const QString name = GetBareName(fileName);
    if (name.isEmpty())
        return {};
    if (FileExists(folder + name))
        return folder + name;
    const QString found = FindInAnotherCase(folder, name);
    return found.isEmpty() ? folder + name : found;
}

QString FindFileOfFax(const QString &id, bool isSent)
{
    const QString sql = isSent ? "Select FileName From SendFax Where Fax_ID='"
                               : "Select FileName From ReceiveFax Where Fax_ID='";
    const auto row = Global().objDB->SelectEx(sql + id + "'");
    if (!row->Next())
        return {};
    return FindFaxFile(BoxFolder(isSent), UnescapeText(row->Text(0)));
}

bool FaxFileExists(const QString &id, QString *fileList, bool isSent)
{
    const QString path = FindFileOfFax(id, isSent);
    if (path.isEmpty() || !FileExists(path))
        return false;
    if (fileList)
        *fileList += path + ",";
    return true;
}

bool DoFaxFilesExist(const QStringList &ids, bool isSent)
{
    const QStringList names = ids.isEmpty() ? QStringList() : ReadFileNames(ids, isSent);
    if (names.size() < ids.size() || names.contains(QString()))
        return false;
    const QString folder = BoxFolder(isSent);
    QSet<QString> wanted;
    for (const QString &name : names) {
        if (names.size() > lFewFiles || !FileExists(folder + name))
            wanted.insert(name.toCaseFolded());
    }
    if (!wanted.isEmpty())
        ForEachName(folder, [&](const QString &name) {
            wanted.remove(name.toCaseFolded());
            return wanted.isEmpty();
        });
    return wanted.isEmpty();
}

QHash<QString, QString> FindFilesOfFaxes(const QStringList &ids, bool isSent)
{
    const QString folder = BoxFolder(isSent);
    QHash<QString, QString> namesInFolder; // by the name in one case
    if (ids.size() > lFewFiles)
        ForEachName(folder, [&](const QString &name) {
            namesInFolder.insert(name.toCaseFolded(), name);
            return false;
        });
    const QString sql = isSent ? "Select Fax_ID,FileName From SendFax Where Fax_ID in("
                               : "Select Fax_ID,FileName From ReceiveFax Where Fax_ID in(";
    const auto row = Global().objDB->SelectEx(sql + QuoteIds(ids) + ")");
    QHash<QString, QString> files;
    while (row->Next()) {
        const QString name = GetBareName(UnescapeText(row->Text(1)));
        const QString path = namesInFolder.isEmpty()
                                 ? FindFaxFile(folder, name)
                                 : folder + namesInFolder.value(name.toCaseFolded(), name);
        if (!name.isEmpty() && FileExists(path))
            files.insert(row->Text(0), path);
    }
    return files;
}
