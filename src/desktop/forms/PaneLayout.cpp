#include "desktop/forms/PaneLayout.h"

#include <QGuiApplication>
#include <QMainWindow>
#include <QScreen>
#include <QSplitter>
#include <QToolBar>

#include <algorithm>

namespace {

constexpr QSize smallestGrip(80, 40);
constexpr QSize designed(1024, 600); ///< of the panes together
constexpr int lTreesWidth = 220;
constexpr int lContactsHeight = 240;
constexpr int lListHeight = 230;
constexpr QSize frameSize(12, 36); ///< about what a window manager draws around a window

/// Enough of the window's upper edge stands on a screen to be grasped.
bool CanBeGrasped(const QRect &window)
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    return std::any_of(screens.begin(), screens.end(), [&](const QScreen *screen) {
        const QRect edge(window.topLeft(), QSize(window.width(), smallestGrip.height()));
        const QRect seen = edge.intersected(screen->availableGeometry());
        return seen.width() >= smallestGrip.width() && seen.height() >= smallestGrip.height();
    });
}

/// The size of a window that fits the screen on which its corner stands.
QSize FitScreen(const QRect &window)
{
    const QScreen *screen = QGuiApplication::screenAt(window.topLeft());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    return screen ? window.size().boundedTo(screen->availableSize() - frameSize) : window.size();
}

/// Where a window of this size stands in the middle of the first screen.
QPoint CentreOnScreen(const QSize &window)
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    if (!screen)
        return {};
    const QRect room = screen->availableGeometry();
    const QSize rest = (room.size() - frameSize - window).expandedTo({0, 0});
    return room.topLeft() + QPoint(rest.width() / 2, rest.height() / 2);
}

/// One size alone says nothing.
void RestoreSizes(QSplitter *splitter, const std::optional<int> &first, const std::optional<int> &second)
{
    if (first && second)
        splitter->setSizes({std::max(1, *first), std::max(1, *second)});
}

} // namespace

void PaneLayout::Design()
{
    panes.columns->setStretchFactor(0, 0);
    panes.columns->setStretchFactor(1, 1);
    panes.faxes->setStretchFactor(0, 2);
    panes.faxes->setStretchFactor(1, 3);
    panes.columns->setSizes({lTreesWidth, designed.width() - lTreesWidth});
    panes.faxes->setSizes({lListHeight, designed.height() - lListHeight});
    panes.trees->setSizes({designed.height() - lContactsHeight, lContactsHeight});
    panes.tvAddressbook->hide();
    hidden[panes.tvAddressbook] = {0, designed.height() - lContactsHeight, lTreesWidth, lContactsHeight};
}

void PaneLayout::Restore(const MainLayout &layout)
{
    PlaceWindow(layout);
    for (const auto &[pane, rect] : {std::pair(panes.tvAddressbook, layout.tvAddressbook),
                                     std::pair(panes.picPreview, layout.picPreview)}) {
        if (rect.lHeight)
            hidden[pane] = rect;
    }
    RestoreSizes(panes.columns, layout.tvFolder.lWidth, layout.grdFaxList.lWidth);
    RestoreSizes(panes.trees, layout.tvFolder.lHeight, layout.tvAddressbook.lHeight);
    RestoreSizes(panes.faxes, layout.grdFaxList.lHeight, layout.picPreview.lHeight);
    panes.tvAddressbook->setVisible(layout.bAddressbookVisible.value_or(!panes.tvAddressbook->isHidden()));
    panes.picPreview->setVisible(layout.bPreviewVisible.value_or(!panes.picPreview->isHidden()));
    panes.frmeHistory->setVisible(layout.bHistoryVisible.value_or(!panes.frmeHistory->isHidden()));
    if (layout.lToolBarStyle && *layout.lToolBarStyle >= Qt::ToolButtonIconOnly &&
        *layout.lToolBarStyle <= Qt::ToolButtonTextUnderIcon)
        panes.tbClient->setToolButtonStyle(static_cast<Qt::ToolButtonStyle>(*layout.lToolBarStyle));
}

/// A window that was minimised or maximised has no place of its own to go back to.
void PaneLayout::PlaceWindow(const MainLayout &layout)
{
    const int state = layout.lState.value_or(MainLayout::Normal);
    if (state == MainLayout::Maximised)
        panes.window->setWindowState(Qt::WindowMaximized);
    if (state != MainLayout::Normal)
        return;
    const QRect now = panes.window->geometry();
    const QRect wanted(
        QPoint(layout.Main.lLeft.value_or(now.left()), layout.Main.lTop.value_or(now.top())),
        QSize(layout.Main.lWidth.value_or(now.width()), layout.Main.lHeight.value_or(now.height())));
    panes.window->resize(FitScreen(wanted).expandedTo(panes.window->minimumSizeHint()));
    const bool hasPlace = layout.Main.lLeft && layout.Main.lTop && CanBeGrasped(wanted);
    panes.window->move(hasPlace ? wanted.topLeft() : CentreOnScreen(panes.window->size()));
}

PaneRect PaneLayout::RectOf(QWidget *pane) const
{
    if (pane->isHidden())
        return hidden.value(pane);
    const QPoint corner = pane->mapTo(panes.window, QPoint());
    return {corner.x(), corner.y(), pane->width(), pane->height()};
}

MainLayout PaneLayout::Collect() const
{
    const QMainWindow &window = *panes.window;
    MainLayout layout;
    const bool fillsScreen = window.isMaximized() || window.isFullScreen();
    layout.lState = window.isMinimized() ? MainLayout::Minimised
                    : fillsScreen        ? MainLayout::Maximised
                                         : MainLayout::Normal;
    if (layout.lState == MainLayout::Normal)
        layout.Main = {window.x(), window.y(), window.width(), window.height()};
    layout.tvFolder = RectOf(panes.tvFolder);
    layout.tvAddressbook = RectOf(panes.tvAddressbook);
    layout.grdFaxList = RectOf(panes.list);
    layout.picPreview = RectOf(panes.picPreview);
    layout.bAddressbookVisible = !panes.tvAddressbook->isHidden();
    layout.bPreviewVisible = !panes.picPreview->isHidden();
    layout.bHistoryVisible = !panes.frmeHistory->isHidden();
    layout.lToolBarStyle = panes.tbClient->toolButtonStyle();
    return layout;
}

void PaneLayout::SetVisible(QWidget *pane, bool visible)
{
    if (!visible)
        hidden[pane] = RectOf(pane);
    pane->setVisible(visible);
}
