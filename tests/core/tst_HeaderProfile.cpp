#include "core/HeaderFiles.h"
#include "core/formats/HeaderProfile.h"
#include "fixtures/Profile.h"

#include <QDir>
#include <QTest>

#include <memory>

#include <sys/stat.h>

class tst_HeaderProfile final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        folder = std::make_unique<QTemporaryDir>();
        strFile = folder->filePath("Test.GNI");
    }

    void standardProfilesAreWrittenAsTheyStand()
    {
        const QString installed = qEnvironmentVariable("VELMAR_BIN_DIR") + "/Header/";
        for (const QString &name : StandardHeaderProfiles()) {
            const QString file = FindHeaderFile(installed, HeaderProfileFileName('*' + name));
            const HeaderProfile profile = ReadHeaderProfile(file);
            QVERIFY2(profile != HeaderProfile(), qPrintable(name));
            QVERIFY(WriteHeaderProfile(strFile, profile));
            QCOMPARE(ReadTestFile(strFile), ReadTestFile(file));
        }
    }

    void whatIsWrittenIsReadBack()
    {
        HeaderProfile profile;
        profile.aTexts[0] = {
            QStringLiteral(u"\"M\u00fcller\" \u20ac [Page]"), "Times", 12, true, false, true, false, 2};
        profile.aTexts[7] = {"[a]=;'b'", "Arial", 8.25, false, true, false, true, 0};
        profile.headerSpace = {0, 7, 1000, 30};
        profile.bOnlyFirstFooter = true;
        QVERIFY(WriteTestFile(strFile, "[HeaderLeft_2]\nText=old\n"));
        QVERIFY(WriteHeaderProfile(strFile, profile));
        QVERIFY(ReadTestFile(strFile).contains(
            "[FooterMiddle_1]\r\nText=[a]=;'b'\r\nFontName=Arial\r\nFontSize=8.25\r\n"));
        profile.aTexts[7].dFontSize = 8;
        for (HeaderText &text : profile.aTexts) { // an untouched text's size is written and then rounded, too
            if (text.dFontSize == 8.25)
                text.dFontSize = 8;
        }
        QCOMPARE(ReadHeaderProfile(strFile), profile);
        profile.aTexts[3].strText = QStringLiteral(u" two\r\nlines \u4f20 ");
        QVERIFY(WriteHeaderProfile(strFile, profile));
        QCOMPARE(ReadHeaderProfile(strFile).aTexts[3].strText, "two  lines ?");
        QCOMPARE(ReadHeaderProfile(strFile), AsReadBack(profile));
    }

    void valuesStayWithinBounds()
    {
        // The value, and the size, the margin and the flag that are read of it.
        const std::tuple<QByteArray, double, int, bool> rows[] = {
            {"", 8.25, 50, false},     {"12", 12, 12, true},   {"9.5", 10, 10, true},
            {"007", 7, 7, true},       {"9mm", 9, 9, true},    {"True", 8.25, 0, true},
            {"False", 8.25, 0, false}, {"-20", 8.25, 0, true}, {"1e9", 200, 1000, true}};
        for (const auto &[value, size, margin, flag] : rows) {
            QVERIFY(WriteTestFile(strFile, "[FooterRight_2]\nfontsize=" + value + "\nBOLD = " + value +
                                               "\n[footerspace]\nTopMargin=" + value +
                                               "\n[Options]\nOnlyFirstHeader=" + value));
            const HeaderProfile profile = ReadHeaderProfile(strFile);
            QVERIFY2(profile.aTexts[11].dFontSize == size && profile.footerSpace.lTopMargin == margin,
                     value.constData());
            QVERIFY2(profile.aTexts[11].bBold == flag && profile.bOnlyFirstHeader == flag, value.constData());
        }
    }

    void textsAreReadAsTheProfileRoutinesDo()
    {
        QByteArray bytes = "Text=0\r\n[HeaderLeft_1]\r\nText= "
                           "\xfc\x80|x\r\n[headerleft_1]\r\nText=2\r\n[FooterLeft_1]\nText=";
        bytes.replace('|', '\0');
        QVERIFY(WriteTestFile(strFile, bytes + QByteArray(400, 'x') + "\nFontName=\n"));
        const HeaderProfile profile = ReadHeaderProfile(strFile);
        QCOMPARE(profile.aTexts[0].strText, QStringLiteral(u"\u00fc\u20ac"));
        QCOMPARE(profile.aTexts[6].strText, QString(254, 'x'));
        QCOMPARE(profile.aTexts[6].strFontName, "Courier New");
    }

    void whatIsNoProfileReadsAsAnEmptyOne()
    {
        const QString huge = folder->filePath("huge.GNI"), pipe = folder->filePath("pipe.GNI");
        QVERIFY(WriteTestFile(huge, "[HeaderLeft_1]\nText=a\n") && QFile::resize(huge, 100 * 1024 * 1024));
        QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        QByteArray bytes;
        for (int byte = 0; byte < 256 * 1024; ++byte)
            bytes += static_cast<char>(byte * 7919 >> 3);
        QVERIFY(WriteTestFile(folder->filePath("binary.GNI"), bytes));
        QVERIFY(WriteTestFile(folder->filePath("short lines.GNI"), QByteArray("=\n").repeated(128 * 1024)));
        for (const QString &file : {huge, pipe, folder->path(), folder->filePath("none.GNI"),
                                    folder->filePath("binary.GNI"), folder->filePath("short lines.GNI")})
            QVERIFY2(ReadHeaderProfile(file) == HeaderProfile(), qPrintable(file));
    }

    void failedWriteLeavesNothingBehind()
    {
        const QString file = folder->filePath("folder.GNI");
        QVERIFY(QDir().mkdir(file));
        QVERIFY(!WriteHeaderProfile(file, {}) && !WriteHeaderProfile(folder->filePath("none/a.GNI"), {}));
        QCOMPARE(QDir(folder->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList{"folder.GNI"});
    }

    void fileIsFoundByItsShownName()
    {
        const QDir header(folder->filePath("Header"));
        QVERIFY(QDir().mkpath(header.path()));
        for (const char *name : {"General.gni", "letter.GNI", "Letter.GNI", "letter 2.gni", "../Letter.GNI"})
            QVERIFY(WriteTestFile(header.filePath(name), "x"));
        const QMap<QString, QString> files{{"*General", "General.gni"},
                                           {"Letter", "Letter.GNI"}, // the exact spelling first
                                           {"LETTER 2", "letter 2.gni"}};
        for (const char *shown :
             {"*General", "Letter", "LETTER 2", "*Letter", "Compact", "<None>", "", "../Letter"})
            QCOMPARE(FindHeaderFile(header.path(), HeaderProfileFileName(shown)),
                     files.contains(shown) ? header.filePath(files[shown]) : QString());
    }

private:
    std::unique_ptr<QTemporaryDir> folder;
    QString strFile;
};

QTEST_GUILESS_MAIN(tst_HeaderProfile)
#include "tst_HeaderProfile.moc"
