#pragma once

#include <QLatin1StringView>
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

/// Distances of a header or footer, in tenths of a millimetre, 0 to 1000.
struct HeaderSpace
{
    int lLeftMargin = 50;  ///< from the left edge of the page to the left texts
    int lRightMargin = 50; ///< from the right edge to the end of the right texts
    /// From the edge of the page to the text next to it: the upper edge for a header, the lower for a footer.
    int lTopMargin = 50;
    /// The height of a line's row. A header's text stands at the top of its row, a footer's at the bottom:
    /// the rest parts it from the next line or from the page's content. A larger text makes its row larger.
    int lLineSpace = 50;

    bool operator==(const HeaderSpace &) const = default;
};

/// A header and footer profile: up to two lines at the top and at the bottom of each page, each with a left,
/// a middle and a right text. It is kept in a `.GNI` file, an INI file of ANSI text: a section for each text,
/// "HeaderSpace" and "FooterSpace" for the distances, and "Options".
///
/// Macro words in a text: "[Page]", "[PageCount]", "[Date]", "[Time]", "[CompanyName]", "[Recipients]". A
/// line without any text takes no room.
struct HeaderProfile
{
    /// In the order of `headerSections`.
    std::array<HeaderText, 12> aTexts;
    HeaderSpace headerSpace;
    HeaderSpace footerSpace;
    bool bOnlyFirstHeader = false;
    bool bOnlyFirstFooter = false;

    bool operator==(const HeaderProfile &) const = default;
};

/// The sections of the texts, in the file's order.
inline constexpr std::array<QLatin1StringView, 12> headerSections{
    QLatin1StringView("HeaderLeft_1"),   QLatin1StringView("HeaderMiddle_1"),
    QLatin1StringView("HeaderRight_1"),  QLatin1StringView("HeaderLeft_2"),
    QLatin1StringView("HeaderMiddle_2"), QLatin1StringView("HeaderRight_2"),
    QLatin1StringView("FooterLeft_1"),   QLatin1StringView("FooterMiddle_1"),
    QLatin1StringView("FooterRight_1"),  QLatin1StringView("FooterLeft_2"),
    QLatin1StringView("FooterMiddle_2"), QLatin1StringView("FooterRight_2"),
};

/// The words that stand for something else on each page.
inline constexpr std::array<QLatin1StringView, 6> headerMacros{
    QLatin1StringView("[Page]"), QLatin1StringView("[PageCount]"),   QLatin1StringView("[Date]"),
    QLatin1StringView("[Time]"), QLatin1StringView("[CompanyName]"), QLatin1StringView("[Recipients]"),
};

/// What a profile has at most, whatever its file says: points and tenths of a millimetre.
inline constexpr int largestHeaderFont = 200, largestHeaderDistance = 1000;

/// Reads a profile file. What is missing gets its default, what is out of bounds the nearest bound, and a
/// file that is no profile, or cannot be read, gives a profile without texts. Sizes are rounded to whole
/// points, but for the default.
HeaderProfile ReadHeaderProfile(const QString &path);
/// Writes a profile file anew, in one step; false when that failed, and what was there stays. A text has one
/// line, and what the code page lacks becomes "?". Longer texts than 254 characters are cut when read back.
bool WriteHeaderProfile(const QString &path, const HeaderProfile &profile);
/// What reading gives of the profile once it has been written.
HeaderProfile AsReadBack(const HeaderProfile &profile);
