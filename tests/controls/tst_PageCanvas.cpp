#include "controls/Colors.h"
#include "controls/Icons.h"
#include "controls/PageCanvas.h"
#include "controls/PageScaler.h"

#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

#include <memory>

namespace {

/// White, with one black stroke of one pixel down the column `stroke`.
PageBits StrokedPage(int width, int height, int stroke)
{
    PageBits page;
    page.lWidth = width;
    page.lHeight = height;
    page.lBitsPerPixel = 1;
    page.lBytesPerLine = (width + 31) / 32 * 4;
    page.abBits.fill(0, page.lBytesPerLine * height);
    for (int y = 0; y < height; ++y)
        page.abBits[y * page.lBytesPerLine + stroke / 8] = static_cast<char>(0x80 >> stroke % 8);
    page.aPalette = {0xffffffff, 0xff000000};
    return page;
}

} // namespace

class tst_PageCanvas : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        canvas = std::make_unique<PageCanvas>();
        canvas->resize(400, 300);
    }
    void cleanup() { canvas.reset(); }

    void thinStrokesTurnGreyWhenShrunk();
    void damagedPageGivesNoPicture();
    void widthFitsAndFollowsTheView();
    void stretchedPageCountsTwice();
    void smallPageIsCentredAndStaysPut();
    void dragStopsAtTheEdges();
    void wheelZoomsAroundTheCursor();
    void endOfThePageAsksForTheNext();
    void pageIsPainted();
    void noticeStandsInForAPage();
    void inksAreReadable();
    void iconsExist();

private:
    std::unique_ptr<PageCanvas> canvas;
};

void tst_PageCanvas::thinStrokesTurnGreyWhenShrunk()
{
    const QImage small = PageScaler::Shrink(StrokedPage(400, 40, 101), {100, 10});
    QCOMPARE(small.size(), QSize(100, 10));
    QCOMPARE(qGray(small.pixel(25, 5)), 191); // a quarter of four white columns is black
    QCOMPARE(qGray(small.pixel(24, 5)), 255);
    const QImage uneven = PageScaler::Shrink(StrokedPage(100, 10, 50), {30, 10});
    int ink = 0;
    for (int x = 0; x < 30; ++x)
        ink += 255 - qGray(uneven.pixel(x, 5));
    QVERIFY(qAbs(ink - 255 * 30 / 100) <= 2); // no ink is lost where a stroke falls between two pixels
}

void tst_PageCanvas::damagedPageGivesNoPicture()
{
    PageBits page = StrokedPage(400, 40, 0);
    page.abBits.chop(1);
    QVERIFY(PageScaler::ToImage(page).isNull());
    QVERIFY(PageScaler::Shrink(page, {10, 10}).isNull());
    page.lBitsPerPixel = 24;
    QVERIFY(PageScaler::ToImage(page).isNull());
}

void tst_PageCanvas::widthFitsAndFollowsTheView()
{
    canvas->SetFitMode(PageCanvas::FitWidth);
    canvas->SetZAutoFit(true);
    canvas->SetPage(StrokedPage(1728, 2292, 10), false, false, false);
    QVERIFY(qAbs(canvas->PageRect().width() - (400 - 16)) < 1);
    canvas->resize(800, 300);
    QCoreApplication::sendPostedEvents();
    canvas->grab(); // lets a hidden widget take its size
    QVERIFY(qAbs(canvas->PageRect().width() - (800 - 16)) < 1);
    canvas->SetFitMode(PageCanvas::FitWhole);
    canvas->FitToView();
    QVERIFY(canvas->PageRect().height() <= 300);
}

void tst_PageCanvas::stretchedPageCountsTwice()
{
    canvas->SetPage(StrokedPage(100, 50, 10), false, true, false);
    QCOMPARE(canvas->PageRect().size(), QSizeF(100, 100));
    canvas->SetPage(StrokedPage(50, 100, 10), true, false, false);
    QCOMPARE(canvas->PageRect().size(), QSizeF(100, 100));
}

void tst_PageCanvas::smallPageIsCentredAndStaysPut()
{
    canvas->SetPage(StrokedPage(101, 50, 10), false, false, false);
    QCOMPARE(canvas->PageRect().topLeft(), QPointF(149, 125));
    QTest::mousePress(canvas.get(), Qt::LeftButton, {}, {150, 130});
    QTest::mouseMove(canvas.get(), {50, 30});
    QTest::mouseRelease(canvas.get(), Qt::LeftButton, {}, {50, 30});
    QCOMPARE(canvas->PageRect().topLeft(), QPointF(149, 125));
}

void tst_PageCanvas::dragStopsAtTheEdges()
{
    canvas->SetPage(StrokedPage(600, 500, 10), false, false, false);
    QTest::keyClick(canvas.get(), Qt::Key_Down);
    QCOMPARE(canvas->Offset(), QPointF(0, 40));
    QTest::mousePress(canvas.get(), Qt::LeftButton, {}, {200, 200});
    QTest::mouseMove(canvas.get(), {190, 170});
    QCOMPARE(canvas->Offset(), QPointF(10, 70));
    QTest::mouseMove(canvas.get(), {-900, -900});
    QCOMPARE(canvas->Offset(), QPointF(200, 200));
    QTest::mouseMove(canvas.get(), {900, 900});
    QCOMPARE(canvas->Offset(), QPointF(0, 0));
    QTest::mouseRelease(canvas.get(), Qt::LeftButton);
    canvas->SetZMovAcc(2);
    QTest::mousePress(canvas.get(), Qt::LeftButton, {}, {200, 200});
    QTest::mouseMove(canvas.get(), {190, 190});
    QCOMPARE(canvas->Offset(), QPointF(20, 20));
}

void tst_PageCanvas::wheelZoomsAroundTheCursor()
{
    canvas->SetPage(StrokedPage(1600, 1200, 10), false, false, false);
    const QSignalSpy zoomed(canvas.get(), &PageCanvas::ZoomedByUser);
    const QPointF cursor(300, 200);
    const QPointF before = (cursor - canvas->PageRect().topLeft()) / canvas->ZValue();
    QWheelEvent turn(cursor, cursor, {}, {0, 120}, Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase,
                     false);
    QCoreApplication::sendEvent(canvas.get(), &turn);
    QCOMPARE(canvas->ZValue(), 1.2);
    QCOMPARE(zoomed.size(), 1);
    const QPointF after = (cursor - canvas->PageRect().topLeft()) / canvas->ZValue();
    QVERIFY((after - before).manhattanLength() < 0.01);
    QWheelEvent scroll(cursor, cursor, {}, {0, -120}, Qt::NoButton, {}, Qt::NoScrollPhase, false);
    const QPointF offset = canvas->Offset();
    QCoreApplication::sendEvent(canvas.get(), &scroll);
    QVERIFY(canvas->Offset().y() > offset.y());
    QCOMPARE(zoomed.size(), 1);
}

void tst_PageCanvas::endOfThePageAsksForTheNext()
{
    canvas->SetPage(StrokedPage(300, 500, 10), false, false, false);
    const QSignalSpy next(canvas.get(), &PageCanvas::PageDownRequested);
    QTest::keyClick(canvas.get(), Qt::Key_PageDown);
    QCOMPARE(next.size(), 0);
    QTest::keyClick(canvas.get(), Qt::Key_PageDown);
    QCOMPARE(next.size(), 1);
}

void tst_PageCanvas::pageIsPainted()
{
    const auto isInk = [this](int x, int y) { return qGray(canvas->grab().toImage().pixel(x, y)) < 200; };
    canvas->SetPage(StrokedPage(400, 300, 100), false, false, false);
    QVERIFY(isInk(100, 150) && !isInk(110, 150));
    canvas->SetZValue(0.5); // drawn from the averaged page, centred
    QVERIFY(isInk(150, 150) && !isInk(160, 150));
    canvas->SetZValue(4.0);
    const int left = static_cast<int>(canvas->PageRect().left());
    canvas->SetPage(StrokedPage(400, 300, 100 - left / 4), false, false, true);
    QVERIFY(!isInk(0, 150));
}

void tst_PageCanvas::noticeStandsInForAPage()
{
    canvas->SetPage(StrokedPage(100, 100, 1), false, false, false);
    const QImage withPage = canvas->grab().toImage();
    canvas->Clear("Nothing here");
    QVERIFY(!canvas->HasPage());
    const QSignalSpy zoomed(canvas.get(), &PageCanvas::ZoomedByUser);
    QTest::keyClick(canvas.get(), Qt::Key_Plus);
    QCOMPARE(zoomed.size(), 0);
    QVERIFY(canvas->grab().toImage() != withPage);
}

void tst_PageCanvas::inksAreReadable()
{
    const QColor blue(0, 0, 255);
    QCOMPARE(GetReadableColor(blue, Qt::white), blue);
    QCOMPARE(GetReadableColor(Qt::red, Qt::white), QColor(Qt::red));
    const QColor onDark = GetReadableColor(blue, QColor(30, 30, 30));
    QVERIFY(onDark.lightness() > blue.lightness());
    QVERIFY(GetReadableColor(QColor(150, 150, 150), Qt::white).lightness() >= 140);
}

void tst_PageCanvas::iconsExist()
{
    for (const char *key : {"imgReceived", "imgNotRead", "tbSendReceive", "btnFixWidth"}) {
        QVERIFY(!Icons::Get(key).isNull());
        for (const int size : {16, 22, 32})
            QCOMPARE(Icons::Get(key).pixmap(size, size).size(), QSize(size, size));
    }
    QVERIFY(Icons::Get("imgNobody").isNull());
}

QTEST_MAIN(tst_PageCanvas)
#include "tst_PageCanvas.moc"
