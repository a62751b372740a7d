#pragma once

#include <QObject>
#include <QString>

/// What keeps one running copy of the program per user, and lets a second copy raise the first one's window.
class Instance : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Takes the named lock for the rest of the process. False when another process holds it; a lock dies
    /// with its process, however that ends.
    virtual bool TakeLock(const QString &name) = 0;

    /// Opens this copy to calls from others. The result is the number that stands for its main window.
    virtual qlonglong PublishWindow() = 0;

    /// Asks the copy with that number to restore and raise its main window; 0 and unknown numbers do nothing.
    virtual void RaiseWindow(qlonglong window) = 0;

signals:
    /// Another copy asks this one to show itself.
    void RaiseRequested();
};
