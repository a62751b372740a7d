#include "PreviewPages.h"

#include "FaxDocument.h"
#include "SaveError.h"
#include "controls/PageScaler.h"

#include <algorithm>
#include <cmath>

namespace {

/// The toolkit adds four bytes to the one that we keep of each pixel.
constexpr double mostBytes = 384 * 1024 * 1024, bytesPerPixel = 5;

/// The more pages, the coarser, down to what still shows how they lie on the paper.
constexpr double coarsest = 50, finest = 100;

double SquareInches(const FaxDocument &fax, int page)
{
    return fax.PageSize(page).width() * fax.PageSize(page).height();
}

int ResolutionFor(const FaxDocument &fax)
{
    double area = 0;
    for (int page = 0; page < fax.PageCount(); ++page)
        area += SquareInches(fax, page);
    return static_cast<int>(std::clamp(std::sqrt(mostBytes / bytesPerPixel / area), coarsest, finest));
}

QImage LoadPage(const FaxDocument &fax, int page, int dotsPerInch)
{
    const PageBits bits = fax.LoadPage(page);
    if (bits.IsEmpty())
        RaiseUnreadable(fax, page);
    const QSize wanted = (fax.PageSize(page) * dotsPerInch).toSize().expandedTo({1, 1});
    const QSize size = wanted.boundedTo({bits.lWidth, bits.lHeight});
    const QImage image = PageScaler::Shrink(bits, size, QRect(QPoint(), size));
    return image.allGray() ? image.convertToFormat(QImage::Format_Grayscale8) : image;
}

} // namespace

PreviewPages::PreviewPages(const FaxDocument &fax)
    : lDotsPerInch(ResolutionFor(fax))
{
    const double bytesPerSquareInch = bytesPerPixel * lDotsPerInch * lDotsPerInch;
    double bytes = 0;
    while (lCount < fax.PageCount() && bytes < mostBytes)
        bytes += SquareInches(fax, lCount++) * bytesPerSquareInch;
}

QList<QImage> PreviewPages::Load(const FaxDocument &fax, const PageProgress &progress) const
{
    QList<QImage> images;
    for (int page = 0; page < lCount; ++page) {
        if (!progress(page))
            throw SaveError{};
        images.append(LoadPage(fax, page, lDotsPerInch));
    }
    return images;
}
