#pragma once

#include "core/ports/EventPump.h"

#include <QObject>
#include <QTimer>

/// The event loop of the running application. Nobody else turns it.
class QtEventPump final : public QObject, public EventPump
{
    Q_OBJECT

public:
    /// Needs the application object.
    QtEventPump();

    void RunSlice(int milliseconds) override;
    void RunPending() override;
    bool IsQuitting() const override { return bQuitting; }

    /// Runs the program until `Quit`; returns its exit code. Returns at once when it is quitting already.
    int Run();

    /// Ends the program: all waits give up, then `Run` returns. The way to quit: Qt's own `quit` asks the
    /// windows again, and waits would not hear of it before the outermost loop has ended.
    void Quit();

private:
    QTimer lastTicks;
    bool bQuitting = false;
};
