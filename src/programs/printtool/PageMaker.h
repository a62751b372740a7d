#pragma once

#include "Document.h"
#include "SheetFormat.h"

#include <QDateTime>
#include <QImage>
#include <QString>

#include <memory>

class HeaderPainter;
struct RowSpan;
struct SheetLayout;

/// What holds for all pages of one fax.
struct PageOptions
{
    SheetFormat format;
    int lThreshold = 200; ///< what is darker, of 0 to 255, is black
    Fitting fitting = Fitting::Match;
    std::shared_ptr<const HeaderPainter> header; ///< of the format's resolution; none without header
    QString strCompanyName;
    QString strRecipients;
    QDateTime dateTime;
};

/// Makes sheets of a fax from pages of documents. Safe to use from several threads.
class PageMaker final
{
public:
    explicit PageMaker(PageOptions pageOptions);

    /// The zero-based page of the source as a sheet of `Format_Mono` whose 1 is black, with its resolution.
    /// `faxPage`, from 1, is its place in the whole fax. Raises `ConversionError`.
    ///
    /// A page of a ready fax file keeps its own pixels and resolution; other pages are drawn. Header and
    /// footer cover nothing: what reaches into them is moved, or drawn smaller where that does not do.
    QImage Make(PageSource &source, const Document &document, int page, int faxPage, int faxPageCount) const;

private:
    QImage MakeSheet(PageSource &source, const Document &document, int page, int faxPage) const;
    QImage MakeReady(PageSource &source, const QImage &ready, int page, int faxPage) const;
    RowSpan RoomOn(const QImage &sheet, int faxPage) const;
    template <typename Draw>
    QImage LeaveRoom(const QImage &sheet, const SheetLayout &layout, bool keepWidth, int faxPage,
                     const Draw &draw) const;
    void PaintHeader(QImage &sheet, int faxPage, int faxPageCount) const;

    PageOptions options;
};
