#include "fixtures/Bytes.h"
#include "fixtures/FaxFile.h"
#include "fixtures/Profile.h"
#include "fixtures/TestTable.h"
#include "programs/printtool/ConversionError.h"
#include "programs/printtool/FileType.h"
#include "programs/printtool/OfficeContents.h"
#include "programs/printtool/OfficeConverter.h"
#include "programs/printtool/PrepareDocuments.h"
#include "programs/printtool/WorkFolder.h"

#include <QDir>
#include <QFile>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>

#include <thread>

#include <linux/landlock.h>
#include <poppler-document.h>
#include <poppler-page.h>
#include <sys/syscall.h>
#include <unistd.h>

using Bytes::LittleEndian;

namespace {

/// A ZIP archive whose entries are stored as they are.
QByteArray ZipOf(const QList<std::pair<QByteArray, QByteArray>> &entries)
{
    QByteArray files, directory;
    for (const auto &[name, contents] : entries) {
        const QByteArray common =
            LittleEndian(20, 2) + LittleEndian(0, 8) + LittleEndian(Bytes::Crc32(contents), 4) +
            LittleEndian(quint64(contents.size()), 4) + LittleEndian(quint64(contents.size()), 4) +
            LittleEndian(quint64(name.size()), 2) + LittleEndian(0, 2);
        directory += "PK\1\2" + LittleEndian(20, 2) + common + QByteArray(10, '\0') +
                     LittleEndian(quint64(files.size()), 4) + name;
        files += "PK\3\4" + common + name + contents;
    }
    return files + directory + "PK\5\6" + LittleEndian(0, 4) + LittleEndian(quint64(entries.size()), 2) +
           LittleEndian(quint64(entries.size()), 2) + LittleEndian(quint64(directory.size()), 4) +
           LittleEndian(quint64(files.size()), 4) + LittleEndian(0, 2);
}

QByteArray OpenDocument(const QByteArray &kind, const QByteArray &content)
{
    return ZipOf({{"mimetype", "application/vnd.oasis.opendocument." + kind}, {"content.xml", content}});
}

QByteArray Utf16(const QByteArray &text)
{
    QByteArray wide;
    for (const char letter : text)
        wide += QByteArray(1, letter) + '\0';
    return wide;
}

/// An OLE file of one stream of 4096 bytes: chains, directory, stream.
QByteArray OleOf(const QByteArray &stream, const QByteArray &begin = {})
{
    const auto entry = [](const QByteArray &name, int type, quint64 start, quint64 size) {
        return Utf16(name).leftJustified(64, '\0') + LittleEndian(quint64(2 * name.size() + 2), 2) +
               LittleEndian(quint64(type), 1) + QByteArray(49, '\0') + LittleEndian(start, 4) +
               LittleEndian(size, 8);
    };
    const QByteArray header =
        QByteArray("\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1", 8) + QByteArray(16, '\0') + LittleEndian(0x3e, 2) +
        LittleEndian(3, 2) + LittleEndian(0xfffe, 2) + LittleEndian(9, 2) + LittleEndian(6, 2) +
        QByteArray(10, '\0') + LittleEndian(1, 4) + LittleEndian(1, 4) + QByteArray(4, '\0') +
        LittleEndian(4096, 4) + LittleEndian(0xfffffffe, 4) + LittleEndian(0, 4) +
        LittleEndian(0xfffffffe, 4) + LittleEndian(0, 4) + LittleEndian(0, 4) + QByteArray(108 * 4, '\xff');
    QByteArray chains = LittleEndian(0xfffffffd, 4) + LittleEndian(0xfffffffe, 4);
    for (quint64 sector = 3; sector < 10; ++sector)
        chains += LittleEndian(sector, 4);
    chains += LittleEndian(0xfffffffe, 4);
    const QByteArray directory = entry("Root Entry", 5, 0xfffffffe, 0) + entry(stream, 2, 2, 4096);
    return header + chains.leftJustified(512, '\xff') + directory.leftJustified(512, '\0') +
           begin.leftJustified(4096, '\0');
}

QByteArray FlatDocument(const QByteArray &kind, const QByteArray &body)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><office:document"
           " xmlns:office=\"urn:oasis:names:tc:opendocument:xmlns:office:1.0\""
           " xmlns:text=\"urn:oasis:names:tc:opendocument:xmlns:text:1.0\""
           " xmlns:table=\"urn:oasis:names:tc:opendocument:xmlns:table:1.0\""
           " xmlns:draw=\"urn:oasis:names:tc:opendocument:xmlns:drawing:1.0\""
           " xmlns:svg=\"urn:oasis:names:tc:opendocument:xmlns:svg-compatible:1.0\""
           " xmlns:xlink=\"http://www.w3.org/1999/xlink\" office:version=\"1.2\""
           " office:mimetype=\"application/vnd.oasis.opendocument." +
           kind + "\"><office:body>" + body + "</office:body></office:document>";
}

QByteArray Table(const QByteArray &name, const QByteArray &cell)
{
    return "<table:table table:name=\"" + name +
           "\"><table:table-row><table:table-cell office:value-type=\"string\"><text:p>" + cell +
           "</text:p></table:table-cell></table:table-row></table:table>";
}

/// Of all pages, their white space told by single blanks.
QString TextOf(const QString &pdf)
{
    const std::unique_ptr<poppler::document> document(poppler::document::load_from_file(pdf.toStdString()));
    QString text;
    for (int page = 0; document && page < document->pages(); ++page) {
        const poppler::byte_array bytes =
            std::unique_ptr<poppler::page>(document->create_page(page))->text().to_utf8();
        text += QString::fromUtf8(bytes.data(), qsizetype(bytes.size())) + ' ';
    }
    return text.simplified();
}

bool IsAlive(int pid)
{
    const QByteArray state = ReadTestFile(QStringLiteral("/proc/%1/stat").arg(pid));
    return !state.isEmpty() && !state.contains(") Z ");
}

/// A document that makes the fake of the office program do what it says.
const QByteArray hang = "hang", crash = "crash";

/// Makes of each file what passes for a PDF file, unless it says "damaged"; hangs, with a child, or dies over
/// one that says so.
constexpr char fakeOffice[] = R"(#!/bin/sh
echo $$ > "$TMPDIR/office"
while [ $# -gt 0 ]; do
    case $1 in
    --outdir) mkdir -p "$2"; out=$2; shift ;;
    *.rtf)
        grep -q hang "$1" && { sleep 60 & echo $! > "$TMPDIR/child"; sleep 60; }
        grep -q crash "$1" && kill -SEGV $$
        base=${1##*/}
        grep -q damaged "$1" || { echo %PDF-1.4; cat "$1"; echo; echo %%EOF; } > "$out/${base%.rtf}.pdf" ;;
    esac
    shift
done
)";

} // namespace

class tst_PrintToolDocuments : public QObject
{
    Q_OBJECT

private slots:
    void filesAreKnownByTheirContents_data()
    {
        const TestTable<QString, QByteArray, QString> row{"name", "contents", "told"};
        row("text", "a.txt", "Hello", "3 txt");
        row("text of unknown ending", "a.log", "Hello", "3 txt");
        row("text without ending", "read, me", "Gr\xfc\xdf", "3 txt");
        row("text in UTF-16", "a.txt", "\xff\xfe" + Utf16("Hello"), "3 txt");
        row("text like a picture", "a.txt", "BMW, an offer", "3 txt");
        row("HTML", "a.HTM", "<p>Hello", "3 html");
        row("HTML by another name", "a.doc", "\n<!DOCTYPE html><p>Hello", "3 html");
        row("HTML as text", "a.txt", "<html>", "3 txt");
        row("RTF by another name", "a.doc", "{\\rtf1 Hello}", "3 rtf");
        row("Word", "a.bin", OleOf("WordDocument"), "3 doc");
        row("Excel", "a.xls", OleOf("Workbook"), "3 xls");
        row("PowerPoint as Word", "a.doc", OleOf("PowerPoint Document"), "3 ppt");
        row("other OLE", "a.doc", OleOf("Contents"), "Files of this kind cannot be faxed.");
        row("Word, cut off", "a.doc", OleOf("WordDocument").left(3000), "The document is damaged.");
        row("docx", "a.zip", ZipOf({{"[Content_Types].xml", ""}, {"word/document.xml", ""}}), "3 docx");
        row("xlsx with a docx inside", "a.docx", ZipOf({{"xl/embeddings/word/x", ""}}), "3 xlsx");
        row("pptx", "a.pptx", ZipOf({{"ppt/presentation.xml", ""}}), "3 pptx");
        row("odt as docx", "a.docx", OpenDocument("text", "<a/>"), "3 odt");
        row("ods", "a.ods", OpenDocument("spreadsheet-template", "<a/>"), "3 ods");
        row("odp", "a.odp", OpenDocument("presentation", "<a/>"), "3 odp");
        row("other ZIP", "a.zip", ZipOf({{"letter.txt", "Hello"}}), "Files of this kind cannot be faxed.");
        row("docx, cut off", "a.docx", ZipOf({{"word/document.xml", "Hello"}}).left(60),
            "The document is damaged.");
        row("flat", "a.xml", FlatDocument("text", {}), "3 fodt");
        row("flat, cut off", "a.fodt", FlatDocument("text", {}).chopped(30), "The document is damaged.");
        row("PDF by another name", "a.txt", "%PDF-1.4\n", "1 ");
        row("PDF behind rubbish", "a.pdf", QByteArray("\1\2\n%PDF-1.4"), "1 ");
        row("text as PDF", "a.pdf", "404 Not found", "The file is damaged, or not what its name says.");
        row("PNG by another name", "a.jpg", "\x89PNG\r\n\x1a\n", "2 ");
        row("PSD", "a", "8BPS\0\1", "2 ");
        row("fax by another name", "a.3g", FaxFile{.bGroup3 = true}.Bytes(), "0 ");
        row("fax with its size in front", "a.tif", FaxFile{.bSizePrefix = true}.Bytes(), "0 ");
        row("TIFF that is no fax", "a.tif", FaxFile{.lWidth = 800}.Bytes(), "2 ");
        row("marked fax", "*a.tif", FaxFile{.lWidth = 800}.Bytes(), "0 ");
        row("marked, but no fax", "*a.tif", "%PDF-1.4", "It is no fax file.");
        row("marked fax, damaged", "*a.tif", FaxFile().Bytes().left(100), "The fax file is damaged.");
        row("program", "a.exe", QByteArray("MZ\0\1\2\3", 6), "Files of this kind cannot be faxed.");
        row("rubbish as Word", "a.docx", QByteArray("\0\1\2\3", 4),
            "The file is damaged, or not what its name says.");
        row("empty", "a.docx", "", "The file is empty.");
    }

    void filesAreKnownByTheirContents()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, contents);
        const QString path = Write(QString(name).remove('*'), contents);
        QString told;
        try {
            const FileType type = DetectFileType(path, name.startsWith('*'));
            told = QStringLiteral("%1 %2").arg(type.kind).arg(type.strEnding);
        } catch (const ConversionError &error) {
            told = error.Text();
        }
        QTEST(told, "told");
    }

    void whatIsNoFileIsRefused()
    {
        const Outcome outcome = Prepare({folder.path(), folder.filePath("none.pdf"), "/dev/zero", ""});
        QStringList reasons;
        for (const FailedDocument &failed : outcome.aFailed)
            reasons.append(failed.strReason);
        QCOMPARE(reasons, QStringList({"It is a folder, not a file.", "The file does not exist.",
                                       "It is no ordinary file.", "The file does not exist."}));
        QVERIFY(std::all_of(outcome.aDocuments.begin(), outcome.aDocuments.end(),
                            [](const Document &document) { return document.strReadable.isEmpty(); }));
    }

    void passwordsAreRecognised()
    {
        const QByteArray begin = QByteArray("\x09\x08\x04\0\0\6\5\0", 8);
        const std::pair<QByteArray, bool> rows[] = {
            {OpenDocument("text", "\x17\x94\x3c"), true},
            {OpenDocument("text", "<a/>"), false},
            {OleOf("EncryptedPackage"), true},
            {OleOf("EncryptedSummary"), true},
            {OleOf("WordDocument", QByteArray(11, '\0') + '\1'), true},
            {OleOf("WordDocument", QByteArray(11, '\xff')), false},
            {OleOf("Workbook", begin + QByteArray("\x2f\0\2\0", 4)), true},
            {OleOf("Workbook", begin + QByteArray("\x86\0\0\0\x2f\0", 6)), true}, // behind another
            {OleOf("Workbook", begin + QByteArray("\xe1\0\2\0", 4)), false}};
        for (const auto &[contents, asks] : rows)
            QVERIFY2(OfficeContents::AsksForPassword(Write("protected", contents)) == asks,
                     contents.right(4096).toHex(' ').left(60).constData());
    }

    void documentsOfOneRequestAreConverted()
    {
        const std::pair<QString, QByteArray> files[] = {
            {"same.rtf", "{\\rtf1 Rich letters}"},
            {"other/same.rtf", "{\\rtf1 Other letters}"},
            {"a, b|c\n\"'*;$(id) --help.txt", "Gr\xfc\xdf"
                                              "e in ANSI"},
            {"-o", "\xef\xbb\xbf"
                   "\xd0\x9f\xd1\x80\xd0\xb8\xd0\xb2\xd0\xb5\xd1\x82"},
            {QString::fromUtf8("\xe4\xbd\xa0\xe5\xa5\xbd.html"),
             "<meta charset=windows-1251><h1>Head</h1>\xcf\xf0\xe8"},
            {"damaged.rtf", "{\\rtf1 No end"},
            {"secret.odt", OpenDocument("text", "\x17\x94\x3c")},
            {"sheets.fods",
             FlatDocument("spreadsheet", "<office:spreadsheet>" + Table("One", "first") +
                                             Table("Two", "second") + "</office:spreadsheet>")},
            {"text.odt", FlatDocument("text", "<office:text><text:p>Flat</text:p></office:text>")},
        };
        QStringList paths;
        for (const auto &[name, contents] : files)
            paths.append(Write(name, contents));
        const Outcome outcome = Prepare(paths);

        QStringList texts;
        for (const Document &document : outcome.aDocuments)
            texts.append(document.strReadable.isEmpty() ? "-" : TextOf(document.strReadable));
        const QStringList expected{"Rich letters",
                                   "Other letters",
                                   QString::fromUtf8("Gr\xc3\xbc\xc3\x9f"
                                                     "e in ANSI"),
                                   QString::fromUtf8("\xd0\x9f\xd1\x80\xd0\xb8\xd0\xb2\xd0\xb5\xd1\x82"),
                                   QString::fromUtf8("Head \xd0\x9f\xd1\x80\xd0\xb8"),
                                   "-",
                                   "-",
                                   "One first Page 1 Two second Page 2",
                                   "Flat"};
        QCOMPARE(texts, expected);
        QCOMPARE(outcome.aFailed.size(), 2);
        QCOMPARE(outcome.aFailed[0].strName, QStringLiteral("damaged.rtf"));
        QCOMPARE(outcome.aFailed[1].strName, QStringLiteral("secret.odt"));
        QCOMPARE(outcome.aFailed[1].strReason, QStringLiteral("The document is protected by a password."));
        QCOMPARE(outcome.aTold.value(0), QStringLiteral("Reading same.rtf"));
        for (const Document &document : outcome.aDocuments)
            QVERIFY(document.strReadable.isEmpty() || document.strReadable.startsWith(work.Path() + '/'));
        QCOMPARE(::OpenDocument(outcome.aDocuments[7])->Count(), 2);
    }

    /// 17 cm hold 80 letters; longer lines are broken, a tab reaches to the ninth column.
    void textKeepsItsLinesAndPages()
    {
        const QByteArray text = "   in\tdented\r\n\tnext\n" + QByteArray("word ").repeated(100) +
                                "\x1b[1mbold\x1b[0m" + "\a<&>\fsecond page\f";
        const Outcome outcome = Prepare({Write("lines.txt", text)});
        QCOMPARE(outcome.aDocuments.size(), 1);
        const std::unique_ptr<poppler::document> document(
            poppler::document::load_from_file(outcome.aDocuments[0].strReadable.toStdString()));
        QVERIFY(document);
        QCOMPARE(document->pages(), 2);
        const std::unique_ptr<poppler::page> page(document->create_page(0));
        QMap<QString, poppler::rectf> boxes;
        double right = 0;
        for (const poppler::text_box &box : page->text_list()) {
            const poppler::byte_array bytes = box.text().to_utf8();
            boxes.insert(QString::fromUtf8(bytes.data(), qsizetype(bytes.size())), box.bbox());
            right = std::max(right, box.bbox().right());
        }
        QCOMPARE(boxes.keys(), QStringList({"bold<&>", "dented", "in", "next", "word"}));
        QVERIFY(qAbs(boxes["dented"].left() - boxes["next"].left()) < 0.5);
        QVERIFY(boxes["in"].left() < boxes["next"].left());
        QVERIFY(boxes["word"].top() > boxes["next"].top() + 20 && right < page->page_rect().width() - 40);
        QVERIFY(TextOf(outcome.aDocuments[0].strReadable).endsWith("second page"));
    }

    void nothingBesideTheDocumentIsRead()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        QImage black(100, 100, QImage::Format_RGB32);
        black.fill(Qt::black);
        const QByteArray local = QUrl::fromLocalFile(Write("black.png", {})).toEncoded();
        QVERIFY(black.save(folder.filePath("black.png")));
        const QByteArray remote =
            "http://127.0.0.1:" + QByteArray::number(server.serverPort()) + "/black.png";
        QByteArray html =
            "<meta http-equiv=refresh content='0;" + remote + "'><link rel=stylesheet href='" + remote + "'>";
        QByteArray frames;
        for (const QByteArray &url : {remote, local, QByteArray("black.png")}) {
            html += "<img width=100 height=100 src='" + url + "'><iframe src='" + url + "'></iframe>";
            frames +=
                "<draw:frame text:anchor-type=\"as-char\" svg:width=\"5cm\" svg:height=\"5cm\"><draw:image "
                "xlink:href=\"" +
                url + "\" xlink:type=\"simple\"/></draw:frame>";
        }
        const Outcome outcome =
            Prepare({Write("links.html", html),
                     Write("links.fodt", FlatDocument("text", "<office:text><text:p>" + frames +
                                                                  "</text:p></office:text>"))});
        QCOMPARE(outcome.aFailed.size(), 0);
        QVERIFY(!server.waitForNewConnection(0));
        for (const Document &document : outcome.aDocuments) {
            const QImage page = ::OpenDocument(document)->Render(0, {212, 297}, 0);
            const QByteArray dots(reinterpret_cast<const char *>(page.constBits()), page.sizeInBytes());
            const auto ink =
                std::count_if(dots.begin(), dots.end(), [](char gray) { return uchar(gray) < 64; });
            // Frames, but no picture of 500 dots at the least.
            QVERIFY2(ink < 400, qPrintable(QString::number(ink)));
        }
    }

    void oneThatKillsTheProgramSpoilsNoOther()
    {
        QList<OfficeJob> jobs = JobsOf({"one", "damaged", crash, "two", "crash too", "three"});
        Convert(jobs, MakeFake());
        for (const OfficeJob &job : jobs) {
            const bool bad = job.strName.contains(crash) || job.strName == "damaged";
            QCOMPARE(job.strPdf.isEmpty(), bad);
            QCOMPARE(job.strReason.isEmpty(), !bad);
            QVERIFY(bad || ReadTestFile(job.strPdf).contains(job.strName.toUtf8()));
        }
    }

    void oneThatHangsIsGivenUp()
    {
        OfficeProgram program = MakeFake();
        program.limit = std::chrono::milliseconds(1000);
        QList<OfficeJob> jobs = JobsOf({"four", hang, "five"});
        Convert(jobs, program);
        QVERIFY(!jobs[0].strPdf.isEmpty() && !jobs[2].strPdf.isEmpty());
        QCOMPARE(jobs[1].strReason, QStringLiteral("The document takes too long to be read."));
        QVERIFY(PidIn("child") > 0 && !IsAlive(PidIn("child")));
    }

    void stopEndsAllProcesses()
    {
        QFile::remove(work.Path() + "/tmp/child");
        QList<OfficeJob> jobs = JobsOf({hang});
        std::stop_source stopper;
        std::jthread thread([&] {
            OfficeConverter(MakeFake(), work.Path(), stopper.get_token(), [](const QString &) {
            }).Convert(jobs);
        });
        const bool started = QTest::qWaitFor([this] { return PidIn("child") > 0; }, 10'000);
        stopper.request_stop();
        thread.join();
        QVERIFY(started && jobs[0].IsOpen());
        QTRY_VERIFY(!IsAlive(PidIn("office")) && !IsAlive(PidIn("child")));
    }

    void programIsWalledIn()
    {
        if (syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION) < 1)
            QSKIP("This system cannot keep a program from files.");
        const QString secret = QCoreApplication::applicationFilePath();
        const QByteArray script = "#!/bin/sh\n"
                                  "head -c 4 '%1' > \"$TMPDIR/seen\"\n"
                                  "echo x > '%1.stray'\n"
                                  "head -c 3 /etc/passwd > \"$TMPDIR/allowed\"\n";
        QList<OfficeJob> jobs = JobsOf({"six"});
        Convert(jobs, MakeFake(QByteArray(script).replace("%1", QFile::encodeName(secret))));
        QCOMPARE(QFileInfo(work.Path() + "/tmp/allowed").size(), 3);
        QVERIFY(QFile::exists(work.Path() + "/tmp/seen"));
        QCOMPARE(QFileInfo(work.Path() + "/tmp/seen").size(), 0);
        QVERIFY(!QFile::remove(secret + ".stray"));
    }

private:
    struct Outcome
    {
        QList<Document> aDocuments;
        QList<FailedDocument> aFailed;
        QStringList aTold;
    };

    QString Write(const QString &name, const QByteArray &bytes)
    {
        const QString path = folder.filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        return WriteTestFile(path, bytes) ? path : QString();
    }
    Outcome Prepare(const QStringList &paths)
    {
        Outcome outcome;
        for (const QString &path : paths) {
            outcome.aDocuments.append(Document());
            outcome.aDocuments.last().strPath = path;
        }
        PrepareDocuments(
            outcome.aDocuments, work.Path(), {}, [&](const QString &status) { outcome.aTold.append(status); },
            outcome.aFailed);
        return outcome;
    }
    /// It stands where the program sees it.
    OfficeProgram MakeFake(const QByteArray &script = fakeOffice)
    {
        OfficeProgram program;
        program.strPath = work.Path() + "/fake";
        if (!WriteTestFile(program.strPath, script) ||
            !QFile::setPermissions(program.strPath, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner))
            program.strPath.clear();
        return program;
    }
    QList<OfficeJob> JobsOf(const QList<QByteArray> &contents)
    {
        QList<OfficeJob> jobs;
        for (const QByteArray &content : contents)
            jobs.append({Write(content + ".rtf", content), "rtf", content, {}, {}, {}});
        return jobs;
    }
    void Convert(QList<OfficeJob> &jobs, const OfficeProgram &program) const
    {
        OfficeConverter(program, work.Path(), {}, [](const QString &) {}).Convert(jobs);
    }
    int PidIn(const QString &name) const
    {
        return ReadTestFile(work.Path() + "/tmp/" + name).trimmed().toInt();
    }

    QTemporaryDir folder;
    WorkFolder work;
};

QTEST_GUILESS_MAIN(tst_PrintToolDocuments)
#include "tst_PrintToolDocuments.moc"
