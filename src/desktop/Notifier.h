#pragma once

#include <QString>

/// The tray icon, and the window that announces new faxes while the main window is hidden.
class Notifier
{
public:
    virtual ~Notifier() = default;

    /// This base shows neither.
    virtual void SetTrayTip(const QString &text) { static_cast<void>(text); }
    /// `faxList` holds file names with "," between them.
    virtual void ShowMonitor(const QString &faxList) { static_cast<void>(faxList); }
};
