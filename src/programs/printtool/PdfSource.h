#pragma once

#include "PageSource.h"

#include <QString>

#include <memory>

namespace poppler {
class document;
class page;
} // namespace poppler

/// The pages of a PDF document, of what their crop boxes show.
class PdfSource final : public PageSource
{
public:
    /// Raises `ConversionError` when the file cannot be read, is none, has no pages, or asks for a password.
    explicit PdfSource(const QString &path);
    ~PdfSource() override;

    int Count() const override;
    QSizeF PageSize(int page) override;
    QImage Render(int page, const QSize &size, int rotation) override;
    QImage FaxPage(int page) override;

private:
    const poppler::page &Page(int page);

    std::unique_ptr<poppler::document> document;
    std::unique_ptr<poppler::page> lastPage;
    int lLastPage = -1;
};
