#include "controls/Icons.h"
#include "core/ProgramTitle.h"
#include "core/Startup.h"
#include "platform/SystemPorts.h"
#include "programs/client/ClientProgram.h"

#include <QApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <QWidget>

#include <chrono>
#include <cstdio>
#include <cstring>

#include <benchmark/benchmark.h>
#include <unistd.h>

// Time from the start of the process to the first painted login window, against an empty window of Qt. Each
// is a child process of its own, which ends with its first painting. The empty window is measured in this
// program ("empty_ms") and in one that links nothing but Qt ("bare_ms"), which is the stricter measure.

namespace {

/// Ends the process when a window has been painted.
class PaintWatch final : public QObject
{
    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && object->isWidgetType() &&
            static_cast<QWidget *>(object)->isWindow())
            QTimer::singleShot(0, object, [] { _exit(0); });
        return false;
    }
};

int ShowEmptyWindow(int &argc, char **argv)
{
    QApplication application(argc, argv);
    PaintWatch watch;
    application.installEventFilter(&watch);
    QWidget window;
    window.show();
    return QApplication::exec();
}

/// What the program does until its login window stands, in a data folder that is not there yet.
int ShowLogin(int &argc, char **argv)
{
    QApplication application(argc, argv);
    PaintWatch watch;
    application.installEventFilter(&watch);
    QApplication::setApplicationDisplayName(QString::fromLatin1(programTitle));
    QApplication::setWindowIcon(Icons::Get(QStringLiteral("imgReceived")));
    SystemPorts system;
    if (Startup::Run(system.Get(), {}) != Startup::Result::ShowLogin)
        return 1;
    ClientProgram program(system.Get(), system.Pump());
    program.ShowLogin();
    return system.Pump().Run();
}

/// Milliseconds that a program took; -1 when it failed.
double TimeOf(const QString &program, const QStringList &arguments = {})
{
    const QTemporaryDir folder;
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("VELMAR_DATA_HOME", folder.filePath("data"));
    environment.insert("XDG_CONFIG_HOME", folder.filePath("config"));
    process.setProcessEnvironment(environment);
    const auto start = std::chrono::steady_clock::now();
    process.start(program, arguments);
    const bool isEnded = process.waitForFinished() && process.exitStatus() == QProcess::NormalExit;
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    if (isEnded && process.exitCode() == 0)
        return time.count();
    std::fprintf(stderr, "%s", process.readAllStandardError().constData());
    return -1;
}

/// All three in turn, so that what else the machine does hits each.
void StartToLoginWindow(benchmark::State &state)
{
    const QString self = QCoreApplication::applicationFilePath();
    double empty = 0;
    double bare = 0;
    double login = 0;
    for (auto _ : state) {
        const double emptyTime = TimeOf(self, {"--empty"});
        const double bareTime = TimeOf(QCoreApplication::applicationDirPath() + "/bench_emptywindow");
        const double loginTime = TimeOf(self, {"--login"});
        if (emptyTime < 0 || bareTime < 0 || loginTime < 0)
            state.SkipWithError("A window was not painted.");
        empty += emptyTime;
        bare += bareTime;
        login += loginTime;
        state.SetIterationTime(loginTime / 1000);
    }
    state.counters["empty_ms"] = empty / double(state.iterations());
    state.counters["bare_ms"] = bare / double(state.iterations());
    state.counters["ratio_empty"] = login / empty;
    state.counters["ratio_bare"] = login / bare;
}
BENCHMARK(StartToLoginWindow)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20)->Repetitions(3);

} // namespace

int main(int argc, char *argv[])
{
    if (argc > 1 && std::strcmp(argv[1], "--empty") == 0)
        return ShowEmptyWindow(argc, argv);
    if (argc > 1 && std::strcmp(argv[1], "--login") == 0)
        return ShowLogin(argc, argv);
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
