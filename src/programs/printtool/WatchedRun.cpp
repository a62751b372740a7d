#include "WatchedRun.h"

#include "WorkFolder.h"
#include "platform/CloseSignals.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTimer>

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace {

constexpr std::chrono::milliseconds watchInterval(100);

/// What a page may take to end after a stop, in milliseconds. Client and user wait for it.
constexpr qint64 patience = 500;

/// What the two threads share. Each holds it, since the other may be gone.
struct Exchange
{
    std::mutex mutex;
    QString strStatus;
    std::optional<ConversionResult> result;

    /// True for the first one.
    bool Tell(const QString &status)
    {
        const std::scoped_lock lock(mutex);
        return std::exchange(strStatus, status).isEmpty();
    }
    QString Status()
    {
        const std::scoped_lock lock(mutex);
        return strStatus;
    }
    void Finish(ConversionResult finished)
    {
        const std::scoped_lock lock(mutex);
        result = std::move(finished);
    }
    std::optional<ConversionResult> Result()
    {
        const std::scoped_lock lock(mutex);
        return result;
    }
};

/// Runs in the main thread, as long as that turns its loop.
template <typename Action>
void Post(Action action)
{
    QMetaObject::invokeMethod(QCoreApplication::instance(), action, Qt::QueuedConnection);
}

/// `firstTold` runs in the main thread.
std::thread StartThread(const ConversionJob &job, const std::stop_token &stop,
                        const std::shared_ptr<Exchange> &exchange, const std::function<void()> &firstTold)
{
    return std::thread([=] {
        const auto tell = [&](const QString &status) {
            if (exchange->Tell(status))
                Post(firstTold);
        };
        exchange->Finish(Conversion(job, stop, tell).Run());
        Post(&QCoreApplication::quit);
    });
}

/// The conversion on one side, watch, user and clock on the other.
class Watcher final
{
public:
    Watcher(const ConversionJob &job, const WatchedRun::Watch &watch);

    /// Turns the loop until the conversion is over: nothing when it does not end although it should.
    std::optional<ConversionResult> Run();

private:
    void Stop();
    void Look();

    const WatchedRun::Watch &watch;
    std::shared_ptr<Exchange> exchange = std::make_shared<Exchange>();
    CloseSignals closeSignals;
    QTimer tick;
    QElapsedTimer sinceStop;
    std::stop_source stopper;
    std::thread thread;
};

Watcher::Watcher(const ConversionJob &job, const WatchedRun::Watch &watch)
    : watch(watch)
    , thread(StartThread(job, stopper.get_token(), exchange, [this] { Look(); }))
{
    QObject::connect(&closeSignals, &CloseSignals::CloseRequested, &tick, [this] { Stop(); });
    QObject::connect(&tick, &QTimer::timeout, &tick, [this] { Look(); });
    tick.start(watchInterval);
}

std::optional<ConversionResult> Watcher::Run()
{
    QCoreApplication::exec();
    std::optional<ConversionResult> result = exchange->Result();
    if (result)
        thread.join();
    else
        thread.detach();
    return result;
}

void Watcher::Stop()
{
    stopper.request_stop();
    if (!sinceStop.isValid())
        sinceStop.start();
}

void Watcher::Look()
{
    if (!watch(exchange->Status()))
        Stop();
    if (sinceStop.isValid() && sinceStop.hasExpired(patience))
        QCoreApplication::quit();
}

} // namespace

ConversionResult WatchedRun::Convert(ConversionJob job, const Watch &watch)
{
    const WorkFolder folder;
    job.strWorkFolder = folder.Path();
    std::optional<ConversionResult> result = Watcher(job, watch).Run();
    if (result)
        return *std::move(result);
    bStuck = true;
    QFile::remove(job.strPartFile);
    ConversionResult stopped;
    stopped.bStopped = true;
    return stopped;
}
