#pragma once

#include <QImage>

/// Ink and paper: pictures of `Format_Mono` whose 1 is black.
namespace Monochrome {

/// A picture without ink.
QImage MakeBlank(const QSize &size);

/// Of a sheet: 204 dots per inch across, and so many down.
void SetResolution(QImage &sheet, int dotsPerInchY);
int DotsPerInchY(const QImage &sheet);

/// Makes ink of what is darker than the threshold (0 to 255) in a picture of `Format_Grayscale8`. Pure black
/// is always ink, also at a threshold of 0, and pure white never is.
QImage ByThreshold(const QImage &gray, int threshold);

} // namespace Monochrome
