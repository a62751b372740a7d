#include "mailbox/FaxFiles.h"

#include "core/Globals.h"
#include "core/Utilities.h"
#include "mailbox/FaxRow.h"

#include <filesystem>
#include <system_error>

namespace {

/// The file of that name in another case; empty when there is none. The folder may hold 100,000 files: it is
/// read in its own order, without a look at any of them.
QString FindInAnotherCase(const QString &folder, const QString &name)
{
    std::error_code failed;
    std::filesystem::directory_iterator entry(folder.toStdString(), failed);
    for (; !failed && entry != std::filesystem::directory_iterator(); entry.increment(failed)) {
        const QString candidate = QString::fromStdString(entry->path().filename().string());
        if (candidate.compare(name, Qt::CaseInsensitive) == 0 && FileExists(folder + candidate))
            return folder + candidate;
    }
    return {};
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
    return FindFaxFile(isSent ? Global().strOutputBoxPath : Global().strInputBoxPath,
                       UnescapeText(row->Text(0)));
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
