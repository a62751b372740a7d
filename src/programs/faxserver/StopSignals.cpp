#include "StopSignals.h"

#include "ServerError.h"

#include <QCoreApplication>

#include <csignal>

#include <sys/signalfd.h>
#include <unistd.h>

namespace {

sigset_t StopSet()
{
    sigset_t signalSet;
    sigemptyset(&signalSet);
    sigaddset(&signalSet, SIGTERM);
    sigaddset(&signalSet, SIGINT);
    return signalSet;
}

/// The signals arrive as readable bytes: no code runs inside a signal handler.
int OpenHandle()
{
    StopSignals::Block();
    const sigset_t signalSet = StopSet();
    const int handle = signalfd(-1, &signalSet, SFD_CLOEXEC);
    if (handle < 0)
        throw ServerError("The stop signals cannot be caught.");
    return handle;
}

} // namespace

void StopSignals::Block()
{
    const sigset_t signalSet = StopSet();
    sigprocmask(SIG_BLOCK, &signalSet, nullptr);
}

StopSignals::StopSignals()
    : lHandle(OpenHandle())
    , objNotifier(lHandle, QSocketNotifier::Read)
{
    connect(&objNotifier, &QSocketNotifier::activated, this, [this] {
        signalfd_siginfo info;
        if (read(lHandle, &info, sizeof info) == ssize_t(sizeof info))
            QCoreApplication::quit();
    });
}

StopSignals::~StopSignals()
{
    close(lHandle);
}
