#pragma once

#include "server/FaxListReply.h"
#include "server/ServerWaits.h"

#include <QList>
#include <QString>
#include <QStringList>

class FaxPrinting;
class FaxStatus;
class Mailbox;
class MainWindow;
class Notifier;
class Progress;
class Session;
struct ClientReply;
struct Ports;

/// What a download uses of the other rooms.
struct DownloadRooms
{
    Session &session;
    Progress &progress;
    FaxStatus &faxStatus;
    FaxPrinting &faxPrinting;
    Notifier &notifier;
    MainWindow &mainWindow;
    Mailbox &mailbox;
};

/// Brings the faxes that the server holds to the inbox folder and the tables.
class FaxDownload
{
public:
    FaxDownload(const Ports &ports, const DownloadRooms &rooms);

    /// One run; does nothing while another run owns the connection. `silent`: the periodic check, which shows
    /// no window over a hidden main window. `history`: the caller has asked for the list already.
    /// `keepProgressRows` true clears the rows at the start (callers pass false to keep the rows of an
    /// upload). `checkStateAfter` asks for the states of outgoing faxes afterwards.
    void ReceiveFaxes(bool silent, bool history, bool keepProgressRows, bool checkStateAfter);

    /// The menu's command.
    void mnuReceive();

private:
    struct Run
    {
        bool bSilent = false;
        bool bHistory = false;
        bool bKeepProgressRows = false;
        bool bCheckStateAfter = false;
    };
    /// What became of the fax in transfer.
    enum class Fetched {
        NotYet,
        Arrived, ///< the file is whole, its row is not written
        Stored,
        Short ///< the file is whole, the reply has too few fields for a row
    };

    void RunDownload(const Run &run);
    void ShowProgress(const Run &run);
    WaitEnd RequestList(const Run &run);
    void EndFailed(const Run &run);
    void EndEmpty(const Run &run, WaitEnd end);
    void FetchAll();
    bool FetchEach();
    bool FetchOne(const NewFaxItem &item, int index);
    void AwaitFax(int index);
    void MarkMissed(int index);
    QString FailureText() const;
    void Announce(const Run &run);
    void ShowMonitor();
    void ReloadFolder();
    void FinishRun(const Run &run);
    void Acknowledge();
    void PrintReceived();
    void ShowClose();
    QString LossText() const;
    void CheckStates(bool showProgress);
    void ReportError();

    void HandleFaxListReply(const ClientReply &reply);
    void HandleFaxReply(const ClientReply &reply);
    void ShowFaxProgress(int percent);
    void StoreFax(const QStringList &fields);

    const Ports &ports;
    DownloadRooms rooms;
    QList<NewFaxItem> aFetchList;
    QStringList ReceivedFileList; ///< names in the inbox folder, for notifier and printing
    QString strError;             ///< the first error of the run, for the user; empty for none
    Fetched fetched = Fetched::NotYet;
    bool bFaxMissed = false;   ///< a fax was not stored for a reason of this side
    bool bListComplete = true; ///< every fax of the list was seen to, and none missed
    bool bErrorShown = false;  ///< the user knows already that faxes cannot be stored
};
