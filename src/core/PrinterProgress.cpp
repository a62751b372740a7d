#include "core/PrinterProgress.h"

#include "core/SettingsFile.h"
#include "core/Utilities.h"
#include "core/clsWaitableTimer.h"
#include "core/ports/Clock.h"
#include "core/ports/EventPump.h"
#include "core/ports/Ports.h"

namespace {

constexpr QLatin1StringView progressSection("PROGRESS");
constexpr QLatin1StringView statusKey("Status");

} // namespace

QString PrinterProgressFile(const Folders &folders)
{
    constexpr int userAppData = 26;
    const QString folder = GetSpecialFolder(folders, userAppData);
    return folder.isEmpty() ? QString() : folder + QStringLiteral("Velmar/FaxSetup.ini");
}

int GetPrinterStatus(const Ports &ports)
{
    const QString file = PrinterProgressFile(ports.folders);
    return file.isEmpty() ? printerIdle : ToNumber(ReadIniValue(progressSection, statusKey, file));
}

bool SetPrinterStatus(const Folders &folders, PrinterStatus status)
{
    const QString file = PrinterProgressFile(folders);
    return CreateFolder(GetFolderOfPath(file)) &&
           WriteIniValue(progressSection, statusKey, QString::number(status), file);
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
