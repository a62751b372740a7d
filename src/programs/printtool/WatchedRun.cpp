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

    void Tell(const QString &status)
    {
        const std::scoped_lock lock(mutex);
        strStatus = status;
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

void QuitSoon()
{
    QMetaObject::invokeMethod(QCoreApplication::instance(), &QCoreApplication::quit, Qt::QueuedConnection);
}

std::thread StartThread(const ConversionJob &job, const std::stop_token &stop,
                        const std::shared_ptr<Exchange> &exchange)
{
    return std::thread([job, stop, exchange] {
        exchange->Finish(
            Conversion(job, stop, [&exchange](const QString &status) { exchange->Tell(status); }).Run());
        QuitSoon();
    });
}

/// Turns the loop until the conversion is over, or does not end although it should.
void KeepWatch(Exchange &exchange, std::stop_source &stopper, const WatchedRun::Watch &watch)
{
    QElapsedTimer sinceStop;
    const auto stop = [&] {
        stopper.request_stop();
        if (!sinceStop.isValid())
            sinceStop.start();
    };
    const CloseSignals closeSignals;
    QObject::connect(&closeSignals, &CloseSignals::CloseRequested, &closeSignals, stop);
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, &tick, [&] {
        if (!watch(exchange.Status()))
            stop();
        if (sinceStop.isValid() && sinceStop.hasExpired(patience))
            QuitSoon();
    });
    tick.start(watchInterval);
    QCoreApplication::exec();
}

} // namespace

ConversionResult WatchedRun::Convert(ConversionJob job, const Watch &watch)
{
    const WorkFolder folder;
    job.strWorkFolder = folder.Path();
    const auto exchange = std::make_shared<Exchange>();
    std::stop_source stopper;
    std::thread thread = StartThread(job, stopper.get_token(), exchange);
    KeepWatch(*exchange, stopper, watch);
    std::optional<ConversionResult> result = exchange->Result();
    if (result) {
        thread.join();
        return *std::move(result);
    }
    bStuck = true;
    thread.detach();
    QFile::remove(job.strPartFile);
    ConversionResult stopped;
    stopped.bStopped = true;
    return stopped;
}
