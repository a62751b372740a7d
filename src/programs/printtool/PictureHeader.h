#pragma once

#include <QSize>
#include <QSizeF>
#include <QString>

/// What PNG, JPEG (JFIF) and BMP files tell in front of their pixels, and Qt does not.
struct PictureHeader
{
    QSize size;         ///< pixels; empty for JPEG, and when the file does not say
    QSizeF dotsPerInch; ///< empty when the file does not say

    static PictureHeader Read(const QString &path);
};
