#include "programs/client/ServerParts.h"

#include "core/ports/Ports.h"

ServerParts::ServerParts(const Ports &ports, MainWindow &mainWindow, Mailbox &mailbox, Forms &forms,
                         Polling::TakeFaxFile takeFaxFile)
    : progress(ports.timers)
    , session(ports, progress, mainWindow)
    , faxStatus(ports, {session, progress, mainWindow, mailbox})
    , sentFaxes(ports, {session, progress, mainWindow, mailbox})
    , receipts(ports, session, mailbox, mainWindow)
    , addressSync(ports, {session, progress, receipts, addressTree})
    , faxUpload(ports, {session, progress, faxStatus, mainWindow, mailbox})
    , faxDownload(ports, {session, progress, faxStatus, faxPrinting, notifier, mainWindow, mailbox})
    , faxHistory(ports, session, faxDownload)
    , runs(ports,
           {session, progress, addressSync, faxUpload, faxDownload, faxStatus, mainWindow, mailbox, forms})
    , polling(ports, session, faxDownload, forms, std::move(takeFaxFile))
{
}
