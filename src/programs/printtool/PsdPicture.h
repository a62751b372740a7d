#pragma once

#include "PictureFile.h"

#include <QFile>

/// What a Photoshop file (Adobe Photoshop File Formats Specification, PSD and PSB) shows as a whole; its
/// layers are left alone. It is read here since the library at hand crashes over damaged ones.
class PsdPicture final : public PictureFile
{
public:
    explicit PsdPicture(const QString &path);

    int Count() const override { return 1; }
    StoredPicture Look(int) override { return picture; }
    QImage ReadGray(int number, const QSize &least) override;

private:
    enum Mode {
        Bitmap = 0,
        Gray = 1,
        Indexed = 2,
        Rgb = 3,
        Cmyk = 4,
        Multichannel = 7,
        Duotone = 8,
        Lab = 9
    };

    void ReadHeader();
    void ReadPalette();
    void ReadResources();
    void SkipLayers();
    int ColorChannels() const;
    QList<QImage> ReadChannels();
    void ReadRow(QByteArray &row, const QByteArray &sizes, int number);
    uchar GrayOf(const QList<const uchar *> &channels, int x) const;

    QByteArray Take(qint64 size);
    quint64 TakeNumber(int size);

    QFile file;
    StoredPicture picture;
    qint64 lPixelsAt = 0; ///< where the composite begins in the file
    int lChannels = 0, lDepth = 0, lMode = 0;
    bool bLarge = false; ///< PSB: numbers are wider
    bool bClear = false; ///< the channel behind the colours says where there is nothing
    QByteArray abPalette;
};
