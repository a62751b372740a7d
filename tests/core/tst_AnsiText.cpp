#include "core/AnsiText.h"

#include <QTest>

class tst_AnsiText final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { qunsetenv("VELMAR_ANSI_CODEPAGE"); }

    void westernTextGoesBothWays_data();
    void westernTextGoesBothWays();
    void unknownCharacterBecomesOneQuestionMark_data();
    void unknownCharacterBecomesOneQuestionMark();
    void separatorsOfTheProtocolSurvive();
    void environmentNamesAnotherPage();
    void unknownPageFallsBackToWestern();
    void tornDoubleByteTextIsReadSafely();
};

void tst_AnsiText::westernTextGoesBothWays_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QString() << QByteArray();
    QTest::newRow("umlauts") << QStringLiteral(u"M\u00fcller & S\u00f6hne")
                             << QByteArray("M\xfcller & S\xf6hne");
    QTest::newRow("euro and quotes") << QStringLiteral(u"\u20ac \u201eab\u201c")
                                     << QByteArray("\x80 \x84"
                                                   "ab\x93");
}

void tst_AnsiText::westernTextGoesBothWays()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, bytes);
    QCOMPARE(AnsiText::ToAnsi(text), bytes);
    QCOMPARE(AnsiText::FromAnsi(bytes), text);
}

void tst_AnsiText::unknownCharacterBecomesOneQuestionMark_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("between others") << QStringLiteral(u"a\u4e2db\u00fc") << QByteArray("a?b\xfc");
    QTest::newRow("beyond 16 bits") << QStringLiteral(u"\U0001F4E0!") << QByteArray("?!");
    QTest::newRow("half a pair") << QString(QChar(0xd83d)) + 'x' << QByteArray("?x");
    QTest::newRow("real 0x1A stays") << QStringLiteral(u"\u001a\u4e2d") << QByteArray("\x1a?");
}

void tst_AnsiText::unknownCharacterBecomesOneQuestionMark()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, bytes);
    QCOMPARE(AnsiText::ToAnsi(text), bytes);
}

void tst_AnsiText::separatorsOfTheProtocolSurvive()
{
    const QByteArray bytes("OK\r\nid\0name\x01\x02", 14);
    QCOMPARE(AnsiText::FromAnsi(bytes).size(), 14);
    QCOMPARE(AnsiText::ToAnsi(AnsiText::FromAnsi(bytes)), bytes);
}

void tst_AnsiText::environmentNamesAnotherPage()
{
    qputenv("VELMAR_ANSI_CODEPAGE", "GBK");
    QCOMPARE(AnsiText::ToAnsi(QStringLiteral(u"\u4f20\u771f")), QByteArray("\xb4\xab\xd5\xe6"));
    QCOMPARE(AnsiText::FromAnsi(QByteArray("\xb4\xab\xd5\xe6")), QStringLiteral(u"\u4f20\u771f"));
    qputenv("VELMAR_ANSI_CODEPAGE", "windows-1251");
    QCOMPARE(AnsiText::ToAnsi(QStringLiteral(u"\u0444\u00fc")), QByteArray("\xf4?"));
}

void tst_AnsiText::unknownPageFallsBackToWestern()
{
    qputenv("VELMAR_ANSI_CODEPAGE", "no-such-page");
    QCOMPARE(AnsiText::ToAnsi(QStringLiteral(u"\u20ac")), QByteArray("\x80"));
}

void tst_AnsiText::tornDoubleByteTextIsReadSafely()
{
    qputenv("VELMAR_ANSI_CODEPAGE", "GBK");
    QVERIFY(AnsiText::FromAnsi(QByteArray("ab\xb4")).startsWith("ab"));
    QCOMPARE(AnsiText::FromAnsi(QByteArray("ok")), QString("ok"));
}

QTEST_GUILESS_MAIN(tst_AnsiText)
#include "tst_AnsiText.moc"
