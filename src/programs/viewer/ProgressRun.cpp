#include "ProgressRun.h"

#include "controls/BusyPointer.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QProgressDialog>
#include <QTimer>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

using namespace std::chrono_literals;

namespace {

constexpr std::chrono::milliseconds untilWindow = 500ms, untilLeftBehind = 5s, betweenLooks = 15ms;

/// What the thread and the window share; it outlives the window when the work is left behind.
struct Run
{
    std::atomic<int> lPagesDone = 0;
    std::atomic<bool> bCancelled = false;
    std::atomic<bool> bEnded = false;
};

std::shared_ptr<Run> Start(std::function<void(const PageProgress &)> work)
{
    auto run = std::make_shared<Run>();
    std::thread([run, work = std::move(work)]() mutable {
        work([&run](int pagesDone) {
            run->lPagesDone = pagesDone;
            return !run->bCancelled;
        });
        work = nullptr; // what it owns is gone before anybody hears of the end
        run->bEnded = true;
    }).detach();
    return run;
}

/// Lets events be handled until `isOver` or for that long; true when it is over. Clicks wait meanwhile if so
/// told: they could start the same again.
bool Await(QEventLoop::ProcessEventsFlags flags, std::chrono::milliseconds limit,
           const std::function<bool()> &isOver)
{
    QEventLoop loop;
    QTimer look, end;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (isOver())
            loop.quit();
    });
    QObject::connect(&end, &QTimer::timeout, &loop, &QEventLoop::quit);
    look.start(betweenLooks);
    if (limit > 0ms)
        end.start(limit);
    loop.exec(flags);
    return isOver();
}

/// Until the work ends, or the user or the program's end asks it to.
void AwaitInWindow(Run &run, QWidget *parent, const QString &text, int pages)
{
    QProgressDialog window(text, QProgressDialog::tr("Cancel"), 0, pages, parent);
    constexpr int widthForTitle = 340;
    window.setMinimumWidth(widthForTitle);
    window.setWindowModality(Qt::WindowModal);
    window.setMinimumDuration(0);
    window.setAutoReset(false);
    window.show();
    Await(QEventLoop::AllEvents, 0ms, [&] {
        if (pages > 0)
            window.setValue(run.lPagesDone);
        return run.bEnded || window.wasCanceled();
    });
}

/// A cancel was asked for: the work has a while to clean up behind itself.
bool AwaitCleaning(const std::function<bool()> &isOver)
{
    const QDeadlineTimer limit(untilLeftBehind);
    if (Await(QEventLoop::ExcludeUserInputEvents, untilLeftBehind, isOver))
        return true;
    while (!limit.hasExpired() && !isOver()) // the program ends: no loop turns any more
        std::this_thread::sleep_for(betweenLooks);
    return isOver();
}

} // namespace

bool RunWithProgress(QWidget *parent, const QString &text, int pages,
                     std::function<void(const PageProgress &)> work)
{
    const BusyPointer busy;
    const std::shared_ptr<Run> run = Start(std::move(work));
    const auto hasEnded = [&run] { return run->bEnded.load(); };
    if (Await(QEventLoop::ExcludeUserInputEvents, untilWindow, hasEnded))
        return true;
    AwaitInWindow(*run, parent, text, pages);
    run->bCancelled = true;
    return hasEnded() || AwaitCleaning(hasEnded);
}
