#pragma once

#include "core/FaxImage.h"

#include <QImage>
#include <QRect>
#include <QSize>

/// Turns parts of decoded pages into pictures. What is asked for decides how much memory and time it takes,
/// not the size of the page. A damaged page gives a null picture.
namespace PageScaler {

/// That part of the page, in its pixels, as it stands.
QImage Crop(const PageBits &page, const QRect &part);

/// That part of the page made smaller to `size`, in pixels of the smaller one. Each new pixel is the mean of
/// those it covers, so that thin strokes stay visible as grey. A side that grows repeats its pixels.
QImage Shrink(const PageBits &page, const QSize &size, const QRect &part);

} // namespace PageScaler
