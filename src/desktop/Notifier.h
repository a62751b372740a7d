#pragma once

#include <QString>

/// The tray icon, and the window that announces new faxes while the main window is hidden.
class Notifier
{
public:
    virtual ~Notifier() = default;

    /// True while an icon stands in a tray that can bring a hidden main window back. This base shows neither
    /// icon nor window.
    virtual bool HasTrayIcon() const { return false; }
    virtual void SetTrayTip(const QString &text) { static_cast<void>(text); }
    /// `faxList` holds file names with "," between them.
    virtual void ShowMonitor(const QString &faxList) { static_cast<void>(faxList); }
};
