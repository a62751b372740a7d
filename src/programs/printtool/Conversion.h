#pragma once

#include "PageMaker.h"
#include "PagePipeline.h"
#include "PrepareDocuments.h"

#include <QList>
#include <QString>

#include <functional>
#include <stop_token>

/// One fax to make.
struct ConversionJob
{
    QList<Document> aDocuments; ///< in the order of the fax
    PageOptions options;
    QString strWorkFolder; ///< for files that are needed meanwhile only
    QString strPartFile;   ///< where the fax grows; in the folder of the output
    QString strOutput;     ///< full path of the fax file; one that exists is replaced in the end
};

/// What came of it. It succeeded when it has pages.
struct ConversionResult
{
    int lPages = 0;
    QList<FailedDocument> aFailed; ///< every document that cannot be faxed
    QString strReason;             ///< why there is no fax although no document failed: a sentence
    bool bStopped = false;         ///< on request
};

/// Makes one fax file of documents: has them prepared, makes their pages on all cores, and writes these in
/// order. The file gets its name only when it is whole; in every other case none is left.
class Conversion final
{
public:
    using Tell = std::function<void(const QString &status)>;

    Conversion(ConversionJob conversionJob, std::stop_token stopToken, Tell tellStatus);

    /// Raises nothing.
    ConversionResult Run();

private:
    void MakeFax();
    void ReservePlace() const;
    void CountPages();
    QList<PageTask> ListPages() const;
    void WritePages(const QList<PageTask> &tasks, FaxTiffWriter &writer);
    void TellPage(const PageTask &task) const;
    void NameFax(int pages) const;
    bool IsFailed() const { return !result.aFailed.isEmpty(); }

    ConversionJob job;
    std::stop_token stop;
    Tell tell;
    ConversionResult result;
    QList<int> aPageCounts; ///< of each document; 0 for one that failed
};
