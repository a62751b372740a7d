#pragma once

#include "Calls.h"
#include "RemoteEnd.h"

#include <QDeadlineTimer>
#include <QList>
#include <QObject>
#include <QTimer>

class OutgoingFaxes;
class Store;

struct LineSettings
{
    int lLines = 2;
    int lPageSeconds =
        1; ///< what a page takes; all else takes its time in proportion, and with 0 none at all
};

/// The simulated lines: takes calls that are due, one a line at a time, and hands in how they ended. What is
/// under way is not in the store: after a kill it is dialled anew.
class Lines final : public QObject
{
    Q_OBJECT

public:
    Lines(Store &store, OutgoingFaxes &outgoing, const LineSettings &settings);

    /// Does all that is due by now. Errors of the store are reported, and it is tried again a second later.
    void Wake();
    /// Forgets the calls of this fax.
    void HangUp(const QString &fax);

private:
    struct Active
    {
        Call call;
        CallEnd end;
        QDeadlineTimer timEnd;
    };

    void EndCalls();
    void StartCalls();
    bool IsActive(const Call &call) const;
    bool HasEnded() const;
    void SetTimer();
    qint64 Milliseconds(qint64 seconds) const;

    Store &objStore;
    OutgoingFaxes &objOutgoing;
    LineSettings objSettings;
    QList<Active> aActive;
    QTimer tmrNext;
};
