#pragma once

#include "core/ports/Clock.h"

/// The clock of the machine.
class SystemClock final : public Clock
{
public:
    QDateTime Now() const override;
    qint64 Milliseconds() const override;
};
