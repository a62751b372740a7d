#include "FaxExport.h"

#include "FaxDocument.h"
#include "FaxPdf.h"
#include "PageImages.h"
#include "SaveError.h"
#include "TargetFile.h"
#include "TiffWriter.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <numeric>
#include <optional>

namespace {

QString Tr(const char *text)
{
    return QCoreApplication::translate("FaxExport", text);
}

/// Raised before anything is touched.
void Check(const FaxDocument &fax, const QString &path)
{
    const QFileInfo source(fax.Path()), target(path);
    if (fax.PageCount() == 0)
        throw SaveError{fax.Problem()};
    if (!source.exists())
        RaiseUnreadable(fax, 0);
    if (target.exists() && target.canonicalFilePath() == source.canonicalFilePath())
        throw SaveError{Tr("A fax cannot be saved over itself. Please choose another name or folder.")};
}

void Tell(const PageProgress &progress, int pagesDone)
{
    if (progress && !progress(pagesDone))
        throw SaveError{};
}

/// Runs what writes the file, and turns what it raises into an answer.
template <typename Write>
bool Save(const FaxDocument &fax, const QString &path, QString &problem, Write write)
{
    problem.clear();
    try {
        Check(fax, path);
        TargetFile target(path);
        write(target);
        target.Commit();
        return true;
    } catch (const SaveError &error) {
        problem = error.strProblem;
        return false;
    }
}

bool IsUnturned(const FaxDocument &fax)
{
    for (int page = 0; page < fax.PageCount(); ++page) {
        if (fax.Rotation(page) != 0)
            return false;
    }
    return true;
}

void CopyFile(const FaxDocument &fax, TargetFile &target)
{
    if (FaxImage::CopyWithoutSizePrefix(fax.Path(), target.File()))
        return;
    if (target.HasFailed())
        target.RaiseFailure();
    RaiseUnreadable(fax, 0);
}

void WritePages(const FaxDocument &fax, TargetFile &target, const PageProgress &progress)
{
    TiffFile source(fax.Path());
    std::optional<TiffWriter> writer;
    for (int page = 0; page < fax.PageCount(); ++page) {
        const TiffHandle shown = source.ShowOnly(fax.Pages().Page(page)) ? OpenTiff(source) : nullptr;
        if (!shown)
            RaiseUnreadable(fax, page);
        if (!writer)
            writer.emplace(target.File(), shown.get());
        const bool written =
            fax.Rotation(page) == 0 && TiffWriter::CanCopy(shown.get())
                ? writer->CopyPage(shown.get())
                : writer->AddPage(PageImages::Load(fax, page), fax.PageSize(page), shown.get());
        if (!written)
            target.RaiseFailure();
        Tell(progress, page + 1);
    }
}

} // namespace

bool FaxExport::SaveTiff(const FaxDocument &fax, const QString &path, QString &problem,
                         const PageProgress &progress)
{
    return Save(fax, path, problem, [&](TargetFile &target) {
        if (IsUnturned(fax))
            CopyFile(fax, target);
        else
            WritePages(fax, target, progress);
        target.Finish();
        if (FaxImage::GetPageCount(target.File().fileName()) != fax.PageCount())
            RaiseUnreadable(fax, 0);
        Tell(progress, fax.PageCount());
    });
}

bool FaxExport::SavePdf(const FaxDocument &fax, const QString &path, QString &problem,
                        const PageProgress &progress)
{
    return Save(fax, path, problem, [&](TargetFile &target) {
        QList<int> pages(fax.PageCount());
        std::iota(pages.begin(), pages.end(), 0);
        const auto sheetFor = [](const QSizeF &page) { return PdfSheet{page, QRectF(QPointF(), page)}; };
        WritePdf(target, fax, pages, sheetFor, progress);
        target.Finish();
    });
}

QImage FaxExport::PageImage(const FaxDocument &fax, int page)
{
    return PageImages::MakeSquare(PageImages::FromBits(fax.LoadPage(page)), fax.PageSize(page));
}
