#pragma once

#include "core/ports/FontDialogs.h"

/// The desktop's font dialog, over the active window.
class DesktopFontDialogs final : public FontDialogs
{
public:
    std::optional<FontChoice> ChooseFont(const FontChoice &current) override;
};
