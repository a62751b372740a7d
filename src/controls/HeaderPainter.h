#pragma once

#include "core/formats/HeaderProfile.h"

#include <QDateTime>
#include <QImage>
#include <QList>
#include <QString>

#include <array>
#include <span>

/// What the macro words of a profile stand for on one page.
struct HeaderFields
{
    int lPage = 1; ///< from 1, of the whole fax
    int lPageCount = 1;
    QDateTime dateTime;
    QString strCompanyName;
    QString strRecipients;
};

/// Draws the header and the footer of a profile onto the pages of one resolution. Needs a GUI application for
/// its fonts. Safe to use from several threads.
class HeaderPainter final
{
public:
    HeaderPainter(const HeaderProfile &headerProfile, int dotsPerInchX, int dotsPerInchY);

    /// Rows from the page's edge that belong to the header or footer of that page (from 1); 0 when it has
    /// none.
    int HeaderHeight(int page) const { return page > 1 && bOnlyFirstHeader ? 0 : header.lHeight; }
    int FooterHeight(int page) const { return page > 1 && bOnlyFirstFooter ? 0 : footer.lHeight; }
    /// Draws both onto a sheet of `Format_Mono` whose 1 is black. Rows outside of the two are not touched.
    void Paint(QImage &sheet, const HeaderFields &fields) const;

private:
    using Texts = std::array<HeaderText, 3>; ///< left, middle, right

    struct Line
    {
        Texts aTexts;
        int lTop = 0; ///< rows from the upper edge of its block
        int lAscent = 0;
        int lHeight = 0;
    };
    /// A header or a footer.
    struct Block
    {
        QList<Line> aLines;
        int lHeight = 0;
        int lLeft = 0, lRight = 0; ///< margins
    };

    Line MakeLine(std::span<const HeaderText, 3> texts) const;
    Block MakeBlock(std::span<const HeaderText, 6> texts, const HeaderSpace &space, bool isFooter) const;
    void PaintBlock(QImage &sheet, const Block &block, int top, const HeaderFields &fields) const;
    void DrawLine(QImage &grays, const Block &block, const Line &line, const HeaderFields &fields) const;

    int lDotsPerInchX, lDotsPerInchY;
    Block header, footer;
    bool bOnlyFirstHeader, bOnlyFirstFooter;
};
