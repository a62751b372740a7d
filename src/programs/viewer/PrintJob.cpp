#include "PrintJob.h"

#include "FaxDocument.h"
#include "FaxPdf.h"
#include "PrintService.h"
#include "SaveError.h"
#include "SheetPlace.h"
#include "TargetFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QPrintEngine>
#include <QPrinter>
#include <QTemporaryDir>

#include <algorithm>

namespace {

/// What the user chose in the toolkit's dialog of the print service's own options.
QStringList ChosenOptions(const QPrinter &printer)
{
    constexpr auto keptByDialog = QPrintEngine::PrintEnginePropertyKey(0xfe00);
    return printer.printEngine()->property(keptByDialog).toStringList();
}

/// Takes an option out of the list and gives its value.
QString TakeOption(QStringList &options, const QString &name)
{
    for (qsizetype at = 0; at + 1 < options.size(); at += 2) {
        if (options[at] != name)
            continue;
        options.removeAt(at);
        return options.takeAt(at);
    }
    return {};
}

bool IsInRange(const QPrinter &printer, int page, int currentPage)
{
    switch (printer.printRange()) {
    case QPrinter::PageRange:
        return printer.pageRanges().isEmpty() || printer.pageRanges().contains(page + 1);
    case QPrinter::CurrentPage:
        return page == currentPage;
    default:
        return true;
    }
}

/// `pageSet`: "odd", "even" or all pages, by their numbers in the fax.
QList<int> WantedPages(const QPrinter &printer, int count, int currentPage, const QString &pageSet)
{
    const int first = pageSet == QLatin1String("even") ? 1 : 0;
    const int step = pageSet == QLatin1String("even") || pageSet == QLatin1String("odd") ? 2 : 1;
    QList<int> pages;
    for (int page = first; page < count; page += step) {
        if (IsInRange(printer, page, currentPage))
            pages.append(page);
    }
    if (printer.pageOrder() == QPrinter::LastPageFirst)
        std::reverse(pages.begin(), pages.end());
    return pages;
}

/// A file has no printer that makes the copies.
QList<int> Repeat(const QList<int> &pages, int copies, bool collate)
{
    QList<int> repeated;
    for (int copy = 0; collate && copy < copies; ++copy)
        repeated += pages;
    for (const int page : collate ? QList<int>() : pages)
        repeated += QList<int>(copies, page);
    return repeated;
}

QString SidesOf(const QPrinter &printer)
{
    switch (printer.duplex()) {
    case QPrinter::DuplexAuto:
    case QPrinter::DuplexLongSide:
        return QStringLiteral("two-sided-long-edge");
    case QPrinter::DuplexShortSide:
        return QStringLiteral("two-sided-short-edge");
    default:
        return QStringLiteral("one-sided");
    }
}

QStringList PaperOptions(const QPrinter &printer)
{
    QStringList options{QStringLiteral("media"), printer.pageLayout().pageSize().key(),
                        QStringLiteral("sides"), SidesOf(printer)};
    if (printer.copyCount() > 1) {
        options << QStringLiteral("copies") << QString::number(printer.copyCount());
        options << QStringLiteral("Collate") << QVariant(printer.collateCopies()).toString();
    }
    return options;
}

/// Into a file each sheet goes as it is read; a printer's sheets all lie the same way.
PdfSheet SheetFor(const QSizeF &page, const QPageLayout &paper, bool mayTurn)
{
    PdfSheet sheet{paper.fullRect(QPageLayout::Inch).size(), paper.paintRect(QPageLayout::Inch)};
    if (!mayTurn || !SheetPlace::IsLargerTurned(page, sheet.printable.size()))
        return sheet;
    const QRectF &space = sheet.printable;
    return {sheet.size.transposed(), {space.y(), space.x(), space.height(), space.width()}};
}

void PrintIntoFile(const PrintJob &job, const FaxDocument &fax, const PageProgress &progress)
{
    TargetFile target(job.strFile);
    const auto sheetFor = [&](const QSizeF &page) { return SheetFor(page, job.layout, true); };
    WritePdf(target, fax, job.aPages, sheetFor, progress);
    target.Finish();
    target.Commit();
}

void PrintOnPaper(const PrintJob &job, const FaxDocument &fax, const PageProgress &progress)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("fax.pdf"));
    TargetFile file(path);
    const auto sheetFor = [&](const QSizeF &page) { return SheetFor(page, job.layout, false); };
    WritePdf(file, fax, job.aPages, sheetFor, progress);
    file.Finish();
    file.Commit();
    const QString problem = SendToPrinter(job.strPrinter, path, job.strTitle, job.aOptions);
    if (!problem.isEmpty())
        throw SaveError{
            QCoreApplication::translate("FaxPrinting", "The printer \"%1\" did not take the fax: %2.")
                .arg(job.strPrinter, problem)};
}

} // namespace

PrintJob PrintJob::From(QPrinter &printer, const FaxDocument &fax, int currentPage)
{
    // The dialog leaves the choice of pages to the service as well, which would choose a second time.
    QStringList chosen = ChosenOptions(printer);
    TakeOption(chosen, QStringLiteral("page-ranges"));
    const QString pageSet = TakeOption(chosen, QStringLiteral("page-set"));
    PrintJob job;
    job.strFile = printer.outputFileName();
    job.strPrinter = printer.printerName();
    job.strTitle = QFileInfo(fax.Path()).completeBaseName();
    job.layout = printer.pageLayout();
    job.layout.setOrientation(QPageLayout::Portrait); // each page is turned as it fits
    job.aPages = WantedPages(printer, fax.PageCount(), currentPage, pageSet);
    if (job.strFile.isEmpty())
        job.aOptions = PaperOptions(printer) + chosen;
    else
        job.aPages = Repeat(job.aPages, printer.copyCount(), printer.collateCopies());
    return job;
}

bool PrintJob::Run(const FaxDocument &fax, QString &problem, const PageProgress &progress) const
{
    problem.clear();
    try {
        strFile.isEmpty() ? PrintOnPaper(*this, fax, progress) : PrintIntoFile(*this, fax, progress);
        return true;
    } catch (const SaveError &error) {
        problem = error.strProblem;
        return false;
    }
}
