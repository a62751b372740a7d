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
    void fileAndFolderTests();
    void deletedFolderAnswersTheOtherWayRound();
    void deletingALinkSparesItsTarget();
    void folderIsReadOnlyWhenNothingCanBeMadeInIt();
    void folderOfPathKeepsTheSeparator();
    void specialFoldersEndInOneSlash();
    void compactPathKeepsTheLastComponent_data();
    void compactPathKeepsTheLastComponent();
    void shellOpenReadsTheSystemsCode();

    void textIsCleaned();
    void occurrencesAreCountedWithOverlaps();
    void colorHasBlueOnTop_data();
    void colorHasBlueOnTop();
    void fileSizeIsFormatted_data();
    void fileSizeIsFormatted();
    void numberIsTheLongestPrefix_data();
    void numberIsTheLongestPrefix();
    void storedTruthIsANumberOrAWord();
    void dateIsIsoOrMonthFirst_data();
    void dateIsIsoOrMonthFirst();
    void hourLeftOutBySummerTimeIsADate();
    void apostrophesAreEscapedAndBack();
    void newFaxIDIsTheGuidInMemoryOrder();
    void onlySafeFaxIDsPass_data();
    void onlySafeFaxIDsPass();

    void lastDayOfMonthCountsLeapYears();
    void soundNeedsADevice();
    void raisedSystemErrorNamesProgramAndText();
};

void tst_Utilities::fileAndFolderTests()
{
    const QTemporaryDir root;
    const QString nested = root.filePath("a/b/c");
    QVERIFY(CreateFolder(nested));
    QVERIFY(CreateFolder(nested + '/'));
    QVERIFY(!CreateFolder(""));
    QFile file(root.filePath("a/file"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(!CreateFolder(file.fileName() + "/d"));

    QVERIFY(FileExists(file.fileName()));
    QVERIFY(!FolderExists(file.fileName()));
    QVERIFY(FolderExists(nested));
    QVERIFY(!FileExists(nested));
    QVERIFY(!FileExists("") && !FolderExists(""));
    QVERIFY(!FileExists(nested + "/none"));
}

void tst_Utilities::deletedFolderAnswersTheOtherWayRound()
{
    const QTemporaryDir root;
    QVERIFY(CreateFolder(root.filePath("a/b")));
    QVERIFY(!DeleteFolder(root.filePath("a/")));
    QVERIFY(!FolderExists(root.filePath("a")));
    QVERIFY(DeleteFolder(root.filePath("a")));
    QVERIFY(DeleteFolder(""));
    QVERIFY(DeleteFolder("//"));
}

void tst_Utilities::deletingALinkSparesItsTarget()
{
    const QTemporaryDir root;
    QVERIFY(CreateFolder(root.filePath("target/inner")));
    QVERIFY(QFile::link(root.filePath("target"), root.filePath("link")));
    QVERIFY(!DeleteFolder(root.filePath("link/")));
    QVERIFY(FolderExists(root.filePath("target/inner")));
    QVERIFY(!FolderExists(root.filePath("link")));
}

void tst_Utilities::folderIsReadOnlyWhenNothingCanBeMadeInIt()
{
    FakePorts fakes;
    const QTemporaryDir root;
    QVERIFY(!IsFolderReadOnly(root.path(), fakes.ids, fakes.message));
    QVERIFY(QDir(root.path()).isEmpty());
    QVERIFY(IsFolderReadOnly("/proc", fakes.ids, fakes.message));
    QVERIFY(IsFolderReadOnly(root.filePath("none"), fakes.ids, fakes.message));
    QVERIFY(!FolderExists(root.filePath("none")));
}

void tst_Utilities::folderOfPathKeepsTheSeparator()
{
    QCOMPARE(GetFolderOfPath("/home/a/b.tif"), QString("/home/a/"));
    QCOMPARE(GetFolderOfPath("C:\\fax\\b.tif"), QString("C:\\fax\\"));
    QCOMPARE(GetFolderOfPath("b.tif"), QString());
}

void tst_Utilities::specialFoldersEndInOneSlash()
{
    FakeFolders folders;
    folders.strRoot = "/data//x";
    QCOMPARE(GetSpecialFolder(folders, 35, 100), QString("/data/x/common/"));
    QCOMPARE(GetSpecialFolder(folders, 26), QString("/data/x/user/"));
    QCOMPARE(GetSpecialFolder(folders, 99), QString());
    QCOMPARE(AppPath(folders), QString("/data//x/program/"));
}

void tst_Utilities::compactPathKeepsTheLastComponent_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("width");
    QTest::addColumn<QString>("compacted");
    QTest::newRow("fits") << "/home/anna/fax.tif" << 18 << "/home/anna/fax.tif";
    QTest::newRow("middle") << "/home/anna/fax.tif" << 15 << "/hom.../fax.tif";
    QTest::newRow("backslash") << "C:\\home\\anna\\fax.tif" << 14 << "C:\\...\\fax.tif";
    QTest::newRow("tail too long") << "/home/a-very-long-name.tif" << 12 << ".../a-ver...";
    QTest::newRow("no folder") << "a-very-long-name.tif" << 8 << "a-ver...";
    QTest::newRow("tiny") << "/home/anna/fax.tif" << 2 << "..";
    QTest::newRow("nothing") << "/home/anna" << -1 << "";
    QTest::newRow("buffer") << QString(300, 'a') << 1000 << QString(251, 'a') + "...";
}

void tst_Utilities::compactPathKeepsTheLastComponent()
{
    QFETCH(QString, path);
    QFETCH(int, width);
    QTEST(CompactPath(path, width), "compacted");
}

void tst_Utilities::shellOpenReadsTheSystemsCode()
{
    FakeShell shell;
    shell.lResult = 33;
    QVERIFY(ShellOpen(shell, "a.tif", "Open", "/x", "/tmp", 1));
    shell.lResult = 32;
    QVERIFY(!ShellOpen(shell, "a.tif", "Open", "/x", "/tmp", 1));
    QCOMPARE(shell.aCalls.last().strParameters, QString("/x"));
}

void tst_Utilities::textIsCleaned()
{
    QCOMPARE(TrimNull(QStringLiteral("ab  \0cd")), QString("ab"));
    QCOMPARE(TrimNull("ab\t "), QString("ab\t"));
    QCOMPARE(CleanFileName("a\\b/c:d*e?f\"g<h>i|j.tif"), QString("abcdefghij.tif"));
    QCOMPARE(CleanReceiverText("\"A\" <1>[2];B"), QString("A (1)(2),B"));
    QCOMPARE(RemoveLastChar("a;b; ", ";"), QString("a;b"));
    QCOMPARE(RemoveLastChar("a;;", ";"), QString("a;"));
    QCOMPARE(RemoveLastChar("a,b ", ";"), QString("a,b"));
}

void tst_Utilities::occurrencesAreCountedWithOverlaps()
{
    QCOMPARE(CountOf("aaaa", "aa"), 3);
    QCOMPARE(CountOf("a;b;", ";"), 2);
    QCOMPARE(CountOf("abc", ""), 0);
}

void tst_Utilities::colorHasBlueOnTop_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<long>("color");
    QTest::newRow("order") << "#102030" << 0x302010L;
    QTest::newRow("lower case") << "#ff00aa" << 0xaa00ffL;
    QTest::newRow("short") << "#12345" << 16777215L;
    QTest::newRow("long") << "#1234567" << 16777215L;
    QTest::newRow("no digits") << "#12345g" << 16777215L;
}

void tst_Utilities::colorHasBlueOnTop()
{
    QFETCH(QString, text);
    QTEST(ColorFromHex(text), "color");
}

void tst_Utilities::fileSizeIsFormatted_data()
{
    QTest::addColumn<qint64>("size");
    QTest::addColumn<QString>("text");
    QTest::newRow("zero") << qint64(0) << "0";
    QTest::newRow("bytes") << qint64(1023) << "1,023";
    QTest::newRow("first KB") << qint64(1024) << "1.00 KB";
    QTest::newRow("halves go up") << qint64(1152) << "1.13 KB";
    QTest::newRow("below 10 KB") << qint64(10239) << "10.00 KB";
    QTest::newRow("10 KB") << qint64(10240) << "10.0 KB";
    QTest::newRow("999 KB") << qint64(1000 * 1024 - 1) << "1000.0 KB";
    QTest::newRow("1000 KB") << qint64(1000 * 1024) << "0.98 MB";
    QTest::newRow("10000 KB") << qint64(10000 * 1024) << "9.8 MB";
    QTest::newRow("1000000 KB") << qint64(1000000) * 1024 << "0.95 GB";
}

void tst_Utilities::fileSizeIsFormatted()
{
    QFETCH(qint64, size);
    QTEST(FormatFileSize(size), "text");
}

void tst_Utilities::numberIsTheLongestPrefix_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("number");
    QTest::addColumn<int>("whole");
    QTest::newRow("empty") << "" << 0.0 << 0;
    QTest::newRow("word") << "abc" << 0.0 << 0;
    QTest::newRow("prefix") << " 12abc" << 12.0 << 12;
    QTest::newRow("sign") << "-1" << -1.0 << -1;
    QTest::newRow("point") << "1.75 KB" << 1.75 << 2;
    QTest::newRow("lone point") << "." << 0.0 << 0;
    QTest::newRow("comma ends it") << "1,023" << 1.0 << 1;
    QTest::newRow("other digits") << QStringLiteral(u"\u0661\u0662") << 0.0 << 0;
    QTest::newRow("beyond 32 bits") << "99999999999" << 99999999999.0 << std::numeric_limits<int>::max();
    QTest::newRow("beyond all") << "-1e999" << -std::numeric_limits<double>::infinity()
                                << std::numeric_limits<int>::min();
}

void tst_Utilities::numberIsTheLongestPrefix()
{
    QFETCH(QString, text);
    QTEST(NumericPrefix(text), "number");
    QTEST(ToNumber(text), "whole");
}

void tst_Utilities::storedTruthIsANumberOrAWord()
{
    for (const char *text : {"1", "-1", "True", " true "})
        QVERIFY2(ReadsAsTrue(text), text);
    for (const char *text : {"", "0", "False", "Truely", "-0"})
        QVERIFY2(!ReadsAsTrue(text), text);
}

void tst_Utilities::dateIsIsoOrMonthFirst_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("iso");
    QTest::newRow("own form") << "2024-01-31 09:30:05"
                              << "2024-01-31T09:30:05";
    QTest::newRow("no time") << " 2024-01-31 "
                             << "2024-01-31T00:00:00";
    QTest::newRow("T between") << "2024-01-31T09:30"
                               << "2024-01-31T09:30:00";
    QTest::newRow("month first") << "3/4/2024 9:05:06"
                                 << "2024-03-04T09:05:06";
    QTest::newRow("afternoon") << "1/31/2024 9:30:00 PM"
                               << "2024-01-31T21:30:00";
    QTest::newRow("midnight") << "1/31/2024 12:00 am"
                              << "2024-01-31T00:00:00";
    QTest::newRow("noon") << "1/31/2024 12:00 PM"
                          << "2024-01-31T12:00:00";
    QTest::newRow("thirteen in the afternoon") << "1/31/2024 13:00 PM"
                                               << "";
    QTest::newRow("day first") << "31/1/2024"
                               << "";
    QTest::newRow("no such day") << "2024-02-30"
                                 << "";
    QTest::newRow("no such hour") << "2024-01-31 24:00:00"
                                  << "";
    QTest::newRow("text behind") << "2024-01-31 x"
                                 << "";
    QTest::newRow("empty") << ""
                           << "";
}

void tst_Utilities::dateIsIsoOrMonthFirst()
{
    QFETCH(QString, text);
    QTEST(ToDateTime(text).toString(Qt::ISODate), "iso");
}

void tst_Utilities::hourLeftOutBySummerTimeIsADate()
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

void tst_Utilities::apostrophesAreEscapedAndBack()
{
    QCOMPARE(EscapeText("O'Neill's"), QString("O~$@~Neill~$@~s"));
    QCOMPARE(UnescapeText(EscapeText("''%1'")), QString("''%1'"));
}

void tst_Utilities::newFaxIDIsTheGuidInMemoryOrder()
{
    FakePorts fakes;
    QCOMPARE(NewFaxID(fakes.ids, fakes.message), QString("00000000000000000000000000000001"));
    fakes.ids.bFails = true;
    QCOMPARE(NewFaxID(fakes.ids, fakes.message), QString());
    QCOMPARE(fakes.prompts.Texts(), QStringList{"Error while creating GUID!"});
}

void tst_Utilities::onlySafeFaxIDsPass_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<bool>("safe");
    QTest::newRow("own form") << "0A1B2C3D4E5F60718293A4B5C6D7E8F9" << true;
    QTest::newRow("dash and line") << "a-b_c" << true;
    QTest::newRow("empty") << "" << false;
    QTest::newRow("64") << QString(64, 'x') << true;
    QTest::newRow("65") << QString(65, 'x') << false;
    QTest::newRow("parent") << "../x" << false;
    QTest::newRow("apostrophe") << "x' or '1" << false;
    QTest::newRow("final line break") << "abc\n" << false;
    QTest::newRow("letters of other scripts") << QStringLiteral(u"\u00e4") << false;
}

void tst_Utilities::onlySafeFaxIDsPass()
{
    QFETCH(QString, id);
    QTEST(IsSafeFaxID(id), "safe");
}

void tst_Utilities::lastDayOfMonthCountsLeapYears()
{
    QCOMPARE(DaysInMonth(2024, 2), 29);
    QCOMPARE(DaysInMonth(1900, 2), 28);
    QCOMPARE(DaysInMonth(2023, 12), 31);
}

void tst_Utilities::soundNeedsADevice()
{
    FakePorts fakes;
    PlaySoundFile("/a.wav", fakes.sound, fakes.message);
    fakes.sound.lDevices = 0;
    PlaySoundFile("/b.wav", fakes.sound, fakes.message);
    QCOMPARE(fakes.sound.aPlayed, QStringList{"/a.wav"});
    QCOMPARE(fakes.prompts.Texts(), QStringList{"No soundcard detected!"});
}

void tst_Utilities::raisedSystemErrorNamesProgramAndText()
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

QTEST_GUILESS_MAIN(tst_Utilities)
#include "tst_Utilities.moc"
