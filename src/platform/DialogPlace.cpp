#include "platform/DialogPlace.h"

#include <QApplication>
#include <QDialog>
#include <QWindow>

void PlaceOverActiveWindow(QDialog &dialog)
{
    const QWidget *active = QApplication::activeWindow();
    if (!active)
        return;
    dialog.winId(); // makes the native window
    dialog.windowHandle()->setTransientParent(active->window()->windowHandle());
    dialog.adjustSize();
    QRect place = dialog.frameGeometry();
    place.moveCenter(active->window()->frameGeometry().center());
    dialog.move(place.topLeft());
}
