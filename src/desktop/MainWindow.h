#pragma once

#include <QString>

/// What the logic asks of the main window.
class MainWindow
{
public:
    virtual ~MainWindow() = default;

    virtual bool IsVisible() const = 0;
    virtual bool IsActive() const = 0;
    virtual void SetEnabled(bool enabled) = 0;
    /// Restores the window when it is minimised or hidden and brings it to the front.
    virtual void Raise() = 0;
    /// Closes the window, and with it the program.
    virtual void Unload() = 0;

    /// Refreshes the commands that need the server, and those that depend on the folder and the selection.
    virtual void SetCommMenu(bool enabled) = 0;
    virtual void SetGridCommands() = 0;

    /// The server panel of the status bar: the server's address, or "Offline".
    virtual void SetServerPanel(const QString &text) = 0;
    /// Percentage of the whole run, in the status bar; below 0 for none.
    virtual void SetTotalPercent(int percent) = 0;
    /// The pointer that says: something is under way, but go on working.
    virtual void SetBusyPointer(bool busy) = 0;
};
