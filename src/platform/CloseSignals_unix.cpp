#include "platform/CloseSignals.h"

#include "core/Utilities.h"

#include <QGuiApplication>
#include <QSocketNotifier>

#include <atomic>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace {
constexpr int caughtSignals[] = {SIGTERM, SIGINT, SIGHUP};

/// All that a signal handler can reach.
std::atomic<int> signalPipe{-1};
static_assert(std::atomic<int>::is_always_lock_free);

void OnSignal(int)
{
    const int error = errno;
    const char byte = 1;
    // A full pipe holds requests enough.
    [[maybe_unused]] const ssize_t written = write(signalPipe.load(), &byte, 1);
    errno = error;
}

void SetHandlers(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (const int signal : caughtSignals) {
        struct sigaction before = {};
        sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN) // who has started the program shields it, as nohup does
            sigaction(signal, &action, nullptr);
    }
}
} // namespace

CloseSignals::CloseSignals()
{
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
        ApiRaise(errno);
    readEnd = FileDescriptor(ends[0]);
    writeEnd = FileDescriptor(ends[1]);
    notifier = std::make_unique<QSocketNotifier>(readEnd.Number(), QSocketNotifier::Read);
    connect(notifier.get(), &QSocketNotifier::activated, this, &CloseSignals::OnReadable);
    signalPipe = writeEnd.Number();
    SetHandlers(OnSignal);

    // Not saveStateRequest: session managers send it at the program's start too.
    if (auto *application = qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        connect(application, &QGuiApplication::commitDataRequest, this, &CloseSignals::CloseRequested,
                Qt::DirectConnection);
}

CloseSignals::~CloseSignals()
{
    SetHandlers(SIG_DFL);
    signalPipe = -1;
}

void CloseSignals::OnReadable()
{
    char bytes[16];
    while (read(readEnd.Number(), bytes, sizeof bytes) > 0)
        continue;
    emit CloseRequested();
}
