#pragma once

#include "core/ports/Timer.h"

/// Timers of the application's event loop.
class QtTimers final : public Timers
{
public:
    std::unique_ptr<Timer> Create() override;
};
