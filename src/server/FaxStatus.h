#pragma once

#include "server/SendingFaxes.h"
#include "server/ServerWaits.h"

#include <QString>

class Mailbox;
class MainWindow;
class Progress;
class Session;
struct ClientReply;
struct Ports;

/// What those who follow sent faxes use of the other rooms.
struct StatusRooms
{
    Session &session;
    Progress &progress;
    MainWindow &mainWindow;
    Mailbox &mailbox;
};

/// Following the faxes that the server is sending.
class FaxStatus
{
public:
    FaxStatus(const Ports &ports, const StatusRooms &rooms);
    virtual ~FaxStatus() = default;

    /// Asks for the state of all faxes in "Sending" and applies it: a step of a run that owns the connection,
    /// or a run of its own, which does nothing while another one does. `showProgress` tells of it in the
    /// progress window. Raises the database layer's errors.
    virtual void CheckFaxState(bool showProgress);

private:
    void Run(bool showProgress);
    void ShowProgress();
    WaitEnd Ask();
    void ShowEnd(WaitEnd end);
    QString EndText(WaitEnd end) const;
    void ShowFaxes();
    void ReportError();
    void HandleFaxStateReply(const ClientReply &reply);

    const Ports &ports;
    StatusRooms rooms;
    SendingFaxes sending;
    SendingFaxes::Outcome outcome;
    QString strError;         ///< of the run, for the user; empty for none
    bool bShown = false;      ///< the run tells of itself in the progress window
    bool bErrorShown = false; ///< the user knows already that the states cannot be read
};
