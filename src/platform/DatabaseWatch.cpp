#include "platform/DatabaseWatch.h"

#include "core/clsDBcon.h"

#include <QCursor>
#include <QGuiApplication>

DatabaseWatch::DatabaseWatch(int milliseconds)
    : lPatience(milliseconds)
{
    clsDBcon::SetWatcher([this] { Look(); });
}

DatabaseWatch::~DatabaseWatch()
{
    clsDBcon::SetWatcher({});
    Rest();
}

void DatabaseWatch::Look()
{
    if (!sinceWork.isValid()) {
        sinceWork.start();
        QMetaObject::invokeMethod(this, &DatabaseWatch::Rest, Qt::QueuedConnection);
    } else if (!bShown && sinceWork.hasExpired(lPatience)) {
        bShown = true;
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    }
}

/// The event loop turns: also that of a question, which is to be answered.
void DatabaseWatch::Rest()
{
    sinceWork.invalidate();
    if (bShown)
        QGuiApplication::restoreOverrideCursor();
    bShown = false;
}
