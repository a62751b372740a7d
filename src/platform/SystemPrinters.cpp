#include "platform/SystemPrinters.h"

#include "core/Utilities.h"

bool SystemPrinters::Has(const QString &deviceName) const
{
    return deviceName == QLatin1String("Zem Fax Printer") && FileExists(AppPath(folders) + "ZemPrint.exe");
}
