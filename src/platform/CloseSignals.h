#pragma once

#include "platform/FileDescriptor.h"

#include <QObject>

#include <memory>

class QSocketNotifier;

/// Turns the system's requests to end - the signals SIGTERM, SIGINT and SIGHUP, and the end of the desktop
/// session - into an ordinary event, so that the program ends in order. One object at a time.
class CloseSignals final : public QObject
{
    Q_OBJECT

public:
    /// Needs the application object. Raises the system's error.
    CloseSignals();
    ~CloseSignals() override;

signals:
    void CloseRequested();

private:
    void OnReadable();

    FileDescriptor readEnd;
    FileDescriptor writeEnd;
    std::unique_ptr<QSocketNotifier> notifier;
};
