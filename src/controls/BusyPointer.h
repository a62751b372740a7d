#pragma once

/// Shows the busy pointer while it lives: for work on the event loop's thread that the user may notice.
class BusyPointer final
{
public:
    BusyPointer();
    ~BusyPointer();
    BusyPointer(const BusyPointer &) = delete;
    BusyPointer &operator=(const BusyPointer &) = delete;
};
