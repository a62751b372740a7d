#include "Conversion.h"

#include "ConversionError.h"
#include "FaxTiffWriter.h"
#include "StatusTexts.h"
#include "core/FaxImage.h"
#include "core/Utilities.h"

#include <QCoreApplication>
#include <QFile>
#include <QScopeGuard>

#include <cerrno>
#include <cstdio>
#include <exception>
#include <new>
#include <numeric>

namespace {

/// Unwinds a conversion that was asked to stop.
struct Stopped
{
};

void StopIfAsked(const std::stop_token &stop)
{
    if (stop.stop_requested())
        throw Stopped();
}

QString Translate(const char *text)
{
    return QCoreApplication::translate("printtool", text);
}

int PagesOf(const Document &document)
{
    const int pages = OpenDocument(document)->Count();
    if (pages < 1)
        throw ConversionError(Translate("It has no pages."));
    return pages;
}

} // namespace

Conversion::Conversion(ConversionJob conversionJob, std::stop_token stopToken, Tell tellStatus)
    : job(std::move(conversionJob))
    , stop(std::move(stopToken))
    , tell(std::move(tellStatus))
{
}

ConversionResult Conversion::Run()
{
    try {
        MakeFax();
    } catch (const Stopped &) {
        result.bStopped = true;
    } catch (const std::bad_alloc &) {
        result.strReason = Translate("There is not enough memory.");
    } catch (const std::exception &error) {
        result.strReason = QString::fromUtf8(error.what());
    }
    if (IsFailed() || result.bStopped || !result.strReason.isEmpty())
        result.lPages = 0;
    return result;
}

void Conversion::MakeFax()
{
    const auto cleanUp = qScopeGuard([this] { QFile::remove(job.strPartFile); });
    ReservePlace();
    PrepareDocuments(job.aDocuments, job.strWorkFolder, stop, tell, result.aFailed);
    StopIfAsked(stop);
    CountPages();
    // Whoever mends one document wants to know of the others as well, but not to wait for pages meanwhile.
    if (IsFailed())
        return;
    const QList<PageTask> tasks = ListPages();
    FaxTiffWriter writer(job.strPartFile, static_cast<int>(tasks.size()));
    WritePages(tasks, writer);
    StopIfAsked(stop);
    if (IsFailed())
        return;
    writer.Finish();
    NameFax(static_cast<int>(tasks.size()));
    result.lPages = static_cast<int>(tasks.size());
}

/// A folder that takes no file is better known before an hour's work than behind it.
void Conversion::ReservePlace() const
{
    QFile file(job.strPartFile);
    if (!file.open(QIODevice::WriteOnly))
        throw ConversionError(Translate("The folder \"%1\" takes no files: %2.")
                                  .arg(GetFolderOfPath(job.strOutput), file.errorString()));
}

void Conversion::CountPages()
{
    for (const Document &document : job.aDocuments) {
        StopIfAsked(stop);
        aPageCounts.append(0);
        if (document.strReadable.isEmpty()) // its preparation has failed
            continue;
        try {
            aPageCounts.last() = PagesOf(document);
        } catch (const ConversionError &error) {
            result.aFailed.append({document.Name(), error.Text()});
        }
    }
}

QList<PageTask> Conversion::ListPages() const
{
    const qint64 all = std::accumulate(aPageCounts.begin(), aPageCounts.end(), qint64(0));
    if (all > FaxTiffWriter::MostPages)
        throw ConversionError(Translate("The fax would have %1 pages; it may have %2 at most.")
                                  .arg(QString::number(all), QString::number(FaxTiffWriter::MostPages)));
    QList<PageTask> tasks;
    for (int document = 0; document < aPageCounts.size(); ++document)
        for (int page = 0; page < aPageCounts[document]; ++page)
            tasks.append({document, page});
    return tasks;
}

/// Goes on behind a document that fails: so all of them are found.
void Conversion::WritePages(const QList<PageTask> &tasks, FaxTiffWriter &writer)
{
    const PageMaker maker(job.options);
    PagePipeline pipeline(job.aDocuments, tasks, maker);
    int failed = -1; // pages of one document may fail in several threads at once
    for (const PageTask &task : tasks) {
        TellPage(task);
        const FinishedPage finished = pipeline.Take(stop);
        StopIfAsked(stop);
        if (!finished.strReason.isEmpty() && task.lDocument != failed) {
            failed = task.lDocument;
            result.aFailed.append({job.aDocuments[failed].Name(), finished.strReason});
        }
        if (!IsFailed())
            writer.Append(finished.page);
    }
}

void Conversion::TellPage(const PageTask &task) const
{
    tell(StatusTexts::ConvertingPage(job.aDocuments[task.lDocument], task.lPage + 1,
                                     aPageCounts[task.lDocument], task.lDocument + 1,
                                     static_cast<int>(job.aDocuments.size())));
}

void Conversion::NameFax(int pages) const
{
    if (FaxImage::GetPageCount(job.strPartFile) != pages)
        throw ConversionError(Translate("The fax file cannot be read back. The disk may be full."));
    StopIfAsked(stop);
    const QByteArray part = QFile::encodeName(job.strPartFile), output = QFile::encodeName(job.strOutput);
    if (std::rename(part.constData(), output.constData()) != 0)
        throw ConversionError(Translate("The fax file cannot get its name \"%1\": %2.")
                                  .arg(job.strOutput, qt_error_string(errno)));
    FlushToDisk(GetFolderOfPath(job.strOutput));
}
