#include "server/ReturnReceipts.h"

#include "core/AnsiText.h"
#include "core/Globals.h"
#include "core/RaisedError.h"
#include "core/TransactionScope.h"
#include "core/Utilities.h"
#include "core/formats/ReceiptStates.h"
#include "core/ports/Ports.h"
#include "core/ports/Timer.h"
#include "desktop/MainWindow.h"
#include "mailbox/Mailbox.h"
#include "server/RunScope.h"
#include "server/Session.h"
#include "server/wire/clsClient.h"

#include <QHash>
#include <QScopeGuard>

namespace {

constexpr QLatin1StringView strUnread(",0;");
constexpr int lBusyPointerDelay = 500; // milliseconds

/// The acknowledgement repeats the ids, and only what comes in one read counts as a short reply: so many
/// ids of a fax fit into one packet of a network.
constexpr qsizetype lMostReceipts = 40;

/// Ids that may stand in a statement, out of a column or a list.
QStringList SafeIds(const QStringList &ids)
{
    QStringList safe;
    for (const QString &id : ids) {
        if (IsSafeFaxID(id))
            safe.append(id);
    }
    return safe;
}

QStringList SelectIds(const QString &sql)
{
    QStringList ids;
    const auto rows = Global().objDB->SelectEx(sql);
    while (rows->Next())
        ids.append(rows->Text(0));
    return SafeIds(ids);
}

/// The receipts of faxes for which the same text again would change nothing: nobody has read the fax, or its
/// first reader is known. Most faxes of a large mailbox are such, and cost no statement of their own.
QHash<QString, QString> SelectSettled()
{
    QHash<QString, QString> settled;
    const auto rows = Global().objDB->SelectEx(
        "SELECT Fax_ID,ReturnReceipts,FirstReader FROM ReceiveFax WHERE ReturnReceipts like '%0;%'");
    while (rows->Next()) {
        const QString receipts = rows->Text(1);
        if (!rows->Text(2).isEmpty() || QString(receipts).remove(strUnread).isEmpty())
            settled.insert(rows->Text(0), receipts);
    }
    return settled;
}

/// Each id with ";" behind it.
QString ListOf(const QStringList &ids)
{
    return ids.isEmpty() ? QString() : ids.join(';') + ';';
}

} // namespace

ReturnReceipts::ReturnReceipts(const Ports &ports, Session &serverSession, Mailbox &shownMailbox,
                               MainWindow &window)
    : session(serverSession)
    , mailbox(shownMailbox)
    , mainWindow(window)
    , tmrBusyPointer(ports.timers.Create())
{
    session.SetHandler(pndSendReceipts, [this](const ClientReply &reply) { HandleReceiptAck(reply); });
    session.SetHandler(pndReceiptStates,
                       [this](const ClientReply &reply) { HandleReceiptStateReply(reply); });
    tmrBusyPointer->SetInterval(lBusyPointerDelay);
    connect(tmrBusyPointer.get(), &Timer::Tick, this, [this] {
        tmrBusyPointer->SetEnabled(false);
        mainWindow.SetBusyPointer(true);
        mainWindow.SetGridCommands(); // those of the server wait for the end
    });
    connect(&session.CheckFaxTimer(), &Timer::Tick, this, &ReturnReceipts::OnCheckFaxTick);
}

ReturnReceipts::~ReturnReceipts() = default;

void ReturnReceipts::SendQueuedReceipts(bool &sent)
{
    const QStringList ids = SelectIds("SELECT Fax_ID,FaxType FROM ReceiptQueue");
    bMoreQueued = ids.size() > lMostReceipts;
    if (ids.isEmpty())
        return;
    session.BeginCommand(pndSendReceipts).SendReturnReceipt(ListOf(ids.mid(0, lMostReceipts)));
    sent = true;
}

void ReturnReceipts::HandleReceiptAck(const ClientReply &reply)
{
    const QString text = AnsiText::FromAnsi(reply.abData);
    if (text.startsWith("ERR")) {
        // A refused receipt would be sent over and over.
        Global().objDB->Execute("Delete FROM ReceiptQueue");
    } else {
        const QStringList ids = SafeIds(text.split("\r\n").value(1).split(';'));
        if (!ids.isEmpty())
            Global().objDB->Execute("Delete FROM ReceiptQueue WHERE Fax_ID in('" + ids.join("','") + "')");
        bFlushDue = bFlushDue || (bMoreQueued && !ids.isEmpty());
    }
    session.SignalServerReply();
}

// After reading

void ReturnReceipts::NotifyReceiptRead()
{
    bFlushDue = true;
    if (!CanSend())
        return;
    const RunScope scope(session);
    if (!scope)
        return;
    bFlushDue = false;
    try {
        SendAndWait();
    } catch (const RaisedError &) {
        // The receipts stay queued for the next reading or login.
    }
}

void ReturnReceipts::OnCheckFaxTick()
{
    if (bFlushDue)
        NotifyReceiptRead();
}

bool ReturnReceipts::CanSend() const
{
    // A connection that is being ended is not made anew for a receipt.
    return session.IsConnected() && session.bOnline && !session.bUserLogout && !session.IsWaiting();
}

/// The user goes on reading while events run in the wait.
void ReturnReceipts::SendAndWait()
{
    tmrBusyPointer->SetEnabled(true);
    const auto finish = qScopeGuard([this] {
        tmrBusyPointer->SetEnabled(false);
        mainWindow.SetBusyPointer(false);
        session.lPendingCommand = pndNone;
    });
    bool sent = false;
    SendQueuedReceipts(sent);
    if (sent)
        session.WaitForServerReply();
}

// The states

void ReturnReceipts::RequestReceiptStates(bool &sent)
{
    const QStringList ids = SelectIds("SELECT Fax_ID FROM ReceiveFax WHERE ReturnReceipts like '%0;%'");
    if (ids.isEmpty())
        return;
    sent = true;
    session.BeginCommand(pndReceiptStates).GetReturnReceiptState(ListOf(ids));
}

void ReturnReceipts::HandleReceiptStateReply(const ClientReply &reply)
{
    const QStringList lines = AnsiText::FromAnsi(reply.abData).split("\r\n");
    if (!lines.first().startsWith("OK") || lines.size() < 2)
        return; // no answer: the watchdog ends the wait
    if (StoreStates(lines))
        mailbox.ReloadSelectedFolder();
    session.SignalServerReply();
}

/// True when the list on the screen has to show a new reader.
bool ReturnReceipts::StoreStates(const QStringList &lines)
{
    bool isReaderNew = false;
    const QHash<QString, QString> settled = SelectSettled();
    TransactionScope transaction(*Global().objDB);
    // The first line is the status, the last the empty tail.
    for (qsizetype i = 1; i < lines.size() - 1; ++i) {
        const QStringList fields = lines[i].split(QChar(1));
        if (fields.size() != 2 || !IsSafeFaxID(fields[0]))
            continue;
        const auto known = settled.find(fields[0]);
        if (known != settled.end() && known.value() == fields[1])
            continue;
        if (StoreState(fields[0], fields[1]))
            isReaderNew = true;
    }
    transaction.Commit();
    return isReaderNew;
}

bool ReturnReceipts::StoreState(const QString &faxID, const QString &receipts)
{
    const QString reader = GetFirstReader(receipts, faxID);
    const QString stored = QString(receipts).remove('\'');
    if (reader.isEmpty()) {
        Global().objDB->Execute(
            QStringLiteral("UPDATE ReceiveFax Set ReturnReceipts='%1' WHERE Fax_ID='%2'").arg(stored, faxID));
        return false;
    }
    Global().objDB->Execute(
        QStringLiteral("UPDATE ReceiveFax Set ReturnReceipts='%1',FirstReader='%2' WHERE Fax_ID='%3'")
            .arg(stored, EscapeText(reader), faxID));
    return true;
}

/// Empty when nobody has read the fax, and when its first reader is known: he never changes.
QString ReturnReceipts::GetFirstReader(const QString &receipts, const QString &faxID)
{
    if (receipts.isEmpty() || faxID.isEmpty())
        return {};
    const auto row = Global().objDB->SelectEx(
        QStringLiteral("SELECT ReceiveUser FROM ReceiveFax WHERE FAX_ID='%1' AND (FirstReader='' or "
                       "FirstReader is null)")
            .arg(faxID));
    if (!row->Next() || row->Text(0).isEmpty())
        return {};
    return ReceiptStates::FindFirstReader(ReceiptStates::Parse(row->Text(0), receipts));
}
