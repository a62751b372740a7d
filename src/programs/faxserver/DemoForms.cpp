#include "DemoPages.h"
#include "Handwriting.h"

#include <QRandomGenerator>

namespace {

constexpr int lMargin = FaxPaper::lMargin;
constexpr int lRight = FaxPaper::lWidth - FaxPaper::lMargin;

struct Column
{
    QString strHead;
    int lWidth;
    bool bRight;
};

/// A table with a dark head; returns its lower edge.
int DrawTable(FaxPaper &paper, int y, const QList<Column> &columns, const QList<QStringList> &rows,
              int height)
{
    QPainter &painter = paper.Painter();
    painter.fillRect(lMargin, y, FaxPaper::lTextWidth, height, Qt::black);
    painter.setPen(Qt::white);
    int x = lMargin;
    for (const Column &column : columns) {
        if (column.bRight)
            paper.TextRight(x + column.lWidth - 14, y + height / 2 + 11, 32, column.strHead, true);
        else
            paper.Text(x + 14, y + height / 2 + 11, 32, column.strHead, true);
        x += column.lWidth;
    }
    const int top = y;
    for (const QStringList &row : rows) {
        y += height;
        x = lMargin;
        paper.Line(lMargin, y + height, lRight, y + height, 2);
        painter.setPen(Qt::black);
        for (qsizetype i = 0; i < columns.size(); ++i) {
            if (columns[i].bRight)
                paper.TextRight(x + columns[i].lWidth - 14, y + height / 2 + 11, 32, row.value(i));
            else
                paper.Text(x + 14, y + height / 2 + 11, 32, row.value(i));
            x += columns[i].lWidth;
        }
    }
    y += height;
    x = lMargin;
    for (const Column &column : columns) {
        paper.Line(x, top, x, y, 2);
        x += column.lWidth;
    }
    paper.Line(lRight, top, lRight, y, 2);
    return y;
}

QString Money(int cents)
{
    QString whole = QString::number(cents / 100);
    if (whole.size() > 3)
        whole.insert(whole.size() - 3, ',');
    return whole + '.' + QString::number(cents % 100).rightJustified(2, '0');
}

void DrawTick(FaxPaper &paper, int x, int y)
{
    paper.Line(x, y + 18, x + 16, y + 40, 7);
    paper.Line(x + 16, y + 40, x + 50, y - 12, 7);
}

void DrawTerms(FaxPaper &paper)
{
    paper.Text(lMargin, 380, 42, "Terms of sale", true);
    const QStringList terms{
        "Payment is due within 30 days of the date of the invoice; 2 % may be deducted within 10 days.",
        "The timber stays our property until it has been paid in full.",
        "Measures are nominal. Sawn timber may differ by 2 mm in thickness and 4 mm in width; planed "
        "timber by half of that.",
        "Moisture is measured at loading, in three boards of each lot, and is written on the lot's "
        "label.",
        "Please report visible faults on the day of delivery, and others within eight days, with the "
        "number of the lot."};
    int y = 430;
    for (qsizetype i = 0; i < terms.size(); ++i) {
        paper.Text(lMargin, y + 36, 36, QString("%1.").arg(i + 1));
        y = paper.ParagraphIn(lMargin + 70, y, FaxPaper::lTextWidth - 70, 36, terms[i]) + 10;
    }
}

void DrawInvoiceHead(FaxPaper &paper, QDate date)
{
    paper.Text(lMargin, 340, 34, "Northgate Joinery");
    paper.Text(lMargin, 384, 34, "Unit 7, Northgate Yard");
    const QList<std::pair<QString, QString>> facts{
        {"Invoice", "K-4471"}, {"Date", date.toString("yyyy-MM-dd")}, {"Customer", "10382"}};
    for (qsizetype i = 0; i < facts.size(); ++i) {
        paper.Text(1120, 340 + int(i) * 44, 34, facts[i].first);
        paper.TextRight(lRight, 340 + int(i) * 44, 34, facts[i].second, true);
    }
}

/// Returns the sum in cents, and in `y` the lower edge of the table.
int DrawItems(FaxPaper &paper, int &y)
{
    struct Item
    {
        QString strName;
        int lPieces;
        int lCents;
    };
    const QList<Item> items{{"Oak, planed, 40 x 200 x 2400 mm", 24, 4150},
                            {"Oak, sawn, 60 x 60 x 3000 mm", 40, 1875},
                            {"Ash, planed, 27 x 160 x 2100 mm", 18, 2240},
                            {"Beech plywood, 18 mm, 2500 x 1250", 12, 6890},
                            {"Birch plywood, 9 mm, 1525 x 1525", 20, 2705},
                            {"Larch, sawn, 45 x 145 x 4000 mm", 30, 1990},
                            {"Dowel rod, beech, 12 mm, 1 m", 100, 85},
                            {"Cutting to length, per cut", 64, 60},
                            {"Delivery, zone 2", 1, 5500}};
    QList<QStringList> rows;
    int sum = 0;
    for (const Item &item : items) {
        sum += item.lPieces * item.lCents;
        rows.append({QString::number(rows.size() + 1), item.strName, QString::number(item.lPieces),
                     Money(item.lCents), Money(item.lPieces * item.lCents)});
    }
    y = DrawTable(paper, 560,
                  {{"Pos.", 110, false},
                   {"Article", 718, false},
                   {"Pieces", 160, true},
                   {"Price", 200, true},
                   {"Amount", 240, true}},
                  rows, 76);
    return sum;
}

} // namespace

void DemoPages::DrawOrder(FaxPaper &paper, QDate date)
{
    paper.Text(lMargin, 210, 66, "O'Brien Catering", true);
    paper.Text(lMargin, 262, 34, "Market Street 3  -  Dunmouth");
    paper.TextRight(lRight, 210, 54, "ORDER FORM", true);
    paper.Frame(lMargin, 310, FaxPaper::lTextWidth, 270, 4);
    paper.Line(lMargin, 445, lRight, 445, 2);
    paper.Line(lMargin + 720, 310, lMargin + 720, 580, 2);
    QRandomGenerator hand(31);
    const auto fill = [&](int x, int y, const QString &label, const QString &text) {
        paper.Painter().setPen(Qt::black);
        paper.Text(x, y, 26, label);
        Handwriting::Write(paper.Painter(), hand, x + 10, y + 78, 26, text, 5);
    };
    fill(lMargin + 20, 345, "Customer", "Northgate");
    fill(lMargin + 740, 345, "Date of delivery", date.addDays(9).toString("d/M/yyyy"));
    fill(lMargin + 20, 480, "Contact", "Ben Hollis");
    fill(lMargin + 740, 480, "Number of guests", "40");
    const QList<QStringList> dishes{{"12", "Sandwich platter, mixed"},
                                    {"13", "Sandwich platter, vegetarian"},
                                    {"21", "Soup of the day, 5 litres"},
                                    {"34", "Apple tart, 12 pieces"},
                                    {"35", "Fruit bowl"},
                                    {"41", "Coffee, 3 litre flask"},
                                    {"42", "Tea, 3 litre flask"},
                                    {"50", "Mineral water, crate"}};
    const int bottom =
        DrawTable(paper, 640,
                  {{"No.", 130, false}, {"Dish", 800, false}, {"Quantity", 250, false}, {"Hot", 248, false}},
                  dishes, 92);
    const QStringList quantities{"4", "2", "3", "4", "", "5", "3", "2"};
    for (qsizetype i = 0; i < quantities.size(); ++i)
        Handwriting::Write(paper.Painter(), hand, lMargin + 1010, 640 + int(i + 2) * 92 - 18, 30,
                           quantities[i], 7);
    for (const int row : {3, 6, 7})
        DrawTick(paper, lMargin + 1270, 640 + row * 92 + 30);
    paper.Painter().setPen(Qt::black);
    paper.Text(lMargin, bottom + 90, 34, "Remarks:");
    Handwriting::Write(paper.Painter(), hand, lMargin + 190, bottom + 100, 34, "no nuts please, two guests",
                       6);
    Handwriting::Write(paper.Painter(), hand, lMargin + 190, bottom + 190, 34, "are allergic!", 6);
    paper.Line(lMargin, 2000, lMargin + 600, 2000, 3);
    paper.Painter().setPen(Qt::black);
    paper.Text(lMargin, 2040, 28, "Signature");
    Handwriting::Write(paper.Painter(), hand, lMargin + 60, 1980, 42, "S. O'Brien", 6);
}

void DemoPages::DrawInvoice(FaxPaper &paper, QDate date, int page)
{
    paper.Painter().fillRect(lMargin, 130, 96, 96, Qt::black);
    paper.Painter().setPen(QPen(Qt::white, 8));
    paper.Painter().drawEllipse(lMargin + 18, 148, 60, 60);
    paper.Painter().drawEllipse(lMargin + 36, 166, 24, 24);
    paper.Painter().setPen(Qt::black);
    paper.Text(lMargin + 130, 190, 60, "Keller & Sons Timber", true);
    paper.Text(lMargin + 130, 228, 30, "Sawmill and dry store since 1921");
    paper.TextRight(lRight, 190, 46, page == 1 ? "INVOICE" : "INVOICE, page 2", true);
    if (page == 2)
        return DrawTerms(paper);
    DrawInvoiceHead(paper, date);
    int y = 0;
    const int sum = DrawItems(paper, y);
    const QList<std::pair<QString, int>> totals{
        {"Net", sum}, {"Value added tax 20 %", sum / 5}, {"Total", sum + sum / 5}};
    for (const auto &[name, cents] : totals) {
        y += 70;
        paper.TextRight(lRight - 280, y, 36, name, name == "Total");
        paper.TextRight(lRight - 14, y, 36, Money(cents), name == "Total");
    }
    paper.Line(lRight - 700, y + 24, lRight, y + 24, 6);
    paper.Painter().setPen(Qt::black);
    paper.Paragraph(y + 110, 34,
                    "Payable by " + date.addDays(30).toString("d MMMM yyyy") +
                        ". With best thanks for your order. The terms of sale are on the next page.");
}

void DemoPages::DrawPriceList(FaxPaper &paper, QDate date, int page)
{
    paper.Text(lMargin, 210, 60, "Brightwell Ironmongery", true);
    paper.Text(lMargin, 266, 34,
               "Trade prices from " + date.addDays(6).toString("d MMMM yyyy") +
                   QString("  -  sheet %1 of 2").arg(page));
    paper.Line(lMargin, 292, lRight, 292, 6);
    using Rows = QList<QStringList>;
    const QList<std::pair<QString, Rows>> groups =
        page == 1
            ? QList<std::pair<QString, Rows>>{{"Hinges",
                                               {{"H 101", "Butt hinge, steel, 75 mm", "pair", "2.40"},
                                                {"H 102", "Butt hinge, steel, 100 mm", "pair", "3.10"},
                                                {"H 115", "Butt hinge, solid brass, 75 mm", "pair", "8.95"},
                                                {"H 140", "Concealed hinge, 35 mm, soft close", "each",
                                                 "2.85"},
                                                {"H 190", "Piano hinge, brass, 1.8 m", "each", "14.20"}}},
                                              {"Locks and catches",
                                               {{"L 210", "Mortice lock, 5 lever, 64 mm", "each", "21.50"},
                                                {"L 214", "Rim lock, black", "each", "17.80"},
                                                {"L 230", "Cupboard lock, brass", "each", "6.75"},
                                                {"L 255", "Ball catch, 10 mm", "pack of 10", "4.60"},
                                                {"L 260", "Magnetic catch, white", "pack of 10", "5.20"}}},
                                              {"Handles",
                                               {{"K 301", "Lever handle, aluminium", "pair", "9.40"},
                                                {"K 322", "Bow handle, 128 mm, matt black", "each", "3.35"},
                                                {"K 330", "Knob, beech, 40 mm", "each", "1.20"}}}}
            : QList<std::pair<QString, Rows>>{
                  {"Screws, countersunk, per box of 200",
                   {{"S 401", "3.5 x 20 mm", "box", "3.90"},
                    {"S 402", "4.0 x 30 mm", "box", "4.75"},
                    {"S 403", "4.5 x 50 mm", "box", "6.80"},
                    {"S 405", "5.0 x 80 mm", "box", "10.90"},
                    {"S 407", "6.0 x 120 mm", "box", "19.60"}}},
                  {"Adhesives and fillers",
                   {{"A 501", "Wood glue, waterproof", "1 kg", "11.30"},
                    {"A 504", "Contact adhesive", "750 ml", "13.90"},
                    {"A 520", "Wood filler, oak", "250 g", "5.45"}}},
                  {"Abrasives",
                   {{"B 601", "Sanding discs, 125 mm, grit 80", "pack of 50", "14.75"},
                    {"B 602", "Sanding discs, 125 mm, grit 120", "pack of 50", "14.75"},
                    {"B 603", "Sanding discs, 125 mm, grit 240", "pack of 50", "15.90"}}}};
    int y = 330;
    for (const auto &[name, rows] : groups) {
        paper.Painter().setPen(Qt::black);
        paper.Text(lMargin, y + 60, 42, name, true);
        y = DrawTable(paper, y + 84,
                      {{"Article", 200, false},
                       {"Description", 738, false},
                       {"Unit", 250, false},
                       {"Price", 240, true}},
                      rows, 68) +
            40;
    }
    paper.Painter().setPen(Qt::black);
    paper.Text(lMargin, 2200, 30, "Prices without tax. Orders over 150.00 are delivered free of charge.");
}
