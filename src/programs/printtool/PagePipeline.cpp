#include "PagePipeline.h"

#include "ConversionError.h"
#include "PageMaker.h"

#include <QCoreApplication>

#include <algorithm>
#include <exception>
#include <utility>

namespace {

/// More would not be faster here, and each holds a page and a document.
constexpr unsigned mostThreads = 4;

/// Pages that may wait for one that takes longer.
constexpr int mostAhead = 16;

} // namespace

PagePipeline::PagePipeline(const QList<Document> &documents, const QList<PageTask> &tasks,
                           const PageMaker &maker)
    : documents(documents)
    , tasks(tasks)
    , maker(maker)
    , failedDocuments(static_cast<size_t>(documents.size()))
{
    const unsigned cores = std::clamp(std::thread::hardware_concurrency(), 1U, mostThreads);
    const auto count = std::min<qsizetype>(cores, tasks.size());
    for (qsizetype number = 0; number < count; ++number)
        threads.emplace_back([this](const std::stop_token &stop) { Work(stop); });
}

PagePipeline::~PagePipeline()
{
    for (std::jthread &thread : threads)
        thread.request_stop();
}

FinishedPage PagePipeline::Take(const std::stop_token &stop)
{
    std::unique_lock lock(mutex);
    if (!changed.wait(lock, stop, [this] { return finished.contains(lTaken); }))
        return {};
    FinishedPage page = std::move(finished.extract(lTaken).mapped());
    ++lTaken;
    changed.notify_all();
    return page;
}

void PagePipeline::Work(const std::stop_token &stop)
{
    Reader reader;
    for (int number = Claim(stop); number >= 0; number = Claim(stop))
        Store(number, Make(number, reader));
}

/// The next page to make; -1 when there is none left.
int PagePipeline::Claim(const std::stop_token &stop)
{
    std::unique_lock lock(mutex);
    const auto mayClaim = [this] { return lClaimed < lTaken + mostAhead; };
    if (!changed.wait(lock, stop, mayClaim) || stop.stop_requested() || lClaimed >= tasks.size())
        return -1;
    return lClaimed++;
}

/// No error may leave the thread.
FinishedPage PagePipeline::Make(int number, Reader &reader)
{
    const PageTask &task = tasks[number];
    if (HasFailed(task.lDocument))
        return {};
    const Document &document = documents[task.lDocument];
    try {
        if (reader.lDocument != task.lDocument) {
            reader.source = OpenDocument(document);
            reader.lDocument = task.lDocument;
        }
        const QImage sheet =
            maker.Make(*reader.source, document, task.lPage, number + 1, static_cast<int>(tasks.size()));
        return {FaxTiffWriter::Encode(sheet), {}, true};
    } catch (const ConversionError &error) {
        return {{}, error.Text(), false};
    } catch (const std::exception &) {
        return {{}, QCoreApplication::translate("printtool", "There is not enough memory for it."), false};
    }
}

void PagePipeline::Store(int number, FinishedPage page)
{
    const std::scoped_lock lock(mutex);
    if (!page.bMade)
        failedDocuments[static_cast<size_t>(tasks[number].lDocument)] = true;
    finished.emplace(number, std::move(page));
    changed.notify_all();
}

bool PagePipeline::HasFailed(int document)
{
    const std::scoped_lock lock(mutex);
    return failedDocuments[static_cast<size_t>(document)];
}
