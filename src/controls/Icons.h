#pragma once

#include <QIcon>
#include <QString>

/// The program's icons. They are drawn in the text colour of the palette, so that they read on light and
/// dark.
namespace Icons {

/// The icon of an image key, such as "imgReceived"; a null icon for an unknown or empty one.
QIcon Get(const QString &imageKey);
/// The same for an item of a menu, which must be readable on the highlight.
QIcon GetForMenu(const QString &imageKey);

} // namespace Icons
