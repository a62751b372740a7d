#include "controls/PlaceOver.h"

#include <QScreen>
#include <QWidget>
#include <QWindow>

#include <algorithm>

namespace {

constexpr QMargins frame(6, 30, 6, 6); ///< about what a window manager draws around a window

/// Moved as little as it takes to be seen; of one that is too large, the upper left corner.
QRect Within(const QRect &screen, QRect place)
{
    const QRect room = screen.marginsRemoved(frame);
    place.moveRight(std::min(place.right(), room.right()));
    place.moveBottom(std::min(place.bottom(), room.bottom()));
    place.moveLeft(std::max(place.left(), room.left()));
    place.moveTop(std::max(place.top(), room.top()));
    return place;
}

} // namespace

void PlaceOver(QWidget &window, const QWidget &owner)
{
    window.winId(); // makes the native window
    window.windowHandle()->setTransientParent(owner.window()->windowHandle());
    if (!window.testAttribute(Qt::WA_Resized)) // a remembered size stays
        window.adjustSize();
    QRect place = window.frameGeometry();
    place.moveCenter(owner.window()->frameGeometry().center());
    window.move(Within(owner.screen()->availableGeometry(), place).topLeft());
}
