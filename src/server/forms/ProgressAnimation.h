#pragma once

#include <QPixmap>
#include <QWidget>

/// The picture of a run: a sheet on its way from one machine to another, in frames 0 to 6. Frame 0 is the
/// machines alone, frame 6 the sheet that has arrived.
class ProgressAnimation : public QWidget
{
    Q_OBJECT

public:
    static constexpr int frameCount = 7;

    explicit ProgressAnimation(QWidget *parent = nullptr);

    /// Shows a frame; one outside the strip shows the nearest.
    void ShowFrame(int frame);
    int Frame() const { return lFrame; }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void PaintStrip();
    void PaintFrame(QPainter &painter, int frame) const;
    void PaintMachine(QPainter &painter, qreal left) const;
    void PaintSheet(QPainter &painter, qreal left) const;

    QPixmap picSource; ///< the strip: all frames side by side
    int lFrame = 0;
};
