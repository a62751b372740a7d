#pragma once

#include "PageProgress.h"

#include <QList>
#include <QPageLayout>
#include <QString>
#include <QStringList>

class FaxDocument;
class QPrinter;

/// What the user asked for in the print dialog. It knows no printer object, so that it can go to another
/// thread.
struct PrintJob
{
    QString strFile;    ///< a PDF file to print into; empty for a printer
    QString strPrinter; ///< as the print service names it
    QString strTitle;
    QPageLayout layout;
    QList<int> aPages;    ///< zero-based, in the order of printing
    QStringList aOptions; ///< of the print service, names and values in turn

    static PrintJob From(QPrinter &printer, const FaxDocument &fax, int currentPage);

    /// Prints. False with a sentence for the user in `problem`, which is empty after a cancel. Nothing is
    /// handed over to a printer before all pages are ready.
    bool Run(const FaxDocument &fax, QString &problem, const PageProgress &progress) const;
};
