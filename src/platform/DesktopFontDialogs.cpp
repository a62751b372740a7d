#include "platform/DesktopFontDialogs.h"

#include "platform/DialogPlace.h"

#include <QFontDialog>
#include <QFontInfo>

namespace {

QFont ToFont(const FontChoice &choice)
{
    QFont font(choice.strName);
    if (choice.dSize > 0)
        font.setPointSizeF(choice.dSize);
    font.setBold(choice.bBold);
    font.setItalic(choice.bItalic);
    font.setUnderline(choice.bUnderline);
    font.setStrikeOut(choice.bStrikeOut);
    return font;
}

FontChoice ToChoice(const QFont &font)
{
    return {font.family(), font.pointSizeF(), font.bold(), font.italic(), font.underline(), font.strikeOut()};
}

} // namespace

std::optional<FontChoice> DesktopFontDialogs::ChooseFont(const FontChoice &current)
{
    QFont font = ToFont(current);
    font.setFamily(QFontInfo(font).family()); // of an unknown font the dialog would show another style, too
    QFontDialog dialog(font, nullptr);
    const FontChoice shown = ToChoice(dialog.currentFont());
    PlaceOverActiveWindow(dialog);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    FontChoice chosen = ToChoice(dialog.selectedFont());
    if (chosen.strName == shown.strName) // the one that stands in for a font that is missing
        chosen.strName = current.strName;
    if (chosen.dSize == shown.dSize) // whole points are shown
        chosen.dSize = current.dSize;
    return chosen;
}
