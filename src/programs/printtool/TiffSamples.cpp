#include "TiffSamples.h"

#include "PictureFile.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include <tiffio.h>

namespace {

/// How the samples of a page lie in its rows.
struct Form
{
    uint16_t lBits = 1, lSamples = 1, lFormat = SAMPLEFORMAT_UINT, lColors = PHOTOMETRIC_MINISBLACK,
             lPlanes = PLANARCONFIG_CONTIG;

    explicit Form(TIFF *tiff)
    {
        TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &lBits);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &lSamples);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &lFormat);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &lPlanes);
        TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &lColors);
    }

    bool IsFloat() const { return lFormat == SAMPLEFORMAT_IEEEFP && lBits == 32; }
    bool IsWhole() const { return lFormat == SAMPLEFORMAT_UINT && lBits >= 2 && lBits <= 32; }
    bool IsKnown(TIFF *tiff) const
    {
        const bool isGray = lColors == PHOTOMETRIC_MINISBLACK || lColors == PHOTOMETRIC_MINISWHITE;
        return !TIFFIsTiled(tiff) && lPlanes == PLANARCONFIG_CONTIG && (IsFloat() || IsWhole()) &&
               (isGray || (lColors == PHOTOMETRIC_RGB && lSamples >= 3) ||
                (lColors == PHOTOMETRIC_SEPARATED && lSamples >= 4 && IsWhole()));
    }
    /// The largest sample; of floating point numbers the one that means it as it is.
    double Largest() const { return IsFloat() ? 1 : std::exp2(lBits) - 1; }
};

/// A sample of the row, which a decoder gives in this machine's order of bytes from 16 bits on.
double SampleAt(const std::vector<uchar> &row, const Form &form, size_t number)
{
    if (form.IsFloat()) {
        float value = 0;
        std::memcpy(&value, row.data() + number * sizeof value, sizeof value);
        return std::isfinite(value) ? double(value) : 0;
    }
    if (form.lBits == 32) {
        uint32_t value = 0;
        std::memcpy(&value, row.data() + number * sizeof value, sizeof value);
        return value;
    }
    if (form.lBits == 16) {
        uint16_t value = 0;
        std::memcpy(&value, row.data() + number * sizeof value, sizeof value);
        return value;
    }
    quint64 value = 0;
    for (size_t bit = number * form.lBits; bit < (number + 1) * form.lBits; ++bit)
        value = value << 1 | (row[bit / 8] >> (7 - bit % 8) & 1U);
    return double(value);
}

/// The weights of `qGray`.
double Mix(double red, double green, double blue)
{
    return (red * 11 + green * 16 + blue * 5) / 32;
}

double GrayAt(const std::vector<uchar> &row, const Form &form, size_t pixel)
{
    const size_t first = pixel * form.lSamples;
    const auto sample = [&](size_t number) { return SampleAt(row, form, first + number); };
    if (form.lColors == PHOTOMETRIC_RGB)
        return Mix(sample(0), sample(1), sample(2));
    if (form.lColors == PHOTOMETRIC_SEPARATED) { // of inks
        const double paper = form.Largest();
        return Mix(paper - sample(0), paper - sample(1), paper - sample(2)) * (paper - sample(3)) / paper;
    }
    return sample(0);
}

/// From 0 to 255. Numbers up to 1 mean it as it is; others come from a device with a scale of its own.
QImage ToLevels(const std::vector<float> &grays, const Form &form, const QSize &size)
{
    const double largest = double(*std::max_element(grays.begin(), grays.end()));
    const double white = form.IsFloat() ? std::max(form.Largest(), largest) : form.Largest();
    const bool turned = form.lColors == PHOTOMETRIC_MINISWHITE;
    QImage image = PictureFile::MakeGray(size);
    for (int y = 0; y < size.height(); ++y) {
        const float *from = grays.data() + size_t(y) * size_t(size.width());
        std::transform(from, from + size.width(), image.scanLine(y), [&](float gray) {
            const double level = std::clamp(double(gray) / white, 0.0, 1.0) * 255;
            return static_cast<uchar>(std::lround(turned ? 255 - level : level));
        });
    }
    return image;
}

} // namespace

QImage TiffSamples::ReadGray(tiff *page, const QSize &size)
{
    const Form form(page);
    const auto width = static_cast<size_t>(size.width()), height = static_cast<size_t>(size.height());
    const auto rowBytes = static_cast<size_t>(TIFFScanlineSize(page));
    if (!form.IsKnown(page) || rowBytes > (size_t(1) << 28) ||
        rowBytes * 8 < width * form.lSamples * form.lBits)
        return {};
    std::vector<uchar> row(rowBytes);
    std::vector<float> grays(width * height);
    for (size_t y = 0; y < height; ++y) {
        if (TIFFReadScanline(page, row.data(), uint32_t(y)) != 1)
            return {};
        for (size_t pixel = 0; pixel < width; ++pixel)
            grays[y * width + pixel] = static_cast<float>(GrayAt(row, form, pixel));
    }
    return ToLevels(grays, form, size);
}
