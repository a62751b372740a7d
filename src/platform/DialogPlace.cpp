#include "platform/DialogPlace.h"

#include "controls/PlaceOver.h"

#include <QApplication>
#include <QDialog>

void PlaceOverActiveWindow(QDialog &dialog)
{
    if (const QWidget *active = QApplication::activeWindow())
        PlaceOver(dialog, *active);
}
