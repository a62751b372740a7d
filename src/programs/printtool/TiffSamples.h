#pragma once

#include <QImage>
#include <QSize>

struct tiff;

/// TIFF pages whose samples are wider than common, as cameras, scanners of films and measuring devices write
/// them.
namespace TiffSamples {

/// The current page in `Format_Grayscale8`: samples of 2 to 32 bits, or floating point numbers, of which 0 is
/// black and the largest one white. Null when it has another form or is damaged.
QImage ReadGray(tiff *page, const QSize &size);

} // namespace TiffSamples
