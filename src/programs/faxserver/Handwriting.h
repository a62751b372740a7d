#pragma once

#include <QString>

class QPainter;
class QRandomGenerator;

/// A hand that writes in strokes, never twice quite the same.
namespace Handwriting {

/// Writes one line with its baseline at `y`, letters without ascenders `size` high; returns where it ends.
/// `pen` is the width of the stroke.
int Write(QPainter &painter, QRandomGenerator &hand, int x, int y, int size, const QString &text,
          int pen = 5);

} // namespace Handwriting
