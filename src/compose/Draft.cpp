#include "compose/Draft.h"

#include "compose/Recipients.h"
#include "compose/RenderedFile.h"
#include "compose/SendOptions.h"
#include "compose/SourceFiles.h"
#include "core/FaxImage.h"
#include "core/Globals.h"
#include "core/RaisedError.h"
#include "core/Utilities.h"
#include "core/clsDBcon.h"
#include "core/ports/Clock.h"
#include "core/ports/Ports.h"
#include "mailbox/Mailbox.h"

#include <QDateTime>
#include <QFile>

#include <algorithm>

namespace {

constexpr QLatin1StringView folderDrafts("1002");
constexpr QLatin1StringView folderOutgoing("1003");

/// Kinds of a `Mailbox::NotifySaveFax`.
enum SavedKind { savedDraft = 0, savedOutgoing = 1 };

QString Quoted(const QString &text)
{
    return '\'' + EscapeText(text) + '\'';
}

QString Quoted(bool value)
{
    return value ? QStringLiteral("'True'") : QStringLiteral("'False'");
}

/// Pieces, from `first` on, that together name a file which a comma in its name has cut; 1 when there is
/// none.
qsizetype PiecesOfPath(const QStringList &pieces, qsizetype first)
{
    constexpr qsizetype most = 10;
    const qsizetype end = std::min(pieces.size() - first, most);
    for (qsizetype count = 1; count <= end; ++count) {
        if (FileExists(pieces.mid(first, count).join(',')))
            return count;
    }
    return 1;
}

QStringList SplitFileList(const QString &fileList)
{
    QStringList pieces = fileList.split(',');
    pieces.removeLast(); // behind the last separator
    QStringList paths;
    for (qsizetype i = 0, count = 0; i < pieces.size(); i += count) {
        count = PiecesOfPath(pieces, i);
        paths.append(pieces.mid(i, count).join(','));
    }
    return paths;
}

bool HasRow(const QString &id)
{
    if (id.isEmpty())
        return false;
    const auto row = Global().objDB->SelectEx(
        QStringLiteral("Select Count(*) from SendFax where Fax_ID='%1'").arg(EscapeText(id)));
    return row->Next() && row->Number(0) > 0;
}

/// Any file that is there but no TIFF counts as one page.
int PagesOfRendered(const QString &path)
{
    return path.isEmpty() ? 0 : std::max(FaxImage::GetPageCount(path), 1);
}

/// The list may hold a file of the outbox, when nothing else is left of a draft. Renamed, it is followed. A
/// rendering that takes its name holds the pages of the whole list.
void FollowFile(QStringList &files, const QString &path, const QString &newPath)
{
    if (newPath.isEmpty() || path == newPath)
        return;
    if (files.contains(path))
        std::replace(files.begin(), files.end(), path, newPath);
    else if (files.contains(newPath))
        files = {newPath};
}

/// The row does not keep how images are fitted: the text ends before that field.
QString PackOptions(const clsStatement &row)
{
    QString packed = SendOptions::FromRow(row).Pack();
    packed.chop(1);
    return packed;
}

} // namespace

Draft::Draft(const Ports &systemPorts, Mailbox &shownMailbox)
    : ports(systemPorts)
    , mailbox(shownMailbox)
    , strFolderID(folderDrafts)
{
}

bool Draft::Load(DraftFields &fields, QStringList &missing)
{
    const auto row = Global().objDB->SelectEx(
        QStringLiteral("Select ReMark,RetryInterval,busyResend,IsDontRetry,FaxLevel,TimingSend,FileName,"
                       "FileList,Pages,InnerReceiver,OuterReceiver,ReceiverName,ResendTimes,Title,"
                       "IsImmediately,Resolution,ModifyTime,Header,Deepness,FolderID,Result from sendfax "
                       "where fax_id='%1'")
            .arg(EscapeText(strFaxID)));
    if (!row->Next())
        return false;
    strSendOption = PackOptions(*row);
    const QString fileName = GetBareName(row->Text("FileName"));
    ReadFileList(UnescapeText(row->Text("FileList")), fileName, fields, missing);
    fields.strHeader = UnescapeText(row->Text("Header"));
    fields.strSubject = UnescapeText(row->Text("Title"));
    fields.strMemo = UnescapeText(row->Text("ReMark"));
    fields.strReceive = RemoveLastChar(UnescapeText(row->Text("ReceiverName")), QStringLiteral(";"));
    fields.bSend = ReadsAsTrue(row->Text("IsImmediately"));
    if (!fileName.isEmpty())
        strOldTifFile = strTifFile = Global().strOutputBoxPath + fileName;
    strFolderID = row->Text("FolderID");
    bHasResult = !row->Text("Result").isEmpty();
    return true;
}

void Draft::ReadFileList(const QString &fileList, const QString &fileName, DraftFields &fields,
                         QStringList &missing) const
{
    for (const QString &path : SplitFileList(fileList)) {
        const QString file = SourceFiles::PathOf(path);
        if (FileExists(file))
            fields.aFiles.append(path);
        else
            missing.append(file);
    }
    const QString rendered = Global().strOutputBoxPath + fileName;
    if (fileList.isEmpty() && !fileName.isEmpty() && FileExists(rendered))
        fields.aFiles.append(rendered);
}

bool Draft::SplitReceivers(DraftFields &fields)
{
    fields.strReceive.replace(QLatin1String("\r\n"), QLatin1String(" "));
    fields.strReceive.replace('\n', ' ');
    fields.strReceive = Recipients::FormatReceiverText(fields.strReceive);
    strOuterReceiver = Recipients::GetOuterReceiver(fields.strReceive);
    strInnerReceiver = Recipients::GetInnerReceiver(fields.strReceive);
    strTempReceiver = Recipients::GetTempReceiver(fields.strReceive);
    return !(strOuterReceiver.isEmpty() && strInnerReceiver.isEmpty() && strTempReceiver.isEmpty());
}

/// The columns that insert and update share, ready for the statement.
struct Draft::Values
{
    QString ReMark, RetryInterval, IsDontRetry, FaxLevel, TimingSend, FileName, FileList, Pages,
        InnerReceiver, OuterReceiver, ReceiverName, ResendTimes, busyResend, Title, IsImmediately, Resolution,
        ModifyTime, Header, Deepness, TempReceiver;
};

Draft::Values Draft::CollectValues(const DraftFields &fields, const QString &rendered) const
{
    const SendOptions options = SendOptions::Parse(strSendOption);
    const Resending resending = options.ReadResending();
    QString fileList;
    for (const QString &path : fields.aFiles) {
        if (!path.startsWith('*'))
            fileList += path + ',';
    }
    const QString now = ports.clock.Now().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    return {.ReMark = Quoted(fields.strMemo),
            .RetryInterval = Quoted(QString::number(resending.bNever ? 0 : resending.lInterval)),
            .IsDontRetry = Quoted(resending.bNever),
            .FaxLevel = Quoted(options.strImportance),
            .TimingSend = Quoted(options.strTiming),
            .FileName = Quoted(GetBareName(rendered)),
            .FileList = Quoted(fileList),
            .Pages = Quoted(QString::number(PagesOfRendered(rendered))),
            // Ids and names as they stand in their tables: escaped already.
            .InnerReceiver = '\'' + strInnerReceiver + '\'',
            .OuterReceiver = '\'' + strOuterReceiver + '\'',
            .ReceiverName = Quoted(fields.strReceive),
            .ResendTimes = Quoted(QString::number(resending.bNever ? 0 : resending.lTimes)),
            .busyResend = Quoted(options.strBusyResend),
            .Title = Quoted(fields.strSubject),
            .IsImmediately = Quoted(fields.bSend),
            .Resolution = Quoted(options.strPixel),
            .ModifyTime = Quoted(now),
            .Header = Quoted(fields.strHeader),
            .Deepness = Quoted(options.strDeepness),
            .TempReceiver = Quoted(strTempReceiver)};
}

void Draft::Save(DraftFields &fields, bool toQueue, bool wasPrinted)
{
    constexpr long badCall = 5, pathFileError = 75;
    const bool isNewRow = !HasRow(strFaxID); // one whose row is gone meanwhile is kept, too
    const QString id = isNewRow || bHasResult ? NewFaxID(ports.ids, ports.message) : strFaxID;
    if (id.isEmpty())
        throw RaisedError(badCall, ProgramFileName(), tr("The fax has got no identifier."));
    const QString folder =
        toQueue || strFolderID.isEmpty() ? QString(toQueue ? folderOutgoing : folderDrafts) : strFolderID;

    RenderedFile file(strTifFile, Global().strOutputBoxPath + id + ".tif");
    if (toQueue && file.Path().isEmpty()) // such a row would wait for ever
        throw RaisedError(pathFileError, ProgramFileName(),
                          tr("The file of the fax cannot be put into the outbox: %1").arg(strTifFile));
    FollowFile(fields.aFiles, strTifFile, file.Path());
    const Values values = CollectValues(fields, file.Path());
    Global().objDB->Execute(isNewRow ? InsertStatement(values, id, folder)
                                     : UpdateStatement(values, id, folder));
    file.Keep();

    if (!isNewRow && id != strFaxID)
        mailbox.ChangeFaxID(strFaxID, id);
    strFaxID = id;
    strFolderID = folder;
    strTifFile = file.Path();
    if (wasPrinted)
        RemoveOldFile(fields);
    strOldTifFile = strTifFile;
    bHasResult = false;
    mailbox.NotifySaveFax(toQueue ? savedOutgoing : savedDraft, isNewRow, isNewRow ? QString() : id);
}

QString Draft::InsertStatement(const Values &values, const QString &id, const QString &folder) const
{
    const QStringList parts{
        Quoted(id),           values.ReMark,
        values.RetryInterval, values.IsDontRetry,
        values.FaxLevel,      values.TimingSend,
        values.FileName,      values.FileList,
        values.Pages,         values.InnerReceiver,
        values.OuterReceiver, values.ReceiverName,
        values.ResendTimes,   values.busyResend,
        values.Title,         Quoted(Global().strUserID),
        QStringLiteral("0"),  values.IsImmediately,
        values.Resolution,    values.ModifyTime,
        values.Header,        QString::number(ToNumber(folder)) == folder ? folder : Quoted(folder),
        QStringLiteral("''"), values.Deepness,
        QStringLiteral("0"),  values.TempReceiver};
    return "Insert Into "
           "SendFax(Fax_ID,ReMark,RetryInterval,IsDontRetry,FaxLevel,TimingSend,FileName,FileList,"
           "Pages,InnerReceiver,OuterReceiver,ReceiverName,ResendTimes,busyResend,Title,User_ID,IsTransmit,"
           "IsImmediately,Resolution,ModifyTime,Header,folderID,RecyleID,Deepness,IsReaded,TempReceiver) "
           "Values(" +
           parts.join(',') + ')';
}

QString Draft::UpdateStatement(const Values &values, const QString &id, const QString &folder) const
{
    return "Update SendFax set ReMark=" + values.ReMark + ",RetryInterval=" + values.RetryInterval +
           ",IsDontRetry=" + values.IsDontRetry + ",FaxLevel=" + values.FaxLevel +
           ",TimingSend=" + values.TimingSend + ",FileName=" + values.FileName +
           ",FileList=" + values.FileList + ",Pages=" + values.Pages +
           ",InnerReceiver=" + values.InnerReceiver + ",OuterReceiver=" + values.OuterReceiver +
           ",ReceiverName=" + values.ReceiverName + ",ResendTimes=" + values.ResendTimes +
           ",busyResend=" + values.busyResend + ",Title=" + values.Title +
           ",IsImmediately=" + values.IsImmediately + ",Resolution=" + values.Resolution +
           ",ModifyTime=" + values.ModifyTime + ",Header=" + values.Header + ", Deepness=" + values.Deepness +
           ",IsReaded=0 ,folderID=" + Quoted(folder) + ",TempReceiver=" + values.TempReceiver +
           " ,Fax_ID=" + Quoted(id) + (bHasResult ? " ,Result=''" : "") + " where Fax_ID=" + Quoted(strFaxID);
}

void Draft::RemoveOldFile(const DraftFields &fields) const
{
    const bool isOther = !strTifFile.isEmpty() && strOldTifFile != strTifFile;
    // It may stand in the list itself: then it is what the fax is made of.
    if (isOther && !strOldTifFile.isEmpty() && !fields.aFiles.contains(strOldTifFile))
        QFile::remove(strOldTifFile);
}

void Draft::RemoveLeftover() const
{
    QFile::remove(Global().strOutputBoxPath + "tmp~" + strFaxID + ".tif");
}
