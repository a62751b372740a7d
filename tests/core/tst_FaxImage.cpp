#include "core/FaxImage.h"
#include "fixtures/FaxFile.h"
#include "fixtures/Profile.h"

#include <QDataStream>
#include <QFile>
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
        QDataStream out(&abBytes, QIODevice::Append);
        out.setByteOrder(QDataStream::LittleEndian);
        out << static_cast<quint16>(tags.size());
        for (const Tag &tag : tags)
            out << tag.lTag << tag.lType << tag.lCount << tag.lValue;
        out << (last ? 0 : static_cast<quint32>(abBytes.size()) + 4);
    }
    void PointBackToTheFirst() { qToLittleEndian<quint32>(8, abBytes.data() + abBytes.size() - 4); }
};

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
    void init()
    {
        folder = std::make_unique<QTemporaryDir>();
        strFile = folder->filePath(QStringLiteral(u"f\u00e4x.tif"));
    }

    void pagesAreCountedAndToldApart()
    {
        for (const FaxFile &fax :
             {FaxFile{.lPages = 3}, FaxFile{.lPages = 3, .bGroup3 = true},
              FaxFile{.lPages = 3, .bMinIsBlack = true}, FaxFile{.lPages = 3, .bSizePrefix = true}}) {
            QVERIFY(fax.Write(strFile));
            QCOMPARE(FaxImage::HasSizePrefix(strFile), fax.bSizePrefix);
            QCOMPARE(FaxImage::GetPageCount(strFile), 3);
            QVERIFY(FaxImage::LoadPage(strFile, -1, 0).IsEmpty() &&
                    FaxImage::LoadPage(strFile, 3, 0).IsEmpty());
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
    }

    void turnedPageKeepsSizeResolutionAndInk()
    {
        const FaxFile fax{.lWidth = 1001, .lHeight = 333, .lDotsPerInchX = 204, .lDotsPerInchY = 196};
        QVERIFY(fax.Write(strFile));
        // Counter-clockwise, and where pixel (20, 16) of the box at the top left comes to lie.
        const QList<std::pair<int, QPoint>> turns = {
            {0, {20, 16}}, {90, {16, 980}}, {180, {980, 316}}, {-90, {316, 20}}, {450, {16, 980}}};
        for (const auto &[rotation, ink] : turns) {
            const PageBits page = FaxImage::LoadPage(strFile, 0, rotation);
            const QSize size(page.lWidth, page.lHeight);
            QCOMPARE(size, rotation % 180 == 0 ? QSize(1001, 333) : QSize(333, 1001));
            QCOMPARE(QSize(page.lDotsPerInchX, page.lDotsPerInchY), QSize(204, 196));
            QCOMPARE(page.lBitsPerPixel, 1);
            QCOMPARE(page.abBits.size(), page.lBytesPerLine * page.lHeight);
            QVERIFY(IsInk(page, ink.x(), ink.y()));
            QVERIFY(!IsInk(page, page.lWidth - 1 - ink.x(), page.lHeight - 1 - ink.y()));
        }
    }

    void grayAndColourPagesAreRead()
    {
        for (const auto &[samples, bits] : {std::pair(1, 4), {1, 16}, {3, 8}, {3, 16}}) {
            TIFF *tiff = TIFFOpen(QFile::encodeName(strFile).constData(), "w");
            QVERIFY(tiff);
            TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 40);
            TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 2);
            TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, samples);
            TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, bits);
            TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, samples == 1 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB);
            TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
            QByteArray white(40 * samples * bits / 8, '\xff'), black(white.size(), '\0');
            TIFFWriteScanline(tiff, white.data(), 0);
            TIFFWriteScanline(tiff, black.data(), 1);
            TIFFClose(tiff);

            const PageBits page = FaxImage::LoadPage(strFile, 0, 0);
            QCOMPARE(page.lBitsPerPixel, samples == 1 ? 8 : 32);
            for (const int row : {0, 1}) {
                const char *start = page.abBits.constData() + qsizetype(row) * page.lBytesPerLine;
                QCOMPARE(samples == 3 ? qFromLittleEndian<quint32>(start) : page.aPalette[uchar(*start)],
                         row == 0 ? 0xffffffffU : 0xff000000U);
            }
        }
    }

    void hostileFileIsRefused()
    {
        HandMadeTiff wide, deep, odd, loop, nested, beyond, crowded, many;
        wide.AddPage(10001, 10, true);
        deep.AddPage(10000, 50000, true, {{258, 3, 1, 8}});
        odd.AddPage(32, 1, true, {{277, 3, 1, 5}});
        loop.AddPage(32, 1, false);
        loop.AddPage(32, 1, false);
        loop.PointBackToTheFirst();
        nested.AddPage(32, 1, true, {{330, 4, 1, 8}});
        beyond.AddPage(32, 1, false);
        crowded.abBytes += QByteArray(2000000, '\xff');
        for (int page = 1; page <= 20000; ++page)
            many.AddPage(32, 1, page == 20000);
        const std::pair<const char *, QByteArray> files[] = {
            {"empty", {}},
            {"garbage behind the header", crowded.abBytes},
            {"wrong size in front", FaxFile{.bSizePrefix = true}.Bytes() + 'x'},
            {"too wide", wide.abBytes},
            {"too many bytes", deep.abBytes},
            {"odd pixels", odd.abBytes},
            {"table in a circle", loop.abBytes},
            {"next page beyond the end", beyond.abBytes},
            {"picture within the page", nested.abBytes},
            {"20,000 pages", many.abBytes}};
        for (const auto &[what, bytes] : files) {
            QVERIFY(WriteTestFile(strFile, bytes));
            QVERIFY2(!FaxImage::HasSizePrefix(strFile), what);
            QVERIFY2(FaxImage::GetPageCount(strFile) == 0, what);
            QVERIFY2(FaxImage::LoadPage(strFile, 0, 0).IsEmpty(), what);
        }
    }

    void pageThatIsAnotherOneByNowIsRefused()
    {
        HandMadeTiff tiff, other;
        tiff.AddPage(32, 1, true);
        other.AddPage(32, 50000, true);
        QVERIFY(WriteTestFile(strFile, tiff.abBytes));
        const FaxPages pages(strFile);
        QVERIFY(!pages.Load(0, 0).IsEmpty());
        QVERIFY(WriteTestFile(strFile, other.abBytes));
        QVERIFY(pages.Load(0, 0).IsEmpty());
        QVERIFY(QFile::remove(strFile));
        QVERIFY(pages.Load(0, 0).IsEmpty());
        QVERIFY(!FaxPages(strFile).Count());
    }

    void absurdStripsTakeNoMemory()
    {
        for (const auto &[count, bytes] : {std::pair(0xffffffffU, 8U), {0U, 4U}, {1U, 0xffffffffU}}) {
            HandMadeTiff tiff;
            tiff.AddPage(32, 1, true, {{259, 3, 1, 4}, {273, 4, count, 8}, {279, 4, count, bytes}});
            QVERIFY(WriteTestFile(strFile, tiff.abBytes));
            QVERIFY(FaxImage::LoadPage(strFile, 0, 0).abBits.size() <= 4); // shown or not
            QFile file(strFile);
            const bool grown = file.open(QIODevice::ReadWrite) && file.resize(600 * 1024 * 1024);
            QVERIFY(grown); // with a hole: the bytes could be there
            QVERIFY(FaxImage::LoadPage(strFile, 0, 0).IsEmpty() == (bytes == 0xffffffffU));
        }
    }

    void tornFileIsReadSafely()
    {
        QCOMPARE(FaxImage::GetPageCount(folder->path()), 0);
        constexpr qsizetype resolutionBytes = 16;
        const QByteArray whole = FaxFile{.lPages = 2, .lHeight = 200}.Bytes();
        QVERIFY(whole.size() > 100);
        for (qsizetype size = 0; size < whole.size(); ++size) {
            QVERIFY(WriteTestFile(strFile, whole.left(size)));
            // Only what tells nothing about the pixels may be missing.
            const int pages = FaxImage::GetPageCount(strFile);
            QVERIFY(pages == 0 || (pages == 2 && whole.size() - size <= resolutionBytes));
            QCOMPARE(FaxImage::LoadPage(strFile, 0, 90).IsEmpty(), pages == 0);
        }
        for (qsizetype at = 8; at < whole.size(); ++at) {
            QByteArray torn = whole;
            torn[at] = static_cast<char>(~torn[at]);
            QVERIFY(WriteTestFile(strFile, torn));
            FaxImage::LoadPage(strFile, 1, 0); // anything but a crash
        }
    }

private:
    std::unique_ptr<QTemporaryDir> folder;
    QString strFile;
};

QTEST_GUILESS_MAIN(tst_FaxImage)
#include "tst_FaxImage.moc"
