#pragma once

#include <QObject>
#include <QSocketNotifier>

/// SIGTERM and SIGINT end the event loop instead of the process.
class StopSignals final : public QObject
{
    Q_OBJECT

public:
    /// Raises `ServerError` when the signals cannot be caught.
    StopSignals();
    ~StopSignals() override;

private:
    int lHandle = -1;
    QSocketNotifier objNotifier;
};
