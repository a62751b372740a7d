#include "FaxPdf.h"

#include "FaxDocument.h"
#include "PageImages.h"
#include "SaveError.h"
#include "SheetPlace.h"
#include "TargetFile.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>

namespace {

/// Sides that readers of PDF files take, in inches.
constexpr double widestSheet = 200, smallestSheet = 0.05;

QPageLayout LayoutOf(const QSizeF &inches)
{
    const QSizeF size =
        inches.boundedTo({widestSheet, widestSheet}).expandedTo({smallestSheet, smallestSheet});
    const QPageSize sheet(size, QPageSize::Inch, QString(), QPageSize::ExactMatch);
    return QPageLayout(sheet, QPageLayout::Portrait, {});
}

} // namespace

void WritePdf(TargetFile &target, const FaxDocument &fax, const QList<int> &pages,
              const std::function<PdfSheet(const QSizeF &)> &sheetFor, const PageProgress &progress)
{
    QPdfWriter writer(&target.File());
    writer.setTitle(QFileInfo(fax.Path()).completeBaseName());
    writer.setCreator(QGuiApplication::applicationDisplayName());
    QPainter painter;
    int pagesDone = 0;
    for (const int page : pages) {
        const QImage image = PageImages::Load(fax, page);
        const PdfSheet sheet = sheetFor(fax.PageSize(page));
        writer.setPageLayout(LayoutOf(sheet.size));
        if (pagesDone == 0 ? !painter.begin(&writer) : !writer.newPage())
            target.RaiseFailure();
        SheetPlace::Find(fax.PageSize(page), sheet.printable).Draw(painter, image, writer.resolution());
        if (target.HasFailed())
            target.RaiseFailure();
        ++pagesDone;
        if (progress && !progress(pagesDone))
            throw SaveError{};
    }
}
