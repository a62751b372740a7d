#include "server/forms/ProgressAnimation.h"

#include <QEvent>
#include <QPainter>

#include <algorithm>

namespace {
constexpr int frameWidth = 116; ///< device-independent pixels
constexpr int frameHeight = 40;
constexpr int machineWidth = 30;
constexpr int sheetWidth = 16;
constexpr int sheetHeight = 20;
} // namespace

ProgressAnimation::ProgressAnimation(QWidget *parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize ProgressAnimation::sizeHint() const
{
    return {frameWidth, frameHeight};
}

void ProgressAnimation::ShowFrame(int frame)
{
    lFrame = std::clamp(frame, 0, frameCount - 1);
    update();
}

void ProgressAnimation::paintEvent(QPaintEvent *)
{
    if (picSource.isNull() || picSource.devicePixelRatio() != devicePixelRatioF())
        PaintStrip();
    const qreal ratio = picSource.devicePixelRatio();
    QPainter painter(this);
    painter.drawPixmap(QRectF(0, 0, frameWidth, frameHeight), picSource,
                       QRectF(lFrame * frameWidth * ratio, 0, frameWidth * ratio, frameHeight * ratio));
}

void ProgressAnimation::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() != QEvent::PaletteChange && event->type() != QEvent::StyleChange)
        return;
    picSource = {}; // painted anew in the new colours
    update();
}

void ProgressAnimation::PaintStrip()
{
    const qreal ratio = devicePixelRatioF();
    picSource = QPixmap((QSizeF(frameWidth * frameCount, frameHeight) * ratio).toSize());
    picSource.setDevicePixelRatio(ratio);
    picSource.fill(Qt::transparent);
    QPainter painter(&picSource);
    painter.setRenderHint(QPainter::Antialiasing);
    for (int frame = 0; frame < frameCount; ++frame) {
        painter.save();
        painter.translate(frame * frameWidth, 0);
        painter.setClipRect(0, 0, frameWidth, frameHeight);
        PaintFrame(painter, frame);
        painter.restore();
    }
}

void ProgressAnimation::PaintFrame(QPainter &painter, int frame) const
{
    constexpr qreal first = machineWidth / 2.0 - sheetWidth / 2.0;
    constexpr qreal last = frameWidth - machineWidth / 2.0 - sheetWidth / 2.0;
    if (frame > 0) {
        painter.setOpacity(frame == frameCount - 1 ? 1.0 : 0.25);
        for (int trail = 1; trail < frame && frame < frameCount - 1; ++trail)
            PaintSheet(painter, first + (last - first) * (trail - 1) / (frameCount - 2));
        painter.setOpacity(1.0);
        PaintSheet(painter, first + (last - first) * (frame - 1) / (frameCount - 2));
    }
    PaintMachine(painter, 0);
    PaintMachine(painter, frameWidth - machineWidth);
}

void ProgressAnimation::PaintMachine(QPainter &painter, qreal left) const
{
    const QColor body = palette().color(QPalette::Highlight);
    painter.setPen(Qt::NoPen);
    painter.setBrush(body);
    painter.drawRoundedRect(QRectF(left, 20, machineWidth, 18), 4, 4);
    painter.setPen(QPen(palette().color(QPalette::HighlightedText), 2, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(left + 6, 25), QPointF(left + machineWidth - 6, 25));
    painter.drawPoint(QPointF(left + machineWidth - 7, 32));
}

void ProgressAnimation::PaintSheet(QPainter &painter, qreal left) const
{
    const QColor line = palette().color(QPalette::Mid);
    painter.setPen(QPen(line.darker(120), 1.2));
    painter.setBrush(Qt::white);
    painter.drawRoundedRect(QRectF(left, 3, sheetWidth, sheetHeight), 1.5, 1.5);
    painter.setPen(QPen(QColor(0x9f, 0xb0, 0xc3), 1.5, Qt::SolidLine, Qt::RoundCap));
    for (int y : {8, 12, 16})
        painter.drawLine(QPointF(left + 4, y), QPointF(left + sheetWidth - 4, y));
}
