#include "TiffWriter.h"

#include <QByteArray>
#include <QFile>
#include <QImage>

#include <algorithm>
#include <array>

namespace {

QFile &Target(thandle_t handle)
{
    return *static_cast<QFile *>(handle);
}

tmsize_t ReadFrom(thandle_t handle, void *buffer, tmsize_t size)
{
    return Target(handle).read(static_cast<char *>(buffer), size);
}

tmsize_t WriteTo(thandle_t handle, void *buffer, tmsize_t size)
{
    return Target(handle).write(static_cast<const char *>(buffer), size);
}

toff_t SeekIn(thandle_t handle, toff_t offset, int origin)
{
    QFile &file = Target(handle);
    const qint64 base = origin == SEEK_SET ? 0 : origin == SEEK_CUR ? file.pos() : file.size();
    const bool found = file.seek(base + static_cast<qint64>(offset));
    return found ? static_cast<toff_t>(file.pos()) : static_cast<toff_t>(-1);
}

int LeaveOpen(thandle_t)
{
    return 0;
}

toff_t SizeOf(thandle_t handle)
{
    return static_cast<toff_t>(Target(handle).size());
}

/// Copies one value of that type if the source has it.
template <typename Value>
void CopyValue(TIFF *from, TIFF *to, ttag_t tag)
{
    Value value{};
    if (TIFFGetField(from, tag, &value) == 1)
        TIFFSetField(to, tag, value);
}

template <>
void CopyValue<float>(TIFF *from, TIFF *to, ttag_t tag)
{
    float value = 0;
    if (TIFFGetField(from, tag, &value) == 1)
        TIFFSetField(to, tag, static_cast<double>(value));
}

/// Copies a number of values with the values themselves.
template <typename Count>
void CopyList(TIFF *from, TIFF *to, ttag_t tag)
{
    Count count = 0;
    void *values = nullptr;
    if (TIFFGetField(from, tag, &count, &values) == 1)
        TIFFSetField(to, tag, count, values);
}

void CopyPair(TIFF *from, TIFF *to, ttag_t tag)
{
    uint16_t first = 0, second = 0;
    if (TIFFGetField(from, tag, &first, &second) == 1)
        TIFFSetField(to, tag, first, second);
}

void CopyColorTable(TIFF *from, TIFF *to)
{
    uint16_t *red = nullptr, *green = nullptr, *blue = nullptr;
    if (TIFFGetField(from, TIFFTAG_COLORMAP, &red, &green, &blue) == 1)
        TIFFSetField(to, TIFFTAG_COLORMAP, red, green, blue);
}

/// What is true of a page however it is packed and turned.
void CopyDescription(TIFF *from, TIFF *to)
{
    CopyValue<uint32_t>(from, to, TIFFTAG_SUBFILETYPE);
    CopyPair(from, to, TIFFTAG_PAGENUMBER);
    for (const ttag_t tag : {TIFFTAG_DOCUMENTNAME, TIFFTAG_IMAGEDESCRIPTION, TIFFTAG_MAKE, TIFFTAG_MODEL,
                             TIFFTAG_PAGENAME, TIFFTAG_SOFTWARE, TIFFTAG_DATETIME, TIFFTAG_ARTIST,
                             TIFFTAG_HOSTCOMPUTER, TIFFTAG_COPYRIGHT, TIFFTAG_FAXSUBADDRESS, TIFFTAG_FAXDCS})
        CopyValue<const char *>(from, to, tag);
    for (const ttag_t tag : {TIFFTAG_FAXRECVPARAMS, TIFFTAG_FAXRECVTIME})
        CopyValue<uint32_t>(from, to, tag);
    CopyList<uint32_t>(from, to, TIFFTAG_ICCPROFILE);
}

/// What the coded bytes mean.
void CopyCoding(TIFF *from, TIFF *to)
{
    CopyValue<uint16_t>(from, to, TIFFTAG_COMPRESSION); // first: it brings tags of its own
    for (const ttag_t tag :
         {TIFFTAG_BITSPERSAMPLE, TIFFTAG_SAMPLESPERPIXEL, TIFFTAG_PHOTOMETRIC, TIFFTAG_PLANARCONFIG,
          TIFFTAG_FILLORDER, TIFFTAG_ORIENTATION, TIFFTAG_SAMPLEFORMAT, TIFFTAG_RESOLUTIONUNIT,
          TIFFTAG_PREDICTOR, TIFFTAG_CLEANFAXDATA, TIFFTAG_YCBCRPOSITIONING})
        CopyValue<uint16_t>(from, to, tag);
    for (const ttag_t tag :
         {TIFFTAG_IMAGEWIDTH, TIFFTAG_IMAGELENGTH, TIFFTAG_ROWSPERSTRIP, TIFFTAG_GROUP3OPTIONS,
          TIFFTAG_GROUP4OPTIONS, TIFFTAG_BADFAXLINES, TIFFTAG_CONSECUTIVEBADFAXLINES})
        CopyValue<uint32_t>(from, to, tag);
    for (const ttag_t tag : {TIFFTAG_XRESOLUTION, TIFFTAG_YRESOLUTION, TIFFTAG_XPOSITION, TIFFTAG_YPOSITION})
        CopyValue<float>(from, to, tag);
    for (const ttag_t tag : {TIFFTAG_YCBCRCOEFFICIENTS, TIFFTAG_REFERENCEBLACKWHITE})
        CopyValue<const float *>(from, to, tag);
    CopyPair(from, to, TIFFTAG_YCBCRSUBSAMPLING);
    CopyColorTable(from, to);
    CopyList<uint16_t>(from, to, TIFFTAG_EXTRASAMPLES);
    CopyList<uint32_t>(from, to, TIFFTAG_JPEGTABLES);
}

bool CopyStrips(TIFF *from, TIFF *to)
{
    for (uint32_t strip = 0; strip < TIFFNumberOfStrips(from); ++strip) {
        QByteArray bytes(static_cast<qsizetype>(TIFFGetStrileByteCount(from, strip)), Qt::Uninitialized);
        if (TIFFReadRawStrip(from, strip, bytes.data(), bytes.size()) != bytes.size() ||
            TIFFWriteRawStrip(to, strip, bytes.data(), bytes.size()) != bytes.size())
            return false;
    }
    return true;
}

void SetForm(TIFF *tiff, const QImage &picture)
{
    const bool isMono = picture.format() == QImage::Format_Mono;
    const bool isGray = picture.format() == QImage::Format_Grayscale8;
    const int color = isGray ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB;
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, isMono ? COMPRESSION_CCITTFAX4 : COMPRESSION_LZW);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, picture.width());
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, picture.height());
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, picture.height());
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, isMono ? 1 : 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, isMono || isGray ? 1 : 3);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, isMono ? PHOTOMETRIC_MINISWHITE : color);
}

void SetResolution(TIFF *tiff, const QImage &picture, const QSizeF &size)
{
    TIFFSetField(tiff, TIFFTAG_XRESOLUTION, picture.width() / size.width());
    TIFFSetField(tiff, TIFFTAG_YRESOLUTION, picture.height() / size.height());
    TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
}

/// A row as the file holds it: 1 is black, and colours have no fourth byte.
QByteArray RowOf(const QImage &picture, int y)
{
    const uchar *line = picture.constScanLine(y);
    if (picture.format() == QImage::Format_Grayscale8)
        return QByteArray(reinterpret_cast<const char *>(line), picture.width());
    QByteArray row;
    if (picture.format() == QImage::Format_Mono) {
        row.resize((picture.width() + 7) / 8);
        std::transform(line, line + row.size(), row.begin(), [](uchar byte) { return char(~byte); });
        return row;
    }
    const auto *pixels = reinterpret_cast<const QRgb *>(line);
    for (int x = 0; x < picture.width(); ++x)
        row.append(char(qRed(pixels[x]))).append(char(qGreen(pixels[x]))).append(char(qBlue(pixels[x])));
    return row;
}

} // namespace

TiffWriter::TiffWriter(QFile &target, TIFF *likeSource)
    : tiff(TIFFClientOpen("copy", TIFFIsBigEndian(likeSource) ? "wb" : "wl", &target, ReadFrom, WriteTo,
                          SeekIn, LeaveOpen, SizeOf, nullptr, nullptr))
{
}

bool TiffWriter::CanCopy(TIFF *source)
{
    const auto fileSize = static_cast<uint64_t>(TIFFGetSizeProc(source)(TIFFClientdata(source)));
    for (uint32_t strip = 0; strip < TIFFNumberOfStrips(source); ++strip) {
        const uint64_t size = TIFFGetStrileByteCount(source, strip);
        const uint64_t offset = TIFFGetStrileOffset(source, strip);
        if (size == 0 || size > fileSize || offset > fileSize - size)
            return false;
    }
    uint16_t coding = COMPRESSION_NONE;
    TIFFGetField(source, TIFFTAG_COMPRESSION, &coding);
    return coding != COMPRESSION_OJPEG; // its tables stand outside the strips
}

bool TiffWriter::CopyPage(TIFF *source)
{
    if (!tiff)
        return false;
    CopyCoding(source, tiff.get());
    CopyDescription(source, tiff.get());
    return CopyStrips(source, tiff.get()) && TIFFWriteDirectory(tiff.get()) == 1;
}

bool TiffWriter::AddPage(const QImage &picture, const QSizeF &size, TIFF *source)
{
    if (!tiff)
        return false;
    SetForm(tiff.get(), picture);
    SetResolution(tiff.get(), picture, size);
    CopyDescription(source, tiff.get());
    for (int y = 0; y < picture.height(); ++y) {
        QByteArray row = RowOf(picture, y);
        if (TIFFWriteScanline(tiff.get(), row.data(), static_cast<uint32_t>(y)) != 1)
            return false;
    }
    return TIFFWriteDirectory(tiff.get()) == 1;
}
