#pragma once

#include <QString>

#include <functional>

class AddressSync;
class FaxDownload;
class FaxSender;
class FaxStatus;
class Forms;
class Mailbox;
class MainWindow;
class Progress;
class Session;
struct Ports;

/// What the session's runs use of the other rooms.
struct SessionRooms
{
    Session &session;
    Progress &progress;
    AddressSync &addressSync;
    FaxSender &faxUpload;
    FaxDownload &faxDownload;
    FaxStatus &faxStatus;
    MainWindow &mainWindow;
    Mailbox &mailbox;
    Forms &forms;
};

/// The sequences that begin and end a session, and the commands of the server menu.
class SessionRuns
{
public:
    SessionRuns(const Ports &ports, const SessionRooms &rooms);

    /// The main window's first activation: fetches what changed, sends and receives if the user wants so,
    /// opens the fax of the command line and starts polling.
    void ActivateFirst();
    /// Logs off as the main window closes; takes 5 seconds at most.
    void LogOffAtClose();

    /// The sequence after connecting. `showProgress` takes the progress window away again; otherwise it stays
    /// for the user to close. Raises the database layer's errors.
    void SyncWithServer(bool showProgress);
    /// Uploads, then downloads, then asks for the states if `checkState` says so.
    void SendAndReceive(bool checkState);

    // Commands of the menus
    void mnuLoginServer();
    void mnuLogoutServer();
    /// Synchronises once more; the window stays and tells that it is done.
    void mnuSyncAddressBook();
    void mnuSend();
    void mnuSendReceive();

    /// Changes the password at the server. Both are plain text. True when the server has taken the new one.
    bool ChangePassword(const QString &oldPassword, const QString &newPassword);

private:
    bool SyncOrUnload(bool showProgress);
    void BeginOnline();
    void OpenFaxFile();
    void ReadUserID();
    void TrapErrors(const QString &place, const std::function<void()> &step);

    const Ports &ports;
    SessionRooms rooms;
};
