#pragma once

#include "core/ports/Printers.h"

class Folders;

/// The printers of the print service, and the fax printer, which is the print tool beside this program.
class SystemPrinters final : public Printers
{
public:
    explicit SystemPrinters(const Folders &systemFolders)
        : folders(systemFolders)
    {
    }

    bool Has(const QString &deviceName) const override;

private:
    const Folders &folders;
};
