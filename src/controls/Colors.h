#pragma once

#include <QColor>

class QPalette;

/// The wanted colour where it can be read on the background, or else the nearest lighter or darker one that
/// can.
QColor GetReadableColor(const QColor &wanted, const QColor &background);

/// The same colour with hardly any hue, as light as before: text on it reads as well.
QColor GetQuietColor(const QColor &color);

/// For hints in an empty view. The palette's own placeholder colour is black on dark in some themes.
QColor GetHintColor(const QPalette &palette);
