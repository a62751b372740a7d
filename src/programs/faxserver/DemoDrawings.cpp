#include "DemoPages.h"
#include "Handwriting.h"

#include <QPainterPath>
#include <QRandomGenerator>

namespace {

QPen InkOf(int width, Qt::PenStyle style = Qt::SolidLine)
{
    return QPen(Qt::black, width, style, Qt::RoundCap, Qt::RoundJoin);
}

/// A road: both of its edges.
void DrawRoad(QPainter &painter, const QPainterPath &middle, int width)
{
    painter.setPen(QPen(Qt::black, width + 8, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
    painter.drawPath(middle);
    painter.setPen(QPen(Qt::white, width - 4, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
    painter.drawPath(middle);
}

void DrawTree(QPainter &painter, QRandomGenerator &hand, int x, int y)
{
    painter.setPen(InkOf(5));
    painter.drawLine(x, y, x, y - 34);
    QPainterPath crown(QPointF(x - 24, y - 34));
    for (int i = 0; i < 7; ++i)
        crown.quadTo(x - 40 + hand.bounded(80), y - 100 + hand.bounded(60), x - 26 + i * 9,
                     y - 40 - (i % 3) * 22);
    painter.drawPath(crown);
    painter.drawEllipse(QPoint(x, y - 62), 30 + hand.bounded(6), 34);
}

void DrawHouse(QPainter &painter, int x, int y, int width)
{
    painter.setPen(InkOf(6));
    painter.setBrush(Qt::white);
    painter.drawRect(x, y, width, width * 3 / 4);
    painter.drawPolyline(
        QPolygon({{x - 12, y + 4}, {x + width / 2, y - width / 2}, {x + width + 12, y + 2}}));
    painter.drawRect(x + width / 2 - 14, y + width * 3 / 4 - 44, 28, 44);
    painter.setBrush(Qt::NoBrush);
}

void DrawNorthArrow(QPainter &painter, QRandomGenerator &hand)
{
    painter.setPen(InkOf(6));
    painter.drawLine(1540, 420, 1546, 240);
    painter.drawPolyline(QPolygon({{1518, 290}, {1546, 236}, {1570, 292}}));
    Handwriting::Write(painter, hand, 1520, 214, 34, "N", 6);
}

void DrawDimension(FaxPaper &paper, int x1, int y1, int x2, int y2, const QString &length)
{
    paper.Line(x1, y1, x2, y2, 2);
    const bool isFlat = y1 == y2;
    for (const QPoint end : {QPoint(x1, y1), QPoint(x2, y2)})
        paper.Line(end.x() - 10, end.y() + 10, end.x() + 10, end.y() - 10, 4);
    QPainter &painter = paper.Painter();
    painter.save();
    painter.translate((x1 + x2) / 2, (y1 + y2) / 2);
    if (!isFlat)
        painter.rotate(-90);
    paper.TextCentred(0, -12, 30, length);
    painter.restore();
}

/// A door: a gap in the wall, the leaf and the arc that it sweeps. `angle` tells where the leaf stands open.
void DrawDoor(QPainter &painter, int x, int y, int size, int angle, bool isInFlatWall)
{
    painter.setPen(QPen(Qt::white, 26, Qt::SolidLine, Qt::FlatCap));
    painter.drawLine(x, y, isInFlatWall ? x + size : x, isInFlatWall ? y : y + size);
    painter.setPen(InkOf(4));
    const QRect swing(x - size, y - size, 2 * size, 2 * size);
    if (isInFlatWall) {
        painter.drawLine(x, y, x, angle > 0 ? y - size : y + size);
        painter.drawArc(swing, 0, (angle > 0 ? 90 : -90) * 16);
    } else {
        painter.drawLine(x, y, angle > 0 ? x + size : x - size, y);
        painter.drawArc(swing, 270 * 16, (angle > 0 ? 90 : -90) * 16);
    }
}

void DrawWindow(QPainter &painter, int x, int y, int length, bool isFlat)
{
    const QRect pane = isFlat ? QRect(x, y - 11, length, 22) : QRect(x - 11, y, 22, length);
    painter.setPen(InkOf(3));
    painter.setBrush(Qt::white);
    painter.drawRect(pane);
    painter.setBrush(Qt::NoBrush);
    painter.drawLine(isFlat ? x : x, isFlat ? y : y, isFlat ? x + length : x, isFlat ? y : y + length);
}

void DrawBench(QPainter &painter, int x, int y, int width, int height)
{
    painter.setPen(InkOf(3));
    painter.drawRect(x, y, width, height);
    painter.drawLine(x + 10, y + 10, x + width - 10, y + 10);
}

void DrawWalls(QPainter &painter)
{
    painter.setPen(QPen(Qt::black, 22, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.drawRect(280, 330, 1200, 1300);
    painter.drawLine(280, 1180, 1480, 1180);
    painter.drawLine(860, 1180, 860, 1630);
    painter.drawLine(1150, 330, 1150, 760);
    painter.drawLine(1150, 760, 1480, 760);

    DrawDoor(painter, 420, 1180, 110, 1, true);
    DrawDoor(painter, 1000, 1180, 110, 1, true);
    DrawDoor(painter, 1150, 560, 100, 1, false);
    DrawDoor(painter, 1250, 1630, 120, 1, true);
    painter.setPen(QPen(Qt::white, 26, Qt::SolidLine, Qt::FlatCap)); // the loading bay's gate
    painter.drawLine(280, 700, 280, 1000);
    painter.setPen(QPen(Qt::black, 5, Qt::DashLine));
    painter.drawLine(270, 700, 270, 1000);
    for (const int x : {420, 700, 960})
        DrawWindow(painter, x, 330, 160, true);
    DrawWindow(painter, 1480, 860, 220, false);
    DrawWindow(painter, 1480, 460, 160, false);
    DrawWindow(painter, 400, 1630, 260, true);
}

void DrawRooms(FaxPaper &paper)
{
    QPainter &painter = paper.Painter();
    painter.setPen(Qt::black);
    paper.TextCentred(690, 820, 46, "WORKSHOP", true);
    paper.TextCentred(690, 866, 34, "138.2 sq m");
    paper.TextCentred(1350, 520, 34, "PAINT", true);
    paper.TextCentred(1350, 560, 30, "21.4 sq m");
    paper.TextCentred(570, 1440, 40, "OFFICE", true);
    paper.TextCentred(570, 1484, 32, "40.3 sq m");
    paper.TextCentred(1170, 1400, 40, "STORE", true);
    paper.TextCentred(1170, 1444, 32, "43.1 sq m");
    DrawBench(painter, 380, 400, 260, 90);
    DrawBench(painter, 720, 400, 260, 90);
    DrawBench(painter, 1300, 900, 90, 220);
    painter.drawEllipse(QPoint(560, 1010), 60, 60);
    painter.drawRect(760, 920, 220, 120);
    painter.drawLine(760, 980, 980, 980);
    painter.setPen(Qt::black);
    paper.TextCentred(870, 1076, 26, "saw");
    paper.TextCentred(560, 1020, 26, "lathe");
    for (int y = 1240; y < 1360; y += 40)
        DrawBench(painter, 900, y, 60, 34);
}

void DrawTitleBlock(FaxPaper &paper, QDate date)
{
    paper.Frame(900, 1830, 680, 330, 4);
    for (const int y : {1930, 2010, 2085})
        paper.Line(900, y, 1580, y, 2);
    paper.Painter().setPen(Qt::black);
    paper.Text(930, 1895, 44, "Studio Ferrante", true);
    paper.Text(930, 1982, 30, "Unit 7, Northgate Yard: ground floor");
    paper.Text(930, 2060, 30, "Drawn " + date.addDays(-2).toString("yyyy-MM-dd") + "   GF");
    paper.Text(930, 2136, 30, "Scale 1:100   Sheet A-02   Rev. C");
    paper.Text(280, 1900, 30, "Dimensions in metres.");
    paper.Text(280, 1944, 30, "Check on site before cutting.");
}

void DrawRiverAndRoads(QPainter &painter, QRandomGenerator &hand)
{
    QPainterPath river(QPointF(90, 700));
    river.cubicTo(420, 560, 560, 900, 900, 820);
    river.cubicTo(1240, 730, 1300, 980, 1650, 900);
    painter.setPen(InkOf(4));
    for (const int offset : {0, 26, 52})
        painter.drawPath(river.translated(0, offset));
    Handwriting::Write(painter, hand, 1310, 1060, 26, "river", 5);

    QPainterPath mainRoad(QPointF(780, 2200));
    mainRoad.cubicTo(700, 1800, 860, 1500, 800, 1180);
    mainRoad.cubicTo(760, 960, 860, 760, 800, 380);
    QPainterPath lane(QPointF(800, 1180));
    lane.cubicTo(1000, 1160, 1180, 1260, 1330, 1240);
    lane.cubicTo(1440, 1230, 1480, 1330, 1480, 1420);
    QPainterPath villageRoad(QPointF(770, 1580));
    villageRoad.cubicTo(600, 1560, 420, 1640, 240, 1600);
    DrawRoad(painter, villageRoad, 40);
    DrawRoad(painter, lane, 36);
    DrawRoad(painter, mainRoad, 60);
    Handwriting::Write(painter, hand, 900, 1000, 28, "bridge", 5);
    Handwriting::Write(painter, hand, 880, 480, 30, "to the town", 5);
    Handwriting::Write(painter, hand, 850, 2140, 30, "Northgate, 6 km", 5);
}

void DrawVillageAndWood(QPainter &painter, QRandomGenerator &hand)
{
    DrawHouse(painter, 300, 1440, 90);
    DrawHouse(painter, 440, 1460, 80);
    DrawHouse(painter, 360, 1700, 84);
    painter.setPen(InkOf(6));
    painter.drawRect(170, 1400, 60, 110); // the church
    painter.drawPolyline(QPolygon({{162, 1402}, {200, 1310}, {238, 1400}}));
    painter.drawLine(200, 1308, 200, 1270);
    painter.drawLine(186, 1286, 214, 1286);
    Handwriting::Write(painter, hand, 180, 1840, 28, "village", 5);
    for (const QPoint tree : {QPoint(1000, 1560), QPoint(1080, 1620), QPoint(1160, 1550), QPoint(1060, 1500),
                              QPoint(330, 1060), QPoint(420, 1110), QPoint(250, 1120), QPoint(1250, 1640)})
        DrawTree(painter, hand, tree.x(), tree.y());
    Handwriting::Write(painter, hand, 1010, 1720, 28, "wood", 5);
}

void DrawBarn(QPainter &painter, QRandomGenerator &hand)
{
    DrawHouse(painter, 1400, 1480, 170);
    painter.setPen(InkOf(7));
    painter.drawEllipse(QPoint(1484, 1510), 170, 160);
    Handwriting::Write(painter, hand, 1290, 1780, 36, "barn!", 8);
    painter.setPen(InkOf(6));
    painter.drawLine(1010, 1230, 930, 1300);
    painter.drawPolyline(QPolygon({{1008, 1270}, {1012, 1228}, {968, 1236}}));
    Handwriting::Write(painter, hand, 850, 1370, 28, "turn right here", 5);
}

} // namespace

void DemoPages::DrawMap(FaxPaper &paper, QDate)
{
    QPainter &painter = paper.Painter();
    QRandomGenerator hand(42);
    Handwriting::Write(painter, hand, 170, 220, 48, "How to find the barn", 7);
    DrawNorthArrow(painter, hand);
    DrawRiverAndRoads(painter, hand);
    DrawVillageAndWood(painter, hand);
    DrawBarn(painter, hand);
    int y = 1970;
    for (const QString &line : {QString("see you"), QString("Saturday,"), QString("Marta")}) {
        Handwriting::Write(painter, hand, 190, y, 30, line, 5);
        y += 88;
    }
}

void DemoPages::DrawFloorPlan(FaxPaper &paper, QDate date)
{
    DrawWalls(paper.Painter());
    DrawRooms(paper);
    DrawDimension(paper, 280, 250, 1480, 250, "15.20");
    DrawDimension(paper, 280, 1720, 860, 1720, "7.35");
    DrawDimension(paper, 860, 1720, 1480, 1720, "7.85");
    DrawDimension(paper, 200, 330, 200, 1630, "16.40");
    DrawDimension(paper, 1570, 330, 1570, 760, "5.40");
    DrawTitleBlock(paper, date);
}
