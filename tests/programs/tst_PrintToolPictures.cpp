#include "fixtures/Bytes.h"
#include "fixtures/FaxFile.h"
#include "fixtures/Profile.h"
#include "fixtures/TestTable.h"
#include "programs/printtool/ConversionError.h"
#include "programs/printtool/PictureSource.h"

#include <QImage>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>

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
    QList<QImage> aChannels = {};
    bool bClear = false, bPacked = false, bLarge = false;
    QByteArray abPalette = {};

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
    QByteArray Whole() const
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
using Samples = std::function<QByteArray(int)>; ///< the bytes of one pixel, from its level

QByteArray OneByte(int level)
{
    return QByteArray(1, char(level));
}

/// So often the level, or its ink, behind some empty inks.
Samples Level(int count, int empty = 0, bool isInk = false)
{
    return [=](int level) {
        return QByteArray(empty, '\0') + QByteArray(count, char(isInk ? 255 - level : level));
    };
}

Tags Depth(int bits, int samples, int colors)
{
    return [=](TIFF *tiff) {
        TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, bits);
        TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, samples);
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, colors);
    };
}

/// Adds a page of 8-bit gray samples, unless the tags say otherwise and `sample` gives what they say.
void WriteTiffPage(TIFF *tiff, const QImage &image, const Tags &tags = {}, const Samples &sample = OneByte)
{
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, image.width());
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, image.height());
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 16);
    Depth(8, 1, PHOTOMETRIC_MINISBLACK)(tiff);
    if (tags)
        tags(tiff);
    for (int y = 0; y < image.height(); ++y) {
        QByteArray row;
        for (int x = 0; x < image.width(); ++x)
            row += sample(qGray(image.pixel(x, y)));
        TIFFWriteScanline(tiff, row.data(), uint32_t(y));
    }
    TIFFWriteDirectory(tiff);
}

} // namespace

class tst_PrintToolPictures : public QObject
{
    Q_OBJECT

private slots:
    void everyFormIsDrawn_data()
    {
        const TestTable<QString> row{"path"};
        row("BMP", WriteSample("BMP", QImage::Format_RGB32));
        row("BMP, two colours", WriteSample("BMP", QImage::Format_Mono));
        row("JPEG", WriteSample("JPG", QImage::Format_RGB32));
        row("JPEG, gray", WriteSample("JPG", QImage::Format_Grayscale8));
        row("PNG, clear", WriteSample("PNG", QImage::Format_ARGB32));
        row("PNG, 16 bits, clear", WriteSample("PNG", QImage::Format_RGBA64));
        row("PNG, 16 bits, gray", WriteSample("PNG", QImage::Format_Grayscale16));
        row("PNG, palette, clear", WriteSample("PNG", QImage::Format_Indexed8));
        row("PNG, two colours", WriteSample("PNG", QImage::Format_Mono));
        QByteArray deep = ReadTestFile(WriteSample("PNG", QImage::Format_RGBX64));
        const QByteArray color = "tRNS" + QByteArray(6, '\xff');
        deep.insert(deep.indexOf("IDAT") - 4, BigEndian(6, 4) + color + BigEndian(Bytes::Crc32(color), 4));
        row("PNG, 16 bits, a clear colour", Write(deep));

        const auto psd = [&](const char *tag, const PsdFile &file) { row(tag, Write(file.Whole())); };
        const QImage gray = Sample(QImage::Format_Grayscale8);
        QImage white = gray, clear = gray, dark = gray; // dark: black behind what is clear
        white.fill(255);
        clear.fill(255);
        for (QImage *channel : {&clear, &dark})
            QPainter(channel).fillRect(0, half, half, half, Qt::black);
        const QByteArray palette = (QByteArray(1, '\0') + QByteArray(255, '\xff')).repeated(3);
        psd("PSD, two colours", {0, 1, {gray}});
        psd("PSD, gray", {.lMode = 1, .aChannels = {gray}, .bPacked = true});
        psd("PSD, palette", {.lMode = 2, .aChannels = {gray}, .bPacked = true, .abPalette = palette});
        psd("PSD, colours", {.aChannels = {gray, gray, gray}, .bPacked = true});
        psd("PSD, 16 bits", {.lDepth = 16, .aChannels = {gray, gray, gray}, .bPacked = true});
        psd("PSD, 32 bits", {.lDepth = 32, .aChannels = {gray, gray, gray}});
        psd("PSD, clear", {.aChannels = {dark, dark, dark, clear}, .bClear = true});
        psd("PSD, a channel of its own", {.aChannels = {gray, gray, gray, dark}});
        psd("PSD, inks", {.lMode = 4, .aChannels = {white, white, white, gray}, .bPacked = true});
        psd("PSD, lightness", {.lMode = 9, .aChannels = {gray, white, white}});
        psd("PSD, large form", {.aChannels = {gray, gray, gray}, .bPacked = true, .bLarge = true});

        const auto tiff = [&](const char *tag, const Tags &depth, const Samples &sample,
                              const Tags &more = {}) {
            const Tags tags = [=](TIFF *file) { depth(file), more ? more(file) : void(); };
            row(tag, WriteTiff([&](TIFF *file) { WriteTiffPage(file, gray, tags, sample); }));
        };
        tiff("TIFF, gray", Depth(8, 1, PHOTOMETRIC_MINISBLACK), Level(1));
        tiff("TIFF, ink", Depth(8, 1, PHOTOMETRIC_MINISWHITE), Level(1, 0, true));
        tiff("TIFF, gray, 16 bits", Depth(16, 1, PHOTOMETRIC_MINISBLACK), Level(2));
        tiff("TIFF, gray, 32 bits", Depth(32, 1, PHOTOMETRIC_MINISBLACK), Level(4));
        tiff("TIFF, colours, LZW", Depth(8, 3, PHOTOMETRIC_RGB), Level(3),
             [](TIFF *file) { TIFFSetField(file, TIFFTAG_COMPRESSION, COMPRESSION_LZW); });
        tiff("TIFF, colours, 16 bits", Depth(16, 3, PHOTOMETRIC_RGB), Level(6));
        tiff("TIFF, inks", Depth(8, 4, PHOTOMETRIC_SEPARATED), Level(1, 3, true));
        tiff("TIFF, inks, 16 bits", Depth(16, 4, PHOTOMETRIC_SEPARATED), Level(2, 6, true));
        tiff(
            "TIFF, light as numbers", Depth(32, 1, PHOTOMETRIC_MINISBLACK),
            [](int level) { return LittleEndian(level > 127 ? 0x3f800000 : 0, 4); },
            [](TIFF *file) { TIFFSetField(file, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_IEEEFP); });
        tiff("TIFF, clear", Depth(8, 2, PHOTOMETRIC_MINISBLACK), Level(1, 1, true), [](TIFF *file) {
            uint16_t alpha = EXTRASAMPLE_UNASSALPHA;
            TIFFSetField(file, TIFFTAG_EXTRASAMPLES, 1, &alpha);
        });
    }

    void everyFormIsDrawn()
    {
        QFETCH(QString, path);
        PictureSource source(path);
        const QImage page = source.Render(0, {side, side}, 0);
        QCOMPARE(page.format(), QImage::Format_Grayscale8);
        QCOMPARE(CornersOf(page), QStringLiteral("kwww"));
        QCOMPARE(source.Count(), 1);
        const double dotsPerInch = QByteArray(QTest::currentDataTag()).startsWith("PSD") ? 300 : 96;
        QVERIFY(std::abs(source.PageSize(0).width() - side / dotsPerInch) < 0.01);
    }

    void tiffShowsAllItsPagesButNoPreviews()
    {
        const QImage upright = Sample(QImage::Format_Grayscale8);
        const Tags preview = [](TIFF *page) {
            TIFFSetField(page, TIFFTAG_SUBFILETYPE, FILETYPE_REDUCEDIMAGE);
        };
        PictureSource source(WriteTiff([&](TIFF *tiff) {
            WriteTiffPage(tiff, upright);
            WriteTiffPage(tiff, upright, preview);
            WriteTiffPage(tiff, upright.mirrored(true, false));
            WriteTiffPage(tiff, upright, preview);
        }));
        QCOMPARE(source.Count(), 2);
        QCOMPARE(CornersOf(source.Render(1, {side, side}, 0)), QStringLiteral("wkww"));
        QCOMPARE(CornersOf(source.Render(0, {side, side}, 0)), QStringLiteral("kwww"));
    }

    void turnedPicturesStandUpright()
    {
        // Where the black quarter of the stored picture comes to stand, by the orientation from 1 on.
        const char *const corners[] = {"kwww", "wkww", "wwwk", "wwkw", "kwww", "wkww", "wwwk", "wwkw"};
        const QImage sample = Sample(QImage::Format_Grayscale8).scaled(2 * side, side);
        for (int orientation = 1; orientation <= 8; ++orientation) {
            const QString tiff = WriteTiff([&](TIFF *file) {
                WriteTiffPage(file, sample,
                              [&](TIFF *page) { TIFFSetField(page, TIFFTAG_ORIENTATION, orientation); });
            });
            const QString plain = Write({});
            QVERIFY(sample.save(plain, "JPG", 100));
            const QByteArray exif = QByteArray("Exif\0\0II*\0\10\0\0\0", 14) + LittleEndian(1, 2) +
                                    LittleEndian(0x112, 2) + LittleEndian(3, 2) + LittleEndian(1, 4) +
                                    LittleEndian(quint64(orientation), 4) + LittleEndian(0, 4);
            const QString jpeg = Write(
                ReadTestFile(plain).insert(2, "\xff\xe1" + BigEndian(quint64(exif.size()) + 2, 2) + exif));
            for (const QString &path : {tiff, jpeg}) {
                PictureSource source(path);
                const QSizeF size(2 * side / 96.0, side / 96.0);
                QCOMPARE(source.PageSize(0), orientation > 4 ? size.transposed() : size);
                QCOMPARE(CornersOf(source.Render(0, {side, side}, 0)), QString(corners[orientation - 1]));
            }
        }
    }

    void pageIsTurnedAndScaledAsAsked()
    {
        PictureSource source(WriteSample("PNG", QImage::Format_RGB32));
        for (const auto &[rotation, corners] :
             {std::pair(0, "kwww"), std::pair(90, "wkww"), std::pair(180, "wwwk"), std::pair(270, "wwkw")}) {
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

    void sizeComesFromTheResolution()
    {
        // The last two are too coarse, and too fine, to be meant.
        const std::tuple<const char *, int, double> rows[] = {
            {"PNG", 200, 200}, {"JPG", 200, 200}, {"BMP", 200, 200}, {"PNG", 3, 96}, {"JPG", 50'000, 96}};
        for (const auto &[form, stored, dotsPerInch] : rows) {
            QImage image = Sample(QImage::Format_RGB32);
            image.setDotsPerMeterX(qRound(stored / 0.0254));
            image.setDotsPerMeterY(qRound(stored / 0.0254));
            const QString path = Write({});
            QVERIFY(image.save(path, form));
            const QSizeF size = PictureSource(path).PageSize(0), wanted = QSizeF(side, side) / dotsPerInch;
            QVERIFY2(qAbs(size.width() - wanted.width()) < 0.01 &&
                         qAbs(size.height() - wanted.height()) < 0.01,
                     form);
        }
    }

    void absurdSizesAreRefused_data()
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
        QByteArray bytes = ReadTestFile(WriteSample("JPG", QImage::Format_Grayscale8));
        const qsizetype frame = bytes.indexOf("\xff\xc0");
        row("JPEG", Write(bytes.replace(frame + 5, 4, BigEndian(absurd, 2) + BigEndian(absurd, 2))));
    }

    void absurdSizesAreRefused()
    {
        QFETCH(QString, path);
        const QString reason = WhyRefused(path);
        QVERIFY2(reason.startsWith("The picture is too large: 50000 x "), qPrintable(reason));
    }

    void damagedPicturesAreSurvived_data()
    {
        const TestTable<QString> row{"path"};
        const QImage gray = Sample(QImage::Format_Grayscale8);
        row("PNG", WriteSample("PNG", QImage::Format_RGB32));
        row("BMP", WriteSample("BMP", QImage::Format_RGB32));
        row("JPEG", WriteSample("JPG", QImage::Format_RGB32));
        row("PSD", Write(PsdFile{.aChannels = {gray, gray, gray}, .bPacked = true}.Whole()));
        row("TIFF", WriteTiff([&](TIFF *tiff) { WriteTiffPage(tiff, gray); }));
        row("fax", Write(FaxFile{.lPages = 3}.Bytes()));
    }

    /// Every tenth of the file is cut off, and bytes all over it are spoilt.
    void damagedPicturesAreSurvived()
    {
        QFETCH(QString, path);
        const QByteArray whole = ReadTestFile(path);
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

private:
    QString Write(const QByteArray &bytes)
    {
        const QString path = folder.filePath(QString::number(++lFiles));
        return WriteTestFile(path, bytes) ? path : QString();
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

QTEST_GUILESS_MAIN(tst_PrintToolPictures)
#include "tst_PrintToolPictures.moc"
