#include "FaxPrinting.h"

#include "FaxDocument.h"
#include "PageImages.h"
#include "SheetPlace.h"

#include <QFileInfo>
#include <QPainter>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>

namespace {

void PaintPages(const FaxDocument &fax, QPrinter &printer)
{
    QPainter painter(&printer);
    const QRectF printable(QPointF(), printer.pageLayout().paintRect(QPageLayout::Inch).size());
    for (int page = 0; page < fax.PageCount(); ++page) {
        if (page > 0)
            printer.newPage();
        SheetPlace::Find(fax.PageSize(page), printable)
            .Draw(painter, PageImages::FromBits(fax.LoadPage(page)), printer.resolution());
    }
}

} // namespace

void FaxPrinting::Print(FaxDocument &fax, QWidget *parent, int)
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(QFileInfo(fax.Path()).completeBaseName());
    QPrintDialog dialog(&printer, parent);
    if (dialog.exec() == QDialog::Accepted)
        PaintPages(fax, printer);
}

void FaxPrinting::Preview(FaxDocument &fax, QWidget *parent, int)
{
    QPrinter printer(QPrinter::HighResolution);
    QPrintPreviewDialog dialog(&printer, parent);
    QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog,
                     [&fax](QPrinter *sheets) { PaintPages(fax, *sheets); });
    dialog.exec();
}
