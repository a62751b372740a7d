#include "Documents.h"

#include <QFile>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPdfWriter>

namespace {

constexpr int lPdfDpi = 100;
constexpr int lLeft = 80;
constexpr int lRight = 745;

struct OfferLine
{
    const char *szWhat;
    int lPieces;
    int lEuros;
};

constexpr OfferLine aLines[] = {{"Garden bench \"Northgate\", oak, 160 cm", 4, 390},
                                {"Garden bench \"Northgate\", oak, 200 cm", 2, 450},
                                {"Table, oak, folding, 120 x 70 cm", 3, 280},
                                {"Oil for oak, 2.5 l", 6, 34},
                                {"Delivery and assembly", 1, 160}};

void SetSize(QPainter &painter, int points, bool isBold = false)
{
    QFont font(QStringLiteral("Liberation Sans"), points);
    font.setBold(isBold);
    painter.setFont(font);
}

void DrawRight(QPainter &painter, int x, int y, const QString &text)
{
    painter.drawText(x - painter.fontMetrics().horizontalAdvance(text), y, text);
}

void DrawRow(QPainter &painter, int y, const QString &what, const QString &pieces, const QString &price)
{
    painter.drawText(lLeft, y, what);
    DrawRight(painter, 560, y, pieces);
    DrawRight(painter, lRight, y, price);
}

void DrawLetterhead(QPainter &painter, const QString &title)
{
    SetSize(painter, 20, true);
    painter.drawText(lLeft, 140, QStringLiteral("Northgate Joinery"));
    SetSize(painter, 9);
    painter.drawText(lLeft, 165, QStringLiteral("14 Northgate, Barnham, phone 01632 960 180"));
    painter.fillRect(lLeft, 185, lRight - lLeft, 3, Qt::black);
    SetSize(painter, 15, true);
    painter.drawText(lLeft, 250, title);
}

void DrawPrices(QPainter &painter)
{
    DrawLetterhead(painter, QStringLiteral("Offer 2026-118"));
    SetSize(painter, 11, true);
    DrawRow(painter, 310, QStringLiteral("Article"), QStringLiteral("Pieces"), QStringLiteral("Euro"));
    SetSize(painter, 11);
    int y = 325;
    int total = 0;
    for (const OfferLine &line : aLines) {
        painter.drawLine(lLeft, y, lRight, y);
        total += line.lPieces * line.lEuros;
        DrawRow(painter, y + 28, line.szWhat, QString::number(line.lPieces),
                QString::number(line.lPieces * line.lEuros));
        y += 42;
    }
    painter.fillRect(lLeft, y, lRight - lLeft, 2, Qt::black);
    SetSize(painter, 11, true);
    DrawRow(painter, y + 30, QStringLiteral("Total"), {}, QString::number(total));
}

void DrawTerms(QPainter &painter)
{
    DrawLetterhead(painter, QStringLiteral("Terms"));
    SetSize(painter, 11);
    painter.drawText(
        QRect(lLeft, 280, lRight - lLeft, 500), Qt::TextWordWrap,
        QStringLiteral(
            "This offer holds for 30 days. Delivery follows six weeks after your order. The oak comes "
            "from certified woods of the region and is oiled twice before it leaves our workshop.\n\n"
            "Payment is due 14 days after delivery. We take back what does not please, within a month, "
            "as long as it has not stood in the rain."));
}

bool WriteOffer(const QString &path)
{
    QPdfWriter pdf(path);
    pdf.setPageSize(QPageSize(QPageSize::A4));
    pdf.setPageMargins({});
    pdf.setResolution(lPdfDpi);
    QPainter painter;
    if (!painter.begin(&pdf))
        return false;
    DrawPrices(painter);
    pdf.newPage();
    DrawTerms(painter);
    return painter.end();
}

bool WriteLetter(const QString &path)
{
    QFile file(path);
    const QByteArray text = "{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0 Liberation Serif;}}\\fs24\n"
                            "{\\b\\fs32 Your garden, our benches}\\par\\par\n"
                            "Dear Mrs. O'Brien, dear Ben,\\par\\par\n"
                            "thank you for your visit. Please find our offer for the terrace with this "
                            "letter, and a drawing of the bench "
                            "that you liked best. We have kept the prices of the spring.\\par\\par\n"
                            "The benches can be with you before the season begins, if we hear from you in "
                            "the next two weeks.\\par\\par\n"
                            "Kind regards\\par\\par Anna Weber\\par Northgate Joinery\\par}\n";
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.flush();
}

/// Boards of wood, lighter towards the upper edge.
void DrawBoard(QPainter &painter, const QRectF &board)
{
    QLinearGradient wood(board.topLeft(), board.bottomLeft());
    wood.setColorAt(0, QColor(236, 214, 178));
    wood.setColorAt(1, QColor(168, 124, 76));
    painter.setPen(QPen(QColor(70, 45, 20), 3));
    painter.setBrush(wood);
    painter.drawRoundedRect(board, 6, 6);
}

bool WriteDrawing(const QString &path)
{
    QImage picture(1200, 900, QImage::Format_RGB32);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    for (const int x : {190, 940})
        DrawBoard(painter, QRectF(x, 180, 60, 590)); // the legs, up to the back
    for (const int y : {200, 270, 340})
        DrawBoard(painter, QRectF(150, y, 890, 50)); // the back
    for (const int y : {500, 545, 590})
        DrawBoard(painter, QRectF(110, y, 970, 38)); // the seat
    painter.setPen(QPen(Qt::black, 2));
    painter.drawLine(110, 830, 1080, 830);
    SetSize(painter, 26);
    painter.drawText(QRect(110, 835, 970, 50), Qt::AlignCenter, QStringLiteral("160 cm"));
    painter.end();
    return picture.save(path);
}

} // namespace

bool WriteDocuments(const QString &folder)
{
    return WriteOffer(folder + QStringLiteral("/offer.pdf")) &&
           WriteLetter(folder + QStringLiteral("/letter.rtf")) &&
           WriteDrawing(folder + QStringLiteral("/bench.png"));
}
