#pragma once

#include "Document.h"
#include "FaxTiffWriter.h"

#include <QList>
#include <QString>

#include <condition_variable>
#include <map>
#include <mutex>
#include <stop_token>
#include <thread>
#include <vector>

class PageMaker;

/// One page of a fax: where it comes from and where it goes.
struct PageTask
{
    int lDocument = 0; ///< index in the list
    int lPage = 0;     ///< zero-based, in its document
};

/// What became of it.
struct FinishedPage
{
    EncodedPage page;
    QString strReason;  ///< why its document failed
    bool bMade = false; ///< false without a reason for further pages of a document that has failed
};

/// Makes pages on all cores and hands them out in order. Each thread opens the documents for itself. Only a
/// few pages are made ahead, so that the memory does not grow with the fax.
class PagePipeline final
{
public:
    /// What is given has to outlive the object.
    PagePipeline(const QList<Document> &documents, const QList<PageTask> &tasks, const PageMaker &maker);
    PagePipeline(const PagePipeline &) = delete;
    PagePipeline &operator=(const PagePipeline &) = delete;
    /// Waits until pages that were begun are made.
    ~PagePipeline();

    /// The next page; what was not ready when `stop` is requested comes as not made.
    FinishedPage Take(const std::stop_token &stop);

private:
    /// What one thread has open.
    struct Reader
    {
        int lDocument = -1;
        std::unique_ptr<PageSource> source;
    };

    void Work(const std::stop_token &stop);
    int Claim(const std::stop_token &stop);
    FinishedPage Make(int number, Reader &reader);
    void Store(int number, FinishedPage page);
    bool HasFailed(int document);

    const QList<Document> &documents;
    const QList<PageTask> &tasks;
    const PageMaker &maker;

    std::mutex mutex; ///< guards what follows
    std::condition_variable_any changed;
    std::map<int, FinishedPage> finished;
    std::vector<bool> failedDocuments;
    int lClaimed = 0;
    int lTaken = 0;

    std::vector<std::jthread> threads; ///< last: they use all of the above
};
