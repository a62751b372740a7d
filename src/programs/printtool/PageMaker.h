#pragma once

#include "Document.h"
#include "SheetFormat.h"

#include <QDateTime>
#include <QImage>
#include <QString>

#include <memory>

class HeaderPainter;

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
    QImage Make(PageSource &source, const Document &document, int page, int faxPage, int faxPageCount) const;

private:
    PageOptions options;
};
