#include "programs/printtool/Monochrome.h"
#include "programs/printtool/SheetFormat.h"

#include <QImage>
#include <QPainter>
#include <QTest>

#include <cmath>

namespace {

constexpr int fine = 196, threshold = 200;

QImage MakeSheet()
{
    QImage sheet(SheetFormat::Width, 800, QImage::Format_Grayscale8);
    sheet.fill(255);
    return sheet;
}

void Fill(QImage &sheet, const QRect &where, int level)
{
    QPainter(&sheet).fillRect(where, QColor(level, level, level));
}

/// The part of the pixels that are ink.
double Blackness(const QImage &ink, const QRect &where)
{
    int black = 0;
    for (int y = where.top(); y <= where.bottom(); ++y)
        for (int x = where.left(); x <= where.right(); ++x)
            black += ink.pixelIndex(x, y);
    return double(black) / (where.width() * where.height());
}

} // namespace

class tst_ToneMap final : public QObject
{
    Q_OBJECT

private slots:
    /// The steps are narrower than a block, as wide as one, wider, and so wide that each is an area.
    void gradientIsShownByDots_data()
    {
        QTest::addColumn<int>("step");
        for (const int step : {1, 3, 4, 8, 11, 20, 60})
            QTest::addRow("%d dots", step) << step;
    }

    void gradientIsShownByDots()
    {
        QFETCH(int, step);
        constexpr int left = 100, darkest = 60, lightest = 180;
        QImage sheet = MakeSheet();
        const int right = std::min(left + step * (lightest - darkest), SheetFormat::Width - 8);
        for (int x = left; x < right; ++x)
            Fill(sheet, {x, 100, 1, 300}, darkest + (x - left) / step);
        const QImage ink = Monochrome::WithTones(sheet, threshold, fine);
        for (int x = left; x + 30 <= right; x += 30) {
            const double gray = 1 - (darkest + (x + 15.0 - left) / step) / 255;
            const double black = Blackness(ink, {x, 110, 30, 280});
            QVERIFY2(std::abs(black - gray) < 0.08, qPrintable(QStringLiteral("%1 %2").arg(x).arg(black)));
        }
    }

    void areasSideBySideStayGray()
    {
        QImage sheet = MakeSheet();
        for (int column = 0; column < 8; ++column)
            Fill(sheet, {100 + column * 113, 100, 102, 170}, 128);
        const QImage ink = Monochrome::WithTones(sheet, threshold, fine);
        for (int column = 0; column < 8; ++column)
            QVERIFY(std::abs(Blackness(ink, {105 + column * 113, 105, 92, 160}) - 0.5) < 0.05);
    }

    void linesOfATableAreNoText()
    {
        QImage sheet = MakeSheet();
        Fill(sheet, {100, 100, 1000, 300}, 110);
        for (int y = 140; y < 400; y += 50)
            Fill(sheet, {100, y, 1000, 3}, 255);
        for (int x = 300; x < 320; x += 9)
            Fill(sheet, {x, 150, 2, 28}, 0); // a word
        const QImage ink = Monochrome::WithTones(sheet, threshold, fine);
        QVERIFY(Blackness(ink, {500, 150, 300, 30}) < 0.7);
        QCOMPARE(Blackness(ink, {500, 140, 300, 3}), 0.0);
    }
};

QTEST_GUILESS_MAIN(tst_ToneMap)
#include "tst_ToneMap.moc"
