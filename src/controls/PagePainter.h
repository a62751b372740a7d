#pragma once

#include "core/FaxImage.h"

#include <QImage>
#include <QRect>
#include <QSize>

class QPainter;

/// Draws a page at any size. A page made smaller is averaged, since thin strokes would get lost otherwise;
/// one made larger has hard or smooth pixels. What was made smaller is kept for the next drawing.
class PagePainter final
{
public:
    /// With `showBusy` the busy pointer shows while a large page is made smaller; for the thread of the event
    /// loop only.
    explicit PagePainter(bool showBusy)
        : bShowBusy(showBusy)
    {
    }

    /// Draws what is seen in `view` of a page that fills `place`, both in lengths of the painter.
    void Paint(QPainter &painter, const PageBits &page, const QRectF &place, const QRect &view,
               bool isSmooth);
    /// To be called when the page is another one.
    void Forget() { shrunk = {}; }

private:
    void PaintShrunk(QPainter &painter, const PageBits &page, const QRectF &place, const QRect &view);
    void ShrinkVisible(const PageBits &page, const QSize &deviceSize, const QRect &visible);

    bool bShowBusy;
    QImage shrunk;    ///< what was drawn of the page last, made smaller for its zoom
    QSize shrunkSize; ///< of the whole page at that zoom, in pixels of the screen
    QRect shrunkPart; ///< what `shrunk` is of it
};
