#include "server/AddressSync.h"

#include "addressbook/AddressTree.h"
#include "core/DatabaseErrors.h"
#include "core/Globals.h"
#include "core/Message.h"
#include "core/RaisedError.h"
#include "core/SettingsFile.h"
#include "core/Utilities.h"
#include "core/ports/EventPump.h"
#include "core/ports/Ports.h"
#include "server/Progress.h"
#include "server/ReturnReceipts.h"
#include "server/RunScope.h"
#include "server/Session.h"
#include "server/wire/clsClient.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QScopeGuard>

namespace {

QString Tr(const char *text)
{
    return QCoreApplication::translate("AddressSync", text);
}

/// A text that goes into a statement as a number.
QString BareNumber(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("\\A\\s*[+-]?[0-9]+(\\.[0-9]+)?\\s*\\z"));
    if (!form.match(text).hasMatch())
        throw RaisedError(DatabaseErrors::lSqlError, "AddressSync",
                          Tr("The server's default settings hold no number: \"%1\"").arg(text));
    return text;
}

} // namespace

const AddressSync::ListStep AddressSync::aListSteps[] = {
    {verContactGroups, pndContactGroups, &clsClient::GetPublicContactGroup,
     QT_TRANSLATE_NOOP("AddressSync", "Synchronizing contact groups...")},
    {verContacts, pndContacts, &clsClient::GetPublicContacts,
     QT_TRANSLATE_NOOP("AddressSync", "Synchronizing contacts...")},
    {verDepartments, pndDepartments, &clsClient::GetDepartmentList,
     QT_TRANSLATE_NOOP("AddressSync", "Synchronizing user groups...")},
    {verUsers, pndUsers, &clsClient::GetUserList,
     QT_TRANSLATE_NOOP("AddressSync", "Synchronizing user list...")},
};

AddressSync::AddressSync(const Ports &ports, const SyncRooms &rooms)
    : ports(ports)
    , rooms(rooms)
{
    const auto handle = [this](PendingCommand pending, void (AddressSync::*handler)(const ClientReply &)) {
        this->rooms.session.SetHandler(
            pending, [this, handler](const ClientReply &reply) { (this->*handler)(reply); });
    };
    handle(pndVersions, &AddressSync::HandleVersionReply);
    handle(pndContactGroups, &AddressSync::HandleContactGroupReply);
    handle(pndContacts, &AddressSync::HandleContactsReply);
    handle(pndDepartments, &AddressSync::HandleDepartmentReply);
    handle(pndUsers, &AddressSync::HandleUserListReply);
}

void AddressSync::GetServerData()
{
    const RunScope scope(rooms.session);
    if (!scope)
        return;
    const auto end = qScopeGuard([this] { rooms.session.lPendingCommand = pndNone; });
    SyncFailed = false;
    strError.clear();
    if (!rooms.session.ConnectToServer()) {
        if (!IsEnded())
            ports.message.ShowMessage(Tr("Failed to connect to Velmar Server."), mbExclamation);
        return;
    }
    if (ReadVersions() && AcceptServer())
        Run();
    ReportError();
}

void AddressSync::Run()
{
    StoreServerDefaults();
    FetchLists();
    if (Differs(verContactGroups) || Differs(verContacts))
        LoadContacts();
    if (IsEnded())
        return;
    if (!SyncFailed)
        StoreVersions();
    Ask(pndFaxConfig, &clsClient::GetFaxConfigAndKeepTouckTime);
    if (!IsEnded())
        rooms.progress.SetText(Tr("Synchronizing return receipts state..."));
    AskReceipts(&ReturnReceipts::SendQueuedReceipts);
    AskReceipts(&ReturnReceipts::RequestReceiptStates);
    if (IsEnded())
        return;
    rooms.progress.SetText(Tr("Completed."));
    rooms.progress.SetBar(100);
    rooms.progress.SetButton("Close", Tr("&Close"));
    rooms.progress.SetButtonEnabled(true);
}

bool AddressSync::ReadVersions()
{
    Ask(pndVersions, &clsClient::GetContactVersion);
    if (IsEnded())
        return false;
    ReadLocalVersions();
    if (rooms.session.ServerVersions.size() >= verFieldCount && !LocalVersions.isEmpty())
        return true;
    ports.message.ShowMessage(Tr("Failed to synchronize contacts."), mbExclamation);
    return false;
}

void AddressSync::ReadLocalVersions()
{
    LocalVersions.clear();
    const auto row = Global().objDB->SelectEx(
        "Select ContactGroupVersion,ContactVersion,UserListVersion,DepartmentVersion From Option");
    if (row->Next())
        LocalVersions = {row->Text(0), row->Text(1), row->Text(2), row->Text(3)};
}

bool AddressSync::AcceptServer()
{
    // The settings file keeps no blanks around a value.
    const QString identity = rooms.session.ServerVersions[verServerID].trimmed();
    if (identity == Global().strServerID)
        return true;
    if (!Global().strServerID.isEmpty()) {
        const QString question = Tr("The specified Velmar Server does not match original server, do you wish "
                                    "to continue?");
        const long answer = ports.message.ShowMessage(question, mbYesNo | mbQuestion | mbDefaultButton2);
        if (IsEnded()) // the program's end has closed the box: nobody has refused
            return false;
        if (answer != mbAnswerYes) {
            rooms.session.bServerRefused = true;
            return false;
        }
    }
    StoreServerID(identity);
    return true;
}

void AddressSync::StoreServerID(const QString &identity)
{
    Global().strServerID = identity;
    if (!WriteIniValue(Global().strUserName, "ServerID", identity, Global().strIniFile))
        ports.message.ShowMessage(Tr("Failed to save user profiles."), mbExclamation);
}

void AddressSync::StoreServerDefaults()
{
    const QStringList &fields = rooms.session.ServerVersions;
    Global().objDB->Execute(
        QStringLiteral("Update Option Set Company='%1',lServerResendTimes=%2 ,lServerTryInterval=%3")
            .arg(EscapeText(fields[verCompany]), BareNumber(fields[verResendTimes]),
                 BareNumber(fields[verTryInterval])));
    Global().Company = UnescapeText(fields[verCompany]);
    Global().lServerResendTimes = ToNumber(fields[verResendTimes]);
    Global().lServerTryInterval = ToNumber(fields[verTryInterval]);
    rooms.session.bSendTimedOut = false;
}

/// By number: the same number in another form is no change.
bool AddressSync::Differs(VersionField version) const
{
    return NumericPrefix(rooms.session.ServerVersions[version]) != NumericPrefix(LocalVersions[version]);
}

void AddressSync::FetchLists()
{
    for (const ListStep &step : aListSteps) {
        if (!Differs(step.version))
            continue;
        rooms.progress.SetText(Tr(step.strCaption));
        rooms.progress.ChangePos(0);
        Ask(step.pending, step.request);
        rooms.progress.SetWindowMode(false, {}); // a row that the list has got stays
        if (IsEnded())
            return;
    }
}

void AddressSync::LoadContacts()
{
    if (ports.pump.IsQuitting())
        return;
    if (!IsEnded())
        rooms.progress.SetText(Tr("Loading contacts..."));
    rooms.addressTree.LoadAddressBook();
}

void AddressSync::StoreVersions()
{
    const QStringList &fields = rooms.session.ServerVersions;
    Global().objDB->Execute(QStringLiteral("Update Option Set ContactGroupVersion='%1',ContactVersion='%2',"
                                           "UserListVersion='%3',DepartmentVersion='%4'")
                                .arg(EscapeText(fields[verContactGroups]), EscapeText(fields[verContacts]),
                                     EscapeText(fields[verUsers]), EscapeText(fields[verDepartments])));
}

/// Sends one command, on a new connection if the last one was lost, and waits for its reply.
void AddressSync::Ask(PendingCommand pending, void (clsClient::*request)())
{
    Session &session = rooms.session;
    session.ConnectToServer();
    if (IsEnded())
        return;
    (session.BeginCommand(pending).*request)();
    const WaitEnd end = session.WaitForServerReply(); // ends at once without a connection
    if (end != WaitEnd::Replied || !session.IsConnected())
        SyncFailed = true;
    if (end == WaitEnd::Failed && strError.isEmpty())
        strError = session.HandlerError();
    session.lPendingCommand = pndNone; // what comes unasked meanwhile has no reader
}

void AddressSync::AskReceipts(void (ReturnReceipts::*step)(bool &sent))
{
    if (IsEnded())
        return;
    bool sent = false;
    (rooms.receipts.*step)(sent);
    if (sent)
        rooms.session.WaitForServerReply(); // what fails is left for the next run, quietly
    rooms.session.lPendingCommand = pndNone;
}

/// A cancel has closed the connection; nothing is sent any more.
bool AddressSync::IsEnded() const
{
    return rooms.session.bUserAbort || ports.pump.IsQuitting();
}

void AddressSync::ReportError()
{
    if (!strError.isEmpty() && !ports.pump.IsQuitting())
        ports.message.ShowMessage(Tr("Failed to synchronize contacts.") + '\n' + strError, mbExclamation);
}
