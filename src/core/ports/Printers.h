#pragma once

#include <QString>

/// The printers of the system.
class Printers
{
public:
    virtual ~Printers() = default;

    /// True when a printer of that name is there. The fax printer stands among them whenever the print tool
    /// is installed beside this program.
    virtual bool Has(const QString &deviceName) const = 0;
};
