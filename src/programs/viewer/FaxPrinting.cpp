#include "FaxPrinting.h"

#include "FaxDocument.h"
#include "PreviewPages.h"
#include "PrintJob.h"
#include "PrinterSearch.h"
#include "ProgressRun.h"
#include "SaveError.h"
#include "SheetPlace.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QMessageBox>
#include <QPaintEngine>
#include <QPainter>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QPushButton>

#include <memory>

namespace {

QString Tr(const char *text)
{
    return QCoreApplication::translate("FaxPrinting", text);
}

void Warn(QWidget *parent, const QString &problem)
{
    QMessageBox box(QMessageBox::Warning, Tr("Print"), problem, QMessageBox::Ok, parent);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

bool WantsFile(QWidget *parent)
{
    QMessageBox box(QMessageBox::Question, Tr("Print"),
                    Tr("No printer is set up on this computer. The fax can be printed into a PDF file."),
                    QMessageBox::Cancel, parent);
    const QPushButton *intoFile = box.addButton(Tr("Print into a File..."), QMessageBox::AcceptRole);
    box.exec();
    return box.clickedButton() == intoFile;
}

/// True when the toolkit can be asked to print.
bool MayPrint(QWidget *parent)
{
    switch (LookForPrinters(parent)) {
    case PrinterSearch::Found:
        return true;
    case PrinterSearch::NoPrinter:
        return WantsFile(parent);
    case PrinterSearch::NoAnswer:
        Warn(parent, Tr("The print service of this computer does not answer. Please try again later, or save "
                        "the fax as a PDF file."));
        return false;
    default:
        return false;
    }
}

/// Most pages of a fax lie one way; so does the paper then.
QPageLayout::Orientation UsualOrientation(const FaxDocument &fax)
{
    int wide = 0;
    for (int page = 0; page < fax.PageCount(); ++page)
        wide += fax.PageSize(page).width() > fax.PageSize(page).height() ? 1 : 0;
    return 2 * wide > fax.PageCount() ? QPageLayout::Landscape : QPageLayout::Portrait;
}

std::unique_ptr<QPrinter> MakePrinter(const FaxDocument &fax)
{
    auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
    printer->setDocName(QFileInfo(fax.Path()).completeBaseName());
    QPageLayout layout = printer->pageLayout();
    layout.setOrientation(UsualOrientation(fax));
    layout.setMargins(layout.minimumMargins()); // a page of a fax is as large as the paper
    printer->setPageLayout(layout);
    // Without these bounds the dialog refuses every list of pages.
    printer->setFromTo(1, fax.PageCount());
    printer->setPrintRange(QPrinter::AllPages);
    return printer;
}

void Run(const PrintJob &job, const std::shared_ptr<const FaxDocument> &fax, QWidget *parent)
{
    const auto problem = std::make_shared<QString>();
    const bool ended =
        RunWithProgress(parent, Tr("Printing..."), static_cast<int>(job.aPages.size()),
                        [=](const PageProgress &progress) { job.Run(*fax, *problem, progress); });
    if (!ended)
        Warn(parent, Tr("The print service does not answer. Perhaps the fax was not printed."));
    else if (!problem->isEmpty())
        Warn(parent, *problem);
}

/// None when a page cannot be read, which is told, or after a cancel.
QList<QImage> LoadPreview(const std::shared_ptr<const FaxDocument> &fax, QWidget *parent)
{
    const PreviewPages preview(*fax);
    const auto images = std::make_shared<QList<QImage>>();
    const auto problem = std::make_shared<QString>();
    const auto load = [=](const PageProgress &progress) {
        try {
            *images = preview.Load(*fax, progress);
        } catch (const SaveError &error) {
            *problem = error.strProblem;
        }
    };
    if (!RunWithProgress(parent, Tr("Preparing the preview..."), preview.Count(), load))
        return {};
    if (!problem->isEmpty())
        Warn(parent, *problem);
    return *images;
}

void PaintPreview(const FaxDocument &fax, const QList<QImage> &images, QPrinter &printer)
{
    QPainter painter(&printer);
    const QRectF printable(QPointF(), printer.pageLayout().paintRect(QPageLayout::Inch).size());
    for (int page = 0; page < images.size(); ++page) {
        if (page > 0)
            printer.newPage();
        SheetPlace::Find(fax.PageSize(page), printable).Draw(painter, images[page], printer.resolution());
    }
}

QString PreviewTitle(const FaxDocument &fax, qsizetype shown)
{
    const QString name = QFileInfo(fax.Path()).fileName();
    if (shown == fax.PageCount())
        return Tr("Print Preview of %1").arg(name);
    return Tr("Print Preview of %1 (the First %2 of %3 Pages)")
        .arg(name, QString::number(shown), QString::number(fax.PageCount()));
}

/// The toolkit paints once its window stands, and again whenever the paper changes.
void ShowPageOnce(QPrintPreviewDialog &dialog, int page)
{
    auto *sheets = dialog.findChild<QPrintPreviewWidget *>();
    const auto showPage = [sheets, page] {
        sheets->setCurrentPage(page + 1);
        emit sheets->previewChanged(); // the window's page number follows only this signal
    };
    QObject::connect(sheets, &QPrintPreviewWidget::previewChanged, sheets, showPage,
                     static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
}

} // namespace

void FaxPrinting::Print(FaxDocument &fax, QWidget *parent, int currentPage)
{
    if (!MayPrint(parent))
        return;
    const std::shared_ptr<const FaxDocument> shown = fax.Copy();
    const std::unique_ptr<QPrinter> printer = MakePrinter(*shown);
    QPrintDialog dialog(printer.get(), parent);
    dialog.setOption(QAbstractPrintDialog::PrintCurrentPage);
    dialog.setMinMax(1, shown->PageCount());
    if (dialog.exec() == QDialog::Accepted)
        Run(PrintJob::From(*printer, *shown, currentPage), shown, parent);
}

void FaxPrinting::Preview(FaxDocument &fax, QWidget *parent, int currentPage)
{
    if (!MayPrint(parent))
        return;
    const std::shared_ptr<const FaxDocument> shown = fax.Copy();
    const QList<QImage> images = LoadPreview(shown, parent);
    if (images.isEmpty())
        return;
    const std::unique_ptr<QPrinter> printer = MakePrinter(*shown);
    QPrintPreviewDialog dialog(printer.get(), parent);
    dialog.setWindowTitle(PreviewTitle(*shown, images.size()));
    dialog.resize(parent->size());
    ShowPageOnce(dialog, currentPage);
    QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog, [&, shown](QPrinter *sheets) {
        // The same signal asks for the preview and, from the window's "Print" button, for the job.
        if (sheets->paintEngine()->type() == QPaintEngine::Picture)
            PaintPreview(*shown, images, *sheets);
        else
            Run(PrintJob::From(*sheets, *shown, currentPage), shown, &dialog);
    });
    dialog.exec();
}
