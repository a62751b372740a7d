#pragma once

#include "Document.h"
#include "SheetFormat.h"

#include <QRect>
#include <QSizeF>

/// Where a page lies on its sheet, in dots.
struct SheetLayout
{
    int lSheetHeight = 0;
    int lRotation = 0; ///< clockwise degrees by which the page is turned first
    QRect place;       ///< of the turned page; within the sheet
};

/// Lays a page of that size, in inches, on a sheet.
///
/// A page of a document keeps its real size, or is reduced to the sheet's width and to the longest sheet,
/// Legal (14 inches); it is never enlarged. Between Letter and Legal the sheet is as long as the page;
/// shorter pages stand on an A4 sheet. Turned pages stand with their top to the left.
SheetLayout LayDocumentPage(const QSizeF &size, const SheetFormat &format);

/// Lays a picture on an A4 sheet; one that is fitted to the width may have a longer sheet.
SheetLayout LayPicture(const QSizeF &size, Fitting fitting, const SheetFormat &format);
