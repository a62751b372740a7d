#pragma once

#include <QImage>
#include <QImageIOHandler>
#include <QSize>
#include <QSizeF>
#include <QString>

#include <memory>

/// A picture in its file, or one of several, before it is decoded.
struct StoredPicture
{
    QSize size;         ///< pixels, as they lie in the file
    QSizeF dotsPerInch; ///< of these; empty when the file does not say
    QImageIOHandler::Transformations turn = QImageIOHandler::TransformationNone; ///< to stand upright
};

/// The pictures of an opened file. Each form of file has its own; none decodes what it has not looked at.
class PictureFile
{
public:
    virtual ~PictureFile() = default;

    virtual int Count() const = 0;
    virtual StoredPicture Look(int number) = 0;
    /// The zero-based picture as it lies in the file, in `Format_Grayscale8`, over white where it has
    /// nothing. It may be smaller than in the file, though not below `least`. Raises `ConversionError`.
    virtual QImage ReadGray(int number, const QSize &least) = 0;

    /// By the file's contents. Raises `ConversionError` when it cannot be read or is too large.
    static std::unique_ptr<PictureFile> Open(const QString &path);

    /// A picture whose pixels are still to be written. Raises `std::bad_alloc`.
    static QImage MakeGray(const QSize &size);

protected:
    /// Raises `ConversionError` when the picture has no pixels, or more than `most`.
    static void CheckSize(const QSize &size, qint64 most = MostPixels);
    [[noreturn]] static void RefuseDamaged();

    /// What is decoded as a whole, in four bytes a pixel.
    static constexpr qint64 MostPixels = 128'000'000;
};
