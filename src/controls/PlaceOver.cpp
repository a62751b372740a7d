#include "controls/PlaceOver.h"

#include <QWidget>
#include <QWindow>

void PlaceOver(QWidget &window, const QWidget &owner)
{
    window.winId(); // makes the native window
    window.windowHandle()->setTransientParent(owner.window()->windowHandle());
    if (!window.testAttribute(Qt::WA_Resized)) // a remembered size stays
        window.adjustSize();
    QRect place = window.frameGeometry();
    place.moveCenter(owner.window()->frameGeometry().center());
    window.move(place.topLeft());
}
