#pragma once

#include "PageSource.h"

#include <QString>

/// A picture, or the pages of a picture file that holds several. Nothing is decoded before its size was
/// looked at.
class PictureSource final : public PageSource
{
public:
    /// Raises `ConversionError`.
    explicit PictureSource(const QString &path);

    int Count() const override { return 1; }
    QSizeF PageSize(int page) override;
    QImage Render(int page, const QSize &size, int rotation) override;
    QImage FaxPage(int page) override;

private:
    QImage picture;
};
