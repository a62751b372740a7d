#include "CommandLine.h"
#include "RequestMode.h"
#include "WatchedRun.h"

#include <QGuiApplication>

#include <csignal>
#include <cstdio>
#include <exception>

#include <malloc.h>
#include <unistd.h>

namespace {

/// Warnings of the libraries mean nothing to a user, who is told in sentences what is wrong with a document.
void KeepQuiet(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type == QtCriticalMsg || type == QtFatalMsg)
        std::fprintf(stderr, "ZemPrint: %s\n", message.toLocal8Bit().constData());
}

/// Each page takes the same few large blocks. What the allocator gives back to the system meanwhile would
/// have to be cleared again.
void KeepMemoryOfPages()
{
    constexpr int largestBlock = 32 << 20, keptAtMost = 128 << 20;
    mallopt(M_MMAP_THRESHOLD, largestBlock);
    mallopt(M_TRIM_THRESHOLD, keptAtMost);
}

int Run(const QStringList &arguments, WatchedRun &run)
{
    try {
        return arguments.size() > 1 ? RunCommandLine(arguments, run) : ServeRequest(run);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "ZemPrint: %s\n", error.what());
        return 1;
    }
}

} // namespace

int main(int argc, char *argv[])
{
    qInstallMessageHandler(KeepQuiet);
    KeepMemoryOfPages();
    qputenv("QT_QPA_PLATFORM", "offscreen"); // fonts need an application with a platform, never with a screen
    const QGuiApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("ZemPrint"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VELMAR_VERSION));
    std::signal(SIGPIPE, SIG_IGN); // nobody reads what goes wrong: no reason to leave files behind
    WatchedRun run;
    const int exitCode = Run(QCoreApplication::arguments(), run);
    if (run.IsStuck()) {
        // A thread still draws its page; what it uses must not be taken apart.
        std::fflush(nullptr);
        _exit(exitCode);
    }
    return exitCode;
}
