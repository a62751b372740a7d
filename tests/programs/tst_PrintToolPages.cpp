#include "controls/HeaderPainter.h"
#include "core/FaxImage.h"
#include "fixtures/FaxFile.h"
#include "fixtures/Ink.h"
#include "fixtures/Profile.h"
#include "fixtures/SmallDisk.h"
#include "fixtures/TestTable.h"
#include "programs/printtool/ConversionError.h"
#include "programs/printtool/FaxFileSource.h"
#include "programs/printtool/FaxTiffWriter.h"
#include "programs/printtool/Monochrome.h"
#include "programs/printtool/PageMaker.h"
#include "programs/printtool/PdfSource.h"
#include "programs/printtool/SheetLayout.h"

#include <QTemporaryDir>

namespace {

/// The resolution that a test uses if it does not matter.
constexpr SheetFormat fine{true}, standard{false};
constexpr double a4Width = 8.27, a4Height = 11.69;

/// A PDF of one page. `page` is what stands in its entry, such as its boxes.
QByteArray MakePdf(const QByteArray &page, const QByteArray &content, const QByteArray &trailer = {})
{
    return "%PDF-1.6\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n2 0 obj<</Type/Pages/Count 1/Kids[3 0 "
           "R]>>endobj\n"
           "3 0 obj<</Type/Page/Parent 2 0 R/Contents 4 0 R" +
           page + ">>endobj\n4 0 obj<</Length " + QByteArray::number(content.size()) + ">>stream\n" +
           content + "\nendstream endobj\ntrailer<</Root 1 0 R" + trailer + ">>\n%%EOF\n";
}

const QByteArray a4Page = "/MediaBox[0 0 595 842]";

bool IsNear(const QRect &one, const QRect &other, int most = 2)
{
    return std::abs(one.left() - other.left()) <= most && std::abs(one.top() - other.top()) <= most &&
           std::abs(one.right() - other.right()) <= most && std::abs(one.bottom() - other.bottom()) <= most;
}

/// Reason that a source gives for not opening; empty when it opens.
template <typename Source>
QString ReasonOf(const QString &path)
{
    try {
        Source source(path);
        source.Render(0, source.PageSize(0).toSize(), 0);
        return {};
    } catch (const ConversionError &error) {
        return error.Text();
    }
}

using Header = std::shared_ptr<const HeaderPainter>;

Header MakeHeader(const SheetFormat &format, int space = 150)
{
    HeaderProfile profile;
    profile.aTexts[0].strText = profile.aTexts[11].strText = QStringLiteral("Page [Page]");
    profile.headerSpace.lLineSpace = profile.footerSpace.lLineSpace = space;
    return std::make_shared<HeaderPainter>(profile, SheetFormat::DotsPerInchX, format.DotsPerInchY());
}

template <typename Source>
QImage MakeSheet(const QString &path, Document::Kind kind, int page, const SheetFormat &format,
                 const Header &header)
{
    PageOptions options;
    options.format = format;
    options.header = header;
    Source source(path);
    return PageMaker(options).Make(source, {path, kind == Document::FaxFile, kind, path}, page, 1, 1);
}

QImage MakePdfSheet(const QString &path, const SheetFormat &format, const Header &header = {})
{
    return MakeSheet<PdfSource>(path, Document::Pdf, 0, format, header);
}

QImage MakeReadySheet(const QString &path, const SheetFormat &format, const Header &header = {}, int page = 0)
{
    return MakeSheet<FaxFileSource>(path, Document::FaxFile, page, format, header);
}

/// The page as a viewer has it.
QImage LoadSheet(const QString &path, int page)
{
    const PageBits bits = FaxImage::LoadPage(path, page, 0);
    return Monochrome::FromBits(bits.abBits.constData(), bits.lBytesPerLine, {bits.lWidth, bits.lHeight},
                                bits.aPalette.value(1) == 0xff000000);
}

} // namespace

/// From documents to the sheets of a fax, and to its file.
class tst_PrintToolPages final : public QObject
{
    Q_OBJECT

private slots:
    void pagesAreLaidOnSheets_data()
    {
        const TestTable<SheetLayout, SheetLayout> row{"layout", "expected"};
        const QSizeF a4(a4Width, a4Height), a3(a4Height, 16.54), tall(2, 4), wide(4, 2), large(20, 30);
        row("A4", LayDocumentPage(a4, fine), {2292, 0, {20, 0, 1687, 2291}});
        row("A4 standard", LayDocumentPage(a4, standard), {1146, 0, {20, 0, 1687, 1146}});
        row("A4 landscape", LayDocumentPage(a4.transposed(), fine), {2292, 270, {20, 0, 1687, 2291}});
        row("Letter, reduced a hair", LayDocumentPage({8.5, 11}, fine), {2149, 0, {0, 0, 1728, 2149}});
        row("Legal", LayDocumentPage({8.4, 14}, fine), {2744, 0, {7, 0, 1714, 2744}});
        row("A5 upright", LayDocumentPage({5.83, a4Width}, fine), {2292, 0, {269, 0, 1189, 1621}});
        row("A5 is not turned", LayDocumentPage({a4Width, 5.83}, fine), {2292, 0, {20, 0, 1687, 1143}});
        row("slide is turned", LayDocumentPage({10, 7.5}, fine), {2292, 270, {99, 0, 1530, 1960}});
        row("A3 is reduced to A4", LayDocumentPage(a3, fine), {2292, 0, {21, 0, 1686, 2292}});
        row("roll of paper", LayDocumentPage({4, 28}, fine), {2744, 0, {660, 0, 408, 2744}});
        row("strip", LayDocumentPage({30, 1}, standard), {1372, 270, {816, 0, 95, 1372}});
        row("point", LayDocumentPage({0.001, 0.001}, fine), {2292, 0, {863, 0, 1, 1}});
        row("without a size", LayDocumentPage({}, fine), {2292, 0, {0, 0, 1728, 2292}});
        const auto picture = [](Fitting fitting, const QSizeF &size) {
            return LayPicture(size, fitting, fine);
        };
        row("match", picture(Fitting::Match, tall), {2292, 0, {267, 0, 1193, 2292}});
        row("match turns", picture(Fitting::Match, wide), {2292, 270, {267, 0, 1193, 2292}});
        row("match reduces", picture(Fitting::Match, large), {2292, 0, {69, 0, 1590, 2292}});
        row("stretch", picture(Fitting::Stretch, wide), {2292, 0, {0, 0, 1728, 2292}});
        row("width", picture(Fitting::Width, wide), {2292, 0, {0, 0, 1728, 830}});
        row("width makes the sheet longer", picture(Fitting::Width, large), {2490, 0, {0, 0, 1728, 2490}});
        row("width up to Legal", picture(Fitting::Width, tall), {2744, 0, {150, 0, 1428, 2744}});
        row("height", picture(Fitting::Height, tall), {2292, 0, {267, 0, 1193, 2292}});
        row("height within the width", picture(Fitting::Height, wide), {2292, 0, {0, 0, 1728, 830}});
        row("original", picture(Fitting::Original, wide), {2292, 0, {456, 0, 816, 392}});
        row("original reduces", picture(Fitting::Original, large), {2292, 0, {69, 0, 1590, 2292}});
    }

    void pagesAreLaidOnSheets()
    {
        QFETCH(SheetLayout, layout);
        QFETCH(SheetLayout, expected);
        QCOMPARE(layout.place, expected.place);
        QVERIFY(layout == expected);
    }

    void pdfPageStandsWhereItShould_data()
    {
        // A box of 100 x 50 points, 100 from the left and 92 from the upper edge of an upright A4 page.
        const TestTable<QByteArray, QByteArray, bool, QRect> row{"page", "content", "isFine", "ink"};
        const QByteArray box = "100 700 100 50 re f", landscape = "/MediaBox[0 0 842 595]";
        row("fine", a4Page, box, true, {304, 250, 283, 136});
        row("standard", a4Page, box, false, {304, 125, 283, 68});
        row("landscape, its top to the left", landscape, "100 453 100 50 re f", true, {282, 1748, 142, 272});
        row("turned by its entry", landscape + "/Rotate 90", "92 100 50 100 re f", true,
            {304, 250, 283, 136});
        row("upside down", a4Page + "/Rotate 180", "395 92 100 50 re f", true, {304, 250, 283, 136});
        row("cropped", "/MediaBox[0 0 800 1000]/CropBox[10 20 605 862]",
            "0 0 800 1000 re 110 720 100 50 re f*", true, {20, 0, 1687, 2292});
        row("box from below zero", "/MediaBox[-100 -100 495 742]", "0 600 100 50 re f", true,
            {304, 250, 283, 136});
    }

    void pdfPageStandsWhereItShould()
    {
        QFETCH(QByteArray, page);
        QFETCH(QByteArray, content);
        QFETCH(bool, isFine);
        QFETCH(QRect, ink);
        const SheetFormat format{isFine};
        const QImage sheet = MakePdfSheet(Write("page.pdf", MakePdf(page, content)), format);
        QCOMPARE(sheet.size(), QSize(1728, format.A4Height()));
        QCOMPARE(Monochrome::DotsPerInchY(sheet), format.DotsPerInchY());
        QVERIFY2(IsNear(FindInk(sheet), ink), qPrintable(QDebug::toString(FindInk(sheet))));
    }

    void pdfOfStrangePagesIsShown()
    {
        const QByteArray boxes[] = {"/MediaBox[0 0 100 0]", // the only one with nothing to show
                                    "/MediaBox[0 0 2000000 3000000]", "",
                                    "/MediaBox[(a) /b null 0]",       a4Page + "/Rotate 45",
                                    "/MediaBox[0 0 0.01 14400]"};
        for (const QByteArray &box : boxes) {
            const QImage sheet =
                MakePdfSheet(Write("strange.pdf", MakePdf(box, "0 0 3000000 3000000 re f")), fine);
            QCOMPARE(sheet.width(), 1728);
            QVERIFY(sheet.height() >= 2148 && sheet.height() <= 2744);
            QVERIFY2(FindInk(sheet).isEmpty() == (&box == boxes), box.constData());
        }
    }

    void unreadablePdfIsToldWhy()
    {
        const QByteArray password = "/Encrypt<</Filter/Standard/V 1/R 2/P -4/O(" + QByteArray(32, 'o') +
                                    ")/U(" + QByteArray(32, 'u') + ")>>/ID[(a)(a)]";
        const QByteArray noPages =
            "%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n"
            "2 0 obj<</Type/Pages/Count 0/Kids[]>>endobj\ntrailer<</Root 1 0 R>>\n%%EOF\n";
        const std::pair<QByteArray, QString> files[] = {
            {"", "damaged"},
            {QByteArray(5000, '\x93'), "damaged"},
            {"%PDF-1.4\n%%EOF", "damaged"},
            {noPages, "no pages"},
            {MakePdf(a4Page, "0 0 9 9 re f", password), "password"}};
        for (const auto &[bytes, reason] : files) {
            const QString text = ReasonOf<PdfSource>(Write("unreadable.pdf", bytes));
            QVERIFY2(text.contains(reason), qPrintable(text));
        }
        QVERIFY(ReasonOf<PdfSource>(folder.filePath("missing.pdf")).contains("opened"));
    }

    void hairlinesStayVisible()
    {
        QByteArray content;
        for (int line = 0; line < 20; ++line)
            content += QString("%1 w 100 %2 m 400 %2.37 l S %3 100 m %3 400 l S\n")
                           .arg(QString::number(line * 0.05), QString::number(500 + line * 7),
                                QString::number(100.13 + line * 11))
                           .toLatin1();
        const QString path = Write("lines.pdf", MakePdf(a4Page, content));
        for (const SheetFormat &format : {fine, standard}) {
            const QImage sheet = MakePdfSheet(path, format);
            const QRect ink = FindInk(sheet);
            const int across = ink.top() + ink.height() * 3 / 4, dotsInBox = ink.width();
            int stems = 0;
            for (int x = 1; x < sheet.width(); ++x)
                stems += sheet.pixelIndex(x, across) == 1 && sheet.pixelIndex(x - 1, across) == 0;
            QCOMPARE(stems, 20);
            int rows = 0;
            for (int y = 1; y < across; ++y)
                rows += sheet.pixelIndex(ink.left() + dotsInBox / 2, y) == 1 &&
                        sheet.pixelIndex(ink.left() + dotsInBox / 2, y - 1) == 0;
            QCOMPARE(rows, 20);
        }
    }

    void readyPagesKeepTheirPixels_data()
    {
        const TestTable<FaxFile> row{"fax"};
        row("standard", {.lPages = 2});
        row("fine, black is 0, behind its size",
            {.lPages = 2, .lHeight = 2292, .lDotsPerInchY = 196, .bMinIsBlack = true, .bSizePrefix = true});
        row("short, noise", {.lPages = 2, .lHeight = 77, .bNoise = true});
        row("Group 3", {.lPages = 2, .lDotsPerInchY = 196, .bGroup3 = true});
    }

    void readyPagesKeepTheirPixels()
    {
        QFETCH(FaxFile, fax);
        const QString path = folder.filePath("ready.tif");
        QVERIFY(fax.Write(path));
        for (const SheetFormat &format : {fine, standard}) {
            const QImage sheet = MakeReadySheet(path, format, {}, 1);
            QCOMPARE(sheet.convertToFormat(QImage::Format_RGB32),
                     LoadSheet(path, 1).convertToFormat(QImage::Format_RGB32));
            QCOMPARE(Monochrome::DotsPerInchY(sheet), fax.lDotsPerInchY);
            QVERIFY(!FindInk(sheet).isEmpty());
        }
    }

    void otherPagesOfAReadyFileAreLaidOnASheet()
    {
        FaxFile fax{.lWidth = 2592, .lHeight = 3508, .lDotsPerInchX = 300, .lDotsPerInchY = 300};
        const QString path = folder.filePath("scan.tif");
        QVERIFY(fax.Write(path));
        const QImage sheet = MakeReadySheet(path, standard);
        QCOMPARE(sheet.size(), QSize(1728, 1146));
        QVERIFY(IsNear(FindInk(sheet), QRect(10, 5, 97, 6), 1));
    }

    void damagedFaxFileIsRefused()
    {
        QVERIFY(ReasonOf<FaxFileSource>(Write("bad.tif", "II*")).contains("damaged"));
        const QString path = Write("short.tif", FaxFile{.lPages = 2, .bNoise = true}.Bytes());
        FaxFileSource source(path);
        QVERIFY(QFile::resize(path, 2000));
        QVERIFY_THROWS_EXCEPTION(ConversionError, source.FaxPage(0));
    }

    void headerLeavesWhatItDoesNotReach()
    {
        const QString path = Write("letter.pdf", MakePdf(a4Page, "100 100 300 650 re f"));
        const QImage bare = MakePdfSheet(path, fine);
        const auto header = MakeHeader(fine);
        const QImage sheet = MakePdfSheet(path, fine, header);
        const int top = header->HeaderHeight(1), end = sheet.height() - header->FooterHeight(1);
        QVERIFY(top > 100 && end < sheet.height() - 100);
        QCOMPARE(sheet.copy(0, top, 1728, end - top), bare.copy(0, top, 1728, end - top));
        QVERIFY(!FindInk(sheet.copy(0, 0, 1728, top)).isEmpty());
        QVERIFY(!FindInk(sheet.copy(0, end, 1728, sheet.height() - end)).isEmpty());
    }

    void pageMakesRoomForItsHeader_data()
    {
        const TestTable<QByteArray, bool> row{"content", "isMoved"};
        row("moved down", "100 400 300 440 re f", true);
        row("moved up", "100 5 300 440 re f", true);
        row("made smaller", "100 2 300 838 re f", false);
    }

    void pageMakesRoomForItsHeader()
    {
        QFETCH(QByteArray, content);
        QFETCH(bool, isMoved);
        const QString path = Write("full.pdf", MakePdf(a4Page, content));
        for (const SheetFormat &format : {fine, standard}) {
            const auto header = MakeHeader(format);
            const QRect before = FindInk(MakePdfSheet(path, format));
            QImage sheet = MakePdfSheet(path, format, header);
            const int room = sheet.height() - header->HeaderHeight(1) - header->FooterHeight(1);
            const QRect ink = FindInk(sheet.copy(0, header->HeaderHeight(1), 1728, room));
            QImage blank = Monochrome::MakeBlank(sheet.height(), format.DotsPerInchY());
            header->Paint(blank, {});
            const int top = header->HeaderHeight(1);
            QCOMPARE(sheet.copy(0, 0, 1728, top), blank.copy(0, 0, 1728, top));
            QVERIFY(ink.top() <= 2 || ink.bottom() >= room - 3);
            if (isMoved)
                QCOMPARE(ink.size(), before.size());
            else // and keeps its proportions
                QVERIFY(std::abs(double(ink.width()) / ink.height() -
                                 double(before.width()) / before.height()) < 0.01);
        }
    }

    void readyPageMakesRoomForItsHeader()
    {
        const QString path = folder.filePath("ready.tif");
        QVERIFY(FaxFile().Write(path)); // ink in rows 16 to 31
        const auto header = MakeHeader(standard);
        const int top = header->HeaderHeight(1);
        const QImage sheet = MakeReadySheet(path, standard, header);
        QVERIFY(top > 16);
        QCOMPARE(sheet.height(), 1146);
        QCOMPARE(sheet.copy(0, top, 1728, 16), LoadSheet(path, 0).copy(0, 16, 1728, 16));
        // From edge to edge: made smaller.
        const QString fullPath = folder.filePath("full.tif");
        QVERIFY(FaxFile{.lPages = 46}.Write(fullPath)); // the last one has a box that ends in row 1112
        const QImage full = MakeReadySheet(fullPath, standard, header, 45);
        const int room = full.height() - top - header->FooterHeight(1);
        const QRect ink = FindInk(full.copy(0, top, 1728, room));
        QVERIFY(ink.top() <= 1 && ink.bottom() >= room - 3);
        QVERIFY(ink.width() < 144);
    }

    void headerIsPaintedOnPagesOfTheOtherResolution()
    {
        const QString path = folder.filePath("ready.tif");
        QVERIFY(FaxFile().Write(path));
        const auto header = MakeHeader(fine, 60);
        const QImage sheet = MakeReadySheet(path, fine, header);
        QImage blank = Monochrome::MakeBlank(2292, 196);
        header->Paint(blank, {1, 1, {}, {}, {}});
        const QRect expected = FindInk(blank.copy(0, 0, 1728, header->HeaderHeight(1)));
        const QRect painted = FindInk(sheet.copy(0, 0, 1728, header->HeaderHeight(1) / 2));
        QCOMPARE(sheet.height(), 1146);
        QVERIFY(IsNear(painted,
                       {expected.left(), expected.top() / 2, expected.width(), expected.height() / 2}, 1));
    }

    void unwritableFileIsNoticed()
    {
        QVERIFY_THROWS_EXCEPTION(ConversionError, FaxTiffWriter(folder.filePath("missing/fax.tif")));
        const QString path = folder.filePath("full.tif");
        const auto fillTheDisk = [&] {
            const SmallDisk disk(20000);
            FaxTiffWriter writer(path);
            for (int count = 0; count < 100; ++count)
                writer.Append(FaxTiffWriter::Encode(Monochrome::MakeBlank(2292, 196)));
            writer.Finish();
        };
        QVERIFY_THROWS_EXCEPTION(ConversionError, fillTheDisk());
        QVERIFY(!QFile::exists(path));
    }

private:
    QString Write(const QString &name, const QByteArray &bytes) const
    {
        const QString path = folder.filePath(name);
        return WriteTestFile(path, bytes) ? path : QString();
    }

    const QTemporaryDir folder;
};

QTEST_MAIN(tst_PrintToolPages)
#include "tst_PrintToolPages.moc"
