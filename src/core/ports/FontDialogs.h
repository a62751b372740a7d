#pragma once

#include <QString>

#include <optional>

/// A font as the user chooses it.
struct FontChoice
{
    QString strName;
    double dSize = 0; ///< points
    bool bBold = false;
    bool bItalic = false;
    bool bUnderline = false;
    bool bStrikeOut = false;

    bool operator==(const FontChoice &) const = default;
};

class FontDialogs
{
public:
    virtual ~FontDialogs() = default;

    /// A modal choice that starts with `current`; nothing when the user has cancelled. A name that the system
    /// does not know stays as it is unless another one is chosen.
    virtual std::optional<FontChoice> ChooseFont(const FontChoice &current) = 0;
};
