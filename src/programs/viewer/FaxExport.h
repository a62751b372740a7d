#pragma once

#include "PageProgress.h"

#include <QImage>
#include <QString>

class FaxDocument;

/// A fax as another file or picture, its pages turned as shown. The source is never changed. These routines
/// take their time; `FaxSaving` calls them off the event loop's thread.
namespace FaxExport {

/// Writes the fax as a TIFF file; a file of that name is replaced once the new one is complete. Pages that
/// were not turned keep their coded bytes; the others are packed anew without loss (black and white as Group
/// 4 of ITU-T T.6). False with a sentence for the user in `problem`, and no file, when that failed; the
/// sentence is empty after a cancel.
bool SaveTiff(const FaxDocument &fax, const QString &path, QString &problem,
              const PageProgress &progress = {});

/// The same as a PDF file: one page of the true paper size for each page of the fax, its pixels unchanged.
bool SavePdf(const FaxDocument &fax, const QString &path, QString &problem,
             const PageProgress &progress = {});

/// The zero-based page in square pixels, so that programs which know no resolution show it in its true
/// proportions; a null image when it can no longer be read.
QImage PageImage(const FaxDocument &fax, int page);

} // namespace FaxExport
