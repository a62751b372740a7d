#pragma once

#include <QObject>
#include <QSocketNotifier>

/// SIGTERM and SIGINT end the event loop instead of the process.
class StopSignals final : public QObject
{
    Q_OBJECT

public:
    /// Keeps the signals from ending the process. Comes before anything that may start a thread, since
    /// a thread that takes the signal would still end it.
    static void Block();

    /// Raises `ServerError` when the signals cannot be caught.
    StopSignals();
    ~StopSignals() override;

private:
    int lHandle = -1;
    QSocketNotifier objNotifier;
};
