#include "core/FaxImage.h"
#include "fixtures/FaxFile.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

#include <tiffio.h>

namespace {

/// A table of tiny uncompressed pages, written by hand: each entry a tag, a type, a count and a value.
struct HandMadeTiff
{
    struct Tag
    {
        quint16 lTag, lType;
        quint32 lCount, lValue;
    };

    QByteArray abBytes = QByteArray("II*\0\x08\0\0\0", 8);

    void AddPage(quint32 width, quint32 height, bool last, const QList<Tag> &more = {})
    {
        QList<Tag> tags = {{256, 4, 1, width}, {257, 4, 1, height}, {258, 3, 1, 1},      {259, 3, 1, 1},
                           {262, 3, 1, 0},     {273, 4, 1, 4},      {278, 4, 1, height}, {279, 4, 1, 4}};
        for (const Tag &tag : more) {
            tags.removeIf([&tag](const Tag &old) { return old.lTag == tag.lTag; });
            tags.append(tag);
        }
        Put<quint16>(static_cast<quint16>(tags.size()));
        for (const Tag &tag : tags) {
            Put(tag.lTag);
            Put(tag.lType);
            Put(tag.lCount);
            Put(tag.lValue);
        }
        Put<quint32>(last ? 0 : static_cast<quint32>(abBytes.size()) + 4);
    }
    template <typename Value>
    void Put(Value value)
    {
        const qsizetype at = abBytes.size();
        abBytes.resize(at + qsizetype(sizeof(Value)));
        qToLittleEndian(value, abBytes.data() + at);
    }
    void PointBackToTheFirst() { qToLittleEndian<quint32>(8, abBytes.data() + abBytes.size() - 4); }
};

QByteArray ManyPages(int count)
{
    HandMadeTiff tiff;
    for (int page = 0; page < count; ++page)
        tiff.AddPage(32, 1, page == count - 1);
    return tiff.abBytes;
}

bool IsInk(const PageBits &page, int x, int y)
{
    const uchar byte = static_cast<uchar>(page.abBits[y * page.lBytesPerLine + x / 8]);
    return (page.aPalette[byte >> (7 - x % 8) & 1] & 0xffffff) == 0;
}

} // namespace

class tst_FaxImage final : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void pagesAreCountedAndToldApart_data();
    void pagesAreCountedAndToldApart();
    void sizeAndResolutionAreTheFilesOwn();
    void fileWithoutResolutionSaysNone();
    void pageTurnsCounterClockwise_data();
    void pageTurnsCounterClockwise();
    void sizeBytesInFrontAreSteppedOver();
    void wrongSizeInFrontIsNoPrefix();
    void grayAndColourPagesAreRead_data();
    void grayAndColourPagesAreRead();
    void pageOutsideTheFaxIsEmpty();
    void lastOfManyPagesIsFound();
    void hostileFileIsRefusedQuickly_data();
    void hostileFileIsRefusedQuickly();
    void tornFileIsReadSafely();

private:
    void Put(const QByteArray &bytes) const;

    std::unique_ptr<QTemporaryDir> folder;
    QString strFile;
};

void tst_FaxImage::init()
{
    folder = std::make_unique<QTemporaryDir>();
    strFile = folder->filePath(QStringLiteral(u"f\u00e4x.tif"));
}

void tst_FaxImage::Put(const QByteArray &bytes) const
{
    QFile file(strFile);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

void tst_FaxImage::pagesAreCountedAndToldApart_data()
{
    QTest::addColumn<bool>("group3");
    QTest::addColumn<bool>("minIsBlack");
    QTest::newRow("group 4") << false << false;
    QTest::newRow("group 3") << true << false;
    QTest::newRow("black is 0") << false << true;
}

void tst_FaxImage::pagesAreCountedAndToldApart()
{
    QFETCH(bool, group3);
    QFETCH(bool, minIsBlack);
    const FaxFile fax{.lPages = 3, .bGroup3 = group3, .bMinIsBlack = minIsBlack};
    QVERIFY(fax.Write(strFile));
    QCOMPARE(FaxImage::GetPageCount(strFile), 3);
    for (int number = 0; number < 3; ++number) {
        const PageBits page = FaxImage::LoadPage(strFile, number, 0);
        QCOMPARE(page.lBitsPerPixel, 1);
        QCOMPARE(page.aPalette.size(), 2);
        QVERIFY(IsInk(page, 16, 16) && IsInk(page, 79, 31));
        QVERIFY(!IsInk(page, 15, 16) && !IsInk(page, 80, 31) && !IsInk(page, 16, 15));
        for (int box = 0; box < 3; ++box)
            QCOMPARE(IsInk(page, 96, 16 + 24 * box), box == number);
    }
}

void tst_FaxImage::sizeAndResolutionAreTheFilesOwn()
{
    QVERIFY(
        (FaxFile{.lWidth = 1001, .lHeight = 333, .lDotsPerInchX = 204, .lDotsPerInchY = 196}.Write(strFile)));
    const PageBits page = FaxImage::LoadPage(strFile, 0, 0);
    QCOMPARE(page.lWidth, 1001);
    QCOMPARE(page.lHeight, 333);
    QCOMPARE(page.lDotsPerInchX, 204);
    QCOMPARE(page.lDotsPerInchY, 196);
    QCOMPARE(page.lBytesPerLine, 128);
    QCOMPARE(page.abBits.size(), 128 * 333);
}

void tst_FaxImage::fileWithoutResolutionSaysNone()
{
    QVERIFY(FaxFile{.lDotsPerInchY = 0}.Write(strFile));
    QCOMPARE(FaxImage::LoadPage(strFile, 0, 0).lDotsPerInchY, 0);
}

void tst_FaxImage::pageTurnsCounterClockwise_data()
{
    QTest::addColumn<int>("rotation");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    // Where the inner corner of the box at the top left, pixel (20, 16), comes to lie.
    QTest::newRow("none") << 0 << 1728 << 20 << 16;
    QTest::newRow("left") << 90 << 1146 << 16 << 1727 - 20;
    QTest::newRow("head down") << 180 << 1728 << 1727 - 20 << 1145 - 16;
    QTest::newRow("right") << -90 << 1146 << 1145 - 16 << 20;
    QTest::newRow("running sum") << 450 << 1146 << 16 << 1727 - 20;
}

void tst_FaxImage::pageTurnsCounterClockwise()
{
    QFETCH(int, rotation);
    QFETCH(int, x);
    QFETCH(int, y);
    QVERIFY(FaxFile().Write(strFile));
    const PageBits page = FaxImage::LoadPage(strFile, 0, rotation);
    QTEST(page.lWidth, "width");
    QCOMPARE(page.lWidth + page.lHeight, 1728 + 1146);
    QCOMPARE(page.lBitsPerPixel, 1);
    QCOMPARE(page.lDotsPerInchY, 98);
    QVERIFY(IsInk(page, x, y));
    QVERIFY(!IsInk(page, page.lWidth - 1 - x, page.lHeight - 1 - y));
}

void tst_FaxImage::sizeBytesInFrontAreSteppedOver()
{
    const FaxFile plain{.lPages = 2};
    QVERIFY(plain.Write(strFile));
    QVERIFY(!FaxImage::HasSizePrefix(strFile));
    const PageBits expected = FaxImage::LoadPage(strFile, 1, 0);
    QVERIFY((FaxFile{.lPages = 2, .bSizePrefix = true}.Write(strFile)));
    QVERIFY(FaxImage::HasSizePrefix(strFile));
    QCOMPARE(FaxImage::GetPageCount(strFile), 2);
    QCOMPARE(FaxImage::LoadPage(strFile, 1, 0).abBits, expected.abBits);
}

void tst_FaxImage::wrongSizeInFrontIsNoPrefix()
{
    QByteArray bytes = FaxFile{.bSizePrefix = true}.Bytes();
    Put(bytes + 'x');
    QVERIFY(!FaxImage::HasSizePrefix(strFile));
    QCOMPARE(FaxImage::GetPageCount(strFile), 0);
}

void tst_FaxImage::grayAndColourPagesAreRead_data()
{
    QTest::addColumn<quint16>("samples");
    QTest::addColumn<quint16>("bits");
    QTest::addColumn<int>("bitsPerPixel");
    QTest::newRow("4 bit gray") << quint16(1) << quint16(4) << 8;
    QTest::newRow("8 bit gray") << quint16(1) << quint16(8) << 8;
    QTest::newRow("16 bit gray") << quint16(1) << quint16(16) << 8;
    QTest::newRow("colour") << quint16(3) << quint16(8) << 32;
    QTest::newRow("deep colour") << quint16(3) << quint16(16) << 32;
}

void tst_FaxImage::grayAndColourPagesAreRead()
{
    QFETCH(quint16, samples);
    QFETCH(quint16, bits);
    TIFF *tiff = TIFFOpen(QFile::encodeName(strFile).constData(), "w");
    QVERIFY(tiff);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 40);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 2);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, samples);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, bits);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, samples == 1 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB);
    QByteArray white(40 * samples * bits / 8, '\xff'), black(white.size(), '\0');
    QCOMPARE(TIFFWriteScanline(tiff, white.data(), 0), 1);
    QCOMPARE(TIFFWriteScanline(tiff, black.data(), 1), 1);
    TIFFClose(tiff);

    const PageBits page = FaxImage::LoadPage(strFile, 0, 0);
    QTEST(page.lBitsPerPixel, "bitsPerPixel");
    const auto colorAt = [&page](int row) {
        const char *start = page.abBits.constData() + qsizetype(row) * page.lBytesPerLine;
        return page.lBitsPerPixel == 32 ? qFromLittleEndian<quint32>(start) : page.aPalette[uchar(*start)];
    };
    QCOMPARE(colorAt(0), 0xffffffffU);
    QCOMPARE(colorAt(1), 0xff000000U);
}

void tst_FaxImage::pageOutsideTheFaxIsEmpty()
{
    QVERIFY(FaxFile{.lPages = 2}.Write(strFile));
    QVERIFY(FaxImage::LoadPage(strFile, -1, 0).IsEmpty());
    QVERIFY(FaxImage::LoadPage(strFile, 2, 0).IsEmpty());
    QVERIFY(!FaxImage::LoadPage(strFile, 1, 0).IsEmpty());
}

void tst_FaxImage::lastOfManyPagesIsFound()
{
    Put(ManyPages(5000));
    QElapsedTimer time;
    time.start();
    QCOMPARE(FaxImage::GetPageCount(strFile), 5000);
    QCOMPARE(FaxImage::LoadPage(strFile, 4999, 0).lWidth, 32);
    QVERIFY(time.elapsed() < 4000);
}

void tst_FaxImage::hostileFileIsRefusedQuickly_data()
{
    QTest::addColumn<QByteArray>("bytes");
    HandMadeTiff wide, high, deep, odd, loop, nested, beyond, crowded;
    wide.AddPage(10001, 10, true);
    high.AddPage(10, 50001, true);
    deep.AddPage(10000, 50000, true, {{258, 3, 1, 8}});
    odd.AddPage(32, 1, true, {{277, 3, 1, 5}});
    loop.AddPage(32, 1, false);
    loop.AddPage(32, 1, false);
    loop.PointBackToTheFirst();
    nested.AddPage(32, 1, true, {{330, 4, 1, 8}});
    beyond.AddPage(32, 1, false);
    crowded.abBytes += QByteArray(2000000, '\xff');
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("one byte") << QByteArray("I");
    QTest::newRow("header only") << QByteArray("II*\0\0\0\0\0", 8);
    QTest::newRow("garbage") << QByteArray(100000, 'x');
    QTest::newRow("garbage behind the header") << crowded.abBytes;
    QTest::newRow("other picture") << QByteArray("\x89PNG\r\n\x1a\n") + QByteArray(100, '\0');
    QTest::newRow("too wide") << wide.abBytes;
    QTest::newRow("too high") << high.abBytes;
    QTest::newRow("too many bytes") << deep.abBytes;
    QTest::newRow("odd pixels") << odd.abBytes;
    QTest::newRow("table in a circle") << loop.abBytes;
    QTest::newRow("next page beyond the end") << beyond.abBytes;
    QTest::newRow("picture within the page") << nested.abBytes;
    QTest::newRow("20,000 pages") << ManyPages(20000);
}

void tst_FaxImage::hostileFileIsRefusedQuickly()
{
    QFETCH(QByteArray, bytes);
    Put(bytes);
    QElapsedTimer time;
    time.start();
    QCOMPARE(FaxImage::GetPageCount(strFile), 0);
    QVERIFY(FaxImage::LoadPage(strFile, 0, 0).IsEmpty());
    QVERIFY(time.elapsed() < 4000);
}

void tst_FaxImage::tornFileIsReadSafely()
{
    QCOMPARE(FaxImage::GetPageCount(folder->path()), 0);
    QCOMPARE(FaxImage::GetPageCount(folder->filePath("none.tif")), 0);
    constexpr qsizetype resolutionBytes = 16;
    const QByteArray whole = FaxFile{.lPages = 2, .lHeight = 200}.Bytes();
    QVERIFY(whole.size() > 100);
    for (qsizetype size = 0; size < whole.size(); ++size) {
        Put(whole.left(size));
        // Only what tells nothing about the pixels may be missing.
        const int pages = FaxImage::GetPageCount(strFile);
        QVERIFY(pages == 0 || (pages == 2 && whole.size() - size <= resolutionBytes));
        QCOMPARE(FaxImage::LoadPage(strFile, 0, 90).IsEmpty(), pages == 0);
    }
    for (qsizetype at = 8; at < whole.size(); ++at) {
        QByteArray torn = whole;
        torn[at] = static_cast<char>(~torn[at]);
        Put(torn);
        FaxImage::LoadPage(strFile, 1, 0); // anything but a crash
    }
}

QTEST_GUILESS_MAIN(tst_FaxImage)
#include "tst_FaxImage.moc"
