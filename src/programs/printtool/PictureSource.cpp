#include "PictureSource.h"

#include "ConversionError.h"

#include <QCoreApplication>
#include <QImageReader>
#include <QPainter>
#include <QTransform>

PictureSource::PictureSource(const QString &path)
{
    QImageReader reader(path);
    reader.setAutoTransform(true);
    reader.setDecideFormatFromContent(true);
    picture = reader.read();
    if (picture.isNull())
        throw ConversionError(QCoreApplication::translate("printtool", "The picture cannot be read."));
}

QSizeF PictureSource::PageSize(int)
{
    constexpr double dotsPerInch = 96;
    return QSizeF(picture.size()) / dotsPerInch;
}

QImage PictureSource::Render(int, const QSize &size, int rotation)
{
    QImage page(size, QImage::Format_Grayscale8);
    page.fill(Qt::white);
    QPainter painter(&page);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(page.rect(), picture.transformed(QTransform().rotate(rotation)));
    return page;
}

QImage PictureSource::FaxPage(int)
{
    return {};
}
