#include "StopSignals.h"

#include "ServerError.h"

#include <QCoreApplication>

#include <csignal>

#include <sys/signalfd.h>
#include <unistd.h>

namespace {

/// The signals arrive as readable bytes: no code runs inside a signal handler.
int OpenHandle()
{
    sigset_t signalSet;
    sigemptyset(&signalSet);
    sigaddset(&signalSet, SIGTERM);
    sigaddset(&signalSet, SIGINT);
    const int handle =
        sigprocmask(SIG_BLOCK, &signalSet, nullptr) == 0 ? signalfd(-1, &signalSet, SFD_CLOEXEC) : -1;
    if (handle < 0)
        throw ServerError("The stop signals cannot be caught.");
    return handle;
}

} // namespace

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
