#include "Monochrome.h"

#include "LightInk.h"
#include "SheetFormat.h"
#include "ToneMap.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace {

constexpr int width = SheetFormat::Width;
constexpr double inchesPerMetre = 39.3700787;

/// 1 where a pixel is black.
using Flags = std::array<uchar, width>;

void FindDark(const uchar *grays, uchar limit, Flags &flags)
{
    for (std::size_t x = 0; x < flags.size(); ++x)
        flags[x] = grays[x] < limit;
}

bool HasGrays(const uchar *grays)
{
    uchar found = 0;
    for (int x = 0; x < width; ++x)
        found |= static_cast<uchar>(grays[x] + 1) > 1;
    return found != 0;
}

/// Eight flags make a byte, the first one its highest bit.
void Pack(const Flags &flags, uchar *line)
{
    constexpr quint64 gather = 0x8040201008040201;
    for (std::size_t byte = 0; byte < flags.size() / 8; ++byte)
        line[byte] = static_cast<uchar>(qFromLittleEndian<quint64>(&flags[byte * 8]) * gather >> 56);
}

/// Where a pixel's error goes, in sixteenths: to the next one of its row, and to three of the next row,
/// beginning with the one behind it. And how much, in levels, a pixel keeps to the colour of the one behind
/// and the one above it: single dots get lost on paper, and take twice the time on the line.
struct Shares
{
    int lAhead, lBehindBelow, lBelow, lAheadBelow;
    int lLikeBehind, lLikeAbove;
};

/// Dots that are twice as high as wide: the next row is farther away than the next pixel, and two in a row
/// make a round one.
constexpr Shares squareShares{7, 3, 5, 1, 40, 40}, highShares{9, 2, 4, 1, 48, 0};

/// Error diffusion over the marked blocks of a sheet, row by row.
class Diffusion
{
public:
    Diffusion(const ToneMap &toneMap, int dotsPerInchY)
        : tones(toneMap)
        , shares(dotsPerInchY < SheetFormat::DotsPerInchX / 2 ? highShares : squareShares)
    {
    }

    void Diffuse(int row, const uchar *grays, Flags &flags)
    {
        const uchar *marks = tones.MarksOfRow(row);
        const bool rightwards = row % 2 == 0;
        std::swap(current, below);
        below.fill(0);
        ahead = 0;
        for (int count = 0; count < SheetBlocks::Columns; ++count) {
            const int block = rightwards ? count : SheetBlocks::Columns - 1 - count;
            if (marks[block] == ToneMap::Threshold) {
                ahead = 0;
                continue;
            }
            const int left = block * SheetBlocks::Width;
            SetLevels(grays + left, marks[block]);
            if (rightwards)
                DiffuseBlock<1>(left, 0, flags);
            else
                DiffuseBlock<-1>(left, SheetBlocks::Width - 1, flags);
        }
    }

private:
    /// Paper and ink stay what they are and swallow what reaches them, so that text stays crisp.
    static constexpr int surelyBlack = 6, surelyWhite = 249, middle = 128, white = 255;

    void SetLevels(const uchar *grays, uchar mark)
    {
        for (std::size_t x = 0; x < levels.size(); ++x) {
            const int lighter = white - (white - grays[x]) * 3 / 10;
            levels[x] = mark == ToneMap::Dots ? grays[x] : grays[x] < mark ? 0 : lighter;
        }
    }

    /// Without branches: what comes next cannot be foretold.
    template <int Step>
    void DiffuseBlock(int left, int first, Flags &flags)
    {
        for (int at = first; at >= 0 && at < SheetBlocks::Width; at += Step) {
            const auto x = std::size_t(left + at);
            const int gray = levels[std::size_t(at)];
            const int unsure = -int(unsigned(gray - surelyBlack - 1) < surelyWhite - surelyBlack - 1);
            const int level = gray + (((ahead + current[x + 1] + 8) >> 4) & unsure);
            const int likeness =
                (2 * behind - 1) * shares.lLikeBehind + (2 * above[x] - 1) * shares.lLikeAbove;
            behind = level < middle + (likeness & unsure);
            flags[x] = above[x] = static_cast<uchar>(behind);
            const int error = (level - (white & (behind - 1))) & unsure;
            ahead = error * shares.lAhead;
            below[x + 1 - Step] += error * shares.lBehindBelow;
            below[x + 1] += error * shares.lBelow;
            below[x + 1 + Step] += error * shares.lAheadBelow;
        }
    }

    const ToneMap &tones;
    const Shares shares;
    std::array<int, SheetBlocks::Width> levels{};  ///< of the block in work
    Flags above{};                                 ///< of the row above
    int behind = 0;                                ///< 1 when the pixel before is black
    int ahead = 0;                                 ///< sixteenths of a level, as are the rows
    std::array<int, width + 2> current{}, below{}; ///< one more on each side
};

QImage MakePicture(const QSize &size)
{
    QImage picture(size, QImage::Format_Mono);
    picture.setColorTable({qRgb(255, 255, 255), qRgb(0, 0, 0)});
    return picture;
}

/// What is below is ink.
uchar LimitOf(int threshold)
{
    return static_cast<uchar>(std::clamp(threshold, 1, 255));
}

/// `change` may set other flags for a row than the threshold does.
template <typename Change>
QImage MakeInk(const QImage &gray, int threshold, int dotsPerInchY, const Change &change)
{
    QImage ink = Monochrome::MakeBlank(gray.height(), dotsPerInchY);
    Flags flags;
    for (int row = 0; row < gray.height(); ++row) {
        const uchar *grays = gray.constScanLine(row);
        FindDark(grays, LimitOf(threshold), flags);
        change(row, grays, flags);
        Pack(flags, ink.scanLine(row));
    }
    return ink;
}

} // namespace

QImage Monochrome::MakeBlank(int height, int dotsPerInchY)
{
    QImage blank = MakePicture({width, height});
    SetResolution(blank, dotsPerInchY);
    blank.fill(0);
    return blank;
}

void Monochrome::SetResolution(QImage &sheet, int dotsPerInchY)
{
    sheet.setDotsPerMeterX(int(std::lround(SheetFormat::DotsPerInchX * inchesPerMetre)));
    sheet.setDotsPerMeterY(int(std::lround(dotsPerInchY * inchesPerMetre)));
}

QImage Monochrome::FromBits(const void *bits, qsizetype rowBytes, const QSize &size, bool oneIsBlack)
{
    QImage picture = MakePicture(size);
    const uchar turn = oneIsBlack ? 0 : 0xff;
    const auto bytes = std::size_t(size.width() + 7) / 8;
    const auto lastByte = static_cast<uchar>(0xff << (bytes * 8 - std::size_t(size.width())));
    for (int row = 0; row < size.height(); ++row) {
        const uchar *from = static_cast<const uchar *>(bits) + row * rowBytes;
        uchar *to = picture.scanLine(row);
        for (std::size_t byte = 0; byte < bytes; ++byte)
            to[byte] = from[byte] ^ turn;
        to[bytes - 1] &= lastByte;
    }
    return picture;
}

int Monochrome::DotsPerInchY(const QImage &sheet)
{
    return int(std::lround(sheet.dotsPerMeterY() / inchesPerMetre));
}

QImage Monochrome::ByThreshold(const QImage &gray, int threshold, int dotsPerInchY)
{
    return MakeInk(gray, threshold, dotsPerInchY, [](int, const uchar *, Flags &) {});
}

QImage Monochrome::WithTones(const QImage &gray, int threshold, int dotsPerInchY)
{
    bool hasGrays = false;
    const QImage ink = MakeInk(gray, threshold, dotsPerInchY, [&](int, const uchar *grays, Flags &) {
        hasGrays = hasGrays || HasGrays(grays);
    });
    if (!hasGrays)
        return ink;
    const ToneMap tones(gray, threshold, dotsPerInchY);
    const LightInk lightInk(gray, LimitOf(threshold), dotsPerInchY);
    if (tones.IsEmpty() && lightInk.IsEmpty())
        return ink;
    Diffusion diffusion(tones, dotsPerInchY);
    return MakeInk(gray, threshold, dotsPerInchY, [&](int row, const uchar *grays, Flags &flags) {
        lightInk.AddTo(row, grays, flags.data());
        if (!tones.IsEmpty())
            diffusion.Diffuse(row, grays, flags);
    });
}
