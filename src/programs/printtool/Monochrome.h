#pragma once

#include <QImage>

/// Ink and paper: sheets of `Format_Mono` whose 1 is black, at 204 dots per inch across.
namespace Monochrome {

/// A sheet without ink, as wide as a fax.
QImage MakeBlank(int height, int dotsPerInchY);

void SetResolution(QImage &sheet, int dotsPerInchY);
int DotsPerInchY(const QImage &sheet);

/// A picture from rows of bits, the highest one first.
QImage FromBits(const void *bits, qsizetype rowBytes, const QSize &size, bool oneIsBlack);

/// Makes ink of what is darker than the threshold (0 to 255) in a sheet of `Format_Grayscale8`. Pure black
/// is always ink, also at a threshold of 0, and pure white never is.
QImage ByThreshold(const QImage &gray, int threshold, int dotsPerInchY);

/// The same, but photographs and gray areas become dots, as dense as they are dark (error diffusion after
/// Floyd and Steinberg, each row in the other direction), and light letters and lines stay visible.
QImage WithTones(const QImage &gray, int threshold, int dotsPerInchY);

} // namespace Monochrome
