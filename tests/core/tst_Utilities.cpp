#include "core/AnsiText.h"
#include "core/Utilities.h"
#include "fakes/FakePorts.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <limits>

class tst_Utilities final : public QObject
{
    Q_OBJECT

private slots:
    void foldersAreMadeToldFromFilesAndDeleted()
    {
        const QTemporaryDir root;
        const QString nested = root.filePath("a/b/c"), path = root.filePath("a/file");
        QVERIFY(CreateFolder(nested) && CreateFolder(nested + '/'));
        QVERIFY(!CreateFolder(""));
        QVERIFY(QFile(path).open(QIODevice::WriteOnly));
        QVERIFY(!CreateFolder(path + "/d"));
        QVERIFY(FileExists(path) && !FolderExists(path));
        QVERIFY(FolderExists(nested) && !FileExists(nested));
        QVERIFY(!FileExists("") && !FolderExists("") && !FileExists(nested + "/none"));

        // The answer is the other way round, and a link's target is spared.
        QVERIFY(QFile::link(root.filePath("a"), root.filePath("link")));
        QVERIFY(!DeleteFolder(root.filePath("link/")));
        QVERIFY(!FolderExists(root.filePath("link")) && FolderExists(nested));
        QVERIFY(!DeleteFolder(root.filePath("a/")));
        QVERIFY(!FolderExists(root.filePath("a")));
        QVERIFY(DeleteFolder(root.filePath("a")) && DeleteFolder("") && DeleteFolder("//"));
    }

    void folderIsReadOnlyWhenNothingCanBeMadeInIt()
    {
        FakePorts fakes;
        const QTemporaryDir root;
        QVERIFY(!IsFolderReadOnly(root.path(), fakes.ids, fakes.message));
        QVERIFY(QDir(root.path()).isEmpty());
        QVERIFY(IsFolderReadOnly("/proc", fakes.ids, fakes.message));
        QVERIFY(IsFolderReadOnly(root.filePath("none"), fakes.ids, fakes.message));
    }

    void foldersEndInOneSeparator()
    {
        QCOMPARE(GetFolderOfPath("/home/a/b.tif"), QString("/home/a/"));
        QCOMPARE(GetFolderOfPath("C:\\fax\\b.tif"), QString("C:\\fax\\"));
        QCOMPARE(GetFolderOfPath("b.tif"), QString());
        FakeFolders folders;
        folders.strRoot = "/data//x";
        QCOMPARE(GetSpecialFolder(folders, 35, 100), QString("/data/x/common/"));
        QCOMPARE(GetSpecialFolder(folders, 99), QString());
    }

    void compactPathKeepsTheLastComponent()
    {
        QCOMPARE(CompactPath("/home/anna/fax.tif", 18), QString("/home/anna/fax.tif"));
        QCOMPARE(CompactPath("/home/anna/fax.tif", 15), QString("/hom.../fax.tif"));
        QCOMPARE(CompactPath("a-very-long-name.tif", 8), QString("a-ver..."));
        QCOMPARE(CompactPath("/home/anna", -1), QString());
        QCOMPARE(CompactPath(QString(300, 'a'), 1000), QString(251, 'a') + "...");
    }

    void textIsCleaned()
    {
        QCOMPARE(TrimNull(QStringLiteral("ab  \0cd")), QString("ab"));
        QCOMPARE(CleanFileName("a\\b/c:d*e?f\"g<h>i|j.tif"), QString("abcdefghij.tif"));
        QCOMPARE(CleanReceiverText("\"A\" <1>[2];B"), QString("A (1)(2),B"));
        QCOMPARE(RemoveLastChar("a;b; ", ";"), QString("a;b"));
        QCOMPARE(CountOf("aaaa", "aa"), 3);
        QCOMPARE(EscapeText("O'Neill's"), QString("O~$@~Neill~$@~s"));
        QCOMPARE(UnescapeText(EscapeText("''%1'")), QString("''%1'"));
    }

    void fileSizeIsFormatted()
    {
        const std::pair<qint64, QString> sizes[] = {{1023, "1,023"},      {1152, "1.13 KB"},
                                                    {10239, "10.00 KB"},  {10240, "10.0 KB"},
                                                    {1024000, "0.98 MB"}, {1024000000, "0.95 GB"}};
        for (const auto &[size, text] : sizes)
            QCOMPARE(FormatFileSize(size), text);
    }

    void numberIsTheLongestPrefix()
    {
        for (const QString &text : {QString("abc"), QString("."), QStringLiteral(u"\u0661\u0662")})
            QCOMPARE(NumericPrefix(text), 0.0);
        QCOMPARE(NumericPrefix("1,023"), 1.0);
        QCOMPARE(NumericPrefix("-1.75 KB"), -1.75);
        QCOMPARE(ToNumber("-1.75 KB"), -2);
        QCOMPARE(ToNumber(" 12abc"), 12);
        QCOMPARE(ToNumber("99999999999"), std::numeric_limits<int>::max());
        QCOMPARE(ToNumber("-1e999"), std::numeric_limits<int>::min());
    }

    void storedTruthIsANumberOrAWord()
    {
        for (const char *text : {"1", "-1", "True", " true "})
            QVERIFY2(ReadsAsTrue(text), text);
        for (const char *text : {"", "0", "False", "Truely", "-0"})
            QVERIFY2(!ReadsAsTrue(text), text);
    }

    void dateIsIsoOrMonthFirst()
    {
        const QMap<QString, QString> dates = {
            {"2024-01-31 09:30:05", "2024-01-31T09:30:05"},  {" 2024-01-31 ", "2024-01-31T00:00:00"},
            {"2024-01-31T09:30", "2024-01-31T09:30:00"},     {"3/4/2024 9:05:06", "2024-03-04T09:05:06"},
            {"1/31/2024 9:30:00 PM", "2024-01-31T21:30:00"}, {"1/31/2024 12:00 am", "2024-01-31T00:00:00"},
            {"1/31/2024 12:00 PM", "2024-01-31T12:00:00"}};
        for (auto date = dates.begin(); date != dates.end(); ++date)
            QCOMPARE(ToDateTime(date.key()).toString(Qt::ISODate), date.value());
        for (const char *text :
             {"1/31/2024 13:00 PM", "31/1/2024", "2024-02-30", "2024-01-31 24:00:00", "2024-01-31 x", ""})
            QVERIFY2(!ToDateTime(text).isValid(), text);
    }

    void newFaxIDIsTheGuidAndOnlySafeOnesPass()
    {
        FakePorts fakes;
        const QString id = NewFaxID(fakes.ids, fakes.message);
        QCOMPARE(id, QString("00000000000000000000000000000001"));
        for (const QString &safe : {id, QString("a-b_C"), QString(64, 'x')})
            QVERIFY2(IsSafeFaxID(safe), qPrintable(safe));
        for (const char *unsafe : {"", "../x", "x' or '1", "abc\n", "\xc3\xa4"})
            QVERIFY2(!IsSafeFaxID(QString::fromUtf8(unsafe)), unsafe);
        QVERIFY(!IsSafeFaxID(QString(65, 'x')));
        fakes.ids.bFails = true;
        QCOMPARE(NewFaxID(fakes.ids, fakes.message), QString());
        QCOMPARE(fakes.prompts.Texts(), QStringList{"Error while creating GUID!"});
    }

    void westernTextAndSeparatorsGoBothWays()
    {
        const QString text = QStringLiteral(u"OK\r\nM\u00fcller\0\u20ac \u201ex\u201c\u0001");
        const QByteArray bytes("OK\r\nM\xfcller\0\x80 \x84x\x93\x01", 17);
        QCOMPARE(AnsiText::ToAnsi(text), bytes);
        QCOMPARE(AnsiText::FromAnsi(bytes), text);
    }

    void unknownCharacterBecomesOneQuestionMark()
    {
        QCOMPARE(AnsiText::ToAnsi(QStringLiteral(u"a\u4e2db\u00fc")), QByteArray("a?b\xfc"));
        QCOMPARE(AnsiText::ToAnsi(QStringLiteral(u"\U0001F4E0!")), QByteArray("?!"));
        QCOMPARE(AnsiText::ToAnsi(QString(QChar(0xd83d)) + 'x'), QByteArray("?x"));
        QCOMPARE(AnsiText::ToAnsi(QStringLiteral(u"\u001a\u4e2d")), QByteArray("\x1a?"));
    }

    void environmentNamesAnotherPage()
    {
        qputenv("VELMAR_ANSI_CODEPAGE", "GBK");
        QCOMPARE(AnsiText::ToAnsi(QStringLiteral(u"\u4f20\u771f")), QByteArray("\xb4\xab\xd5\xe6"));
        QCOMPARE(AnsiText::FromAnsi(QByteArray("\xb4\xab\xd5\xe6")), QStringLiteral(u"\u4f20\u771f"));
        QVERIFY(AnsiText::FromAnsi(QByteArray("ab\xb4")).startsWith("ab"));
        qputenv("VELMAR_ANSI_CODEPAGE", "no-such-page");
        QCOMPARE(AnsiText::ToAnsi(QStringLiteral(u"\u20ac")), QByteArray("\x80"));
        qunsetenv("VELMAR_ANSI_CODEPAGE");
    }
};

QTEST_GUILESS_MAIN(tst_Utilities)
#include "tst_Utilities.moc"
