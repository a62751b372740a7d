#pragma once

/// The only door to the event loop. Every wait of the program is a loop over it.
class EventPump
{
public:
    virtual ~EventPump() = default;

    /// Runs pending events; with none pending it sleeps until one comes, `milliseconds` at most.
    virtual void RunSlice(int milliseconds) = 0;

    /// Runs what is pending now and returns without sleeping.
    virtual void RunPending() = 0;

    /// True once the program has begun to end: waits give up then.
    virtual bool IsQuitting() const = 0;
};
