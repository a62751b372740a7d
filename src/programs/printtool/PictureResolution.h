#pragma once

#include <QSizeF>
#include <QString>

/// Dots per inch as PNG (chunk pHYs), JPEG (JFIF) and BMP files name them, without decoding the picture.
namespace PictureResolution {

/// Empty when the file does not say.
QSizeF Read(const QString &path);

} // namespace PictureResolution
