#include "fixtures/TestTable.h"
#include "programs/printtool/Monochrome.h"
#include "programs/printtool/SheetFormat.h"

#include <QPainter>
#include <QRandomGenerator>

#include <cmath>

/// How gray sheets become ink: what is seen of text, of areas and of photographs.
class tst_Monochrome final : public QObject
{
    Q_OBJECT

private slots:
    void thresholdPartsInkFromPaper_data();
    void thresholdPartsInkFromPaper();
    void photographKeepsItsGrays_data();
    void photographKeepsItsGrays();
    void photographLeavesTextAroundItAlone();
    void softTextIsNoPhotograph_data();
    void softTextIsNoPhotograph();
    void darkTextOnAnAreaStaysReadable();
    void lightTextOnAnAreaStaysReadable();
    void lightLettersAndLinesStayVisible();
    void lightAreasStayPaper();
    void paperOfAScanStaysWhite();
};

namespace {

constexpr int width = SheetFormat::Width, height = 800;
constexpr int fine = 196, standard = 98;

QImage MakeSheet(int level = 255)
{
    QImage sheet(width, height, QImage::Format_Grayscale8);
    sheet.fill(level);
    return sheet;
}

void Fill(QImage &sheet, const QRect &where, int level)
{
    for (int y = where.top(); y <= where.bottom(); ++y)
        std::fill_n(sheet.scanLine(y) + where.left(), where.width(), uchar(level));
}

/// Bars like the stems of letters, two dots wide.
void DrawText(QImage &sheet, const QRect &where, int level)
{
    for (int x = where.left(); x < where.right(); x += 9)
        Fill(sheet, {x, where.top(), 2, where.height()}, level);
}

/// Hills with grain, in levels around the mean.
void DrawPhotograph(QImage &sheet, const QRect &where, int mean)
{
    QRandomGenerator random(5);
    for (int y = where.top(); y <= where.bottom(); ++y) {
        for (int x = where.left(); x <= where.right(); ++x)
            sheet.scanLine(y)[x] = uchar(mean + 20 * std::sin(x * 0.03) + random.bounded(-6, 7));
    }
}

double Blackness(const QImage &ink, const QRect &where)
{
    int black = 0;
    for (int y = where.top(); y <= where.bottom(); ++y) {
        for (int x = where.left(); x <= where.right(); ++x)
            black += ink.pixelIndex(x, y);
    }
    return double(black) / (where.width() * where.height());
}

double Darkness(const QImage &sheet, const QRect &where)
{
    double sum = 0;
    for (int y = where.top(); y <= where.bottom(); ++y) {
        for (int x = where.left(); x <= where.right(); ++x)
            sum += 255 - sheet.constScanLine(y)[x];
    }
    return sum / 255 / (where.width() * where.height());
}

const QRect whole(0, 0, width, height);

} // namespace

void tst_Monochrome::thresholdPartsInkFromPaper_data()
{
    const TestTable<int, int, bool> row{"level", "threshold", "ink"};
    row("just darker", 199, 200, true);
    row("as dark", 200, 200, false);
    row("black at 0", 0, 0, true);
    row("nearly black at 0", 1, 0, false);
    row("white at 255", 255, 255, false);
    row("nearly white at 255", 254, 255, true);
    row("white beyond all", 255, 1000, false);
    row("black below all", 0, -5, true);
}

void tst_Monochrome::thresholdPartsInkFromPaper()
{
    QFETCH(int, level);
    QFETCH(int, threshold);
    QFETCH(bool, ink);
    QImage sheet = MakeSheet(level == 0 ? 255 : 0);
    Fill(sheet, {3, 5, 1, 1}, level);
    const QImage made = Monochrome::ByThreshold(sheet, threshold, fine);
    QCOMPARE(made.pixelIndex(3, 5), int(ink));
    QCOMPARE(made.pixelIndex(2, 5), int(level != 0));
    QCOMPARE(made.pixelIndex(11, 5), int(level != 0));
    QCOMPARE(Monochrome::DotsPerInchY(made), fine);
}

void tst_Monochrome::photographKeepsItsGrays_data()
{
    const TestTable<int, int, int> row{"mean", "threshold", "dotsPerInchY"};
    row("dark", 80, 200, fine);
    row("middle", 128, 200, fine);
    row("light", 165, 200, fine);
    row("low threshold", 110, 100, fine);
    row("standard", 128, 200, standard);
}

void tst_Monochrome::photographKeepsItsGrays()
{
    QFETCH(int, mean);
    QFETCH(int, threshold);
    QFETCH(int, dotsPerInchY);
    QImage sheet = MakeSheet();
    const QRect picture(203, 101, 901, 407);
    DrawPhotograph(sheet, picture, mean);
    const QImage ink = Monochrome::WithTones(sheet, threshold, dotsPerInchY);
    // Also at its edges, which lie within blocks.
    for (const QRect &part :
         {picture, QRect(203, 101, 40, 407), QRect(203, 101, 901, 24), QRect(600, 300, 64, 64)})
        QVERIFY(std::abs(Blackness(ink, part) - Darkness(sheet, part)) < 0.03);
    QCOMPARE(Blackness(ink, {0, 0, 190, height}), 0.0);
}

void tst_Monochrome::photographLeavesTextAroundItAlone()
{
    QImage sheet = MakeSheet();
    const QRect text(200, 600, 800, 30);
    DrawPhotograph(sheet, {200, 100, 800, 400}, 120);
    DrawText(sheet, text, 0);
    const QImage ink = Monochrome::WithTones(sheet, 200, fine);
    QCOMPARE(ink.copy(text), Monochrome::ByThreshold(sheet, 200, fine).copy(text));
}

void tst_Monochrome::softTextIsNoPhotograph_data()
{
    const TestTable<int, int> row{"size", "dotsPerInchY"};
    row("six points", 17, fine);
    row("ten points", 28, fine);
    row("six points, standard", 9, standard);
    row("headline", 110, fine);
}

void tst_Monochrome::softTextIsNoPhotograph()
{
    QFETCH(int, size);
    QFETCH(int, dotsPerInchY);
    QImage sheet = MakeSheet();
    QPainter painter(&sheet);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(size);
    painter.setFont(font);
    painter.drawText(whole, Qt::TextWordWrap, QStringLiteral("A letter with soft edges. ").repeated(400));
    painter.end();
    QVERIFY(Darkness(sheet, whole) > 0.05);
    QCOMPARE(Monochrome::WithTones(sheet, 200, dotsPerInchY),
             Monochrome::ByThreshold(sheet, 200, dotsPerInchY));
}

void tst_Monochrome::darkTextOnAnAreaStaysReadable()
{
    QImage sheet = MakeSheet();
    const QRect area(200, 100, 900, 60), text(300, 115, 500, 28);
    Fill(sheet, area, 190);
    DrawText(sheet, text, 0);
    const QImage ink = Monochrome::WithTones(sheet, 200, fine);
    QCOMPARE(Blackness(ink, {300, 115, 2, 28}), 1.0);
    const double between = Blackness(ink, {900, 110, 150, 40});
    QVERIFY(between > 0.03 && between < 0.12); // a light tone, instead of black
}

void tst_Monochrome::lightTextOnAnAreaStaysReadable()
{
    QImage sheet = MakeSheet();
    const QRect area(200, 100, 900, 60), text(300, 115, 500, 28);
    Fill(sheet, area, 110);
    DrawText(sheet, text, 255);
    QCOMPARE(Monochrome::WithTones(sheet, 200, fine), Monochrome::ByThreshold(sheet, 200, fine));
}

void tst_Monochrome::lightLettersAndLinesStayVisible()
{
    QImage sheet = MakeSheet();
    DrawText(sheet, {200, 100, 600, 30}, 0);
    DrawText(sheet, {200, 200, 600, 30}, 226); // yellow
    Fill(sheet, {200, 300, 900, 1}, 204);      // the line of a table
    for (const int dotsPerInchY : {fine, standard}) {
        const QImage ink = Monochrome::WithTones(sheet, 200, dotsPerInchY);
        QCOMPARE(Blackness(ink, {200, 200, 2, 30}), 1.0);
        QCOMPARE(Blackness(ink, {202, 200, 7, 30}), 0.0);
        QCOMPARE(Blackness(ink, {200, 300, 900, 1}), 1.0);
    }
}

void tst_Monochrome::lightAreasStayPaper()
{
    QImage sheet = MakeSheet();
    Fill(sheet, {200, 100, 600, 50}, 226); // marked by a yellow pen
    DrawText(sheet, {210, 110, 580, 30}, 0);
    Fill(sheet, {200, 300, 600, 100}, 210);
    for (int y = 500; y < 700; y += 6) // a pattern behind text
        Fill(sheet, {200, y, 600, 1}, 215);
    DrawText(sheet, {210, 510, 580, 180}, 0);
    QCOMPARE(Monochrome::WithTones(sheet, 200, fine), Monochrome::ByThreshold(sheet, 200, fine));
}

void tst_Monochrome::paperOfAScanStaysWhite()
{
    QImage sheet = MakeSheet();
    DrawPhotograph(sheet, whole, 228);
    DrawText(sheet, {200, 100, 900, 30}, 40);
    QCOMPARE(Monochrome::WithTones(sheet, 200, fine), Monochrome::ByThreshold(sheet, 200, fine));
}

QTEST_MAIN(tst_Monochrome)
#include "tst_Monochrome.moc"
