#pragma once

#include <QSize>
#include <QSizeF>
#include <QString>

/// What PNG, JPEG (JFIF) and BMP files tell in front of their pixels, and Qt does not.
struct PictureHeader
{
    QSize size;         ///< pixels; empty for JPEG, and when the file does not say
    QSizeF dotsPerInch; ///< empty when the file does not say
    /// Where a PNG file of 16-bit colours names the one that is clear; 0 for any other file.
    qint64 lClearColorAt = 0;

    static PictureHeader Read(const QString &path);
};
