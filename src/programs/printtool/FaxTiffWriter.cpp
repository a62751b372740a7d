#include "FaxTiffWriter.h"

#include "ConversionError.h"
#include "Monochrome.h"
#include "SheetFormat.h"

#include <QCoreApplication>
#include <QFile>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <tiffio.h>
#include <unistd.h>

namespace {

QString Translate(const char *text)
{
    return QCoreApplication::translate("FaxTiffWriter", text);
}

/// Errors are told by what the routines return.
void KeepQuiet()
{
    TIFFSetErrorHandler(nullptr);
    TIFFSetWarningHandler(nullptr);
}

/// A file in memory, for the encoder.
struct Memory
{
    QByteArray abBytes;
    qint64 lPosition = 0;
};

Memory &Target(thandle_t handle)
{
    return *static_cast<Memory *>(handle);
}

tmsize_t ReadFrom(thandle_t handle, void *buffer, tmsize_t size)
{
    Memory &memory = Target(handle);
    const qint64 count = std::clamp<qint64>(memory.abBytes.size() - memory.lPosition, 0, size);
    std::memcpy(buffer, memory.abBytes.constData() + memory.lPosition, std::size_t(count));
    memory.lPosition += count;
    return count;
}

tmsize_t WriteTo(thandle_t handle, void *buffer, tmsize_t size)
{
    Memory &memory = Target(handle);
    if (memory.lPosition + size > memory.abBytes.size())
        memory.abBytes.resize(memory.lPosition + size);
    std::memcpy(memory.abBytes.data() + memory.lPosition, buffer, std::size_t(size));
    memory.lPosition += size;
    return size;
}

toff_t SeekIn(thandle_t handle, toff_t offset, int origin)
{
    Memory &memory = Target(handle);
    qint64 base = 0;
    if (origin == SEEK_CUR)
        base = memory.lPosition;
    else if (origin == SEEK_END)
        base = memory.abBytes.size();
    memory.lPosition = base + qint64(offset);
    return toff_t(memory.lPosition);
}

toff_t SizeOf(thandle_t handle)
{
    return toff_t(Target(handle).abBytes.size());
}

int LeaveOpen(thandle_t)
{
    return 0;
}

/// Says why, as the system told it last.
[[noreturn]] void RaiseUnwritten()
{
    const QString reason = errno != 0 ? qt_error_string(errno) : Translate("The disk may be full");
    throw ConversionError(Translate("The fax file cannot be written: %1.").arg(reason));
}

void SetShape(TIFF *file, int width, int height)
{
    TIFFSetField(file, TIFFTAG_IMAGEWIDTH, width);
    TIFFSetField(file, TIFFTAG_IMAGELENGTH, height);
    TIFFSetField(file, TIFFTAG_ROWSPERSTRIP, height);
    TIFFSetField(file, TIFFTAG_BITSPERSAMPLE, 1);
    TIFFSetField(file, TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(file, TIFFTAG_COMPRESSION, COMPRESSION_CCITTFAX4);
    TIFFSetField(file, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE);
    TIFFSetField(file, TIFFTAG_FILLORDER, FILLORDER_MSB2LSB);
}

/// The rows without what fills a scan line up.
QByteArray RowsOf(const QImage &sheet)
{
    const qsizetype rowBytes = (sheet.width() + 7) / 8;
    QByteArray rows(rowBytes * sheet.height(), Qt::Uninitialized);
    for (int y = 0; y < sheet.height(); ++y)
        std::memcpy(rows.data() + y * rowBytes, sheet.constScanLine(y), std::size_t(rowBytes));
    return rows;
}

} // namespace

EncodedPage FaxTiffWriter::Encode(const QImage &sheet)
{
    KeepQuiet();
    Memory memory;
    QByteArray rows = RowsOf(sheet);
    const std::unique_ptr<tiff, Closer> encoder(
        TIFFClientOpen("page", "w", &memory, ReadFrom, WriteTo, SeekIn, LeaveOpen, SizeOf, nullptr, nullptr));
    if (!encoder)
        throw ConversionError(Translate("A page cannot be compressed."));
    SetShape(encoder.get(), sheet.width(), sheet.height());
    if (TIFFWriteEncodedStrip(encoder.get(), 0, rows.data(), rows.size()) != rows.size())
        throw ConversionError(Translate("A page cannot be compressed."));
    EncodedPage page;
    page.lWidth = sheet.width();
    page.lHeight = sheet.height();
    page.lDotsPerInchY = Monochrome::DotsPerInchY(sheet);
    page.abData = memory.abBytes.mid(qsizetype(TIFFGetStrileOffset(encoder.get(), 0)),
                                     qsizetype(TIFFGetStrileByteCount(encoder.get(), 0)));
    return page;
}

FaxTiffWriter::FaxTiffWriter(const QString &path, int pageCount)
    : strPath(path)
    , lPageCount(pageCount)
{
    KeepQuiet();
    file.reset(TIFFOpen(QFile::encodeName(path).constData(), "w"));
    if (!file)
        throw ConversionError(Translate("The fax file cannot be created: %1.").arg(qt_error_string(errno)));
}

FaxTiffWriter::~FaxTiffWriter()
{
    file.reset();
    if (!bFinished)
        QFile::remove(strPath);
}

void FaxTiffWriter::SetFields(const EncodedPage &page)
{
    SetShape(file.get(), page.lWidth, page.lHeight);
    TIFFSetField(file.get(), TIFFTAG_SUBFILETYPE, FILETYPE_PAGE);
    TIFFSetField(file.get(), TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    TIFFSetField(file.get(), TIFFTAG_XRESOLUTION, double(SheetFormat::DotsPerInchX));
    TIFFSetField(file.get(), TIFFTAG_YRESOLUTION, double(page.lDotsPerInchY));
    TIFFSetField(file.get(), TIFFTAG_PAGENUMBER, lPages, lPageCount);
}

void FaxTiffWriter::Append(const EncodedPage &page)
{
    if (lPages == MostPages)
        throw ConversionError(Translate("A fax has %1 pages at the most.").arg(MostPages));
    SetFields(page);
    QByteArray data = page.abData;
    errno = 0;
    if (TIFFWriteRawStrip(file.get(), 0, data.data(), data.size()) != data.size() ||
        TIFFWriteDirectory(file.get()) != 1)
        RaiseUnwritten();
    ++lPages;
}

void FaxTiffWriter::Finish()
{
    errno = 0;
    if (TIFFFlush(file.get()) != 1 || fsync(TIFFFileno(file.get())) != 0)
        RaiseUnwritten();
    file.reset();
    bFinished = true;
}

void FaxTiffWriter::Closer::operator()(tiff *opened) const
{
    TIFFClose(opened);
}
