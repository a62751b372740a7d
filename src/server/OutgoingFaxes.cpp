#include "server/OutgoingFaxes.h"

#include "core/Globals.h"
#include "core/TransactionScope.h"
#include "core/Utilities.h"
#include "mailbox/FaxFiles.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <filesystem>
#include <limits>
#include <system_error>

namespace fs = std::filesystem;

namespace {

fs::path ToPath(const QString &path)
{
    return QFile::encodeName(path).constData();
}

bool IsSameFile(const QString &path, const QString &other)
{
    std::error_code failed;
    return fs::equivalent(ToPath(path), ToPath(other), failed) && !failed;
}

/// Gives the file a second name, where the file system has such. No row has that name: another file of it is
/// a leftover, and a row that gets the name must not find that one.
void AddName(const QString &path, const QString &newPath)
{
    std::error_code failed;
    if (!IsSameFile(path, newPath))
        fs::remove(ToPath(newPath), failed);
    fs::create_hard_link(ToPath(path), ToPath(newPath), failed);
}

/// Takes the old name away, with both or only the old one there. What fails stays for `Recover`.
void DropName(const QString &path, const QString &newPath)
{
    std::error_code failed;
    if (path == newPath)
        return;
    if (IsSameFile(path, newPath)) // to rename a file to its other name does nothing
        fs::remove(ToPath(path), failed);
    else
        fs::rename(ToPath(path), ToPath(newPath), failed);
}

QString NewPath(const QString &id)
{
    return Global().strOutputBoxPath + id + ".tif";
}

/// The id that the file has as its second name; empty for none. Such a name is what a run leaves that is
/// killed between the server's answer and the row.
QString FindAcceptedID(const QString &path)
{
    std::error_code failed;
    if (fs::hard_link_count(ToPath(path), failed) < 2 || failed)
        return {};
    fs::directory_iterator entry(ToPath(Global().strOutputBoxPath), failed);
    for (; !failed && entry != fs::directory_iterator(); entry.increment(failed)) {
        const QString name = QFile::decodeName(entry->path().filename().c_str());
        const QString id = name.chopped(std::min<qsizetype>(name.size(), 4));
        if (name == id + ".tif" && IsSafeFaxID(id) && IsSameFile(path, NewPath(id)) &&
            !OutgoingFaxes::IsTaken(id))
            return id;
    }
    return {};
}

void CompleteAccepted(const QString &time)
{
    struct Pair
    {
        QString strFaxID, strPath;
    };
    QList<Pair> doubtful; // no row is changed while they are read
    const auto rows = Global().objDB->SelectEx(
        "Select Fax_ID,FileName From SendFax Where FolderID='1003' and sSndReserve1=Fax_ID");
    while (rows->Next())
        doubtful.append({rows->Text(0), OutgoingFaxes::PathOf(rows->Text(1))});
    rows->Close();
    for (const Pair &fax : doubtful) {
        const QString newID = FindAcceptedID(fax.strPath);
        if (!newID.isEmpty())
            OutgoingFaxes::Accept(fax.strFaxID, newID, fax.strPath, time);
    }
}

/// Both spellings of the ending that rows have ever had.
QStringList OldPaths(const QString &id)
{
    return {NewPath(id), Global().strOutputBoxPath + id + ".Tif"};
}
} // namespace

void OutgoingFaxes::DropOldNames()
{
    bool isAny = false;
    QString kept; // ids whose old name could not be taken away: the next run tries again
    const auto rows = Global().objDB->SelectEx(
        "Select FileName,sSndReserve1 From SendFax Where sSndReserve1<>'' and sSndReserve1<>Fax_ID");
    while (rows->Next()) {
        isAny = true;
        const QString name = GetBareName(rows->Text(0)); // none in a draft whose pages are gone
        const QString path = Global().strOutputBoxPath + name;
        for (const QString &oldPath : OldPaths(rows->Text(1))) {
            if (name.isEmpty() || !FileExists(oldPath) || (FileExists(path) && !IsSameFile(oldPath, path)))
                continue;
            DropName(oldPath, path);
            if (FileExists(oldPath) && oldPath != path)
                kept += ",'" + EscapeText(rows->Text(1)) + '\'';
        }
    }
    rows->Close();
    if (isAny)
        Global().objDB->Execute("Update SendFax Set sSndReserve1='' Where sSndReserve1<>'' and "
                                "sSndReserve1<>Fax_ID and sSndReserve1 not in(''" +
                                kept + ')');
}

QStringList OutgoingFaxes::Waiting()
{
    QStringList ids;
    const auto rows =
        Global().objDB->SelectEx("Select Fax_ID from SendFax Where FolderID='1003' and RecyleID=''");
    while (rows->Next())
        ids.append(rows->Text(0));
    return ids;
}

QList<OutgoingFaxes::Doubtful> OutgoingFaxes::MayHaveArrived(const QStringList &ids)
{
    const QSet<QString> wanted(ids.begin(), ids.end());
    QList<Doubtful> found;
    const auto rows = Global().objDB->SelectEx(
        "Select Fax_ID,Title From SendFax Where FolderID='1003' and sSndReserve1=Fax_ID");
    while (rows->Next()) {
        if (wanted.contains(rows->Text(0)))
            found.append({rows->Text(0), UnescapeText(rows->Text(1))});
    }
    return found;
}

std::optional<OutgoingFax> OutgoingFaxes::Read(const QString &id)
{
    const auto row = Global().objDB->SelectEx(
        QStringLiteral("Select OuterReceiver,innerReceiver,TempReceiver,Title,FileName,Pages,FaxLevel,ReMark,"
                       "timingSend,ReceiverName,resendTimes,reTryInterval,originalSender,isDontRetry "
                       "From SendFax Where Fax_ID='%1'")
            .arg(EscapeText(id)));
    return row->Next() ? std::optional(OutgoingFax::FromRow(*row)) : std::nullopt;
}

QString OutgoingFaxes::PathOf(const QString &fileName)
{
    return FindFaxFile(Global().strOutputBoxPath, UnescapeText(fileName));
}

bool OutgoingFaxes::IsSendable(const QString &path)
{
    const QFileInfo info(path); // to open what is no file may never return
    if (!info.isFile() || info.size() <= 0 || info.size() > std::numeric_limits<qint32>::max())
        return false;
    return QFile(path).open(QIODevice::ReadOnly);
}

void OutgoingFaxes::MarkHandedOver(const QString &id)
{
    Global().objDB->Execute(
        QStringLiteral("Update SendFax Set sSndReserve1=Fax_ID Where Fax_ID='%1'").arg(EscapeText(id)));
}

void OutgoingFaxes::Unmark(const QString &id)
{
    if (!id.isEmpty())
        Global().objDB->Execute(
            QStringLiteral("Update SendFax Set sSndReserve1='' Where Fax_ID='%1'").arg(EscapeText(id)));
}

bool OutgoingFaxes::IsTaken(const QString &id)
{
    const auto row = Global().objDB->SelectEx(
        QStringLiteral("Select Count(*) From SendFax Where Fax_ID='%1' or FileName='%1.tif' Collate NoCase")
            .arg(EscapeText(id)));
    return row->Next() && row->Number(0) > 0;
}

void OutgoingFaxes::Accept(const QString &id, const QString &newID, const QString &path, const QString &time,
                           const QString &nextID)
{
    // When the database refuses the second name stays: `Recover` finds the server's id by it.
    AddName(path, NewPath(newID));
    TransactionScope change(*Global().objDB);
    Global().objDB->Execute(QStringLiteral("Update SendFax set Fax_ID='%1', FileName='%1.tif', "
                                           "FolderID='1005',Result='Sending',SendTime='%2' Where Fax_ID='%3'")
                                .arg(newID, time, EscapeText(id)));
    if (!nextID.isEmpty())
        MarkHandedOver(nextID);
    change.Commit();
    DropName(path, NewPath(newID));
}

void OutgoingFaxes::MoveToSending(const QString &id, bool answered, const QString &time)
{
    Global().objDB->Execute(QStringLiteral("Update SendFax Set FolderID='1005',Result='Sending',"
                                           "ResultDetailed='',SendTime='%1'%2 Where Fax_ID='%3'")
                                .arg(time, answered ? ",sSndReserve1=''" : "", EscapeText(id)));
}

void OutgoingFaxes::Recover(const QString &time)
{
    CompleteAccepted(time);
    DropOldNames();
}
