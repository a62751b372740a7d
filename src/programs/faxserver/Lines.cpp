#include "Lines.h"

#include "OutgoingFaxes.h"
#include "ServerError.h"
#include "Store.h"

#include <QDateTime>

#include <algorithm>

namespace {

constexpr int lRealPageSeconds = 24;
/// Clients wait meanwhile. So many turns end any fax to one number when nothing takes time.
constexpr int lTurnsAtOnce = 10;
constexpr int lMillisecondsAtOnce = 30;
/// The system's clock may be set, and a timer stands still while the machine sleeps.
constexpr qint64 lLongestWait = 30000;
constexpr qint64 lWaitAfterError = 1000;

qint64 Now()
{
    return QDateTime::currentMSecsSinceEpoch();
}

} // namespace

Lines::Lines(Store &store, OutgoingFaxes &outgoing, const LineSettings &settings)
    : objStore(store)
    , objOutgoing(outgoing)
    , objSettings(settings)
{
    tmrNext.setSingleShot(true);
    tmrNext.setTimerType(Qt::PreciseTimer);
    connect(&tmrNext, &QTimer::timeout, this, &Lines::Wake);
}

void Lines::Wake()
{
    try {
        const QDeadlineTimer soon(lMillisecondsAtOnce);
        int turns = 0;
        do {
            EndCalls();
            objOutgoing.DeliverInside(Now());
            StartCalls();
        } while (HasEnded() && (++turns < lTurnsAtOnce || !soon.hasExpired()));
        SetTimer();
    } catch (const ServerError &error) {
        Complain(error);
        tmrNext.start(lWaitAfterError);
    }
}

void Lines::HangUp(const QString &fax)
{
    aActive.removeIf([&fax](const Active &active) { return active.call.strFax == fax; });
}

void Lines::EndCalls()
{
    for (qsizetype i = aActive.size() - 1; i >= 0; --i) {
        const Active active = aActive[i];
        if (!active.timEnd.hasExpired())
            continue;
        objOutgoing.EndCall(active.call, active.end,
                            Now() + Milliseconds(qint64(active.call.lInterval) * 60));
        aActive.removeAt(i); // behind the storing, which may fail
    }
}

void Lines::StartCalls()
{
    if (aActive.size() >= objSettings.lLines)
        return;
    for (const Call &call : objStore.calls.ToDial(Now(), objSettings.lLines)) {
        if (aActive.size() >= objSettings.lLines)
            return;
        if (IsActive(call))
            continue;
        const CallEnd end = RemoteEnd::Answer(call);
        const qint64 seconds = end.lSeconds + qint64(end.lPages) * lRealPageSeconds;
        aActive.append({call, end, QDeadlineTimer(Milliseconds(seconds), Qt::PreciseTimer)});
    }
}

bool Lines::IsActive(const Call &call) const
{
    return std::any_of(aActive.begin(), aActive.end(), [&call](const Active &active) {
        return active.call.strFax == call.strFax && active.call.lPlace == call.lPlace;
    });
}

bool Lines::HasEnded() const
{
    return std::any_of(aActive.begin(), aActive.end(),
                       [](const Active &active) { return active.timEnd.hasExpired(); });
}

void Lines::SetTimer()
{
    qint64 wait = lLongestWait;
    for (const Active &active : aActive)
        wait = std::min(wait, active.timEnd.remainingTime());
    const qint64 now = Now();
    if (const std::optional<qint64> due = objStore.calls.NextDue(now))
        wait = std::min(wait, *due - now);
    tmrNext.start(int(std::max(wait, qint64(0))));
}

/// What a real line takes, at the pace of these.
qint64 Lines::Milliseconds(qint64 seconds) const
{
    return seconds * 1000 * objSettings.lPageSeconds / lRealPageSeconds;
}
