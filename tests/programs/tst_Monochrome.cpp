#include "fixtures/TestTable.h"
#include "programs/printtool/Monochrome.h"
#include "programs/printtool/SheetFormat.h"

#include <QPainter>
#include <QRandomGenerator>

#include <cmath>
#include <functional>

namespace {

constexpr int fine = 196, standard = 98;
const QRect whole(0, 0, SheetFormat::Width, 800);
using Draw = std::function<void(QImage &)>;

QImage MakeSheet(int level = 255)
{
    QImage sheet(whole.size(), QImage::Format_Grayscale8);
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

/// Letters with soft edges.
void DrawLetters(QImage &sheet, int size)
{
    QPainter painter(&sheet);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(size);
    painter.setFont(font);
    painter.drawText(whole, Qt::TextWordWrap, QStringLiteral("A letter with soft edges. ").repeated(400));
}

/// The share of the area that is ink, or would be if each gray became its share of it.
double Blackness(const QImage &sheet, const QRect &where)
{
    double sum = 0;
    for (int y = where.top(); y <= where.bottom(); ++y) {
        for (int x = where.left(); x <= where.right(); ++x)
            sum += sheet.depth() == 1 ? sheet.pixelIndex(x, y) : (255 - sheet.constScanLine(y)[x]) / 255.0;
    }
    return sum / (where.width() * where.height());
}

} // namespace

/// How gray sheets become ink: what is seen of text, of areas and of photographs.
class tst_Monochrome final : public QObject
{
    Q_OBJECT

private slots:
    void thresholdPartsInkFromPaper()
    {
        const struct
        {
            int lLevel, lThreshold;
            bool bInk;
        } rows[] = {{199, 200, true},  {200, 200, false}, {0, 0, true},       {1, 0, false},
                    {255, 255, false}, {254, 255, true},  {255, 1000, false}, {0, -5, true}};
        for (const auto &row : rows) {
            QImage sheet = MakeSheet(row.lLevel == 0 ? 255 : 0);
            Fill(sheet, {3, 5, 1, 1}, row.lLevel);
            const QImage made = Monochrome::ByThreshold(sheet, row.lThreshold, fine);
            QVERIFY2(made.pixelIndex(3, 5) == int(row.bInk),
                     qPrintable(QStringLiteral("%1 at %2").arg(row.lLevel).arg(row.lThreshold)));
            QCOMPARE(made.pixelIndex(2, 5), int(row.lLevel != 0));
            QCOMPARE(made.pixelIndex(11, 5), int(row.lLevel != 0));
            QCOMPARE(Monochrome::DotsPerInchY(made), fine);
        }
    }

    void photographKeepsItsGrays_data()
    {
        const TestTable<int, int, int> row{"mean", "threshold", "dotsPerInchY"};
        row("dark", 80, 200, fine);
        row("middle", 128, 200, fine);
        row("light", 165, 200, fine);
        row("low threshold", 110, 100, fine);
        row("standard", 128, 200, standard);
    }

    void photographKeepsItsGrays()
    {
        QFETCH(int, mean);
        QFETCH(int, threshold);
        QFETCH(int, dotsPerInchY);
        QImage sheet = MakeSheet();
        const QRect picture(203, 101, 901, 407), text(200, 600, 800, 30);
        DrawPhotograph(sheet, picture, mean);
        DrawText(sheet, text, 0);
        const QImage ink = Monochrome::WithTones(sheet, threshold, dotsPerInchY);
        // Also at its edges, which lie within blocks.
        for (const QRect &part :
             {picture, QRect(203, 101, 40, 407), QRect(203, 101, 901, 24), QRect(600, 300, 64, 64)})
            QVERIFY(std::abs(Blackness(ink, part) - Blackness(sheet, part)) < 0.03);
        QCOMPARE(Blackness(ink, {0, 0, 190, 800}), 0.0);
        QCOMPARE(ink.copy(text), Monochrome::ByThreshold(sheet, threshold, dotsPerInchY).copy(text));
    }

    void whatIsNoPhotographHasNoDots_data()
    {
        const TestTable<Draw, int> row{"draw", "dotsPerInchY"};
        row(
            "text of six points", [](QImage &sheet) { DrawLetters(sheet, 17); }, fine);
        row(
            "text of ten points", [](QImage &sheet) { DrawLetters(sheet, 28); }, fine);
        row(
            "text of six points, standard", [](QImage &sheet) { DrawLetters(sheet, 9); }, standard);
        row(
            "headline", [](QImage &sheet) { DrawLetters(sheet, 110); }, fine);
        const Draw lightTextOnAnArea = [](QImage &sheet) {
            Fill(sheet, {200, 100, 900, 60}, 110);
            DrawText(sheet, {300, 115, 500, 28}, 255);
        };
        row("light text on an area", lightTextOnAnArea, fine);
        const Draw lightAreas = [](QImage &sheet) {
            Fill(sheet, {200, 100, 600, 50}, 226); // marked by a yellow pen
            DrawText(sheet, {210, 110, 580, 30}, 0);
            Fill(sheet, {200, 300, 600, 100}, 210);
            for (int y = 500; y < 700; y += 6) // a pattern behind text
                Fill(sheet, {200, y, 600, 1}, 215);
            DrawText(sheet, {210, 510, 580, 180}, 0);
        };
        row("light areas", lightAreas, fine);
        const Draw paperOfAScan = [](QImage &sheet) {
            DrawPhotograph(sheet, whole, 228);
            DrawText(sheet, {200, 100, 900, 30}, 40);
        };
        row("paper of a scan", paperOfAScan, fine);
    }

    void whatIsNoPhotographHasNoDots()
    {
        QFETCH(Draw, draw);
        QFETCH(int, dotsPerInchY);
        QImage sheet = MakeSheet();
        draw(sheet);
        QVERIFY(Blackness(sheet, whole) > 0.01);
        QCOMPARE(Monochrome::WithTones(sheet, 200, dotsPerInchY),
                 Monochrome::ByThreshold(sheet, 200, dotsPerInchY));
    }

    void darkTextOnAnAreaStaysReadable()
    {
        QImage sheet = MakeSheet();
        Fill(sheet, {200, 100, 900, 60}, 190);
        DrawText(sheet, {300, 115, 500, 28}, 0);
        const QImage ink = Monochrome::WithTones(sheet, 200, fine);
        QCOMPARE(Blackness(ink, {300, 115, 2, 28}), 1.0);
        const double between = Blackness(ink, {900, 110, 150, 40});
        QVERIFY(between > 0.03 && between < 0.12); // a light tone, instead of black
    }

    void lightLettersAndLinesStayVisible()
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

    /// The steps are narrower than a block, as wide as one, wider, and so wide that each is an area.
    void gradientIsShownByDots()
    {
        constexpr int left = 100, darkest = 60, lightest = 180;
        for (const int step : {1, 3, 4, 8, 11, 20, 60}) {
            QImage sheet = MakeSheet();
            const int right = std::min(left + step * (lightest - darkest), SheetFormat::Width - 8);
            for (int x = left; x < right; ++x)
                Fill(sheet, {x, 100, 1, 300}, darkest + (x - left) / step);
            const QImage ink = Monochrome::WithTones(sheet, 200, fine);
            for (int x = left; x + 30 <= right; x += 30) {
                const double gray = 1 - (darkest + (x + 15.0 - left) / step) / 255;
                QVERIFY2(std::abs(Blackness(ink, {x, 110, 30, 280}) - gray) < 0.08,
                         qPrintable(QStringLiteral("step %1 at %2").arg(step).arg(x)));
            }
        }
    }

    void areasSideBySideStayGray()
    {
        QImage sheet = MakeSheet();
        for (int column = 0; column < 8; ++column)
            Fill(sheet, {100 + column * 113, 100, 102, 170}, 128);
        const QImage ink = Monochrome::WithTones(sheet, 200, fine);
        for (int column = 0; column < 8; ++column)
            QVERIFY(std::abs(Blackness(ink, {105 + column * 113, 105, 92, 160}) - 0.5) < 0.05);
    }

    void linesOfATableAreNoText()
    {
        QImage sheet = MakeSheet();
        Fill(sheet, {100, 100, 1000, 300}, 110);
        for (int y = 140; y < 400; y += 50)
            Fill(sheet, {100, y, 1000, 3}, 255);
        DrawText(sheet, {300, 150, 20, 28}, 0); // a word
        const QImage ink = Monochrome::WithTones(sheet, 200, fine);
        QVERIFY(Blackness(ink, {500, 150, 300, 30}) < 0.7);
        QCOMPARE(Blackness(ink, {500, 140, 300, 3}), 0.0);
    }
};

QTEST_MAIN(tst_Monochrome)
#include "tst_Monochrome.moc"
