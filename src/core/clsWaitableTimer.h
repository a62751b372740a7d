#pragma once

struct Ports;

/// An interruptible wait that keeps events running.
class clsWaitableTimer
{
public:
    explicit clsWaitableTimer(const Ports &ports)
        : ports(ports)
    {
    }

    /// Waits until the time is over, `Cancel` was set, or the program quits.
    void Wait(int milliseconds);

    /// Set to end a wait early; read afterwards to see whether it was cut short. `Wait` clears it first.
    bool Cancel = false;

private:
    const Ports &ports;
};
