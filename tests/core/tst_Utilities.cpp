#include "core/RaisedError.h"
#include "core/Utilities.h"
#include "fakes/FakePorts.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <ctime>
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
        QCOMPARE(GetSpecialFolder(folders, 26), QString("/data/x/user/"));
        QCOMPARE(GetSpecialFolder(folders, 99), QString());
        QCOMPARE(AppPath(folders), QString("/data//x/program/"));
    }

    void compactPathKeepsTheLastComponent()
    {
        QCOMPARE(CompactPath("/home/anna/fax.tif", 18), QString("/home/anna/fax.tif"));
        QCOMPARE(CompactPath("/home/anna/fax.tif", 15), QString("/hom.../fax.tif"));
        QCOMPARE(CompactPath("C:\\home\\anna\\fax.tif", 14), QString("C:\\...\\fax.tif"));
        QCOMPARE(CompactPath("/home/a-very-long-name.tif", 12), QString(".../a-ver..."));
        QCOMPARE(CompactPath("a-very-long-name.tif", 8), QString("a-ver..."));
        QCOMPARE(CompactPath("/home/anna/fax.tif", 2), QString(".."));
        QCOMPARE(CompactPath("/home/anna", -1), QString());
        QCOMPARE(CompactPath(QString(300, 'a'), 1000), QString(251, 'a') + "...");
    }

    void textIsCleaned()
    {
        QCOMPARE(TrimNull(QStringLiteral("ab  \0cd")), QString("ab"));
        QCOMPARE(TrimNull("ab\t "), QString("ab\t"));
        QCOMPARE(CleanFileName("a\\b/c:d*e?f\"g<h>i|j.tif"), QString("abcdefghij.tif"));
        QCOMPARE(CleanReceiverText("\"A\" <1>[2];B"), QString("A (1)(2),B"));
        QCOMPARE(RemoveLastChar("a;b; ", ";"), QString("a;b"));
        QCOMPARE(RemoveLastChar("a;;", ";"), QString("a;"));
        QCOMPARE(RemoveLastChar("a,b ", ";"), QString("a,b"));
        QCOMPARE(CountOf("aaaa", "aa"), 3);
        QCOMPARE(CountOf("abc", ""), 0);
        QCOMPARE(EscapeText("O'Neill's"), QString("O~$@~Neill~$@~s"));
        QCOMPARE(UnescapeText(EscapeText("''%1'")), QString("''%1'"));
    }

    void colorHasBlueOnTop()
    {
        QCOMPARE(ColorFromHex("#1020fa"), 0xfa2010L);
        for (const char *text : {"#12345", "#1234567", "#12345g"})
            QCOMPARE(ColorFromHex(text), 16777215L);
    }

    void fileSizeIsFormatted()
    {
        constexpr qint64 kiloByte = 1024;
        QCOMPARE(FormatFileSize(0), QString("0"));
        QCOMPARE(FormatFileSize(1023), QString("1,023"));
        QCOMPARE(FormatFileSize(1152), QString("1.13 KB"));
        QCOMPARE(FormatFileSize(10 * kiloByte - 1), QString("10.00 KB"));
        QCOMPARE(FormatFileSize(10 * kiloByte), QString("10.0 KB"));
        QCOMPARE(FormatFileSize(1000 * kiloByte - 1), QString("1000.0 KB"));
        QCOMPARE(FormatFileSize(1000 * kiloByte), QString("0.98 MB"));
        QCOMPARE(FormatFileSize(10000 * kiloByte), QString("9.8 MB"));
        QCOMPARE(FormatFileSize(1000000 * kiloByte), QString("0.95 GB"));
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

    void hourLeftOutBySummerTimeIsADate()
    {
        const QByteArray before = qgetenv("TZ");
        qputenv("TZ", "Europe/Berlin");
        tzset();
        const auto restored = qScopeGuard([&] {
            before.isEmpty() ? qunsetenv("TZ") : qputenv("TZ", before);
            tzset();
        });
        QVERIFY(!QDateTime(QDate(2024, 3, 31), QTime(2, 30)).isValid());
        QCOMPARE(ToDateTime("2024-03-31 02:30:00").toString(Qt::ISODate), QString("2024-03-31T03:30:00"));
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

    void shellAndSoundTellTheirFailure()
    {
        FakePorts fakes;
        fakes.shell.lResult = 33;
        QVERIFY(ShellOpen(fakes.shell, "a.tif", "Open", "/x", "/tmp", 1));
        fakes.shell.lResult = 32;
        QVERIFY(!ShellOpen(fakes.shell, "a.tif", "Open", "/x", "/tmp", 1));
        PlaySoundFile("/a.wav", fakes.sound, fakes.message);
        fakes.sound.lDevices = 0;
        PlaySoundFile("/b.wav", fakes.sound, fakes.message);
        QCOMPARE(fakes.sound.aPlayed, QStringList{"/a.wav"});
        QCOMPARE(fakes.prompts.Texts(), QStringList{"No soundcard detected!"});
    }

    void raisedSystemErrorNamesProgramAndText()
    {
        try {
            ApiRaise(ENOENT);
            QFAIL("nothing was raised");
        } catch (const RaisedError &error) {
            QCOMPARE(error.Number(), 2147745792L + ENOENT);
            QCOMPARE(error.Source(), QString("tst_Utilities.Windows"));
            QCOMPARE(error.Description(), QString("No such file or directory"));
        }
    }
};

QTEST_GUILESS_MAIN(tst_Utilities)
#include "tst_Utilities.moc"
