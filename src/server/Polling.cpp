#include "server/Polling.h"

#include "core/Globals.h"
#include "core/Message.h"
#include "core/RaisedError.h"
#include "core/Utilities.h"
#include "core/ports/Ports.h"
#include "core/ports/Timer.h"
#include "desktop/Forms.h"
#include "server/FaxDownload.h"
#include "server/Session.h"

namespace {
constexpr int lSecondsPerMinute = 60;
}

Polling::Polling(const Ports &ports, Session &session, FaxDownload &faxDownload, Forms &forms,
                 TakeFaxFile takeFaxFile)
    : ports(ports)
    , session(session)
    , faxDownload(faxDownload)
    , forms(forms)
    , takeFaxFile(std::move(takeFaxFile))
{
    connect(&session.CheckFaxTimer(), &Timer::Tick, this, &Polling::OnCheckFaxTick);
}

void Polling::OnCheckFaxTick()
{
    try {
        CheckForFaxes();
        LogOutWhenIdle();
        OpenFaxFile();
    } catch (const RaisedError &error) {
        ports.message.ShowMessage(error.Description(), mbExclamation);
    }
}

void Polling::CheckForFaxes()
{
    if (!session.HasClient() || Global().CheckFax < 1 || session.IsWaiting() || session.bIsSocketBusy ||
        !session.bOnline)
        return;
    ++session.lCheckTicks;
    // With another window open the counter stays high, and the fetch runs when that has closed.
    if (session.lCheckTicks / lSecondsPerMinute < Global().CheckFax || !IsMainWindowAlone())
        return;
    faxDownload.ReceiveFaxes(true, false, true, true);
    session.lCheckTicks = 0;
}

void Polling::LogOutWhenIdle()
{
    if (!session.IsConnected() || session.bIsSocketBusy || session.IsWaiting() || session.bUserLogout ||
        Global().DisconnectTime <= 0)
        return;
    // The user stays logged in: the next command connects again.
    if (++session.lIdleTicks > Global().DisconnectTime * lSecondsPerMinute)
        session.LogOut();
}

void Polling::OpenFaxFile()
{
    if (!takeFaxFile || !IsMainWindowAlone())
        return;
    const QString path = takeFaxFile();
    if (!path.isEmpty() && FileExists(path)) // it was there when the other copy left it
        forms.OpenComposer(path);
}

bool Polling::IsMainWindowAlone() const
{
    return forms.Count() == 1;
}
