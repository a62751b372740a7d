#pragma once

#include <QString>

#include <array>

/// One text of a header or footer line, with its font.
struct HeaderText
{
    QString strText; ///< with its macro words
    QString strFontName = QStringLiteral("Courier New");
    double dFontSize = 8.25; ///< points
    bool bBold = false;
    bool bItalic = false;
    bool bUnderline = false;
    bool bStrikeOut = false;
    int lCharset = 0;

    bool operator==(const HeaderText &) const = default;
};

/// Distances of a header or footer, in tenths of a millimetre.
struct HeaderSpace
{
    int lLeftMargin = 50;
    int lRightMargin = 50;
    int lTopMargin = 50;
    int lLineSpace = 50;

    bool operator==(const HeaderSpace &) const = default;
};

/// A header and footer profile, kept in a `.GNI` file: an INI file of ANSI text.
struct HeaderProfile
{
    /// In the order of the file's sections: header left, middle, right of line 1, then of line 2, then the
    /// same of the footer.
    std::array<HeaderText, 12> aTexts;
    HeaderSpace headerSpace;
    HeaderSpace footerSpace;
    bool bOnlyFirstHeader = false;
    bool bOnlyFirstFooter = false;

    bool operator==(const HeaderProfile &) const = default;
};
