#include "controls/PageScaler.h"

#include <algorithm>
#include <vector>

namespace {

/// One row of a 1-bit page as a running sum, so that the ones between any two places are one subtraction.
class BitRow
{
public:
    explicit BitRow(const PageBits &shownPage)
        : page(shownPage)
        , aSums(static_cast<std::size_t>(page.lWidth) + 1)
    {
    }

    void Read(int y)
    {
        const auto *bytes = reinterpret_cast<const uchar *>(page.abBits.constData()) +
                            static_cast<qsizetype>(y) * page.lBytesPerLine;
        for (int x = 0; x < page.lWidth; ++x) {
            const int bit = (bytes[x >> 3] >> (7 - (x & 7))) & 1;
            aSums[static_cast<std::size_t>(x) + 1] = aSums[static_cast<std::size_t>(x)] + bit;
        }
    }

    /// Ones left of the place `x`, parts of a pixel included.
    double OnesUpTo(double x) const
    {
        const auto whole = std::min(static_cast<std::size_t>(x), aSums.size() - 1);
        const int bit = whole + 1 < aSums.size() ? aSums[whole + 1] - aSums[whole] : 0;
        return aSums[whole] + (x - static_cast<double>(whole)) * bit;
    }

private:
    const PageBits &page;
    std::vector<int> aSums;
};

/// Adds a row's share of ones to each new pixel, times `weight`.
void AddRow(const BitRow &row, double weight, double step, std::vector<double> &ones)
{
    double before = 0;
    for (std::size_t x = 0; x < ones.size(); ++x) {
        const double upTo = row.OnesUpTo(step * static_cast<double>(x + 1));
        ones[x] += (upTo - before) * weight;
        before = upTo;
    }
}

QImage ShrinkBits(const PageBits &page, const QSize &size)
{
    QImage image(size, QImage::Format_Grayscale8);
    if (image.isNull())
        return image;
    const double stepX = static_cast<double>(page.lWidth) / size.width();
    const double stepY = static_cast<double>(page.lHeight) / size.height();
    const int zero = qGray(page.aPalette.value(0));
    const int one = qGray(page.aPalette.value(1));
    BitRow row(page);
    int rowRead = -1;
    std::vector<double> ones(static_cast<std::size_t>(size.width()));
    for (int y = 0; y < size.height(); ++y) {
        std::fill(ones.begin(), ones.end(), 0.0);
        const double from = y * stepY;
        const double to = from + stepY;
        for (int source = static_cast<int>(from); source < to && source < page.lHeight; ++source) {
            if (source != rowRead)
                row.Read(rowRead = source);
            AddRow(row, std::min(source + 1.0, to) - std::max<double>(source, from), stepX, ones);
        }
        uchar *line = image.scanLine(y);
        for (std::size_t x = 0; x < ones.size(); ++x)
            line[x] = static_cast<uchar>(
                std::clamp(zero + (one - zero) * ones[x] / (stepX * stepY) + 0.5, 0.0, 255.0));
    }
    return image;
}

bool IsComplete(const PageBits &page)
{
    const qint64 bitsPerLine = static_cast<qint64>(page.lWidth) * page.lBitsPerPixel;
    return page.lWidth > 0 && page.lHeight > 0 && page.lBytesPerLine >= (bitsPerLine + 7) / 8 &&
           page.abBits.size() >= static_cast<qint64>(page.lBytesPerLine) * page.lHeight;
}

QImage::Format GetFormat(int bitsPerPixel)
{
    switch (bitsPerPixel) {
    case 1:
        return QImage::Format_Mono;
    case 8:
        return QImage::Format_Indexed8;
    case 32:
        return QImage::Format_RGB32;
    default:
        return QImage::Format_Invalid;
    }
}

} // namespace

QImage PageScaler::ToImage(const PageBits &page)
{
    const QImage::Format format = GetFormat(page.lBitsPerPixel);
    if (!IsComplete(page) || format == QImage::Format_Invalid)
        return {};
    QImage image(reinterpret_cast<const uchar *>(page.abBits.constData()), page.lWidth, page.lHeight,
                 page.lBytesPerLine, format);
    if (page.lBitsPerPixel <= 8)
        image.setColorTable(page.aPalette);
    return image.copy();
}

QImage PageScaler::Shrink(const PageBits &page, const QSize &size)
{
    const bool isGrey = std::all_of(page.aPalette.begin(), page.aPalette.end(), [](quint32 color) {
        return qRed(color) == qGreen(color) && qGreen(color) == qBlue(color);
    });
    if (page.lBitsPerPixel == 1 && isGrey && IsComplete(page))
        return ShrinkBits(page, size);
    return ToImage(page).scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}
