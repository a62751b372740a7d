#pragma once

#include "core/Message.h"
#include "core/ports/Ports.h"
#include "platform/CanberraSound.h"
#include "platform/DatabaseWatch.h"
#include "platform/DesktopFileDialogs.h"
#include "platform/DesktopFontDialogs.h"
#include "platform/DesktopShell.h"
#include "platform/MessagePrompts.h"
#include "platform/QtEventPump.h"
#include "platform/QtTimers.h"
#include "platform/SystemClock.h"
#include "platform/SystemFolders.h"
#include "platform/SystemIds.h"
#include "platform/SystemInstance.h"
#include "platform/SystemPrinters.h"
#include "platform/SystemSharedBlocks.h"
#include "platform/TcpSocket.h"

/// Owns the services of the real system. Needs the application object, and outlives every part that uses it.
class SystemPorts final
{
public:
    SystemPorts();

    Ports &Get() { return ports; }
    /// The loop itself: the program runs and ends it.
    QtEventPump &Pump() { return pump; }

private:
    Q_DISABLE_COPY(SystemPorts)

    QtEventPump pump;
    DatabaseWatch databaseWatch;
    QtTimers timers;
    SystemClock clock;
    SystemIds ids;
    MessagePrompts prompts;
    Message message{prompts};
    SystemFolders folders;
    DesktopShell shell{folders};
    CanberraSound sound;
    SystemSharedBlocks blocks;
    SystemInstance instance;
    TcpSockets sockets;
    DesktopFileDialogs fileDialogs;
    DesktopFontDialogs fontDialogs;
    SystemPrinters printers{folders};
    Ports ports;
};
