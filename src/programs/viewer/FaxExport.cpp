#include "FaxExport.h"

#include "FaxDocument.h"
#include "PageImages.h"
#include "TargetFile.h"
#include "TiffWriter.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>

#include <algorithm>
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
        throw SaveError{Tr("The fax is no longer there: its file was moved or deleted.")};
    if (target.exists() && target.canonicalFilePath() == source.canonicalFilePath())
        throw SaveError{Tr("A fax cannot be saved over itself. Please choose another name or folder.")};
}

[[noreturn]] void RaiseUnreadable(const FaxDocument &fax, int page)
{
    if (!QFileInfo::exists(fax.Path()))
        throw SaveError{Tr("The fax is no longer there: its file was moved or deleted.")};
    throw SaveError{Tr("Page %1 cannot be read: the file is damaged, or has changed.").arg(page + 1)};
}

QImage LoadImage(const FaxDocument &fax, int page)
{
    const QImage image = PageImages::FromBits(fax.LoadPage(page));
    if (image.isNull())
        RaiseUnreadable(fax, page);
    return image;
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
        const bool written = fax.Rotation(page) == 0 && TiffWriter::CanCopy(shown.get())
                                 ? writer->CopyPage(shown.get())
                                 : writer->AddPage(LoadImage(fax, page), fax.PageSize(page), shown.get());
        if (!written)
            target.RaiseFailure();
        Tell(progress, page + 1);
    }
}

/// Largest and smallest side of a page that readers of PDF files take, in inches.
constexpr double widestSheet = 200, smallestSheet = 0.05;

QPageLayout SheetOf(const QSizeF &inches)
{
    const QSizeF size =
        inches.boundedTo({widestSheet, widestSheet}).expandedTo({smallestSheet, smallestSheet});
    const QPageSize sheet(size, QPageSize::Inch, QString(), QPageSize::ExactMatch);
    return QPageLayout(sheet, QPageLayout::Portrait, {});
}

void WritePdf(const FaxDocument &fax, TargetFile &target, const PageProgress &progress)
{
    QPdfWriter writer(&target.File());
    writer.setTitle(QFileInfo(fax.Path()).completeBaseName());
    writer.setCreator(QCoreApplication::applicationName());
    QPainter painter;
    for (int page = 0; page < fax.PageCount(); ++page) {
        const QImage image = LoadImage(fax, page);
        writer.setPageLayout(SheetOf(fax.PageSize(page)));
        if (page == 0 ? !painter.begin(&writer) : !writer.newPage())
            target.RaiseFailure();
        painter.setRenderHint(QPainter::LosslessImageRendering);
        painter.drawImage(QRectF(0, 0, writer.width(), writer.height()), image);
        if (target.HasFailed())
            target.RaiseFailure();
        Tell(progress, page + 1);
    }
    painter.end();
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
        WritePdf(fax, target, progress);
        target.Finish();
    });
}

QImage FaxExport::PageImage(const FaxDocument &fax, int page)
{
    return PageImages::MakeSquare(PageImages::FromBits(fax.LoadPage(page)), fax.PageSize(page));
}
