#pragma once

#include <QImage>
#include <QSize>
#include <QSizeF>

/// The pages of one opened document. One thread uses an object; each thread opens its own.
class PageSource
{
public:
    virtual ~PageSource() = default;

    virtual int Count() const = 0;
    /// Size of the zero-based page on paper, in inches; an empty one when the document does not say.
    virtual QSizeF PageSize(int page) = 0;
    /// The page as `Format_Grayscale8` of that size in pixels, white where it has nothing, after it was
    /// turned by `rotation` degrees clockwise, a multiple of 90. Raises `ConversionError`.
    virtual QImage Render(int page, const QSize &size, int rotation) = 0;
    /// The page's own black and white pixels (`Format_Mono`, 1 is black, with its resolution) when it already
    /// is a page of a fax and shall stay as it is; a null image otherwise.
    virtual QImage FaxPage(int page) = 0;
};
