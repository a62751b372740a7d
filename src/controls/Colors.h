#pragma once

#include <QColor>

class QPalette;

/// The contrast that large or bold text needs, and that of small text.
constexpr double dLargeContrast = 3.0;
constexpr double dSmallContrast = 4.5;

/// The wanted colour where it can be read on the background, or else the nearest lighter or darker one that
/// can.
QColor GetReadableColor(const QColor &wanted, const QColor &background, double contrast = dLargeContrast);

/// The same colour with hardly any hue, as light as before: text on it reads as well.
QColor GetQuietColor(const QColor &color);

/// For hints in an empty view. The palette's own placeholder colour is black on dark in some themes.
QColor GetHintColor(const QPalette &palette);
