#pragma once

#include "addressbook/AddressTree.h"
#include "desktop/Notifier.h"
#include "mailbox/FaxPrinting.h"
#include "server/AddressSync.h"
#include "server/FaxDownload.h"
#include "server/FaxHistory.h"
#include "server/FaxStatus.h"
#include "server/FaxUpload.h"
#include "server/Polling.h"
#include "server/Progress.h"
#include "server/ReturnReceipts.h"
#include "server/SentFaxCommands.h"
#include "server/Session.h"
#include "server/SessionRuns.h"

class Forms;
class Mailbox;
class MainWindow;
struct Ports;

/// The parts of the server link, wired to each other and to the main window. They live as long as it.
struct ServerParts
{
    ServerParts(const Ports &ports, MainWindow &mainWindow, Mailbox &mailbox, Forms &forms,
                Polling::TakeFaxFile takeFaxFile);

    AddressTree addressTree;
    FaxPrinting faxPrinting;
    Notifier notifier;
    Progress progress;
    Session session;
    FaxStatus faxStatus;
    SentFaxCommands sentFaxes;
    ReturnReceipts receipts;
    AddressSync addressSync;
    FaxUpload faxUpload;
    FaxDownload faxDownload;
    FaxHistory faxHistory;
    SessionRuns runs;
    Polling polling;
};
