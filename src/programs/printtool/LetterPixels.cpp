#include "LetterPixels.h"

#include <initializer_list>

namespace {

/// In dots, also where these are higher than wide.
constexpr int longestStroke = 40;

class Strokes
{
public:
    Strokes(const QImage &graySheet, int darkestLevel, int lightestLevel)
        : gray(graySheet)
        , lDarkest(darkestLevel)
        , lLightest(lightestLevel)
    {
    }

    bool Has(const QPoint &at) const
    {
        const int level = gray.constScanLine(at.y())[at.x()];
        return level >= lDarkest && level <= lLightest;
    }

    bool IsLong(const QPoint &at) const
    {
        for (const QPoint step : {QPoint(1, 0), QPoint(0, 1)}) {
            if (Reach(at, step) + Reach(at, -step) >= longestStroke)
                return true;
        }
        return false;
    }

private:
    /// Pixels to the stroke's end, as far as they matter.
    int Reach(QPoint at, const QPoint &step) const
    {
        int reach = 0;
        for (at += step; reach < longestStroke && gray.rect().contains(at) && Has(at); at += step)
            ++reach;
        return reach;
    }

    const QImage &gray;
    int lDarkest, lLightest;
};

} // namespace

int CountLetterPixels(const QImage &gray, const QRect &part, int darkest, int lightest)
{
    const Strokes strokes(gray, darkest, lightest);
    int count = 0;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x)
            count += strokes.Has({x, y}) && !strokes.IsLong({x, y});
    }
    return count;
}
