#pragma once

#include <QString>

#include <optional>

/// Place and size of one pane, in pixels. What the settings do not say stays open.
struct PaneRect
{
    std::optional<int> lLeft;
    std::optional<int> lTop;
    std::optional<int> lWidth;
    std::optional<int> lHeight;
};

/// The layout of the main window, as the settings file keeps it in the section of the account.
struct MainLayout
{
    enum WindowState { Normal = 0, Minimised = 1, Maximised = 2 };

    PaneRect Main; ///< of the window on the screen; left open unless its state is normal
    std::optional<int> lState;
    PaneRect tvFolder;
    PaneRect tvAddressbook;
    PaneRect grdFaxList;
    PaneRect picPreview;
    std::optional<bool> bAddressbookVisible;
    std::optional<bool> bPreviewVisible;
    std::optional<bool> bHistoryVisible;
    std::optional<int> lToolBarStyle; ///< a `Qt::ToolButtonStyle`
};

/// Missing values, and such that cannot be a size of a screen, stay open.
MainLayout ReadMainLayout(const QString &section, const QString &file);

/// Stores what is set. False when the file could not be written.
bool WriteMainLayout(const MainLayout &layout, const QString &section, const QString &file);
