#pragma once

#include "server/FaxSender.h"
#include "server/ServerWaits.h"

#include <QString>
#include <QStringList>

class FaxStatus;
class Mailbox;
class MainWindow;
class Progress;
class Session;
struct ClientReply;
struct Ports;

/// What an upload uses of the other rooms.
struct UploadRooms
{
    Session &session;
    Progress &progress;
    FaxStatus &faxStatus;
    MainWindow &mainWindow;
    Mailbox &mailbox;
};

/// Hands the faxes of "Outgoing" to the server, one at a time. What it has accepted is in "Sending".
class FaxUpload final : public FaxSender
{
public:
    FaxUpload(const Ports &ports, const UploadRooms &rooms);

    /// One run. While another one owns the connection the faxes stay in "Outgoing"; a caller with a list has
    /// promised them to the user, who is told then.
    bool GetSendFaxID(bool useList, const QString &idList, bool clearRows, bool checkStateAfter) override;

private:
    struct Run
    {
        bool bClearRows = false;
        bool bCheckStateAfter = false;
    };
    /// How far the fax in transfer has got.
    enum class Stage {
        Waiting,  ///< the server cannot have it
        Leaving,  ///< its last bytes are on their way
        Left,     ///< all of it has gone
        Accepted, ///< the server has given it an id
    };

    void TellBusy();
    QStringList PickFaxes(bool useList, const QString &idList);
    void MarkCurrent();
    void LeaveOutDoubtful(QStringList &ids);
    bool RunUpload(const QStringList &ids, const Run &run);
    void EndEmpty(const Run &run);
    bool SendEach(const QStringList &ids, bool &result);
    bool SendOne(const QString &id, int index, bool &result);
    bool SendFax(const QString &id, bool &result);
    bool StartFax(const QString &id);
    WaitEnd AwaitReply();
    bool IsSent(WaitEnd end) const;
    bool LeaveFax(int index, WaitEnd end);
    void CompleteFax(const QString &id, int index);
    bool IsStopped() const;
    bool MayGoOn() const;
    void RefreshMailbox();
    void Report(int index, bool isWhole, const Run &run);
    void ReportError();
    void ShowClose();
    void CheckStates();
    QString Now() const;

    void HandleUploadReply(const ClientReply &reply);
    void ShowTransfer(int percent);

    const Ports &ports;
    UploadRooms rooms;
    int FaxCount = 0;         ///< of this run
    QString CurrentSendFaxID; ///< the local id of the fax in transfer
    QString LastServerFaxID;  ///< the id that the server gave the last fax
    QString strPath;          ///< the file in transfer
    QString strTitle;         ///< of its fax, as the user is told of it
    QString strNextID;        ///< of the fax after this one, as far as it may be marked already
    QString strMarkedAhead;   ///< of a fax that is marked and has not begun to leave; empty for none
    QStringList aMarked;      ///< of those that were marked before this run
    QStringList aCutAt;       ///< of those at which runs lost the connection
    Stage stage = Stage::Waiting;
    QString strError; ///< the first error of the run, for the user; empty for none
    bool bSent = false;
    bool bRowsDropped = false;
};
