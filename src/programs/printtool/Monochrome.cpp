#include "Monochrome.h"

#include "SheetFormat.h"

#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr double inchesPerMetre = 39.3700787;

/// Eight bytes of 0 or 1 as the bits of one, the first byte's highest.
uchar PackBits(const uchar *flags)
{
    constexpr quint64 gather = 0x8040201008040201;
    return static_cast<uchar>(qFromLittleEndian<quint64>(flags) * gather >> 56);
}

} // namespace

QImage Monochrome::MakeBlank(const QSize &size)
{
    QImage blank(size, QImage::Format_Mono);
    blank.setColorTable({qRgb(255, 255, 255), qRgb(0, 0, 0)});
    blank.fill(0);
    return blank;
}

void Monochrome::SetResolution(QImage &sheet, int dotsPerInchY)
{
    sheet.setDotsPerMeterX(int(std::lround(SheetFormat::DotsPerInchX * inchesPerMetre)));
    sheet.setDotsPerMeterY(int(std::lround(dotsPerInchY * inchesPerMetre)));
}

int Monochrome::DotsPerInchY(const QImage &sheet)
{
    return int(std::lround(sheet.dotsPerMeterY() / inchesPerMetre));
}

QImage Monochrome::ByThreshold(const QImage &gray, int threshold)
{
    const int width = gray.width();
    const auto limit = static_cast<uchar>(std::clamp(threshold, 1, 255));
    QImage ink = MakeBlank(gray.size());
    std::vector<uchar> flags(static_cast<std::size_t>(width) + 8);
    for (int y = 0; y < gray.height(); ++y) {
        const uchar *from = gray.constScanLine(y);
        for (int x = 0; x < width; ++x)
            flags[std::size_t(x)] = from[x] < limit;
        uchar *to = ink.scanLine(y);
        for (int x = 0; x < width; x += 8)
            *to++ = PackBits(flags.data() + x);
    }
    return ink;
}
