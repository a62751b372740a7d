#include "controls/HeaderPicture.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace {

constexpr int sheetWidth = 1728, dotsPerInchX = 204, dotsPerInchY = 196;
constexpr int contentRows = 40;               ///< of the page's content below the header and above the footer
constexpr int contentTops = 100;              ///< the same where there is no header or footer
constexpr double dWave = 12, dWaveHeight = 3; ///< of the tear, in lengths of the screen

int RowsOf(int height)
{
    return height > 0 ? height + contentRows : contentTops;
}

} // namespace

HeaderPicture::HeaderPicture(QWidget *parent)
    : QWidget(parent)
{
    ShowProfile({}, {});
}

void HeaderPicture::ShowProfile(const HeaderProfile &profile, const HeaderFields &fields)
{
    const HeaderPainter painter(profile, dotsPerInchX, dotsPerInchY);
    lTopRows = RowsOf(painter.HeaderHeight(fields.lPage));
    sheet = QImage(sheetWidth, lTopRows + RowsOf(painter.FooterHeight(fields.lPage)), QImage::Format_Mono);
    sheet.setColorTable({qRgb(255, 255, 255), qRgb(0, 0, 0)});
    sheet.fill(0);
    painter.Paint(sheet, fields);
    update();
}

QSize HeaderPicture::sizeHint() const
{
    return {680, 130};
}

QSize HeaderPicture::minimumSizeHint() const
{
    return {320, 90};
}

/// The paper fills the widget's height; its width follows where the header and footer need more than that.
void HeaderPicture::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const double rowHeight = double(dotsPerInchX) / dotsPerInchY; // in widths of a dot
    const double wanted = sheet.height() * rowHeight;
    const double room = height() - 2 * dWaveHeight;
    const double zoom = std::min(double(width()) / sheetWidth, room / wanted);
    const QRectF paper((width() - zoom * sheetWidth) / 2, 0, zoom * sheetWidth, height());
    painter.fillRect(paper, Qt::white);
    const double topHeight = lTopRows * rowHeight * zoom;
    const double bottomHeight = (sheet.height() - lTopRows) * rowHeight * zoom;
    PaintPart(painter, 0, lTopRows, {paper.left(), 0, paper.width(), topHeight});
    PaintPart(painter, lTopRows, sheet.height() - lTopRows,
              {paper.left(), height() - bottomHeight, paper.width(), bottomHeight});
    PaintTear(painter, paper, (topHeight + height() - bottomHeight) / 2);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(paper.adjusted(0.5, 0.5, -0.5, -0.5));
}

void HeaderPicture::PaintPart(QPainter &painter, int firstRow, int rows, const QRectF &place) const
{
    const QSize size = (place.size() * devicePixelRatioF()).toSize().expandedTo({1, 1});
    const QImage part = sheet.copy(0, firstRow, sheetWidth, rows).convertToFormat(QImage::Format_Grayscale8);
    painter.drawImage(place, part.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
}

/// A wavy gap across the paper: here a piece of the page is missing.
void HeaderPicture::PaintTear(QPainter &painter, const QRectF &paper, double middle) const
{
    QPainterPath tear({paper.left(), middle});
    double side = 1;
    for (double x = paper.left(); x < paper.right(); x += dWave, side = -side)
        tear.quadTo(x + dWave / 2, middle + side * 2 * dWaveHeight, x + dWave, middle);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipRect(paper);
    painter.setPen(QPen(palette().color(QPalette::Window), dWaveHeight));
    painter.drawPath(tear);
    painter.setClipping(false);
    painter.setRenderHint(QPainter::Antialiasing, false);
}
