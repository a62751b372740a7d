#include "mailbox/ReadMarks.h"

#include "core/Globals.h"
#include "core/Message.h"
#include "core/RaisedError.h"
#include "core/TransactionScope.h"
#include "core/Utilities.h"
#include "mailbox/ShownMailbox.h"

namespace {

constexpr int lReceived = 0;

void SetRead(const QString &table, const QString &value, const QString &condition)
{
    Global().objDB->Execute("Update " + table + " Set isReaded=" + value + " " + condition);
}

void SetRead(const QString &table, bool read, const QStringList &ids)
{
    if (!ids.isEmpty())
        SetRead(table, read ? "1" : "0", "where Fax_ID in(" + QuoteIds(ids) + ")");
}

/// Queues first: should that fail, the fax still waits for its receipt.
void QueueReceipt(const QString &id)
{
    Global().objDB->Execute("INSERT INTO ReceiptQueue(Fax_ID,FaxType) VALUES('" + id + "','2')");
    Global().objDB->Execute("UPDATE ReceiveFax SET IsSendedReceipt='-1' Where Fax_ID='" + id + "'");
}

} // namespace

bool MarkReceivedFaxRead(const QString &id)
{
    if (id.isEmpty())
        return false;
    bool hasReceipt = false;
    {
        const auto row = Global().objDB->SelectEx(
            "SELECT IsReaded,IsSendedReceipt FROM ReceiveFax WHERE Fax_ID='" + id + "'");
        if (!row->Next() || ReadsAsTrue(row->Text(0)))
            return false;
        hasReceipt = ReadsAsTrue(row->Text(1));
    }
    TransactionScope reading(*Global().objDB);
    Global().objDB->Execute("UPDATE ReceiveFax SET IsReaded='1' WHERE Fax_ID='" + id + "'");
    if (!hasReceipt)
        QueueReceipt(id);
    reading.Commit();
    return true;
}

bool QueueReceipts(const QStringList &ids)
{
    try {
        bool needQueue = false;
        QStringList found;
        const auto row = Global().objDB->SelectEx(
            "Select Fax_ID,IsSendedReceipt FROM ReceiveFax WHERE Fax_ID in (" + QuoteIds(ids) + ")");
        while (row->Next()) {
            // Never cleared between rows: behind one fax that waits, all count as waiting.
            needQueue = needQueue || (row->ColumnValue(1).isValid() && !ReadsAsTrue(row->Text(1)));
            if (needQueue)
                found.append(row->Text(0));
        }
        row->Close();
        for (const QString &id : found)
            QueueReceipt(id);
    } catch (const RaisedError &) {
        return false;
    }
    return true;
}

ReadMarks::ReadMarks(ShownMailbox &shownMailbox, Message &messageBox)
    : mailbox(shownMailbox)
    , message(messageBox)
{
}

void ReadMarks::Guard(const QString &routine, const std::function<void()> &run)
{
    message.RunGuarded("error in " + routine, run);
}

void ReadMarks::mnuHadRead()
{
    Guard("mnuHadRead", [this] {
        const auto [received, sent] = mailbox.GetGridSelectedID();
        if (!received.isEmpty() && MarkReceivedAsked(received))
            ShowMarks(received, true);
        SetRead("SendFax", true, sent);
        ShowMarks(sent, true);
    });
}

bool ReadMarks::MarkReceivedAsked(const QStringList &ids)
{
    const QString question = tr("Are you sure want to mark these fax as read?");
    if (message.ShowMessage(question, mbYesNo + mbQuestion) != mbAnswerYes)
        return false;
    MarkReceived(ids);
    return true;
}

void ReadMarks::MarkReceived(const QStringList &ids)
{
    TransactionScope reading(*Global().objDB);
    SetRead("ReceiveFax", true, ids);
    const bool isQueued = QueueReceipts(ids);
    reading.Commit();
    if (isQueued)
        emit ReceiptsQueued();
}

void ReadMarks::mnuUnRead()
{
    Guard("mnuUnRead", [this] {
        const auto [received, sent] = mailbox.GetGridSelectedID();
        SetRead("ReceiveFax", false, received);
        SetRead("SendFax", false, sent);
        ShowMarks(received + sent, false);
    });
}

void ReadMarks::ClickReadIcon(int row)
{
    const QString key = mailbox.SelectedFolder();
    const FaxRow fax = mailbox.List().Row(row);
    if ((key != "1001" && key != "1008") || fax.bRead)
        return;
    const QString question = tr("Are you sure want to mark this fax as read?");
    if (message.ShowMessage(question, mbYesNo + mbQuestion) != mbAnswerYes) {
        mailbox.List().SetHoveredRow(0);
        return;
    }
    Guard("MarkReceivedFaxRead", [&] {
        if (fax.FaxTable() != lReceived) // in the Recycle bin: nobody waits for its receipt
            SetRead("SendFax", true, {fax.ID()});
        else if (MarkReceivedFaxRead(fax.ID()))
            emit ReceiptsQueued();
        ShowMarks({fax.ID()}, true);
    });
}

void ReadMarks::MarkOpened(const QString &id, bool isSent)
{
    if (isSent)
        SetRead("SendFax", "1", "Where Fax_ID='" + id + "'");
    else if (MarkReceivedFaxRead(id))
        emit ReceiptsQueued();
    ShowMarks({id}, true);
}

void ReadMarks::OnMarkFaxTick()
{
    const QString key = mailbox.SelectedFolder();
    const int row = mailbox.SelectedRow();
    if (row == 0 || key == "1000" || key == "1001" || mailbox.SelectedFaxes().size() != 1)
        return;
    const FaxRow fax = mailbox.List().Row(row);
    if (fax.bRead || (key == "1008" && fax.FaxTable() == lReceived))
        return;
    Guard("tmrMarkFax", [&] {
        if (mailbox.GetFaxTable() == lReceived)
            MarkReceived({fax.ID()});
        else
            SetRead("SendFax", "1", "Where Fax_ID='" + fax.ID() + "'");
        ShowMarks({fax.ID()}, true);
    });
}

void ReadMarks::ShowMarks(const QStringList &ids, bool read)
{
    if (ids.isEmpty())
        return;
    mailbox.List().SetRead(ids, read);
    mailbox.SetFolderTreeText(-1, nullptr);
}
