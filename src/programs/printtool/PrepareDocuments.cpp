#include "PrepareDocuments.h"

#include "ConversionError.h"
#include "FileType.h"
#include "OfficeConverter.h"
#include "StatusTexts.h"

namespace {

/// The jobs of one request, each beside its document.
struct OfficeWork
{
    QList<OfficeJob> aJobs;
    QList<Document *> aDocuments;
};

void Prepare(Document &document, OfficeWork &work)
{
    const FileType type = DetectFileType(document.strPath, document.bReady);
    document.kind = type.kind;
    if (type.kind != Document::Office) {
        document.strReadable = document.strPath;
        return;
    }
    work.aJobs.append(
        {document.strPath, type.strEnding, StatusTexts::ShownName(document.Name()), {}, {}, {}});
    work.aDocuments.append(&document);
}

void TakeResults(const OfficeWork &work, QList<FailedDocument> &failed)
{
    for (qsizetype number = 0; number < work.aJobs.size(); ++number) {
        const OfficeJob &job = work.aJobs[number];
        work.aDocuments[number]->strReadable = job.strPdf;
        if (job.strPdf.isEmpty())
            failed.append({work.aDocuments[number]->Name(), job.strReason});
    }
}

} // namespace

void PrepareDocuments(QList<Document> &documents, const QString &workFolder, std::stop_token stop,
                      const std::function<void(const QString &)> &tell, QList<FailedDocument> &failed)
{
    OfficeWork work;
    for (Document &document : documents) {
        if (stop.stop_requested())
            return;
        try {
            Prepare(document, work);
        } catch (const ConversionError &error) {
            failed.append({document.Name(), error.Text()});
        }
    }
    if (work.aJobs.isEmpty())
        return;
    OfficeConverter(OfficeProgram::Find(), workFolder, stop, tell).Convert(work.aJobs);
    if (!stop.stop_requested())
        TakeResults(work, failed);
}
