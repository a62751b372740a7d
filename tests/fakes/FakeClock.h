#pragma once

#include "core/ports/Clock.h"

/// A clock that stands still until a test or the scripted pump moves it.
class FakeClock final : public Clock
{
public:
    QDateTime Now() const override { return now; }
    qint64 Milliseconds() const override { return lMilliseconds; }

    void Advance(int milliseconds)
    {
        lMilliseconds += milliseconds;
        now = now.addMSecs(milliseconds);
    }

    QDateTime now{QDate(2024, 1, 31), QTime(9, 30)};
    qint64 lMilliseconds = 0;
};
