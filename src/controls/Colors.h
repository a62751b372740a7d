#pragma once

#include <QColor>

/// The wanted colour where it can be read on the background, or else the nearest lighter or darker one that
/// can.
QColor GetReadableColor(const QColor &wanted, const QColor &background);
