#pragma once

class Session;

/// Owns the connection for one run. While a run owns it, a second one gets nothing, nor does any once the
/// program has begun to end; a run that is called by the owner passes with a `RunPermit`. The end puts
/// `bIsSocketBusy` back as it was and, for the outermost run, the main window and the timers too, whichever
/// way the run is left.
class RunScope
{
public:
    explicit RunScope(Session &session);
    ~RunScope();
    RunScope(const RunScope &) = delete;
    RunScope &operator=(const RunScope &) = delete;

    /// False when another run owns the connection, or the program ends: do nothing then.
    explicit operator bool() const { return bOwned; }

private:
    Session &session;
    bool bOwned;
    bool bWasBusy;
};

/// Lets the one run pass that its maker calls next, before any event runs.
class RunPermit
{
public:
    explicit RunPermit(Session &session);
    ~RunPermit();
    RunPermit(const RunPermit &) = delete;
    RunPermit &operator=(const RunPermit &) = delete;

private:
    Session &session;
};
