#include "compose/ForwardFax.h"

#include "compose/ForwardReceivers.h"
#include "core/FaxImage.h"
#include "core/Globals.h"
#include "core/Message.h"
#include "core/TransactionScope.h"
#include "core/Utilities.h"
#include "core/ports/Ports.h"
#include "desktop/MainWindow.h"
#include "mailbox/FaxFiles.h"
#include "mailbox/Mailbox.h"
#include "mailbox/ShownText.h"
#include "server/FaxSender.h"

#include <QFile>

#include <algorithm>

namespace {

constexpr char strCopyReceived[] =
    "Insert Into SendFax(RecyleID,FaxLevel,FileName,FolderID,Pages,ModifyTime,ReceiverName,Title,"
    "originalSender,isReaded) Select RecyleID,FaxLevel,FileName, FolderID,Pages,receivetime,ReceiveUser,"
    "Title,Sender,isReaded From ReceiveFax Where Fax_ID='%1'";
constexpr char strUpdateReceived[] =
    "Update SendFax Set InnerReceiver='%1',OuterReceiver='%2', FolderID='1003',Title='%3', FaxLevel='%4', "
    "Fax_ID='%5',FileName='%5.tif' ,TempReceiver='%6',ReceiverName='%7', isReaded=0 Where Fax_ID is null";
constexpr char strCopySent[] =
    "Insert Into SendFax(RecyleID,FaxLevel,FileName,FolderID,Pages,ModifyTime,ReceiverName,Title,"
    "originalSender,isReaded) Select RecyleID,FaxLevel,FileName,FolderID,Pages, ModifyTime,ReceiverName,"
    "Title,originalSender,isReaded From SendFax Where Fax_ID='%1'";
/// The capital in ".Tif" has always been there; readers look the file up in any case.
constexpr char strUpdateSent[] =
    "Update SendFax Set Fax_ID='%5',FileName='%5.Tif',Title='%3',FaxLevel='%4',InnerReceiver='%1',"
    "OuterReceiver='%2',FolderID='1003',TempReceiver='%6' ,ReceiverName='%7',isReaded=0 Where Fax_ID is null";

constexpr int lNormal = 1;
constexpr int lLowest = 2;
constexpr int lOutgoing = 1; ///< of `Mailbox::NotifySaveFax`

/// The files of the copies, which go away again unless they are kept.
class CopiedFiles
{
public:
    CopiedFiles() = default;
    ~CopiedFiles()
    {
        for (const QString &path : aPaths)
            QFile::remove(path);
    }
    CopiedFiles(const CopiedFiles &) = delete;
    CopiedFiles &operator=(const CopiedFiles &) = delete;

    /// A copy that leaves the inbox leaves its size bytes behind.
    bool Copy(const QString &from, const QString &to)
    {
        if (!FaxImage::CopyWithoutSizePrefix(from, to))
            return false;
        aPaths.append(to);
        return true;
    }
    void Keep() { aPaths.clear(); }

private:
    QStringList aPaths;
};

/// Nobody is to find them: they are all that a copying left which came to no end. Their faxes are still where
/// they were.
void DeleteUnfinishedCopies()
{
    Global().objDB->Execute("Delete From SendFax Where Fax_ID is null");
}

} // namespace

ForwardFax::ForwardFax(const Ports &systemPorts, const Rooms &otherRooms)
    : ports(systemPorts)
    , rooms(otherRooms)
{
}

ForwardFax::~ForwardFax()
{
    if (bBegun)
        rooms.mainWindow.SetEnabled(true);
}

bool ForwardFax::Begin(const QStringList &ids, bool isSent)
{
    bSent = isSent;
    const QHash<QString, QString> files = FindFilesOfFaxes(ids, isSent);
    std::copy_if(ids.begin(), ids.end(), std::back_inserter(aIds),
                 [&](const QString &id) { return files.contains(id); });
    if (aIds.isEmpty())
        return false;
    bBegun = true;
    rooms.mainWindow.SetEnabled(false);
    return true;
}

ForwardFax::Input ForwardFax::ReadDefaults() const
{
    Input input;
    if (aIds.size() != 1)
        return input;
    const QString sql = bSent ? "Select Title,FaxLevel From SendFax Where Fax_ID='"
                              : "Select Title,FaxLevel From ReceiveFax Where Fax_ID='";
    const auto row = Global().objDB->SelectEx(sql + aIds.first() + "'");
    if (!row->Next())
        return input;
    input.strSubject = "Forward to : " + UnescapeText(row->Text(0));
    const long level = row->Text(1).trimmed().isEmpty() ? lNormal : row->Number(1);
    input.lImportance = level >= 0 && level <= lLowest ? static_cast<int>(level) : lNormal;
    return input;
}

bool ForwardFax::ClickOK(const QList<SelectedReceiver> &receivers, const Input &input)
{
    bool isDone = false;
    ports.message.RunGuarded("error in btnOK_Click", [&] {
        const auto found = ForwardReceivers::Resolve(receivers, input.strOtherReceiver);
        if (found.IsEmpty()) // also when none of the chosen ones exists any more: nobody would get the fax
            ports.message.ShowMessage(tr("You must specify a recipient at least."), mbInformation);
        else
            isDone = PutIntoOutgoing(found, input);
    });
    if (isDone)
        rooms.mailbox.NotifySaveFax(lOutgoing, true, {});
    return isDone;
}

bool ForwardFax::PutIntoOutgoing(const ForwardReceivers &receivers, const Input &input)
{
    QStringList newIds;
    while (newIds.size() < aIds.size()) {
        newIds.append(NewFaxID(ports.ids, ports.message));
        if (newIds.last().isEmpty())
            return false;
    }
    const QString failed = WriteCopies(newIds, receivers, input);
    if (!failed.isEmpty()) {
        const QString text = tr("The file of a fax could not be copied. Nothing has been forwarded:");
        ports.message.ShowMessage(text + "\n" + ToListText(failed), mbExclamation);
        return false;
    }
    aNewIds = newIds;
    return true;
}

/// The path of the file that could not be copied; empty when all are there. One that fails undoes all: a fax
/// without its file could never be sent, and the user can try again.
QString ForwardFax::WriteCopies(const QStringList &newIds, const ForwardReceivers &receivers,
                                const Input &input) const
{
    const QHash<QString, QString> files = FindFilesOfFaxes(aIds, bSent);
    CopiedFiles copies;
    TransactionScope forwarding(*Global().objDB);
    DeleteUnfinishedCopies();
    for (qsizetype i = 0; i < aIds.size(); ++i) {
        WriteRow(aIds.at(i), newIds.at(i), receivers, input);
        const QString file = files.value(aIds.at(i), aIds.at(i) + ".tif");
        if (!copies.Copy(file, Global().strOutputBoxPath + newIds.at(i) + ".tif"))
            return file;
    }
    FlushToDisk(Global().strOutputBoxPath);
    forwarding.Commit();
    copies.Keep();
    return {};
}

void ForwardFax::WriteRow(const QString &id, const QString &newID, const ForwardReceivers &receivers,
                          const Input &input) const
{
    clsDBcon &database = *Global().objDB;
    database.Execute(QString(bSent ? strCopySent : strCopyReceived).arg(id));
    database.Execute(QString(bSent ? strUpdateSent : strUpdateReceived)
                         .arg(receivers.strInner, receivers.strOuter, EscapeText(input.strSubject),
                              QString::number(input.lImportance), newID, receivers.strTemp,
                              receivers.strDisplay));
}

void ForwardFax::Send()
{
    rooms.faxUpload.GetSendFaxID(true, aNewIds.join(';') + ';', true, true);
}
