#include "controls/BusyPointer.h"

#include <QCursor>
#include <QGuiApplication>

BusyPointer::BusyPointer()
{
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
}

BusyPointer::~BusyPointer()
{
    QGuiApplication::restoreOverrideCursor();
}
