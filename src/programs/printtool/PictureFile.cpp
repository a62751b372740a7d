#include "PictureFile.h"

#include "ConversionError.h"
#include "PsdPicture.h"
#include "QtPicture.h"
#include "TiffPictures.h"

#include <QCoreApplication>
#include <QFile>

#include <new>

std::unique_ptr<PictureFile> PictureFile::Open(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw ConversionError(QCoreApplication::translate("PictureFile", "The picture cannot be opened: %1.")
                                  .arg(file.errorString()));
    const QByteArray start = file.read(4);
    if (start == "8BPS")
        return std::make_unique<PsdPicture>(path);
    if (start.startsWith("II") || start.startsWith("MM"))
        return std::make_unique<TiffPictures>(path);
    return std::make_unique<QtPicture>(path);
}

QImage PictureFile::MakeGray(const QSize &size)
{
    QImage gray(size, QImage::Format_Grayscale8);
    if (gray.isNull())
        throw std::bad_alloc();
    return gray;
}

void PictureFile::CheckSize(const QSize &size, qint64 most)
{
    if (size.isEmpty())
        RefuseDamaged();
    if (qint64(size.width()) * size.height() > most)
        throw ConversionError(
            QCoreApplication::translate("PictureFile", "The picture is too large: %1 x %2 pixels.")
                .arg(QString::number(size.width()), QString::number(size.height())));
}

void PictureFile::RefuseDamaged()
{
    throw ConversionError(QCoreApplication::translate("PictureFile", "The picture is damaged."));
}
