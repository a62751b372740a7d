#include "LetterFax.h"
#include "Measures.h"
#include "Pairs.h"
#include "programs/viewer/PagesView.h"
#include "programs/viewer/ViewerWindow.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QThread>
#include <QWheelEvent>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include <benchmark/benchmark.h>
#include <tiffio.h>
#include <unistd.h>

// The viewer in a window of 1920 x 1080 pixels, on faxes whose pages are full of text. To run it without a
// display: QT_QPA_PLATFORM=offscreen. A frame counts from the event to the painting after which nothing is
// missing in the view; "loop" is what the event loop's thread works meanwhile, whatever else the machine
// does.

namespace {

constexpr int lFrames = 1000;
constexpr int lFramePeriod = 16; // ms

QString FaxOf(int pages)
{
    static const QTemporaryDir folder;
    const QString path = folder.filePath(QString("letter%1.tif").arg(pages));
    if (!QFile::exists(path) && !LetterFax::Write(path, pages))
        qFatal("The fax could not be written.");
    return path;
}

/// The viewer with a fax on show.
struct ShownFax
{
    explicit ShownFax(const QString &path)
    {
        window.resize(1920, 1080);
        window.Open(path);
        window.show();
        while (!view.IsComplete())
            QApplication::processEvents();
    }

    /// Until the view is painted as it should be.
    void AwaitFrame()
    {
        view.viewport()->update();
        do
            QApplication::processEvents();
        while (!view.IsComplete());
    }

    /// As a person who reads gives it.
    static void Pause(double milliseconds)
    {
        QElapsedTimer timer;
        timer.start();
        while (double(timer.nsecsElapsed()) / 1e6 < milliseconds)
            QApplication::processEvents(QEventLoop::AllEvents, 1);
    }

    ViewerWindow window;
    PagesView &view = window.Pages();
};

void Report(benchmark::State &state, const std::vector<double> &frames)
{
    state.counters["median_ms"] = Pairs::Median(frames);
    state.counters["p99_ms"] = Measures::NinetyNinth(frames);
    state.counters["worst_ms"] = *std::max_element(frames.begin(), frames.end());
}

void TurnWheel(const PagesView &view, int angle)
{
    const QPointF place = view.viewport()->rect().center();
    QWheelEvent turn(place, place, {}, {0, angle}, Qt::NoButton, {}, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(view.viewport(), &turn);
}

/// Notch by notch of the wheel, as fast as a screen can show it.
void ScrolledFrame(benchmark::State &state, PagesView::ZoomMode mode, double zoom)
{
    ShownFax fax(FaxOf(100));
    fax.view.SetMode(mode);
    if (mode == PagesView::ZoomMode::Free)
        fax.view.SetZoom(zoom);
    fax.AwaitFrame();
    std::vector<double> frames, loop;
    int direction = -120;
    for (auto _ : state) {
        const int before = fax.view.verticalScrollBar()->value();
        frames.push_back(Measures::WallTimeOf([&] {
            loop.push_back(Measures::ThreadTimeOf([&] {
                TurnWheel(fax.view, direction);
                fax.AwaitFrame();
            }));
        }));
        if (fax.view.verticalScrollBar()->value() == before)
            direction = -direction;
        ShownFax::Pause(lFramePeriod - frames.back());
        state.SetIterationTime(frames.back() / 1000);
    }
    Report(state, frames);
    state.counters["p99_loop_ms"] = Measures::NinetyNinth(loop);
}
BENCHMARK_CAPTURE(ScrolledFrame, fitWidth, PagesView::ZoomMode::Width, 0)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(lFrames);
BENCHMARK_CAPTURE(ScrolledFrame, actualSize, PagesView::ZoomMode::Free, 1.0)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(lFrames);
BENCHMARK_CAPTURE(ScrolledFrame, enlarged, PagesView::ZoomMode::Free, 4.0)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(lFrames);
BENCHMARK_CAPTURE(ScrolledFrame, manyPages, PagesView::ZoomMode::Free, 0.15)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(lFrames);

// Processes of their own

/// What the program does until the first page stands.
int ShowFirstPage(int &argc, char **argv)
{
    QApplication application(argc, argv);
    const ShownFax fax(argv[2]);
    _exit(0);
}

void FirstPage(benchmark::State &state)
{
    const QString fax = FaxOf(100);
    std::vector<double> times;
    for (auto _ : state) {
        times.push_back(Measures::WallTimeOf([&] {
            if (QProcess::execute(QApplication::applicationFilePath(), {"--first-page", fax}) != 0)
                state.SkipWithError("The page was not shown.");
        }));
        state.SetIterationTime(times.back() / 1000);
    }
    Report(state, times);
}
BENCHMARK(FirstPage)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20)->Repetitions(3);

/// Drags the scroll bar from the first of very many pages to the last one. Prints the worst frame, complete
/// or not, and the memory that all took.
int DragThrough(int &argc, char **argv)
{
    QApplication application(argc, argv);
    const double empty = Measures::MemoryOf("VmRSS");
    ShownFax fax(argv[2]);
    double worst = 0;
    QScrollBar &bar = *fax.view.verticalScrollBar();
    for (int frame = 0; frame <= lFrames; ++frame) {
        bar.setValue(static_cast<int>(double(bar.maximum()) * frame / lFrames));
        worst = std::max(worst, Measures::WallTimeOf([&] { QApplication::processEvents(); }));
        QThread::msleep(lFramePeriod);
    }
    std::printf("%g %g\n", worst, Measures::MemoryOf("VmHWM") - empty);
    std::fflush(stdout);
    _exit(0);
}

void LongFax(benchmark::State &state)
{
    const QString fax = FaxOf(5000);
    for (auto _ : state) {
        QProcess process;
        process.start(QApplication::applicationFilePath(), {"--drag", fax});
        process.waitForFinished(-1);
        const QList<QByteArray> values = process.readAllStandardOutput().simplified().split(' ');
        if (process.exitCode() != 0 || values.size() != 2)
            state.SkipWithError("The fax was not shown.");
        state.counters["worst_ms"] = values.value(0).toDouble();
        state.counters["peak_mib"] = values.value(1).toDouble();
    }
}
BENCHMARK(LongFax)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace

int main(int argc, char *argv[])
{
    const QTemporaryDir settings; // the window remembers nothing of the user's
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(settings.path()));
    if (argc > 2 && std::strcmp(argv[1], "--first-page") == 0)
        return ShowFirstPage(argc, argv);
    if (argc > 2 && std::strcmp(argv[1], "--drag") == 0)
        return DragThrough(argc, argv);
    const QApplication application(argc, argv);
    TIFFSetErrorHandler(nullptr);
    TIFFSetWarningHandler(nullptr);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
