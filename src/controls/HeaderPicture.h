#pragma once

#include "controls/HeaderPainter.h"

#include <QWidget>

/// Shows the top and the bottom of a fax page with its header and footer, as the page will be printed in fine
/// resolution. What stands between the two is left out.
class HeaderPicture final : public QWidget
{
    Q_OBJECT

public:
    explicit HeaderPicture(QWidget *parent = nullptr);

    /// `fields` tell the page, too.
    void ShowProfile(const HeaderProfile &newProfile, const HeaderFields &newFields);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void PaintPart(QPainter &painter, int firstRow, int rows, const QRectF &place) const;
    void PaintTear(QPainter &painter, const QRectF &paper, double middle) const;

    QImage sheet;     ///< the rows of the top, then those of the bottom
    int lTopRows = 0; ///< how many of them belong to the top
};
