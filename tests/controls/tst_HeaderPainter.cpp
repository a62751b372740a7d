#include "controls/HeaderPainter.h"
#include "controls/HeaderTexts.h"
#include "fixtures/Ink.h"

#include <QTest>

#include <thread>

namespace {

/// Positions of a profile's texts.
enum { headerLeft, headerMiddle, headerRight, headerLeft2, footerLeft = 6, footerMiddle, footerRight = 11 };

HeaderProfile Texts(std::initializer_list<std::pair<int, QString>> texts)
{
    HeaderProfile profile;
    for (const auto &[position, text] : texts)
        profile.aTexts[static_cast<std::size_t>(position)].strText = text;
    return profile;
}

HeaderFields Fields(int page)
{
    return {page, 12, QDateTime(QDate(2024, 1, 31), QTime(9, 5)), "Meyer & Co", "Anna\r\nBert [Page] <b>"};
}

QImage Paint(const HeaderPainter &painter, QSize size = {1728, 2292}, int page = 1)
{
    QImage sheet(size, QImage::Format_Mono);
    sheet.fill(0);
    painter.Paint(sheet, Fields(page));
    return sheet;
}

QImage Paint(const HeaderProfile &profile, int page = 1)
{
    return Paint(HeaderPainter(profile, 204, 196), {1728, 2292}, page);
}

bool IsNear(int value, int wanted, int dots = 3)
{
    if (std::abs(value - wanted) <= dots)
        return true;
    qWarning("%d is not near %d", value, wanted);
    return false;
}

} // namespace

class tst_HeaderPainter final : public QObject
{
    Q_OBJECT

private slots:
    /// Margins of 20 mm are 161 dots across, the right one of 40 mm is 321.
    void textsStandInTheirZones()
    {
        const std::array columns{161, (161 + 1728 - 321) / 2, 1728 - 321};
        const auto positions = {headerLeft, headerMiddle, headerRight, footerLeft, footerMiddle, footerRight};
        for (int test = 0; test < 12; ++test) {
            const int position = positions.begin()[test % 6], dotsDown = test < 6 ? 196 : 98;
            const int rows = dotsDown * 2292 / 196, edge = dotsDown * 200 / 254, space = dotsDown * 100 / 254;
            HeaderProfile profile = Texts({{position, "HEADH"}});
            profile.headerSpace = profile.footerSpace = {200, 400, 200, 100};
            const HeaderPainter painter(profile, 204, dotsDown);
            const QRect ink = FindInk(Paint(painter, {1728, rows}));
            const std::array found{ink.left(), ink.center().x(), ink.right()};
            const auto zone = static_cast<std::size_t>(position % 3);
            QVERIFY(IsNear(found[zone], columns[zone]));
            const bool isFooter = position >= footerLeft;
            QVERIFY(
                IsNear(isFooter ? ink.bottom() : ink.top(), isFooter ? rows - edge : edge, dotsDown / 20));
            QVERIFY(IsNear(isFooter ? painter.FooterHeight(1) : painter.HeaderHeight(1), edge + space));
            QCOMPARE(isFooter ? painter.HeaderHeight(1) : painter.FooterHeight(1), 0);
        }
    }

    void lettersKeepTheirProportions()
    {
        for (const double size : {6.0, 8.25, 24.0}) {
            HeaderProfile profile = Texts({{headerLeft, "Hamburg 12"}});
            profile.aTexts[headerLeft].dFontSize = size;
            const QRect fine = FindInk(Paint(profile));
            const QRect standard = FindInk(Paint(HeaderPainter(profile, 204, 98), {1728, 1146}));
            QVERIFY(IsNear(standard.width(), fine.width(), fine.width() / 50));
            QVERIFY(IsNear(2 * standard.height(), fine.height()));
            QVERIFY(
                IsNear(fine.width(), qRound(9.9 * 0.6 * size / 72 * 204), fine.width() / 25)); // 0.6 em each
        }
    }

    void rowsFollowTheirTexts()
    {
        HeaderProfile second = Texts({{headerLeft2, "H"}});
        QCOMPARE(Paint(second), Paint(Texts({{headerLeft, "H"}}))); // a line without text takes no room
        QVERIFY(IsNear(
            HeaderPainter(Texts({{headerLeft, "H"}, {headerLeft2, "H"}}), 204, 196).HeaderHeight(1), 3 * 39));
        second.headerSpace.lLineSpace = 0;
        second.aTexts[headerLeft2].dFontSize = 36; // half an inch
        QVERIFY(IsNear(HeaderPainter(second, 204, 196).HeaderHeight(1), 39 + 98 * 115 / 100, 8));
        QVERIFY(FindInk(Paint(Texts({{headerLeft, "  "}}))).isEmpty());
    }

    void firstPageRulesHold()
    {
        HeaderProfile profile = Texts({{headerLeft, "H"}, {footerRight, "F"}});
        profile.bOnlyFirstHeader = true;
        const HeaderPainter painter(profile, 204, 196);
        QVERIFY(painter.HeaderHeight(1) > 0 && painter.HeaderHeight(2) == 0 && painter.FooterHeight(2) > 0);
        QCOMPARE(Paint(profile, 2), Paint(Texts({{footerRight, "F"}})));
        profile.bOnlyFirstFooter = true;
        QVERIFY(FindInk(Paint(profile, 2)).isEmpty() && !FindInk(Paint(profile)).isEmpty());
    }

    void eachTextHasItsFont()
    {
        const QImage plain = Paint(Texts({{headerLeft, "Hill"}}));
        for (const auto flag :
             {&HeaderText::bBold, &HeaderText::bItalic, &HeaderText::bUnderline, &HeaderText::bStrikeOut}) {
            HeaderProfile profile = Texts({{headerLeft, "Hill"}});
            profile.aTexts[headerLeft].*flag = true;
            QVERIFY(Paint(profile) != plain);
        }
        HeaderProfile other = Texts({{headerLeft, "Hill"}});
        other.aTexts[headerLeft].strFontName = "Times New Roman";
        QVERIFY(FindInk(Paint(other)).width() < FindInk(plain).width());
        other.aTexts[headerLeft].strFontName = "No Such Family";
        QVERIFY(!FindInk(Paint(other)).isEmpty());
    }

    void macrosAreReplacedOnce()
    {
        const auto expand = [](const QString &text) { return HeaderTexts::Expand(text, Fields(3)); };
        QCOMPARE(expand("Page [Page] of [PageCount], [Date] [Time]"), "Page 3 of 12, 2024-01-31 09:05");
        QCOMPARE(expand("[Recipients]/[CompanyName]"), "Anna Bert [Page] <b>/Meyer & Co");
        QCOMPARE(expand("[page] [Pages] [[Page]] ["), "[page] [Pages] [3] [");
        QCOMPARE(expand(" a\r\n\tb"), "a b");
    }

    void longTextsGiveWay()
    {
        const auto place = [](int left, int middle, int right) {
            return HeaderTexts::Place({left, middle, right}, 1000, 10);
        };
        QCOMPARE(place(100, 200, 300).aLeft, (std::array{0, 400, 700}));
        QCOMPARE(place(500, 200, 100).aLeft, (std::array{0, 510, 900})); // moved aside
        QCOMPARE(place(300, 900, 100).aLeft, (std::array{0, 310, 900}));
        QCOMPARE(place(300, 900, 100).aWidth, (std::array{300, 580, 100}));
        QCOMPARE(place(2000, 900, 100).aWidth, (std::array{684, 196, 100})); // the longer side, too
        QCOMPARE(place(2000, 0, 3000).aWidth, (std::array{495, 0, 495}));
        QCOMPARE(HeaderTexts::Place({5, 5, 5}, -20, 10).aWidth, (std::array{0, 0, 0}));

        HeaderProfile profile = Texts({{headerLeft, "[Date]"}, {headerRight, "[Page]"}});
        const QImage sides = Paint(profile);
        profile.aTexts[headerMiddle].strText = QString(254, 'M');
        const QImage full = Paint(profile);
        const QRect left = FindInk(sides.copy(0, 0, 800, 2292)), right = FindInk(sides, {800, 0, 928, 2292});
        QVERIFY(full.copy(left) == sides.copy(left) && full.copy(right) == sides.copy(right));
        QVERIFY(FindInk(full).height() < 39);
        QVERIFY(FindInk(full, {left.right() + 1, 0, 27, 2292}).isEmpty());
        QVERIFY(FindInk(full, {right.left() - 27, 0, 27, 2292}).isEmpty());
    }

    void absurdProfilesStayOnTheSheet()
    {
        HeaderProfile profile;
        profile.aTexts.fill({QString(254, 'W'), "Arial", 1e9, true, true, true, true, 0});
        profile.headerSpace = profile.footerSpace = {1000, 900, 1000, 1000};
        const HeaderPainter painter(profile, 204, 196);
        QVERIFY(painter.HeaderHeight(1) + painter.FooterHeight(1) < 2292 * 9 / 10);
        for (const QSize size : {QSize(1728, 2292), QSize(1, 1), QSize(13, 60)})
            Paint(painter, size);
    }

    void threadsPaintTheSame()
    {
        const HeaderPainter painter(
            Texts({{headerLeft, "[Recipients] [Page]"}, {footerMiddle, "[CompanyName]"}}), 204, 98);
        std::array<QList<QImage>, 2> pages;
        const auto paint = [&](QList<QImage> &list) {
            for (int page = 1; page <= 30; ++page)
                list.append(Paint(painter, {1728, 1146}, page));
        };
        std::thread other(paint, std::ref(pages[0]));
        paint(pages[1]);
        other.join();
        QVERIFY(pages[0] == pages[1] && pages[0].first() != pages[0].last());
    }
};

QTEST_MAIN(tst_HeaderPainter)
#include "tst_HeaderPainter.moc"
