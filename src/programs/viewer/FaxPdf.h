#pragma once

#include "PageProgress.h"

#include <QList>
#include <QRectF>
#include <QSizeF>

#include <functional>

class FaxDocument;
class TargetFile;

/// A sheet for one page of a fax, in inches.
struct PdfSheet
{
    QSizeF size;
    QRectF printable;
};

/// Writes those pages of the fax as a PDF file, each on the sheet that `sheetFor` its size gives. Their
/// pixels go in as they are; one page is in memory at a time. Raises `SaveError`, also when `progress` says
/// no.
void WritePdf(TargetFile &target, const FaxDocument &fax, const QList<int> &pages,
              const std::function<PdfSheet(const QSizeF &)> &sheetFor, const PageProgress &progress);
