#pragma once

#include "core/formats/HeaderProfile.h"

#include <QDateTime>
#include <QImage>
#include <QString>

/// What the macro words of a profile stand for on one page.
struct HeaderFields
{
    int lPage = 1; ///< from 1, of the whole fax
    int lPageCount = 1;
    QDateTime dateTime;
    QString strCompanyName;
    QString strRecipients;
};

/// Draws the header and the footer of a profile onto the pages of one resolution. Safe to use from several
/// threads.
class HeaderPainter final
{
public:
    HeaderPainter(const HeaderProfile &headerProfile, int dotsPerInchX, int dotsPerInchY);

    /// Rows from the page's edge that belong to the header or footer of that page (from 1); 0 when it has
    /// none.
    int HeaderHeight(int page) const;
    int FooterHeight(int page) const;
    /// Draws both onto a sheet of `Format_Mono` whose 1 is black. Rows outside of the two are not touched.
    void Paint(QImage &sheet, const HeaderFields &fields) const;
};
