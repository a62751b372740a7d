#pragma once

#include "desktop/MainLayout.h"

#include <QMap>

class QMainWindow;
class QSplitter;
class QToolBar;
class QWidget;

/// Reads the places of the main window's panes off the screen, and puts them back.
class PaneLayout
{
public:
    struct Panes
    {
        QMainWindow *window;
        QSplitter *columns; ///< trees beside faxes
        QSplitter *trees;   ///< `tvFolder` over `tvAddressbook`
        QSplitter *faxes;   ///< the list over the preview
        QWidget *tvFolder;
        QWidget *tvAddressbook;
        QWidget *list;
        QWidget *picPreview;
        QWidget *frmeHistory;
        QToolBar *tbClient;
    };

    explicit PaneLayout(const Panes &windowPanes)
        : panes(windowPanes)
    {
    }

    /// Gives the panes the places that they have before any settings.
    void Design();
    /// What `layout` leaves open stays as it is. A window that would stand outside all screens keeps its
    /// place.
    void Restore(const MainLayout &layout);
    MainLayout Collect() const;
    /// Shows or hides a pane; its height is kept for the settings.
    void SetVisible(QWidget *pane, bool visible);

private:
    void PlaceWindow(const MainLayout &layout);
    PaneRect RectOf(QWidget *pane) const;

    Panes panes;
    QMap<QWidget *, PaneRect> hidden; ///< last places of panes that are hidden
};
