#include "server/RunScope.h"

#include "core/ports/EventPump.h"
#include "core/ports/Ports.h"
#include "desktop/MainWindow.h"
#include "server/Session.h"

#include <utility>

RunScope::RunScope(Session &session)
    : session(session)
    , bOwned((!session.bIsSocketBusy || session.bRunPermitted) && !session.ports.pump.IsQuitting())
    , bWasBusy(session.bIsSocketBusy)
{
    session.bRunPermitted = false;
    if (bOwned)
        session.bIsSocketBusy = true;
}

RunScope::~RunScope()
{
    if (!bOwned)
        return;
    if (!bWasBusy && !session.IsIdleState())
        session.SetIdleState(true);
    session.bIsSocketBusy = bWasBusy;
    if (!bWasBusy)
        session.mainWindow.SetGridCommands(); // some of them are off during a run
}

RunPermit::RunPermit(Session &session)
    : session(session)
{
    session.bRunPermitted = true;
}

RunPermit::~RunPermit()
{
    session.bRunPermitted = false;
}
