#include "core/AnsiText.h"

#include <QTest>

class tst_AnsiText final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { qunsetenv("VELMAR_ANSI_CODEPAGE"); }

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
    }
};

QTEST_GUILESS_MAIN(tst_AnsiText)
#include "tst_AnsiText.moc"
