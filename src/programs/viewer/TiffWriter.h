#pragma once

#include "core/TiffHandle.h"

class QFile;
class QImage;
class QSizeF;

/// Writes the pages of a TIFF file one after the other. False means that the disk did not take them: the
/// target tells why.
class TiffWriter final
{
public:
    /// `likeSource` gives the order of bytes: coded ones are taken over as they are. `target` is empty, and
    /// open for reading and writing.
    TiffWriter(QFile &target, TIFF *likeSource);

    /// True when the file holds the coded bytes of the page that `source` shows as a whole.
    static bool CanCopy(TIFF *source);
    /// That page with its coded bytes unchanged.
    bool CopyPage(TIFF *source);
    /// The picture, a `Format_Mono` with black as colour 0, `Format_Grayscale8` or `Format_RGB32`, as a page
    /// of `size` inches, packed without loss, with the texts and the number of the page that `source` shows.
    bool AddPage(const QImage &picture, const QSizeF &size, TIFF *source);

private:
    TiffHandle tiff;
};
