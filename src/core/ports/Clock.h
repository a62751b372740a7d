#pragma once

#include <QDateTime>

class Clock
{
public:
    virtual ~Clock() = default;

    /// Local date and time.
    virtual QDateTime Now() const = 0;

    /// Milliseconds of a clock that never jumps; only differences mean something.
    virtual qint64 Milliseconds() const = 0;
};
