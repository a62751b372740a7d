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
    QRect place;       ///< of the whole turned page; what lies outside of the sheet is not shown

    bool operator==(const SheetLayout &) const = default;
};

/// Rows of a sheet: from the first one on, up to before the last one.
struct RowSpan
{
    int lFirst = 0;
    int lEnd = 0;

    int Height() const { return lEnd - lFirst; }
    bool Contains(const RowSpan &other) const { return other.lFirst >= lFirst && other.lEnd <= lEnd; }
};

/// Lays a page of a document, of that size in inches, on a sheet.
///
/// It keeps its real size, or is reduced to the width of the sheet and to the longest sheet, Legal (14
/// inches); it is never enlarged. A page that shows larger on its side is turned, its top to the left. From
/// Letter to Legal the sheet is as long as the page; shorter pages stand at the top of an A4 sheet. A page
/// without a size fills an A4 sheet.
SheetLayout LayDocumentPage(const QSizeF &size, const SheetFormat &format);

/// Lays a picture, of that size in inches, on an A4 sheet.
///
/// `Match` shows it whole and as large as it can be, turned if need be; `Stretch` fills the sheet; `Width`
/// fills the width, on a longer sheet up to Legal if need be, beyond which it is reduced; `Height` fills the
/// height unless it becomes too wide; `Original` keeps its size, or is reduced to the sheet, turned if need
/// be.
SheetLayout LayPicture(const QSizeF &size, Fitting fitting, const SheetFormat &format);

/// Takes the page out of the header and footer, when its ink reaches into them: moved where its own margin
/// gives way, or else made smaller until its ink fits into `room`. A stretched picture keeps its width.
SheetLayout FitInk(const SheetLayout &layout, const RowSpan &ink, const RowSpan &room, bool keepWidth);
