#include "core/PrinterProgress.h"

#include "core/SettingsFile.h"
#include "core/Utilities.h"
#include "core/clsWaitableTimer.h"
#include "core/ports/Clock.h"
#include "core/ports/EventPump.h"
#include "core/ports/Ports.h"

namespace {

enum PrinterStatus { printerIdle = 0, printerDone = 2, printerFailed = 3 };

} // namespace

int GetPrinterStatus(const Ports &ports)
{
    constexpr int userAppData = 26;
    const QString file = GetSpecialFolder(ports.folders, userAppData) + QStringLiteral("Velmar/FaxSetup.ini");
    return ToNumber(ReadIniValue(QStringLiteral("PROGRESS"), QStringLiteral("Status"), file));
}

bool WaitForPrinter(const Ports &ports, int limitSeconds)
{
    const qint64 start = ports.clock.Milliseconds();
    clsWaitableTimer pause(ports);
    while (!ports.pump.IsQuitting()) {
        const int status = GetPrinterStatus(ports);
        if (status == printerIdle || status == printerDone)
            return true;
        if (status == printerFailed)
            return false;
        pause.Wait(1000);
        if (limitSeconds > 0 && ports.clock.Milliseconds() - start >= limitSeconds * qint64(1000))
            return false;
    }
    return false;
}
