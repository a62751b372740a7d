#include "core/SettingsFile.h"
#include "fixtures/Profile.h"
#include "fixtures/TestTable.h"

class tst_SettingsFile final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        folder = std::make_unique<QTemporaryDir>();
        strFile = folder->filePath("FaxSetup.ini");
    }

    void readsAsTheProfileRoutinesDo_data()
    {
        const TestTable<QByteArray, QString> row{"section", "value"};
        row("case and blanks", " \t sErVeR =  a b \t\r\n", "a b");
        row("first key wins", "Server=1\nServer=2\n[General]\nServer=3", "1");
        row("key in the second of two sections", "Other=1\n[General]\nServer=2\n", "2");
        row("double quotes", "Server=\" a \"\n", "a");
        row("one pair only", "Server='\"a\"'\n", "\"a\"");
        row("bad bytes elsewhere", "[\xff\xfe]\n\xc3=\xff\n[General]\nServer=a\n", "a");
        row("broken lines", "[General\n=\n[]\n[General]\n=x\nServer\nServer=a\n", "a");
        row("NUL in value", QByteArray("Server=a\0b\n", 11), "a");
        row("UTF-8", "Server=M\xc3\xbcller\n", QStringLiteral(u"M\u00fcller"));
        row("longer than the buffer", "Server=" + QByteArray(400, 'x'), QString(254, 'x'));
    }

    void readsAsTheProfileRoutinesDo()
    {
        QFETCH(QByteArray, section);
        QVERIFY(WriteTestFile(strFile, "\xEF\xBB\xBFServer=0\n  [ GENERAL ]\r\n" + section));
        QTEST(ReadIniValue("General", "Server", strFile), "value");
    }

    void writeChangesOneLineOnly_data()
    {
        const TestTable<QByteArray, QByteArray> row{"before", "after"};
        row("no file contents", "", "[General]\nServer=new\n");
        row("replaces in place", "; top\n[A]\nServer=1\n\n[general]\nB=2\n server = old\n;c\nC=3\n",
            "; top\n[A]\nServer=1\n\n[general]\nB=2\nServer=new\n;c\nC=3\n");
        row("adds behind the first section's last line", "[General]\nA=1\n\n[B]\nC=2\n[General]\nD=3\n",
            "[General]\nA=1\nServer=new\n\n[B]\nC=2\n[General]\nD=3\n");
        row("adds a section", "[B]\nC=2", "[B]\nC=2\n[General]\nServer=new\n");
        row("keeps line ends, mark and bad bytes", "\xEF\xBB\xBF[General]\r\nServer=1\r\n\xff\xfe=\xc3\r\n",
            "\xEF\xBB\xBF[General]\r\nServer=new\r\n\xff\xfe=\xc3\r\n");
    }

    void writeChangesOneLineOnly()
    {
        QFETCH(QByteArray, before);
        QVERIFY(WriteTestFile(strFile, before));
        QVERIFY(WriteIniValue("General", "Server", "new", strFile));
        QTEST(ReadTestFile(strFile), "after");
    }

    void writtenValueIsReadBack()
    {
        const QString section = QStringLiteral(u"J\u00f6rg %1"), folded = QStringLiteral(u"j\u00d6rg %1");
        for (const QString &value : {QString("[a]=;b"), QString("100%1 %n"),
                                     QStringLiteral(u"/home/\u4f20\u771f/M\u00fcller"), QString()}) {
            QVERIFY(WriteIniValue(folded, "PATH", value, strFile));
            QCOMPARE(ReadIniValue(section, "Path", strFile), value);
            QCOMPARE(ReadTestFile(strFile).count('\n'), 2);
        }
    }

    void noNameOrValueBreaksTheFile()
    {
        QVERIFY(WriteIniValue("Anna", "Server", "a\nAutoLogin=1\r[General]\r\nx=y", strFile));
        QCOMPARE(ReadTestFile(strFile), QByteArray("[Anna]\nServer=a\n"));
        for (const char *section : {" ", "A\nB", "A]B"})
            QVERIFY2(!WriteIniValue(section, "Key", "value", strFile), section);
        for (const char *key : {"", "A\rB", "A=B", ";A", "[A"})
            QVERIFY2(!WriteIniValue("Anna", key, "value", strFile), key);
        QCOMPARE(ReadTestFile(strFile), QByteArray("[Anna]\nServer=a\n"));
    }

    void unusableFileReadsAsEmptyAndFailsTheWrite()
    {
        for (const QString &path : {folder->path(), folder->filePath("none/FaxSetup.ini")}) {
            QCOMPARE(ReadIniValue("General", "Server", path), QString());
            QVERIFY(!WriteIniValue("General", "Server", "a", path));
        }
    }

private:
    std::unique_ptr<QTemporaryDir> folder;
    QString strFile;
};

QTEST_GUILESS_MAIN(tst_SettingsFile)
#include "tst_SettingsFile.moc"
