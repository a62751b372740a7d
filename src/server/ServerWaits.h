#pragma once

#include <QObject>

#include <functional>
#include <memory>
#include <vector>

class Timer;
struct Ports;

/// How a wait for the server ended.
enum class WaitEnd {
    Replied, ///< the reply was handled, or a caller ended the wait
    Refused, ///< the server refused with "ERR", or has not answered the header of a fax
    Failed,  ///< the reply was damaged, handling it raised an error, or a file could not be read
    Silent,  ///< the watchdog gave up: more than 5 seconds without a sign of life
    Closed,  ///< the connection was lost, closed or made anew, or there was none
    Quitting ///< the program ends, or the time that it has for logging off is over
};

/// The waits for replies, which may nest: a signal ends the newest one only. No wait lasts for ever: each
/// looks at the connection in every slice, and a watchdog counts the seconds of silence.
class ServerWaits final : public QObject
{
    Q_OBJECT

public:
    explicit ServerWaits(const Ports &ports);
    ~ServerWaits() override;

    /// Runs the event loop in slices until a signal comes or `isAlive` turns false.
    WaitEnd Wait(const std::function<bool()> &isAlive);
    /// Ends the newest wait; what has ended it first counts.
    void End(WaitEnd end);
    /// The same, and runs pending events once.
    void Signal(WaitEnd end = WaitEnd::Replied);
    bool IsWaiting() const { return !aWaits.empty(); }

    /// A sign of life.
    void ResetSilence() { lBusyTicks = 0; }
    /// While this says so, silence is not counted: somebody else's limit holds.
    void SetPaused(std::function<bool()> paused) { isPaused = std::move(paused); }
    /// All waits from now on end after so many milliseconds altogether; below 0 takes the limit away.
    void SetTimeLeft(int milliseconds);

    void OnWatchdogTick();

private:
    struct Open
    {
        bool bSignalled = false;
        WaitEnd end = WaitEnd::Replied;
    };

    WaitEnd Run(const Open &wait, const std::function<bool()> &isAlive) const;
    bool IsOutOfTime() const;

    const Ports &ports;
    std::unique_ptr<Timer> tmrWatchdog;
    std::vector<Open *> aWaits; ///< the newest last
    std::function<bool()> isPaused;
    int lBusyTicks = 0; ///< seconds without any sign of life
    qint64 lDeadline = -1;
};
