#include "controls/Colors.h"

#include <QPalette>

#include <algorithm>
#include <cmath>

namespace {

constexpr float fStep = 0.02f;
constexpr int lHintAlpha = 160;

double Linear(double channel)
{
    return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double Luminance(const QColor &color)
{
    return 0.2126 * Linear(color.redF()) + 0.7152 * Linear(color.greenF()) + 0.0722 * Linear(color.blueF());
}

double Contrast(const QColor &one, const QColor &other)
{
    const auto [dark, light] = std::minmax({Luminance(one), Luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

} // namespace

QColor GetReadableColor(const QColor &wanted, const QColor &background, double contrast)
{
    const float step = Luminance(background) < 0.2 ? fStep : -fStep;
    QColor color = wanted.toHsl();
    while (Contrast(color, background) < contrast) {
        const float lightness = color.lightnessF() + step;
        if (lightness < 0.0f || lightness > 1.0f)
            break;
        color.setHslF(color.hslHueF(), color.hslSaturationF(), lightness);
    }
    return color == wanted.toHsl() ? wanted : color.toRgb();
}

QColor GetQuietColor(const QColor &color)
{
    const QColor hsl = color.toHsl();
    return QColor::fromHslF(std::max(0.0f, hsl.hslHueF()), hsl.hslSaturationF() / 4, hsl.lightnessF())
        .toRgb();
}

QColor GetHintColor(const QPalette &palette)
{
    QColor color = palette.color(QPalette::Text);
    color.setAlpha(lHintAlpha);
    return color;
}
