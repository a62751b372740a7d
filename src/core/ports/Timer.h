#pragma once

#include <QObject>

#include <memory>

/// A repeating timer. It starts disabled.
class Timer : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Milliseconds between two ticks. 0 means that the timer stays silent though it is enabled.
    virtual void SetInterval(int milliseconds) = 0;
    virtual int Interval() const = 0;

    /// Enabling restarts the interval. The next tick waits until the handler of the last has returned.
    virtual void SetEnabled(bool enabled) = 0;
    virtual bool IsEnabled() const = 0;

signals:
    void Tick();
};

class Timers
{
public:
    virtual ~Timers() = default;
    virtual std::unique_ptr<Timer> Create() = 0;
};
