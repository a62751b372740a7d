#pragma once

#include <QComboBox>

/// The zoom in percent, to be chosen or typed.
class ZoomBox final : public QComboBox
{
    Q_OBJECT

public:
    explicit ZoomBox(QWidget *parent = nullptr);

    /// 1 is 100 %.
    void ShowZoom(double zoom);

signals:
    void ZoomChosen(double zoom);
    /// Nothing more is to be typed.
    void Left();

private:
    void Choose(const QString &text);

    double dZoom = 1.0;
};
