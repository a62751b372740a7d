#include "FaxWriter.h"

#include "ServerError.h"

#include <QFile>

#include <memory>

#include <tiffio.h>

namespace {

void SetFields(TIFF *file, const QImage &page, int verticalDpi, FaxWriter::Coding coding)
{
    const bool isGroup3 = coding == FaxWriter::codGroup3;
    TIFFSetField(file, TIFFTAG_SUBFILETYPE, FILETYPE_PAGE);
    TIFFSetField(file, TIFFTAG_IMAGEWIDTH, page.width());
    TIFFSetField(file, TIFFTAG_IMAGELENGTH, page.height());
    TIFFSetField(file, TIFFTAG_BITSPERSAMPLE, 1);
    TIFFSetField(file, TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(file, TIFFTAG_COMPRESSION, isGroup3 ? COMPRESSION_CCITTFAX3 : COMPRESSION_CCITTFAX4);
    if (isGroup3)
        TIFFSetField(file, TIFFTAG_GROUP3OPTIONS, GROUP3OPT_FILLBITS);
    TIFFSetField(file, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE);
    TIFFSetField(file, TIFFTAG_FILLORDER, FILLORDER_MSB2LSB);
    TIFFSetField(file, TIFFTAG_ROWSPERSTRIP, page.height());
    TIFFSetField(file, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    TIFFSetField(file, TIFFTAG_XRESOLUTION, 204.0);
    TIFFSetField(file, TIFFTAG_YRESOLUTION, double(verticalDpi));
}

bool WritePage(TIFF *file, const QImage &page)
{
    for (int y = 0; y < page.height(); ++y) {
        QByteArray row(reinterpret_cast<const char *>(page.constScanLine(y)), page.bytesPerLine());
        if (TIFFWriteScanline(file, row.data(), uint32_t(y)) < 0)
            return false;
    }
    return TIFFWriteDirectory(file) != 0;
}

} // namespace

void FaxWriter::Write(const QString &path, const QList<QImage> &pages, int verticalDpi, Coding coding)
{
    const std::unique_ptr<TIFF, void (*)(TIFF *)> file(TIFFOpen(QFile::encodeName(path).constData(), "w"),
                                                       &TIFFClose);
    for (qsizetype i = 0; i < pages.size(); ++i) {
        bool isWritten = false;
        if (file) {
            SetFields(file.get(), pages[i], verticalDpi, coding);
            TIFFSetField(file.get(), TIFFTAG_PAGENUMBER, int(i), int(pages.size()));
            isWritten = WritePage(file.get(), pages[i]);
        }
        if (!isWritten)
            throw ServerError(QString("The fax %1 cannot be written.").arg(path));
    }
}
