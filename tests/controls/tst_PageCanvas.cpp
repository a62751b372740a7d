#include "controls/Colors.h"
#include "controls/PageCanvas.h"
#include "controls/PageScaler.h"

#include <QImage>
#include <QPainter>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStyle>
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
        canvas->setFrameShape(QFrame::NoFrame);
        canvas->resize(400, 300);
        lBar = canvas->verticalScrollBar()->sizeHint().width() +
               canvas->style()->pixelMetric(QStyle::PM_ScrollView_ScrollBarSpacing, nullptr, canvas.get());
    }
    void cleanup() { canvas.reset(); }

    void thinStrokesTurnGreyWhenShrunk()
    {
        const PageBits page = StrokedPage(400, 40, 101);
        const QImage small = PageScaler::Shrink(page, {100, 10}, {0, 0, 100, 10});
        QCOMPARE(small.size(), QSize(100, 10));
        QCOMPARE(qGray(small.pixel(25, 5)), 191); // a quarter of four white columns is black
        QCOMPARE(qGray(small.pixel(24, 5)), 255);
        QCOMPARE(PageScaler::Shrink(page, {100, 10}, {20, 5, 30, 4}), small.copy(20, 5, 30, 4));
        const QImage uneven = PageScaler::Shrink(StrokedPage(101, 10, 50), {30, 10}, {0, 0, 30, 10});
        int ink = 0;
        for (int x = 0; x < 30; ++x)
            ink += 255 - qGray(uneven.pixel(x, 5));
        QVERIFY(qAbs(ink - 255 * 30 / 101) <= 2); // no ink is lost where a stroke falls between two pixels
    }

    /// The same page in every form that a decoder gives.
    void allFormsShrinkAlike()
    {
        const PageBits bits = StrokedPage(203, 60, 102);
        const QImage picture = PageScaler::Crop(bits, {0, 0, 203, 60});
        PageBits turned = bits, bytes = bits, colors = bits;
        turned.aPalette = {0xff000000, 0xffffffff};
        for (char &byte : turned.abBits)
            byte = static_cast<char>(~byte);
        bytes.lBitsPerPixel = 8;
        bytes.lBytesPerLine = 204;
        bytes.abBits = (QByteArray(102, 0) + '\1' + QByteArray(101, 0)).repeated(60);
        colors.lBitsPerPixel = 32;
        colors.lBytesPerLine = 203 * 4;
        colors.abBits =
            QByteArray(reinterpret_cast<const char *>(picture.constBits()), picture.sizeInBytes());
        const QRect part(10, 3, 60, 30);
        const QImage expected = PageScaler::Shrink(bits, {91, 77}, part);
        QVERIFY(qGray(expected.pixel(35, 0)) < 200); // the stroke
        for (const PageBits &page : {turned, bytes, colors}) {
            const QImage shrunk = PageScaler::Shrink(page, {91, 77}, part);
            QCOMPARE(shrunk.size(), part.size());
            for (int x = 0; x < shrunk.width(); ++x)
                QVERIFY(qAbs(qGray(shrunk.pixel(x, 7)) - qGray(expected.pixel(x, 7))) <=
                        1); // roundings differ
        }
    }

    void damagedPageGivesNoPicture()
    {
        PageBits page = StrokedPage(400, 40, 0);
        const QRect part(0, 0, 10, 10);
        QVERIFY(PageScaler::Shrink(page, {10, 10}, part.translated(10, 0)).isNull());
        page.abBits.chop(1);
        QVERIFY(PageScaler::Crop(page, part).isNull());
        QVERIFY(PageScaler::Shrink(page, {10, 10}, part).isNull());
        page.lBitsPerPixel = 24;
        QVERIFY(PageScaler::Crop(page, part).isNull());
    }

    void widthFitsAndFollowsTheView()
    {
        canvas->SetFitMode(PageGeometry::FitWidth);
        canvas->SetZAutoFit(true);
        canvas->SetPage(StrokedPage(1728, 2292, 10), false, false, false);
        QVERIFY(qAbs(canvas->PageRect().width() - (400 - lBar)) < 1);
        canvas->resize(800, 300);
        canvas->grab(); // lets a hidden widget take its size
        QVERIFY(qAbs(canvas->PageRect().width() - (800 - lBar)) < 1);
        canvas->SetFitMode(PageGeometry::FitWhole);
        canvas->FitToView();
        QVERIFY(qAbs(canvas->PageRect().height() - 300) < 1);
        QVERIFY(qAbs(canvas->PageRect().center().x() - 400) < 1); // without bars, in the middle
        // A page that would be too tall without its bar, and fits with it, settles.
        canvas->SetFitMode(PageGeometry::FitWidth);
        canvas->SetPage(StrokedPage(800, 301, 10), false, false, false);
        QCOMPARE(canvas->PageRect().width(), 800.0 - lBar);
        QCOMPARE(canvas->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    }

    void smallPageIsCentredAndStaysPut()
    {
        canvas->SetPage(StrokedPage(100, 50, 10), false, true, false); // a stretched page counts twice
        QCOMPARE(canvas->PageRect().size(), QSizeF(100, 100));
        canvas->SetPage(StrokedPage(50, 100, 10), true, false, false);
        QCOMPARE(canvas->PageRect().size(), QSizeF(100, 100));
        canvas->SetPage(StrokedPage(101, 50, 10), false, false, false);
        QCOMPARE(canvas->PageRect().topLeft(), QPointF(149, 125));
        Drag({150, 130}, {50, 30});
        QCOMPARE(canvas->PageRect().topLeft(), QPointF(149, 125));
    }

    void dragStopsAtTheEdges()
    {
        canvas->SetPage(StrokedPage(600, 500, 10), false, false, false);
        QTest::keyClick(canvas.get(), Qt::Key_Down);
        QCOMPARE(Offset(), QPointF(0, 40));
        Drag({200, 200}, {190, 170});
        QCOMPARE(Offset(), QPointF(10, 70));
        QCOMPARE(canvas->viewport()->cursor().shape(), Qt::ClosedHandCursor);
        QTest::mouseMove(canvas->viewport(), {-900, -900});
        QCOMPARE(Offset(), QPointF(200 + lBar, 200 + lBar));
        QTest::mouseMove(canvas->viewport(), {900, 900});
        QCOMPARE(Offset(), QPointF(0, 0));
        QTest::mouseRelease(canvas->viewport(), Qt::LeftButton);
        canvas->SetZMovAcc(2);
        Drag({200, 200}, {190, 190});
        QCOMPARE(Offset(), QPointF(20, 20));
        QCOMPARE(canvas->verticalScrollBar()->value(), 20);
        canvas->verticalScrollBar()->setValue(50);
        QCOMPARE(Offset(), QPointF(20, 50));
    }

    void wheelZoomsAroundTheCursor()
    {
        canvas->SetPage(StrokedPage(1600, 1200, 10), false, false, false);
        const QSignalSpy zoomed(canvas.get(), &PageCanvas::ZoomedByUser);
        const QPointF cursor(300, 200);
        const QPointF before = (cursor - canvas->PageRect().topLeft()) / canvas->ZValue();
        const auto turn = [&](int angle, Qt::KeyboardModifiers modifiers) {
            QWheelEvent event(cursor, cursor, {}, {0, angle}, Qt::NoButton, modifiers, Qt::NoScrollPhase,
                              false);
            QCoreApplication::sendEvent(canvas->viewport(), &event);
        };
        turn(120, Qt::ControlModifier);
        QCOMPARE(canvas->ZValue(), 1.2);
        QCOMPARE(zoomed.size(), 1);
        const QPointF after = (cursor - canvas->PageRect().topLeft()) / canvas->ZValue();
        QVERIFY((after - before).manhattanLength() < 0.01);
        const QPointF offset = Offset();
        turn(-120, {});
        QVERIFY(Offset().y() > offset.y());
        QCOMPARE(zoomed.size(), 1);
    }

    void endOfThePageAsksForTheNext()
    {
        canvas->SetPage(StrokedPage(300, 500, 10), false, false, false);
        const QSignalSpy next(canvas.get(), &PageCanvas::PageDownRequested);
        QTest::keyClick(canvas.get(), Qt::Key_PageDown);
        QCOMPARE(next.size(), 0);
        QTest::keyClick(canvas.get(), Qt::Key_PageDown);
        QCOMPARE(next.size(), 1);
        QCOMPARE(canvas->OffsetY(), 200.0);
    }

    void pageIsPainted()
    {
        const auto isInk = [this](int x, int y) { return qGray(canvas->grab().toImage().pixel(x, y)) < 200; };
        canvas->SetPage(StrokedPage(400, 300, 100), false, false, false);
        QVERIFY(isInk(100, 150) && !isInk(110, 150));
        canvas->SetZValue(0.5); // drawn from the averaged page, centred
        QVERIFY(isInk(150, 150) && !isInk(160, 150));
        canvas->SetZValue(4.0);
        const int left = static_cast<int>(canvas->PageRect().left());
        QVERIFY(isInk(4 * 100 + left + 1, 150));
        canvas->SetPage(StrokedPage(400, 300, 100 - left / 4), false, false, true);
        QVERIFY(!isInk(0, 150));
    }

    void noticeStandsInForAPage()
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

    void inksAreReadable()
    {
        const QColor blue(0, 0, 255);
        QCOMPARE(GetReadableColor(blue, Qt::white), blue);
        QCOMPARE(GetReadableColor(Qt::red, Qt::white), QColor(Qt::red));
        const QColor onDark = GetReadableColor(blue, QColor(30, 30, 30));
        QVERIFY(onDark.lightness() > blue.lightness());
        QVERIFY(GetReadableColor(QColor(150, 150, 150), Qt::white).lightness() >= 140);
    }

private:
    QPointF Offset() const { return {canvas->OffsetX(), canvas->OffsetY()}; }
    void Drag(QPoint from, QPoint to)
    {
        QTest::mousePress(canvas->viewport(), Qt::LeftButton, {}, from);
        QTest::mouseMove(canvas->viewport(), to);
    }

    std::unique_ptr<PageCanvas> canvas;
    int lBar = 0; ///< width of a scroll bar
};

QTEST_MAIN(tst_PageCanvas)
#include "tst_PageCanvas.moc"
