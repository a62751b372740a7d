#pragma once

#include <QImage>

class FaxDocument;
struct PageBits;

/// Pictures of decoded pages with the pixels that the page has; they share nothing with it.
namespace PageImages {

/// Black and white becomes `Format_Mono` with black as colour 0, which PDF files take without loss.
QImage FromBits(const PageBits &page);

/// The zero-based page, turned as shown. Raises `SaveError`.
QImage Load(const FaxDocument &fax, int page);

/// The page in square pixels: the side with fewer dots per inch is stretched. `size` is its size on paper.
QImage MakeSquare(const QImage &page, const QSizeF &size);

} // namespace PageImages
