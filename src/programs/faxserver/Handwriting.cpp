#include "Handwriting.h"

#include <QHash>
#include <QPainter>
#include <QPainterPath>
#include <QRandomGenerator>
#include <QStringList>

namespace {

/// The strokes of a letter, "|" between them; each point is two hexadecimal digits, across and up. The
/// baseline is at 4, small letters reach 8, tall ones c.
const QHash<QChar, QString> &Letters()
{
    static const QHash<QChar, QString> letters{
        {'a', "48 28 06 14 35 48 45 54"},
        {'b', "0c 05 04|06 18 38 46 34 14 05"},
        {'c', "47 28 06 14 34 45"},
        {'d', "48 28 06 14 35 47|4c 48 45 54"},
        {'e', "06 36 47 28 06 14 34 45"},
        {'f', "4b 3c 2a 26 21|08 38"},
        {'g', "48 28 06 14 35 48|48 43 30 10 01"},
        {'h', "0c 08 04|06 28 38 45 54"},
        {'i', "18 15 24|1a 1b"},
        {'j', "28 22 10 01|2a 2b"},
        {'k', "0c 08 04|48 06 25 44"},
        {'l', "1c 18 15 24 34"},
        {'m', "08 06 04|06 18 27 24|26 38 47 45 54"},
        {'n', "08 06 04|06 28 37 35 44"},
        {'o', "28 06 14 34 46 38 28"},
        {'p', "08 04 00|07 28 46 34 14 05"},
        {'q', "48 28 06 14 35 48|48 44 40 51"},
        {'r', "08 06 04|06 28 38"},
        {'s', "47 28 17 16 35 34 14 05"},
        {'t', "1b 18 15 24 34|08 38"},
        {'u', "08 05 14 34 48|48 45 54"},
        {'v', "08 16 24 36 48"},
        {'w', "08 14 27 34 48"},
        {'x', "08 26 44|48 26 04"},
        {'y', "08 06 15 35 48|48 42 20 00"},
        {'z', "08 48 26 04 44"},
        {'A', "04 18 3c 58 64|17 57"},
        {'B', "0c 08 04|0c 3c 4a 28 08|28 46 34 04"},
        {'C', "5b 3c 1b 07 15 34 55"},
        {'D', "0c 08 04|0c 3b 58 35 04"},
        {'E', "5c 0c 08 04 54|08 38"},
        {'F', "5c 0c 08 04|08 38"},
        {'G', "5b 3c 1b 07 15 34 55 57 37"},
        {'H', "0c 08 04|5c 58 54|08 58"},
        {'I', "1c 18 14"},
        {'J', "3c 38 35 24 05"},
        {'K', "0c 08 04|5c 28 08 28 54"},
        {'L', "0c 08 04 54"},
        {'M', "04 0c 37 6c 64"},
        {'N', "04 0c 54 5c"},
        {'O', "3c 1b 07 15 34 55 69 5b 3c"},
        {'P', "0c 08 04|0c 3c 4a 38 08"},
        {'R', "0c 08 04|0c 3c 4a 38 08|28 54"},
        {'S', "5b 3c 1b 1a 48 56 34 14 05"},
        {'T', "0c 3c 6c|3c 38 34"},
        {'U', "0c 06 24 44 56 5c"},
        {'V', "0c 24 4c"},
        {'W', "0c 14 39 54 6c"},
        {'Y', "0c 38 6c|38 34"},
        {'0', "2c 0a 06 24 46 4a 2c"},
        {'1', "0a 2c 28 24"},
        {'2', "0a 1c 3c 4a 27 04 54"},
        {'3', "0b 2c 4a 28 46 24 05"},
        {'4', "3c 07 57|3a 34"},
        {'5', "4c 0c 08 38 46 34 05"},
        {'6', "4b 1a 06 24 46 38 16"},
        {'7', "0c 4c 28 14"},
        {'8', "2c 0a 48 46 24 05 08 4a 2c"},
        {'9', "49 28 0a 2c 4a 47 24"},
        {'.', "04 14"},
        {',', "14 03"},
        {'!', "1c 17|14 15"},
        {'?', "0b 2c 4a 27 26|24 25"},
        {'-', "07 37"},
        {'\'', "0c 0a"},
        {':', "08 07|05 04"},
        {'/', "03 27 4c"},
    };
    return letters;
}

QPointF PointOf(const QString &digits)
{
    return {double(digits.left(1).toInt(nullptr, 16)), double(digits.mid(1, 1).toInt(nullptr, 16)) - 4};
}

double Tremble(QRandomGenerator &hand, double most)
{
    return (hand.generateDouble() - 0.5) * 2 * most;
}

/// A smooth line through all points.
QPainterPath Through(const QList<QPointF> &points)
{
    QPainterPath path(points.first());
    for (qsizetype i = 0; i + 1 < points.size(); ++i) {
        const QPointF before = points[i > 0 ? i - 1 : i];
        const QPointF behind = points[i + 2 < points.size() ? i + 2 : i + 1];
        path.cubicTo(points[i] + (points[i + 1] - before) / 6, points[i + 1] - (behind - points[i]) / 6,
                     points[i + 1]);
    }
    return path;
}

/// Draws a letter and returns its width in its own points.
double Draw(QPainter &painter, QRandomGenerator &hand, QPointF at, double scale, const QString &letter)
{
    constexpr double slant = 0.18;
    double width = 0;
    for (const QString &stroke : letter.split('|')) {
        QList<QPointF> points;
        for (const QString &digits : stroke.split(' ')) {
            const QPointF point = PointOf(digits);
            width = std::max(width, point.x());
            points.append(at + QPointF(point.x() + point.y() * slant + Tremble(hand, 0.22),
                                       -point.y() + Tremble(hand, 0.22)) *
                                   scale);
        }
        painter.drawPath(Through(points));
    }
    return width;
}

} // namespace

int Handwriting::Write(QPainter &painter, QRandomGenerator &hand, int x, int y, int size, const QString &text,
                       int pen)
{
    painter.setPen(QPen(Qt::black, pen, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    const double scale = size / 4.0;
    double at = x;
    for (const QChar character : text) {
        const QString letter = Letters().value(character);
        if (letter.isEmpty()) {
            at += 3.4 * scale;
            continue;
        }
        const double width = Draw(painter, hand, QPointF(at, y + Tremble(hand, scale * 0.35)), scale, letter);
        at += (width + 1.7 + Tremble(hand, 0.2)) * scale;
    }
    return int(at);
}
