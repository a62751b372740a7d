#pragma once

#include <QImage>
#include <QRect>

/// Counts pixels of a part of a sheet (`Format_Grayscale8`) whose level is one from `darkest` to `lightest`,
/// as far as they may belong to letters: longer strokes are lines between the cells of a table, what is
/// around an area, or letters so large that they can be read on dots as well.
int CountLetterPixels(const QImage &gray, const QRect &part, int darkest, int lightest);
