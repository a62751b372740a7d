#include "fixtures/FaxFile.h"
#include "fixtures/Profile.h"
#include "fixtures/SmallDisk.h"
#include "fixtures/StoredPages.h"
#include "fixtures/TestTable.h"
#include "programs/viewer/FaxDocument.h"
#include "programs/viewer/FaxExport.h"
#include "programs/viewer/PageImages.h"
#include "programs/viewer/PrintJob.h"
#include "programs/viewer/PrinterSearch.h"
#include "programs/viewer/ProgressRun.h"
#include "programs/viewer/SheetPlace.h"

#include <QDir>
#include <QImage>
#include <QLocalServer>
#include <QLocalSocket>
#include <QPageRanges>
#include <QPrinter>
#include <QProcess>
#include <QProgressDialog>
#include <QTemporaryDir>
#include <QTimer>

#include <chrono>
#include <memory>
#include <thread>

#include <poppler-document.h>
#include <poppler-page-renderer.h>
#include <poppler-page.h>

namespace {

/// The picture on each page, as it is shown.
QList<QImage> PicturesOf(const FaxDocument &fax)
{
    QList<QImage> pictures;
    for (int page = 0; page < fax.PageCount(); ++page)
        pictures.append(PageImages::FromBits(fax.LoadPage(page)));
    return pictures;
}

using SaveFunction = bool (*)(const FaxDocument &, const QString &, QString &, const PageProgress &);

} // namespace

Q_DECLARE_METATYPE(FaxFile)

class tst_ViewerFiles final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // No test meets the printers of the computer that it runs on.
        qputenv("CUPS_SERVER", "/nonexistent/service");
    }

    void init()
    {
        folder = std::make_unique<QTemporaryDir>();
        strFax = folder->filePath(QStringLiteral("fax.tif"));
        strTarget = folder->filePath(QStringLiteral(u"c\u00f6py"));
    }

    void turnedPagesArePackedAnewAndTheOthersKeepTheirBytes_data()
    {
        const TestTable<FaxFile> row{"fax"};
        row("standard, group 3", {.lPages = 3, .bGroup3 = true});
        row("size in front", {.lPages = 3, .bSizePrefix = true});
        row("black is 0, odd width",
            {.lPages = 3, .lWidth = 1001, .lDotsPerInchY = 196, .bMinIsBlack = true});
        row("no resolution", {.lPages = 3, .lDotsPerInchY = 0});
    }

    void turnedPagesArePackedAnewAndTheOthersKeepTheirBytes()
    {
        QFETCH(FaxFile, fax);
        QVERIFY(fax.Write(strFax));
        FaxFile plain = fax;
        plain.bSizePrefix = false;
        QVERIFY(Open().PageCount() == 3 && SaveTiff());
        QCOMPARE(ReadTestFile(strTarget), plain.Bytes()); // unturned: byte for byte
        document.Rotate(1, 90);
        document.Rotate(2, 180);
        QVERIFY2(SaveTiff(), qPrintable(strProblem));

        QVERIFY(plain.Write(strFax));
        const QList<StoredPage> before = ReadStoredPages(strFax), after = ReadStoredPages(strTarget);
        QCOMPARE(after.size(), 3);
        QCOMPARE(after[0].abCoded, before[0].abCoded);
        QCOMPARE(after[0].lCompression, before[0].lCompression);
        QCOMPARE(after[0].lPhotometric, before[0].lPhotometric);
        const QSizeF resolution(204, fax.lDotsPerInchY > 0 ? fax.lDotsPerInchY : 196);
        QCOMPARE(after[1].size, before[1].size.transposed());
        QCOMPARE(after[1].dotsPerInch, resolution.transposed());
        QCOMPARE(after[2].size, before[2].size);
        QCOMPARE(after[2].dotsPerInch, resolution);
        for (const StoredPage &page : {after[1], after[2]}) {
            QCOMPARE(page.lCompression, COMPRESSION_CCITTFAX4);
            QCOMPARE(page.lPhotometric, PHOTOMETRIC_MINISWHITE);
        }
        QVERIFY(LooksSaved());
    }

    void turnedPagesKeepTheirPixels()
    {
        const auto keepsAll = [this](int degrees) {
            Open().RotateAll(degrees);
            return SaveTiff() && LooksSaved();
        };
        QVERIFY((FaxFile{.lPages = 2, .lWidth = 777, .lHeight = 501, .bNoise = true}.Write(strFax)));
        for (const int degrees : {90, 180, 270})
            QVERIFY2(keepsAll(degrees), qPrintable(strProblem));
        for (const QImage::Format format : {QImage::Format_Grayscale8, QImage::Format_RGB32}) {
            QVERIFY(WriteColourFax(format));
            QVERIFY2(keepsAll(90), qPrintable(strProblem));
            QCOMPARE(PicturesOf(document).first().format(), format);
        }
    }

    void pdfHasPagesOfTheTrueSizeAndTheSamePixels()
    {
        QVERIFY((FaxFile{.lPages = 3, .bMinIsBlack = true}.Write(strFax)));
        Open().Rotate(1, 90);
        QVERIFY2(FaxExport::SavePdf(document, strTarget, strProblem), qPrintable(strProblem));
        const std::unique_ptr<poppler::document> pdf = OpenPdf();
        QCOMPARE(pdf->pages(), 3);
        QCOMPARE(QString::fromStdString(pdf->get_title().to_latin1()), QStringLiteral("fax"));
        for (int page = 0; page < 3; ++page) {
            const QSizeF inches = document.PageSize(page);
            const poppler::rectf sheet = std::unique_ptr<poppler::page>(pdf->create_page(page))->page_rect();
            QVERIFY(std::abs(sheet.width() - inches.width() * 72) < 1);
            QVERIFY(std::abs(sheet.height() - inches.height() * 72) < 1);
            // Both boxes of the page, in hundredths of an inch, wherever the turn has put them.
            const QImage expected = PicturesOf(document)[page].convertToFormat(QImage::Format_RGB32);
            const QImage seen = RenderPdf(*pdf, page, expected.size());
            int different = 0;
            for (int y = 0; y < seen.height(); ++y) {
                for (int x = 0; x < seen.width(); ++x)
                    different += seen.pixel(x, y) != expected.pixel(x, y);
            }
            QVERIFY2(different < 400, qPrintable(QString::number(different)));
        }
        QCOMPARE(ListPdfPictures(), (QStringList{"1728 1146 gray 1 1 image", "1146 1728 gray 1 1 image",
                                                 "1728 1146 gray 1 1 image"}));
    }

    void pictureForTheClipboardHasSquarePixels()
    {
        QVERIFY((FaxFile{.lDotsPerInchX = 204, .lDotsPerInchY = 98}.Write(strFax)));
        const QImage upright = FaxExport::PageImage(Open(), 0);
        QCOMPARE(upright.size(), QSize(1728, 2386));
        QCOMPARE(upright.dotsPerMeterX(), upright.dotsPerMeterY());
        QCOMPARE(qGray(upright.pixel(40, 24 * 2)), 0);
        document.Rotate(0, 90);
        QCOMPARE(FaxExport::PageImage(document, 0).size(), upright.size().transposed());
        QFile::remove(strFax);
        QVERIFY(FaxExport::PageImage(document, 0).isNull());
    }

    void failedSaveTellsWhyAndLeavesAllAsItWas_data()
    {
        const TestTable<SaveFunction, bool> row{"save", "turned"};
        row("plain copy", FaxExport::SaveTiff, false);
        row("turned pages", FaxExport::SaveTiff, true);
        row("PDF", FaxExport::SavePdf, false);
    }

    void failedSaveTellsWhyAndLeavesAllAsItWas()
    {
        QFETCH(SaveFunction, save);
        QFETCH(bool, turned);
        QVERIFY((FaxFile{.lPages = 2, .bNoise = true}.Write(strFax)));
        QVERIFY(WriteTestFile(strTarget, "older"));
        QVERIFY(QDir(folder->path()).mkdir("sub"));
        Open().RotateAll(turned ? 90 : 0);
        const QStringList before = Listing();
        const auto fails = [&](const QString &path) {
            return !save(document, path, strProblem, {}) && strProblem.contains('.');
        };
        QVERIFY(fails(strFax));
        QVERIFY(fails(folder->path() + "/sub/../fax.tif"));
        QVERIFY(fails(folder->filePath("sub")));
        QVERIFY(fails(folder->filePath("missing/copy.tif")));
        {
            const SmallDisk disk(20000);
            QVERIFY(fails(strTarget));
            QVERIFY(strProblem.contains("File too large"));
        }
        QVERIFY(!save(document, strTarget, strProblem, [](int) { return false; }));
        QCOMPARE(strProblem, QString());
        QCOMPARE(Listing(), before);
        QCOMPARE(ReadTestFile(strTarget), "older");

        QVERIFY((FaxFile{.lPages = 1}.Write(strFax)));
        QVERIFY(fails(strTarget));
        QVERIFY(QFile::remove(strFax));
        QVERIFY(fails(strTarget) && strProblem.contains("no longer there"));
        QCOMPARE(ReadTestFile(strTarget), "older");
        QCOMPARE(Listing(), QStringList(before).filter(QRegularExpression("^(?!fax)")));
    }

    void pageLiesOnItsSheetAsLargeAsItFits()
    {
        const QRectF paper(1, 1, 8, 10);
        const struct
        {
            QSizeF page;
            QRectF printable, target;
            bool bTurned;
        } rows[] = {{{4, 4}, paper, {3, 4, 4, 4}, false}, // in its own size
                    {{16, 8}, {0, 0, 10, 20}, {1, 2, 8, 16}, true},
                    {{8, 20}, paper, {3, 1, 4, 10}, false},
                    {{10, 5}, paper, {2.5, 1, 5, 10}, true},
                    {{7, 2}, paper, {1.5, 5, 7, 2}, false}};
        for (const auto &row : rows) {
            const SheetPlace place = SheetPlace::Find(row.page, row.printable);
            QCOMPARE(place.target, row.target);
            QCOMPARE(place.bTurned, row.bTurned);
        }
    }

    void printJobHasThePagesThatTheDialogTells()
    {
        QVERIFY((FaxFile{.lPages = 5}.Write(strFax)));
        const auto pages = [this](QPrinter &printer) { return PrintJob::From(printer, Open(), 2).aPages; };
        QPrinter printer;
        printer.setOutputFileName(strTarget);
        QCOMPARE(pages(printer), (QList{0, 1, 2, 3, 4}));
        printer.setPrintRange(QPrinter::CurrentPage);
        QCOMPARE(pages(printer), (QList{2}));
        printer.setPrintRange(QPrinter::PageRange);
        printer.setPageRanges(QPageRanges::fromString("1-2,4,9"));
        printer.setPageOrder(QPrinter::LastPageFirst);
        QCOMPARE(pages(printer), (QList{3, 1, 0}));
        printer.setCopyCount(2);
        QCOMPARE(pages(printer), (QList{3, 1, 0, 3, 1, 0}));
        printer.setCollateCopies(false);
        QCOMPARE(pages(printer), (QList{3, 3, 1, 1, 0, 0}));
    }

    void printingIntoAFileTurnsEachSheetAsItsPageLies()
    {
        QVERIFY((FaxFile{.lPages = 2, .lWidth = 1728, .lHeight = 3000, .lDotsPerInchY = 196}.Write(strFax)));
        Open().Rotate(1, 90);
        PrintJob job;
        job.strFile = strTarget;
        job.layout = QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait, {36, 36, 36, 36});
        job.aPages = {1, 0};
        QVERIFY2(job.Run(document, strProblem, {}), qPrintable(strProblem));
        const std::unique_ptr<poppler::document> pdf = OpenPdf();
        QCOMPARE(pdf->pages(), 2);
        // The corner box of the page, which is scaled to the 770 points between the margins of the sheet.
        const QImage wide = RenderPdf(*pdf, 0, {842, 595}), high = RenderPdf(*pdf, 1, {595, 842});
        QVERIFY(qGray(high.pixel(96, 42)) < 128 && qGray(high.pixel(96, 600)) > 128);
        QVERIFY(qGray(wide.pixel(842 - 42, 96)) < 128 && qGray(wide.pixel(42, 96)) > 128);

        job.aPages = {0, 1, 0};
        QVERIFY(!job.Run(document, strProblem, [](int done) { return done < 2; }));
        QCOMPARE(strProblem, QString());
        QCOMPARE(OpenPdf()->pages(), 2);
    }

    void printServiceThatIsMissingOrHangsIsTold()
    {
        using namespace std::chrono_literals;
        QVERIFY((FaxFile().Write(strFax)));
        PrintJob job;
        job.strPrinter = "Office";
        job.layout = QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait, {});
        job.aPages = {0};
        QVERIFY(!job.Run(Open(), strProblem, {}));
        QVERIFY(strProblem.contains("\"Office\""));
        QCOMPARE(LookForPrinters(nullptr), PrinterSearch::NoPrinter);

        QLocalServer mute;
        QVERIFY(mute.listen(folder->filePath("mute")));
        qputenv("CUPS_SERVER", QFile::encodeName(mute.fullServerName()));
        QCOMPARE(LookForPrinters(nullptr, 200ms), PrinterSearch::NoAnswer);
        // The question that hangs is not asked twice, and is answered after all.
        qputenv("CUPS_SERVER", "/nonexistent/service");
        QCOMPARE(LookForPrinters(nullptr, 200ms), PrinterSearch::NoAnswer);
        mute.close();
        qDeleteAll(mute.findChildren<QLocalSocket *>());
        QCOMPARE(LookForPrinters(nullptr), PrinterSearch::NoPrinter);
    }

    void longWorkShowsHowFarItIsAndStopsWhenCancelled()
    {
        using namespace std::chrono_literals;
        QWidget window;
        window.show();
        const auto pagesDone = std::make_shared<int>(0);
        QTimer cancel;
        connect(&cancel, &QTimer::timeout, this, [&window] {
            auto *progress = window.findChild<QProgressDialog *>();
            if (progress && progress->value() > 0)
                progress->cancel();
        });
        cancel.start(10ms);
        QVERIFY(RunWithProgress(&window, "Working", 1000000, [pagesDone](const PageProgress &progress) {
            while (progress(++*pagesDone))
                std::this_thread::sleep_for(1ms);
        }));
        QVERIFY(*pagesDone > 0 && !window.findChild<QProgressDialog *>());
    }

private:
    FaxDocument &Open()
    {
        document.Open(strFax);
        return document;
    }
    /// True when the saved fax looks like the one that was saved.
    bool LooksSaved() const
    {
        FaxDocument copy;
        return copy.Open(strTarget) && PicturesOf(copy) == PicturesOf(document) &&
               copy.PageSize(copy.PageCount() - 1) == document.PageSize(copy.PageCount() - 1);
    }
    bool SaveTiff() { return FaxExport::SaveTiff(document, strTarget, strProblem); }
    QStringList Listing() const
    {
        return QDir(folder->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    bool WriteColourFax(QImage::Format format) const
    {
        const int samples = format == QImage::Format_RGB32 ? 3 : 1;
        const TiffHandle tiff(TIFFOpen(QFile::encodeName(strFax).constData(), "w"));
        TIFFSetField(tiff.get(), TIFFTAG_IMAGEWIDTH, 40);
        TIFFSetField(tiff.get(), TIFFTAG_IMAGELENGTH, 3);
        TIFFSetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, samples);
        TIFFSetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, 8);
        TIFFSetField(tiff.get(), TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        TIFFSetField(tiff.get(), TIFFTAG_PHOTOMETRIC,
                     samples == 1 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB);
        bool written = true;
        for (uint32_t y = 0; y < 3; ++y) {
            QByteArray row;
            for (int byte = 0; byte < 40 * samples; ++byte)
                row.append(char(byte * 5 + int(y) * 70));
            written = written && TIFFWriteScanline(tiff.get(), row.data(), y) == 1;
        }
        return written;
    }

    std::unique_ptr<poppler::document> OpenPdf() const
    {
        return std::unique_ptr<poppler::document>(
            poppler::document::load_from_file(QFile::encodeName(strTarget).toStdString()));
    }

    static QImage RenderPdf(const poppler::document &pdf, int number, const QSize &size)
    {
        const std::unique_ptr<poppler::page> page(pdf.create_page(number));
        const poppler::rectf sheet = page->page_rect();
        const poppler::image image = poppler::page_renderer().render_page(
            page.get(), 72 * size.width() / sheet.width(), 72 * size.height() / sheet.height());
        return QImage(reinterpret_cast<const uchar *>(image.const_data()), image.width(), image.height(),
                      image.bytes_per_row(), QImage::Format_RGB32)
            .copy(QRect(QPoint(), size));
    }

    /// Width, height, colours, components, bits and coding of each picture; "image" means without loss.
    QStringList ListPdfPictures() const
    {
        QProcess lister;
        lister.start("pdfimages", {"-list", strTarget});
        lister.waitForFinished();
        QStringList pictures;
        for (const QString &line : QString::fromUtf8(lister.readAllStandardOutput()).split('\n').mid(2)) {
            if (!line.isEmpty())
                pictures.append(line.simplified().section(' ', 3, 8));
        }
        return pictures;
    }

    std::unique_ptr<QTemporaryDir> folder;
    QString strFax, strTarget, strProblem;
    FaxDocument document;
};

QTEST_MAIN(tst_ViewerFiles)
#include "tst_ViewerFiles.moc"
