#pragma once

#include "PageSource.h"
#include "PictureFile.h"

#include <QString>

/// A picture, or the pages of a picture file that holds several. Nothing is decoded before its size was
/// looked at, and each picture only when it is drawn.
class PictureSource final : public PageSource
{
public:
    /// Raises `ConversionError`.
    explicit PictureSource(const QString &path);

    int Count() const override { return file->Count(); }
    /// By the picture's own resolution, if that is a sane one; else by that of screens.
    QSizeF PageSize(int page) override;
    QImage Render(int page, const QSize &size, int rotation) override;
    QImage FaxPage(int) override { return {}; }

private:
    std::unique_ptr<PictureFile> file;
};
