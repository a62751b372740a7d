#include "server/FaxHistory.h"

#include "core/Message.h"
#include "core/ports/EventPump.h"
#include "core/ports/Ports.h"
#include "server/FaxDownload.h"
#include "server/RunScope.h"
#include "server/Session.h"
#include "server/wire/clsClient.h"

#include <QCoreApplication>

namespace {

QString Tr(const char *text)
{
    return QCoreApplication::translate("FaxHistory", text);
}

} // namespace

FaxHistory::FaxHistory(const Ports &ports, Session &serverSession, FaxDownload &download)
    : ports(ports)
    , session(serverSession)
    , faxDownload(download)
{
}

void FaxHistory::mnuGetHistory(const QString &request)
{
    if (request.isEmpty())
        return;
    if (session.bIsSocketBusy)
        ports.message.ShowMessage(Tr("A transfer is under way, please try again when it has ended."),
                                  mbInformation);
    else if (!Fetch(request) && !ports.pump.IsQuitting())
        ports.message.ShowMessage(Tr("Failed to connect to Velmar Server."), mbExclamation);
}

/// False when there is no connection. The request goes out here; the download waits for its answer.
bool FaxHistory::Fetch(const QString &request)
{
    const RunScope scope(session);
    if (!scope || !session.ConnectToServer())
        return false;
    session.BeginCommand(pndFaxList).GetHistoryList(request);
    const RunPermit permit(session);
    faxDownload.ReceiveFaxes(false, true, true, true);
    return true;
}
