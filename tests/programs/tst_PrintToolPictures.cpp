#include "fixtures/Bytes.h"
#include "fixtures/FaxFile.h"
#include "fixtures/TestTable.h"
#include "programs/printtool/ConversionError.h"
#include "programs/printtool/PictureSource.h"

#include <QFile>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

#include <array>
#include <functional>

#include <tiffio.h>

using Bytes::BigEndian;
using Bytes::LittleEndian;

namespace {

/// The upper left quarter is black, the rest white; the left half of the lower part is clear where a form can
/// tell that.
constexpr int side = 80, half = side / 2;

QImage Sample(QImage::Format format)
{
    QImage image(side, side, QImage::Format_ARGB32);
    image.fill(Qt::white);
    for (int y = 0; y < half; ++y) {
        for (int x = 0; x < half; ++x) {
            image.setPixel(x, y, qRgb(0, 0, 0));
            image.setPixel(x, y + half, qRgba(0, 0, 0, 0));
        }
    }
    if (!QImage(1, 1, format).hasAlphaChannel()) {
        QImage opaque(side, side, QImage::Format_RGB32);
        opaque.fill(Qt::white);
        QPainter(&opaque).drawImage(0, 0, image);
        return opaque.convertToFormat(format);
    }
    return image.convertToFormat(format);
}

/// The picture's corners as letters, row by row: "k" black, "w" white, "?" between.
QString CornersOf(const QImage &page)
{
    const int near = page.width() / 8, farX = page.width() - 1 - near;
    const int nearY = page.height() / 8, farY = page.height() - 1 - nearY;
    QString corners;
    for (const QPoint at :
         {QPoint(near, nearY), QPoint(farX, nearY), QPoint(near, farY), QPoint(farX, farY)}) {
        const int gray = qGray(page.pixel(at));
        corners += gray < 16 ? 'k' : gray > 239 ? 'w' : '?';
    }
    return corners;
}

/// A Photoshop file of that mode: header, palette, resolution of 300 dpi, a negative number of layers when
/// the last channel says what is clear, and the channels, in runs or as they are.
struct PsdFile
{
    int lMode = 3, lDepth = 8;
    QList<QImage> aChannels;
    bool bClear = false, bPacked = false, bLarge = false;
    QByteArray abPalette;

    QByteArray Rows() const
    {
        QByteArray sizes, rows;
        for (const QImage &channel : aChannels) {
            for (int y = 0; y < channel.height(); ++y) {
                const QByteArray row = Row(channel, y);
                const QByteArray packed = bPacked ? PackBits(row) : row;
                sizes += BigEndian(quint64(packed.size()), bLarge ? 4 : 2);
                rows += packed;
            }
        }
        return BigEndian(bPacked ? 1 : 0, 2) + (bPacked ? sizes : QByteArray()) + rows;
    }
    QByteArray Row(const QImage &channel, int y) const
    {
        QByteArray row(lDepth == 1 ? channel.width() / 8 : 0, '\0');
        for (int x = 0; x < channel.width(); ++x) {
            const int level = qGray(channel.pixel(x, y));
            if (lDepth == 1)
                row[x / 8] = char(row[x / 8] | (level < 128 ? 0x80 >> x % 8 : 0));
            else if (lDepth == 32)
                row += BigEndian(level > 127 ? 0x3f800000 : 0, 4);
            else
                row += QByteArray(lDepth / 8, char(level));
        }
        return row;
    }
    /// Runs of two at the most, and what stands alone as it is.
    static QByteArray PackBits(const QByteArray &row)
    {
        QByteArray packed;
        for (qsizetype at = 0; at < row.size(); ++at) {
            const bool again = at + 1 < row.size() && row[at] == row[at + 1];
            packed += char(again ? -1 : 0);
            packed += row[at];
            at += again ? 1 : 0;
        }
        return packed;
    }
    QByteArray Bytes() const
    {
        const QSize size = aChannels.first().size();
        const int width = bLarge ? 8 : 4;
        const QByteArray resolution = "8BIM" + BigEndian(0x3ed, 2) + BigEndian(0, 2) + BigEndian(16, 4) +
                                      BigEndian(300 << 16, 4) + BigEndian(0x10001, 4) +
                                      BigEndian(300 << 16, 4) + BigEndian(0x10001, 4);
        const QByteArray layers = bClear ? BigEndian(2, width) + BigEndian(0xffff, 2) : QByteArray();
        return "8BPS" + BigEndian(bLarge ? 2 : 1, 2) + BigEndian(0, 6) +
               BigEndian(quint64(aChannels.size()), 2) + BigEndian(quint64(size.height()), 4) +
               BigEndian(quint64(size.width()), 4) + BigEndian(quint64(lDepth), 2) +
               BigEndian(quint64(lMode), 2) + BigEndian(quint64(abPalette.size()), 4) + abPalette +
               BigEndian(quint64(resolution.size()), 4) + resolution +
               BigEndian(quint64(layers.size()), width) + layers + Rows();
    }
};

using Tags = std::function<void(TIFF *)>;

/// Pages of 8-bit gray samples, unless the tags say otherwise and `row` gives what they say.
QByteArray RowOf(const QImage &image, int y, const std::function<QByteArray(int)> &sample)
{
    QByteArray row;
    for (int x = 0; x < image.width(); ++x)
        row += sample(qGray(image.pixel(x, y)));
    return row;
}

void WriteTiffPage(TIFF *tiff, const QImage &image, const Tags &tags,
                   const std::function<QByteArray(int)> &sample)
{
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, image.width());
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, image.height());
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 16);
    tags(tiff);
    for (int y = 0; y < image.height(); ++y)
        TIFFWriteScanline(tiff, RowOf(image, y, sample).data(), uint32_t(y));
    TIFFWriteDirectory(tiff);
}

QByteArray OneByte(int level)
{
    return QByteArray(1, char(level));
}

QByteArray FourBytes(quint32 value)
{
    return QByteArray(reinterpret_cast<const char *>(&value), sizeof value);
}

} // namespace

class tst_PrintToolPictures : public QObject
{
    Q_OBJECT

private slots:
    void everyFormIsDrawn_data();
    void everyFormIsDrawn();
    void deepPngWithAClearColourIsDrawn();
    void psdOfEveryModeIsDrawn_data();
    void psdOfEveryModeIsDrawn();
    void tiffOfEveryDepthIsDrawn_data();
    void tiffOfEveryDepthIsDrawn();
    void tiffShowsAllItsPagesButNoPreviews();
    void turnedPicturesStandUpright_data();
    void turnedPicturesStandUpright();
    void pageIsTurnedAndScaledAsAsked();
    void sizeComesFromTheResolution_data();
    void sizeComesFromTheResolution();
    void absurdSizesAreRefused_data();
    void absurdSizesAreRefused();
    void damagedPicturesAreSurvived_data();
    void damagedPicturesAreSurvived();

private:
    QString Write(const QByteArray &bytes)
    {
        QFile file(folder.filePath(QString::number(++lFiles)));
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() ? file.fileName()
                                                                                    : QString();
    }
    QString WriteSample(const char *form, QImage::Format format)
    {
        const QString path = Write({});
        return Sample(format).save(path, form, 100) ? path : QString();
    }
    QString WriteTiff(const std::function<void(TIFF *)> &pages)
    {
        const QString path = Write({});
        TIFF *tiff = TIFFOpen(QFile::encodeName(path).constData(), "w");
        pages(tiff);
        TIFFClose(tiff);
        return path;
    }
    static QString Corners(const QString &path, int page = 0)
    {
        return CornersOf(PictureSource(path).Render(page, {side, side}, 0));
    }
    static QString WhyRefused(const QString &path)
    {
        try {
            PictureSource source(path);
            source.Render(0, {side, side}, 0);
        } catch (const ConversionError &error) {
            return error.Text();
        }
        return QStringLiteral("not refused");
    }

    QTemporaryDir folder;
    int lFiles = 0;
};

void tst_PrintToolPictures::everyFormIsDrawn_data()
{
    const TestTable<QByteArray, QImage::Format> row{"form", "format"};
    row("BMP", "BMP", QImage::Format_RGB32);
    row("BMP, two colours", "BMP", QImage::Format_Mono);
    row("JPEG", "JPG", QImage::Format_RGB32);
    row("JPEG, gray", "JPG", QImage::Format_Grayscale8);
    row("PNG, clear", "PNG", QImage::Format_ARGB32);
    row("PNG, 16 bits, clear", "PNG", QImage::Format_RGBA64);
    row("PNG, 16 bits, gray", "PNG", QImage::Format_Grayscale16);
    row("PNG, palette, clear", "PNG", QImage::Format_Indexed8);
    row("PNG, two colours", "PNG", QImage::Format_Mono);
}

void tst_PrintToolPictures::everyFormIsDrawn()
{
    QFETCH(QByteArray, form);
    QFETCH(QImage::Format, format);
    PictureSource source(WriteSample(form.constData(), format));
    const QImage page = source.Render(0, {side, side}, 0);
    QCOMPARE(page.format(), QImage::Format_Grayscale8);
    QCOMPARE(CornersOf(page), QStringLiteral("kwww"));
    QCOMPARE(source.Count(), 1);
}

void tst_PrintToolPictures::deepPngWithAClearColourIsDrawn()
{
    QFile file(WriteSample("PNG", QImage::Format_RGBX64));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QByteArray bytes = file.readAll();
    const QByteArray clear = "tRNS" + QByteArray(6, '\xff');
    bytes.insert(bytes.indexOf("IDAT") - 4, BigEndian(6, 4) + clear + BigEndian(Bytes::Crc32(clear), 4));
    QCOMPARE(Corners(Write(bytes)), "kwww");
}

void tst_PrintToolPictures::psdOfEveryModeIsDrawn_data()
{
    const TestTable<PsdFile> row{"file"};
    const QImage gray = Sample(QImage::Format_Grayscale8), color = gray;
    QImage white = gray, clear = gray;
    white.fill(255);
    clear.fill(255);
    QPainter(&clear).fillRect(0, half, half, half, Qt::black);
    QImage dark = gray; // black behind what is clear
    QPainter(&dark).fillRect(0, half, half, half, Qt::black);
    row("two colours", {0, 1, {gray}, false, false, false, {}});
    row("gray", {1, 8, {gray}, false, true, false, {}});
    row("palette",
        {2, 8, {gray}, false, true, false, (QByteArray(1, '\0') + QByteArray(255, '\xff')).repeated(3)});
    row("colours", {3, 8, {gray, gray, gray}, false, true, false, {}});
    row("colours, 16 bits", {3, 16, {gray, gray, gray}, false, true, false, {}});
    row("colours, 32 bits", {3, 32, {gray, gray, gray}, false, false, false, {}});
    row("colours, clear", {3, 8, {dark, dark, dark, clear}, true, false, false, {}});
    row("colours, a channel of its own", {3, 8, {gray, gray, gray, dark}, false, false, false, {}});
    row("inks", {4, 8, {white, white, white, gray}, false, true, false, {}});
    row("lightness", {9, 8, {gray, white, white}, false, false, false, {}});
    row("large form", {3, 8, {gray, gray, gray}, false, true, true, {}});
}

void tst_PrintToolPictures::psdOfEveryModeIsDrawn()
{
    QFETCH(PsdFile, file);
    PictureSource source(Write(file.Bytes()));
    QCOMPARE(CornersOf(source.Render(0, {side, side}, 0)), QStringLiteral("kwww"));
    QCOMPARE(source.PageSize(0), QSizeF(side, side) / 300);
}

using SampleOf = std::function<QByteArray(int)>;
Q_DECLARE_METATYPE(SampleOf)

void tst_PrintToolPictures::tiffOfEveryDepthIsDrawn_data()
{
    const TestTable<Tags, SampleOf> row{"tags", "sample"};
    const auto depth = [](int bits, int samples, int colors) -> Tags {
        return [=](TIFF *tiff) {
            TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, bits);
            TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, samples);
            TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, colors);
        };
    };
    row("gray", depth(8, 1, PHOTOMETRIC_MINISBLACK), OneByte);
    row("ink", depth(8, 1, PHOTOMETRIC_MINISWHITE), [](int level) { return OneByte(255 - level); });
    row("gray, 16 bits", depth(16, 1, PHOTOMETRIC_MINISBLACK),
        [](int level) { return QByteArray(2, char(level)); });
    row("gray, 32 bits", depth(32, 1, PHOTOMETRIC_MINISBLACK),
        [](int level) { return QByteArray(4, char(level)); });
    row(
        "colours, LZW",
        [=](TIFF *tiff) {
            depth(8, 3, PHOTOMETRIC_RGB)(tiff);
            TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_LZW);
        },
        [](int level) { return QByteArray(3, char(level)); });
    row("colours, 16 bits", depth(16, 3, PHOTOMETRIC_RGB),
        [](int level) { return QByteArray(6, char(level)); });
    row("inks", depth(8, 4, PHOTOMETRIC_SEPARATED),
        [](int level) { return QByteArray(3, '\0') + char(255 - level); });
    row("inks, 16 bits", depth(16, 4, PHOTOMETRIC_SEPARATED),
        [](int level) { return QByteArray(6, '\0') + QByteArray(2, char(255 - level)); });
    row(
        "light as numbers",
        [=](TIFF *tiff) {
            depth(32, 1, PHOTOMETRIC_MINISBLACK)(tiff);
            TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_IEEEFP);
        },
        [](int level) { return FourBytes(level > 127 ? 0x3f800000 : 0); });
    row(
        "clear",
        [=](TIFF *tiff) {
            depth(8, 2, PHOTOMETRIC_MINISBLACK)(tiff);
            uint16_t alpha = EXTRASAMPLE_UNASSALPHA;
            TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &alpha);
        },
        [](int level) { return QByteArray(1, '\0') + char(255 - level); });
}

void tst_PrintToolPictures::tiffOfEveryDepthIsDrawn()
{
    QFETCH(Tags, tags);
    QFETCH(SampleOf, sample);
    const QString path =
        WriteTiff([&](TIFF *tiff) { WriteTiffPage(tiff, Sample(QImage::Format_Grayscale8), tags, sample); });
    QCOMPARE(Corners(path), QStringLiteral("kwww"));
}

void tst_PrintToolPictures::tiffShowsAllItsPagesButNoPreviews()
{
    const QImage upright = Sample(QImage::Format_Grayscale8);
    const QString path = WriteTiff([&](TIFF *tiff) {
        WriteTiffPage(
            tiff, upright, [](TIFF *) {}, OneByte);
        WriteTiffPage(
            tiff, upright, [](TIFF *page) { TIFFSetField(page, TIFFTAG_SUBFILETYPE, FILETYPE_REDUCEDIMAGE); },
            OneByte);
        WriteTiffPage(
            tiff, upright.mirrored(true, false), [](TIFF *) {}, OneByte);
        WriteTiffPage(
            tiff, upright, [](TIFF *page) { TIFFSetField(page, TIFFTAG_SUBFILETYPE, FILETYPE_REDUCEDIMAGE); },
            OneByte);
    });
    PictureSource source(path);
    QCOMPARE(source.Count(), 2);
    QCOMPARE(CornersOf(source.Render(1, {side, side}, 0)), QStringLiteral("wkww"));
    QCOMPARE(CornersOf(source.Render(0, {side, side}, 0)), QStringLiteral("kwww"));
}

void tst_PrintToolPictures::turnedPicturesStandUpright_data()
{
    // Where the black quarter of the stored picture comes to stand.
    const TestTable<int, QString> row{"orientation", "corners"};
    row("as it is", 1, "kwww");
    row("mirrored", 2, "wkww");
    row("upside down", 3, "wwwk");
    row("flipped", 4, "wwkw");
    row("transposed", 5, "kwww");
    row("turned right", 6, "wkww");
    row("transposed the other way", 7, "wwwk");
    row("turned left", 8, "wwkw");
}

void tst_PrintToolPictures::turnedPicturesStandUpright()
{
    QFETCH(int, orientation);
    QFETCH(QString, corners);
    const QImage sample = Sample(QImage::Format_Grayscale8).scaled(2 * side, side);
    const QString tiff = WriteTiff([&](TIFF *file) {
        WriteTiffPage(
            file, sample, [&](TIFF *page) { TIFFSetField(page, TIFFTAG_ORIENTATION, orientation); }, OneByte);
    });
    const QString jpeg = Write({});
    QVERIFY(sample.save(jpeg, "JPG", 100));
    QFile file(jpeg);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QByteArray bytes = file.readAll();
    const QByteArray exif = QByteArray("Exif\0\0II*\0\10\0\0\0", 14) + LittleEndian(1, 2) +
                            LittleEndian(0x112, 2) + LittleEndian(3, 2) + LittleEndian(1, 4) +
                            LittleEndian(quint64(orientation), 4) + LittleEndian(0, 4);
    bytes.insert(2, "\xff\xe1" + BigEndian(quint64(exif.size()) + 2, 2) + exif);
    QVERIFY(file.seek(0) && file.write(bytes) == bytes.size() && file.flush());

    for (const QString &path : {tiff, jpeg}) {
        PictureSource source(path);
        const QSizeF size(2 * side / 96.0, side / 96.0);
        QCOMPARE(source.PageSize(0), orientation > 4 ? size.transposed() : size);
        QCOMPARE(CornersOf(source.Render(0, {side, side}, 0)), corners);
    }
}

void tst_PrintToolPictures::pageIsTurnedAndScaledAsAsked()
{
    PictureSource source(WriteSample("PNG", QImage::Format_RGB32));
    for (const auto &[rotation, corners] : std::array<std::pair<int, const char *>, 4>{
             {{0, "kwww"}, {90, "wkww"}, {180, "wwwk"}, {270, "wwkw"}}}) {
        for (const QSize size : {QSize(31, 17), QSize(200, 9), QSize(300, 500)}) {
            const QImage page = source.Render(0, size, rotation);
            QCOMPARE(page.size(), size);
            QCOMPARE(CornersOf(page), QString(corners));
        }
    }
    // Stripes as wide as a pixel become the gray between them, not the one or the other.
    QImage stripes(512, 512, QImage::Format_Grayscale8);
    for (int y = 0; y < stripes.height(); ++y)
        std::fill_n(stripes.scanLine(y), stripes.width(), uchar(y % 2 == 0 ? 0 : 255));
    const QString path = Write({});
    QVERIFY(stripes.save(path, "PNG"));
    const QImage small = PictureSource(path).Render(0, {50, 50}, 0);
    const int gray = qGray(small.pixel(25, 25));
    QVERIFY2(gray > 100 && gray < 155, qPrintable(QString::number(gray)));
}

void tst_PrintToolPictures::sizeComesFromTheResolution_data()
{
    const TestTable<QByteArray, int, double> row{"form", "dotsPerInch", "inches"};
    row("PNG", "PNG", 200, side / 200.0);
    row("JPEG", "JPG", 200, side / 200.0);
    row("BMP", "BMP", 200, side / 200.0);
    row("too coarse to be meant", "PNG", 3, side / 96.0);
    row("too fine to be meant", "JPG", 50'000, side / 96.0);
}

void tst_PrintToolPictures::sizeComesFromTheResolution()
{
    QFETCH(QByteArray, form);
    QFETCH(int, dotsPerInch);
    QFETCH(double, inches);
    QImage image = Sample(QImage::Format_RGB32);
    image.setDotsPerMeterX(qRound(dotsPerInch / 0.0254));
    image.setDotsPerMeterY(qRound(dotsPerInch / 0.0254));
    const QString path = Write({});
    QVERIFY(image.save(path, form.constData()));
    const QSizeF size = PictureSource(path).PageSize(0);
    QVERIFY(qAbs(size.width() - inches) < 0.01 && qAbs(size.height() - inches) < 0.01);
}

void tst_PrintToolPictures::absurdSizesAreRefused_data()
{
    const TestTable<QString> row{"path"};
    constexpr int absurd = 50'000;
    const QByteArray header =
        "IHDR" + BigEndian(absurd, 4) + BigEndian(absurd, 4) + QByteArray("\x08\x02\0\0\0", 5);
    row("PNG", Write(QByteArray("\x89PNG\r\n\x1a\n", 8) + BigEndian(13, 4) + header +
                     BigEndian(Bytes::Crc32(header), 4)));
    row("BMP", Write("BM" + LittleEndian(0, 8) + LittleEndian(54, 4) + LittleEndian(40, 4) +
                     LittleEndian(absurd, 4) + LittleEndian(absurd, 4) + LittleEndian(1, 2) +
                     LittleEndian(24, 2) + QByteArray(24, '\0') + QByteArray(1000, 'x')));
    row("PSD", Write("8BPS" + BigEndian(1, 2) + BigEndian(0, 6) + BigEndian(3, 2) + BigEndian(absurd, 4) +
                     BigEndian(absurd, 4) + BigEndian(8, 2) + BigEndian(3, 2) + QByteArray(1000, '\0')));
    row("TIFF", WriteTiff([](TIFF *tiff) {
            TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, absurd);
            TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, absurd);
            TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 1);
            TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE);
            const QByteArray pixels(absurd / 8, '\0');
            TIFFWriteRawStrip(tiff, 0, QByteArray(pixels).data(), pixels.size());
        }));
    QFile jpeg(WriteSample("JPG", QImage::Format_Grayscale8));
    QVERIFY(jpeg.open(QIODevice::ReadOnly));
    QByteArray bytes = jpeg.readAll();
    const qsizetype frame = bytes.indexOf("\xff\xc0");
    row("JPEG", Write(bytes.replace(frame + 5, 4, BigEndian(absurd, 2) + BigEndian(absurd, 2))));
}

void tst_PrintToolPictures::absurdSizesAreRefused()
{
    QFETCH(QString, path);
    const QString reason = WhyRefused(path);
    QVERIFY2(reason.startsWith("The picture is too large: 50000 x "), qPrintable(reason));
}

void tst_PrintToolPictures::damagedPicturesAreSurvived_data()
{
    const TestTable<QString> row{"path"};
    const QImage gray = Sample(QImage::Format_Grayscale8);
    row("PNG", WriteSample("PNG", QImage::Format_RGB32));
    row("BMP", WriteSample("BMP", QImage::Format_RGB32));
    row("JPEG", WriteSample("JPG", QImage::Format_RGB32));
    row("PSD", Write(PsdFile{3, 8, {gray, gray, gray}, false, true, false, {}}.Bytes()));
    row("TIFF", WriteTiff([&](TIFF *tiff) {
            WriteTiffPage(
                tiff, gray, [](TIFF *) {}, OneByte);
        }));
    row("fax", Write(FaxFile{.lPages = 3}.Bytes()));
}

/// Every tenth of the file is cut off, and bytes all over it are spoilt.
void tst_PrintToolPictures::damagedPicturesAreSurvived()
{
    QFETCH(QString, path);
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray whole = file.readAll();
    QVERIFY(WhyRefused(path) == QStringLiteral("not refused"));
    for (int tenth = 1; tenth < 10; ++tenth)
        WhyRefused(Write(whole.left(whole.size() * tenth / 10)));
    quint32 random = 1;
    for (int round = 0; round < 100; ++round) {
        QByteArray spoilt = whole;
        for (int byte = 0; byte < 4; ++byte) {
            random = random * 1664525 + 1013904223;
            const qsizetype within = round % 2 == 0 ? qMin<qsizetype>(whole.size(), 300) : whole.size();
            spoilt[(random >> 8) % within] = static_cast<char>(random);
        }
        WhyRefused(Write(spoilt));
    }
    QVERIFY(WhyRefused(Write(whole.left(20))) != QStringLiteral("not refused"));
}

QTEST_GUILESS_MAIN(tst_PrintToolPictures)
#include "tst_PrintToolPictures.moc"
