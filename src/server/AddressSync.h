#pragma once

#include "server/SessionFields.h"

#include <QString>
#include <QStringList>

class AddressListReply;
class AddressTree;
class Progress;
class ReturnReceipts;
class Session;
class clsClient;
struct AddressList;
struct ClientReply;
struct Ports;

/// What a synchronisation uses of the other rooms.
struct SyncRooms
{
    Session &session;
    Progress &progress;
    ReturnReceipts &receipts;
    AddressTree &addressTree;
};

/// Keeps the copies of the server's public groups and contacts, users and departments, which have a version
/// number each. The user's own contacts stay untouched.
class AddressSync
{
public:
    AddressSync(const Ports &ports, const SyncRooms &rooms);
    virtual ~AddressSync() = default;

    /// The run after each login: takes over the server's identity, defaults and settings, and fetches the
    /// lists whose version changed. Sets `Session::bServerRefused` and changes nothing when the user does not
    /// accept another server than before. Raises the database layer's errors.
    virtual void GetServerData();

private:
    /// Places in `Session::ServerVersions`; the first four are also those in `LocalVersions`.
    enum VersionField {
        verContactGroups,
        verContacts,
        verUsers,
        verDepartments,
        verCompany,
        verTryInterval,
        verResendTimes,
        verServerID,
        verFieldCount
    };
    /// A list to fetch, and what the user reads meanwhile.
    struct ListStep
    {
        VersionField version;
        PendingCommand pending;
        void (clsClient::*request)();
        const char *strCaption;
    };
    static const ListStep aListSteps[];

    void Run();
    bool ReadVersions();
    void ReadLocalVersions();
    bool AcceptServer();
    void StoreServerID(const QString &identity);
    void StoreServerDefaults();
    bool Differs(VersionField version) const;
    void FetchLists();
    void LoadContacts();
    void StoreVersions();
    void Ask(PendingCommand pending, void (clsClient::*request)());
    void AskReceipts(void (ReturnReceipts::*step)(bool &sent));
    bool IsEnded() const;
    void ReportError();

    void HandleVersionReply(const ClientReply &reply);
    void HandleContactGroupReply(const ClientReply &reply);
    void HandleContactsReply(const ClientReply &reply);
    void HandleDepartmentReply(const ClientReply &reply);
    void HandleUserListReply(const ClientReply &reply);
    void HandleListReply(const AddressList &list, const ClientReply &reply);
    bool StoreList(const AddressList &list, const AddressListReply &cut);
    void ShowListProgress(int percent);

    const Ports &ports;
    SyncRooms rooms;
    QStringList LocalVersions; ///< group, contact, user list, department
    QString strError;          ///< the first error of the run, for the user; empty for none
    bool SyncFailed = false;   ///< a step failed: the stored versions stay, and the next run fetches again
    bool bStoring = false;     ///< a list is being written
};
