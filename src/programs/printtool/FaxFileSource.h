#pragma once

#include "PageSource.h"
#include "core/FaxImage.h"

/// The pages of a TIFF file that is a fax, or like one.
class FaxFileSource final : public PageSource
{
public:
    /// Raises `ConversionError` when the file cannot be read.
    explicit FaxFileSource(const QString &path);

    int Count() const override { return pages.Count(); }
    /// By the page's own resolution; that of a fax when it does not say.
    QSizeF PageSize(int page) override;
    QImage Render(int page, const QSize &size, int rotation) override;
    QImage FaxPage(int page) override;

private:
    PageBits Load(int page, int rotation) const;

    FaxPages pages;
};
