#include "PdfSource.h"

#include "ConversionError.h"

#include <QCoreApplication>
#include <QFile>

#include <cmath>
#include <string>

#include <poppler-document.h>
#include <poppler-page-renderer.h>
#include <poppler-page.h>

namespace {

constexpr double pointsPerInch = 72;

QString Translate(const char *text)
{
    return QCoreApplication::translate("PdfSource", text);
}

/// What is wrong in a file goes to no terminal: the user is told in a sentence, or the page shows it.
void KeepQuiet()
{
    static const bool once =
        (poppler::set_debug_error_function([](const std::string &, void *) {}, nullptr), true);
    Q_UNUSED(once)
}

std::unique_ptr<poppler::document> Open(const QString &path)
{
    KeepQuiet();
    if (!QFile(path).open(QIODevice::ReadOnly))
        throw ConversionError(Translate("The document cannot be opened."));
    std::unique_ptr<poppler::document> document(
        poppler::document::load_from_file(QFile::encodeName(path).toStdString()));
    if (!document)
        throw ConversionError(Translate("The document is damaged, or no PDF."));
    if (document->is_locked())
        throw ConversionError(Translate("The document is protected by a password."));
    if (document->pages() < 1)
        throw ConversionError(Translate("The document has no pages."));
    return document;
}

bool IsOnItsSide(const poppler::page &page)
{
    const auto orientation = page.orientation();
    return orientation == poppler::page::landscape || orientation == poppler::page::seascape;
}

poppler::rotation_enum ToRotation(int degrees)
{
    constexpr int quarter = 90, quarters = 4;
    return static_cast<poppler::rotation_enum>((degrees / quarter % quarters + quarters) % quarters);
}

} // namespace

PdfSource::PdfSource(const QString &path)
    : document(Open(path))
{
}

PdfSource::~PdfSource() = default;

int PdfSource::Count() const
{
    return document->pages();
}

const poppler::page &PdfSource::Page(int page)
{
    if (page != lLastPage) {
        lastPage.reset(document->create_page(page));
        lLastPage = page;
    }
    if (!lastPage)
        throw ConversionError(Translate("Page %1 is damaged.").arg(page + 1));
    return *lastPage;
}

QSizeF PdfSource::PageSize(int page)
{
    const poppler::page &shown = Page(page);
    const poppler::rectf box = shown.page_rect();
    const QSizeF size(std::abs(box.width()) / pointsPerInch, std::abs(box.height()) / pointsPerInch);
    return IsOnItsSide(shown) ? size.transposed() : size;
}

/// Letters and lines are drawn without soft edges, which a threshold would make bolder or thinner.
QImage PdfSource::Render(int page, const QSize &size, int rotation)
{
    const QSizeF paper = rotation % 180 == 0 ? PageSize(page) : PageSize(page).transposed();
    // A page without a height or width shows nothing, at any resolution.
    const double dotsPerInchX = paper.isEmpty() ? pointsPerInch : size.width() / paper.width();
    const double dotsPerInchY = paper.isEmpty() ? pointsPerInch : size.height() / paper.height();
    poppler::page_renderer renderer;
    renderer.set_image_format(poppler::image::format_gray8);
    auto image = std::make_unique<poppler::image>(renderer.render_page(
        &Page(page), dotsPerInchX, dotsPerInchY, 0, 0, size.width(), size.height(), ToRotation(rotation)));
    if (!image->is_valid() || image->width() != size.width() || image->height() != size.height())
        throw ConversionError(Translate("Page %1 cannot be drawn.").arg(page + 1));
    const auto *grays = reinterpret_cast<const uchar *>(image->const_data());
    const int rowBytes = image->bytes_per_row();
    return QImage(
        grays, size.width(), size.height(), rowBytes, QImage::Format_Grayscale8,
        [](void *shown) { delete static_cast<poppler::image *>(shown); }, image.release());
}

QImage PdfSource::FaxPage(int)
{
    return {};
}
