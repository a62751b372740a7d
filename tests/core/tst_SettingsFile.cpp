#include "core/SettingsFile.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class tst_SettingsFile final : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void readsAsTheProfileRoutinesDo_data();
    void readsAsTheProfileRoutinesDo();
    void longValueIsCutToTheBuffer();
    void missingFileReadsAsEmpty();
    void writeChangesOneLineOnly_data();
    void writeChangesOneLineOnly();
    void writtenValueIsReadBack_data();
    void writtenValueIsReadBack();
    void valueCannotInjectALine();
    void namesThatWouldBreakTheFileAreRefused_data();
    void namesThatWouldBreakTheFileAreRefused();
    void failedWriteIsReported();
    void emptyFileNameMeansTheProgramsOwn();

private:
    void Put(const QByteArray &bytes) const;
    QByteArray Contents() const;

    std::unique_ptr<QTemporaryDir> folder;
    QString strFile;
};

void tst_SettingsFile::init()
{
    folder = std::make_unique<QTemporaryDir>();
    strFile = folder->filePath("FaxSetup.ini");
}

void tst_SettingsFile::Put(const QByteArray &bytes) const
{
    QFile file(strFile);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

QByteArray tst_SettingsFile::Contents() const
{
    QFile file(strFile);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void tst_SettingsFile::readsAsTheProfileRoutinesDo_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("value");
    QTest::newRow("plain") << QByteArray("[General]\nServer=fax.local\n") << "fax.local";
    QTest::newRow("case of names") << QByteArray("[GENERAL]\nsErVeR=a\n") << "a";
    QTest::newRow("blanks around all") << QByteArray("  [ General ]\r\n\t Server =  a b \t\r\n") << "a b";
    QTest::newRow("first key wins") << QByteArray("[General]\nServer=1\nServer=2\n") << "1";
    QTest::newRow("first section wins") << QByteArray("[General]\nServer=1\n[General]\nServer=2\n") << "1";
    QTest::newRow("key in the second of two sections")
        << QByteArray("[General]\nOther=1\n[General]\nServer=2\n") << "2";
    QTest::newRow("other section") << QByteArray("[Else]\nServer=1\n[General]\nOther=2\n") << "";
    QTest::newRow("before any section") << QByteArray("Server=1\n[General]\n") << "";
    QTest::newRow("comment") << QByteArray("[General]\n;Server=1\nServer=2\n") << "2";
    QTest::newRow("double quotes") << QByteArray("[General]\nServer=\" a \"\n") << "a";
    QTest::newRow("one pair only") << QByteArray("[General]\nServer='\"a\"'\n") << "\"a\"";
    QTest::newRow("lone quote") << QByteArray("[General]\nServer=\"\n") << "\"";
    QTest::newRow("equals in value") << QByteArray("[General]\nServer=a=b\n") << "a=b";
    QTest::newRow("empty value") << QByteArray("[General]\nServer=\n") << "";
    QTest::newRow("no final newline") << QByteArray("[General]\nServer=a") << "a";
    QTest::newRow("byte order mark") << QByteArray("\xEF\xBB\xBF[General]\nServer=a\n") << "a";
    QTest::newRow("bad bytes elsewhere") << QByteArray("[\xff\xfe]\n\xc3=\xff\n[General]\nServer=a\n") << "a";
    QTest::newRow("broken lines") << QByteArray("[General\n=\n[]\n[General]\n=x\nServer\nServer=a\n") << "a";
    QTest::newRow("NUL in value") << QByteArray("[General]\nServer=a\0b\n", 22) << "a";
    QTest::newRow("UTF-8") << QByteArray("[General]\nServer=M\xc3\xbcller\n")
                           << QStringLiteral(u"M\u00fcller");
    QTest::newRow("empty file") << QByteArray() << "";
}

void tst_SettingsFile::readsAsTheProfileRoutinesDo()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, value);
    Put(file);
    QCOMPARE(ReadIniValue("General", "Server", strFile), value);
}

void tst_SettingsFile::longValueIsCutToTheBuffer()
{
    Put("[General]\nServer=" + QByteArray(400, 'x') + "\n");
    QCOMPARE(ReadIniValue("General", "Server", strFile).size(), 254);
}

void tst_SettingsFile::missingFileReadsAsEmpty()
{
    QCOMPARE(ReadIniValue("General", "Server", strFile), QString());
    QCOMPARE(ReadIniValue("General", "Server", folder->path()), QString());
}

void tst_SettingsFile::writeChangesOneLineOnly_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::newRow("no file contents") << QByteArray() << QByteArray("[General]\nServer=new\n");
    QTest::newRow("replaces in place")
        << QByteArray("; top\n[A]\nServer=1\n\n[general]\nB=2\n server = old\n;c\nC=3\n")
        << QByteArray("; top\n[A]\nServer=1\n\n[general]\nB=2\nServer=new\n;c\nC=3\n");
    QTest::newRow("adds behind the section's last line")
        << QByteArray("[General]\nA=1\n\n[B]\nC=2\n")
        << QByteArray("[General]\nA=1\nServer=new\n\n[B]\nC=2\n");
    QTest::newRow("adds a section") << QByteArray("[B]\nC=2")
                                    << QByteArray("[B]\nC=2\n[General]\nServer=new\n");
    QTest::newRow("second section of that name") << QByteArray("[General]\nA=1\n[General]\nServer=2\n")
                                                 << QByteArray("[General]\nA=1\n[General]\nServer=new\n");
    QTest::newRow("keeps line ends, mark and bad bytes")
        << QByteArray("\xEF\xBB\xBF[General]\r\nServer=1\r\n\xff\xfe=\xc3\r\n")
        << QByteArray("\xEF\xBB\xBF[General]\r\nServer=new\r\n\xff\xfe=\xc3\r\n");
}

void tst_SettingsFile::writeChangesOneLineOnly()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    Put(before);
    QVERIFY(WriteIniValue("General", "Server", "new", strFile));
    QCOMPARE(Contents(), after);
}

void tst_SettingsFile::writtenValueIsReadBack_data()
{
    QTest::addColumn<QString>("value");
    QTest::newRow("plain") << "8750";
    QTest::newRow("equals and brackets") << "[a]=;b";
    QTest::newRow("percent") << "100%1 %n";
    QTest::newRow("other scripts") << QStringLiteral(u"/home/\u4f20\u771f/M\u00fcller");
    QTest::newRow("empty") << "";
}

void tst_SettingsFile::writtenValueIsReadBack()
{
    QFETCH(QString, value);
    QVERIFY(WriteIniValue(QStringLiteral(u"J\u00f6rg %1"), "Path", "first", strFile));
    QVERIFY(WriteIniValue(QStringLiteral(u"j\u00d6rg %1"), "PATH", value, strFile));
    QCOMPARE(ReadIniValue(QStringLiteral(u"J\u00f6rg %1"), "Path", strFile), value);
    QCOMPARE(Contents().count('\n'), 2);
}

void tst_SettingsFile::valueCannotInjectALine()
{
    QVERIFY(WriteIniValue("Anna", "Server", QString("a\nAutoLogin=1\r[General]\r\nx=y"), strFile));
    QCOMPARE(Contents(), QByteArray("[Anna]\nServer=a\n"));
}

void tst_SettingsFile::namesThatWouldBreakTheFileAreRefused_data()
{
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("key");
    QTest::newRow("empty section") << " "
                                   << "Key";
    QTest::newRow("empty key") << "General"
                               << "";
    QTest::newRow("line break in section") << "A\nB"
                                           << "Key";
    QTest::newRow("bracket in section") << "A]B"
                                        << "Key";
    QTest::newRow("line break in key") << "General"
                                       << "A\rB";
    QTest::newRow("equals in key") << "General"
                                   << "A=B";
    QTest::newRow("comment as key") << "General"
                                    << ";A";
    QTest::newRow("section as key") << "General"
                                    << "[A";
}

void tst_SettingsFile::namesThatWouldBreakTheFileAreRefused()
{
    QFETCH(QString, section);
    QFETCH(QString, key);
    Put("[General]\nA=1\n");
    QVERIFY(!WriteIniValue(section, key, "value", strFile));
    QCOMPARE(Contents(), QByteArray("[General]\nA=1\n"));
}

void tst_SettingsFile::failedWriteIsReported()
{
    QVERIFY(!WriteIniValue("General", "Server", "a", folder->filePath("none/FaxSetup.ini")));
    QVERIFY(!WriteIniValue("General", "Server", "a", folder->path()));
}

void tst_SettingsFile::emptyFileNameMeansTheProgramsOwn()
{
    QVERIFY(WriteIniValue("General", "Server", "a", {}, folder->path()));
    QCOMPARE(ReadIniValue("General", "Server", {}, folder->path() + '/'), QString("a"));
    QVERIFY(QFile::exists(folder->filePath("config.ini")));
}

QTEST_GUILESS_MAIN(tst_SettingsFile)
#include "tst_SettingsFile.moc"
