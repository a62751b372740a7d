#pragma once

#include "PictureFile.h"

/// A picture of a form that Qt reads: BMP, JPEG, PNG, GIF; the first one of a moving one.
class QtPicture final : public PictureFile
{
public:
    explicit QtPicture(const QString &path);

    int Count() const override { return 1; }
    StoredPicture Look(int) override { return picture; }
    QImage ReadGray(int number, const QSize &least) override;

private:
    QImage ReadWithClearColor() const;

    QString strPath;
    qint64 lClearColorAt = 0; ///< see `PictureHeader`
    StoredPicture picture;
    bool bJpeg = false;
};
