#pragma once

#include <QString>
#include <QStringList>

/// Values of `lPendingCommand`: what the next reply answers.
enum PendingCommand : int {
    pndGreeting = -1,
    pndNone = 0,
    pndContactGroups = 1,
    pndContacts = 2,
    pndFaxList = 5, ///< new faxes, history, or the acknowledgement of the list
    pndFax = 6,
    pndDepartments = 7,
    pndUsers = 8,
    pndFaxState = 9,
    pndUpload = 10,
    pndVersions = 11,
    pndChangePassword = 12,
    pndCancelSending = 13,
    pndLogOut = 14,
    pndLogIn = 15,
    pndFaxConfig = 16,
    pndResend = 17,
    pndSendReceipts = 18,
    pndReceiptStates = 19
};

/// What the session's routines tell each other. Whoever waits reads these again afterwards.
struct SessionFields
{
    int lPendingCommand = pndNone;
    bool bIsSocketBusy = false;   ///< a run owns the connection; polling stands still
    bool bOnline = false;         ///< the user is logged in; false means offline work
    bool bAcceptReplies = false;  ///< false until the main window is ready
    bool bUserLogout = false;     ///< this side is ending the connection: a loss is then no fault
    bool bConnectRefused = false; ///< the last attempt to connect got socket error 10061
    bool bUserAbort = false;      ///< the user pressed Cancel in the progress window
    /// Cleared at the start of every run and tested after each of its steps. Nothing sets it: the branches
    /// stay for a limit that the runs may get.
    bool bSendTimedOut = false;
    bool bReplyDone = false;     ///< cleared before a send, set by handlers at the end of a reply
    bool bPwdChanged = false;    ///< set by the reply to a change of the password
    bool bServerRefused = false; ///< the user did not accept that the server's identity changed
    bool bAbortDone = false;     ///< an upload was cancelled while the client was logging off
    bool bNeedRefresh = false;   ///< the list on the screen is behind the tables
    bool bDigestUsed = false;    ///< the login was made with a stored digest
    int lIdleTicks = 0;          ///< seconds since the last attempt to connect
    int lCheckTicks = 0;         ///< seconds since the last automatic check for faxes
    int CurrentFaxIndex = 0;     ///< 1-based place of the fax in transfer
    int TotalPercent = 0;        ///< progress of the whole run
    QStringList ServerVersions;  ///< fields of the reply to `GetContactVersion`
};
