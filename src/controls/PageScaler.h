#pragma once

#include "core/FaxImage.h"

#include <QImage>
#include <QSize>

/// Turns decoded pages into pictures.
namespace PageScaler {

/// The page as it stands; it shares no memory with `page`. A null image for an empty or damaged page.
QImage ToImage(const PageBits &page);

/// The page made smaller, each new pixel the mean of those it covers, so that thin strokes stay visible as
/// grey. `size` has at least one pixel in each direction; a side that grows repeats its pixels.
QImage Shrink(const PageBits &page, const QSize &size);

} // namespace PageScaler
