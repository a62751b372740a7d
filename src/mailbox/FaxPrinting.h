#pragma once

#include <QString>

/// Printing faxes on the machine's printers.
class FaxPrinting
{
public:
    virtual ~FaxPrinting() = default;

    /// True when at least one printer is installed. This base has none.
    virtual bool HasPrinter() const { return false; }

    /// Prints pages `first` to `last` (from 1) of a fax file.
    virtual void PrintFile(const QString &path, int first, int last, int copies, const QString &printerName)
    {
        static_cast<void>(path);
        static_cast<void>(first);
        static_cast<void>(last);
        static_cast<void>(copies);
        static_cast<void>(printerName);
    }
};
