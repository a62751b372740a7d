#include "server/FaxListReply.h"
#include "server/FaxReply.h"

#include <QTest>

class tst_FaxReply : public QObject
{
    Q_OBJECT

private slots:
    void listGivesTheFaxesOfItsLines_data();
    void listGivesTheFaxesOfItsLines();
    void idsAreQuotedAndEscaped_data();
    void idsAreQuotedAndEscaped();
    void dateIsShortened_data();
    void dateIsShortened();
    void namesThatLeaveTheFolderAreRefused();
};

/// A list reply of these lines; "|" stands for the byte between two fields.
static QByteArray List(const QByteArrayList &lines)
{
    QByteArray text = "OK\r\n";
    for (const QByteArray &line : lines)
        text += QByteArray(line).replace('|', '\0') + "\r\n";
    return text;
}

void tst_FaxReply::listGivesTheFaxesOfItsLines_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("faxes"); // id:size:kind
    QTest::newRow("nothing") << QByteArray() << "";
    QTest::newRow("status only") << List({}) << "";
    QTest::newRow("new faxes") << List({"A|10", "B|20"}) << "A:10:0 B:20:0";
    QTest::newRow("history") << List({"A|10|9", "B|20|4"}) << "A:10:9 B:20:4";
    QTest::newRow("more than three fields") << List({"A|10|4|x"}) << "A:10:0";
    QTest::newRow("short line ends the list") << List({"A|10", "B", "C|30"}) << "A:10:0";
    QTest::newRow("unsafe ids are left out")
        << List({"../A|1", "A'B|1", "|1", "A/B|1", "A.tif|1", "OK1|1"}) << "OK1:1:0";
    QTest::newRow("id of 65 characters") << List({QByteArray(65, 'A') + "|1"}) << "";
    QTest::newRow("size that is no number")
        << List({"A|ten|nine", "B|-5", "C|99999999999"}) << "A:0:0 B:-5:0 C:2147483647:0";
    QTest::newRow("no empty tail: the last line is taken for it") << QByteArray("OK\r\nA\0001", 7) << "";
}

void tst_FaxReply::listGivesTheFaxesOfItsLines()
{
    QFETCH(QByteArray, reply);
    QStringList faxes;
    for (const NewFaxItem &item : FaxListReply::Parse(reply))
        faxes.append(QString("%1:%2:%3").arg(item.FaxID).arg(item.Size).arg(item.Kind));
    QTEST(faxes.join(' '), "faxes");
}

void tst_FaxReply::idsAreQuotedAndEscaped_data()
{
    QTest::addColumn<QString>("list");
    QTest::addColumn<int>("marker");
    QTest::addColumn<QString>("quoted");
    QTest::newRow("contacts") << "a;b" << 0 << "'a','b'";
    QTest::newRow("users lose their marker") << "Ua;Ub;" << 1 << "'a','b'";
    QTest::newRow("empty") << "" << 0 << "";
    QTest::newRow("empty elements") << ";;U;" << 1 << "";
    QTest::newRow("hostile") << "a') or ('1'='1" << 0 << "'a~$@~) or (~$@~1~$@~=~$@~1'";
}

void tst_FaxReply::idsAreQuotedAndEscaped()
{
    QFETCH(QString, list);
    QFETCH(int, marker);
    QTEST(FaxReply::QuotedIds(list, marker), "quoted");
}

void tst_FaxReply::dateIsShortened_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("date");
    QTest::newRow("ISO with a time") << "2024-01-31 09:00:00"
                                     << "24-01-31";
    QTest::newRow("ISO") << "1999-12-01"
                         << "99-12-01";
    QTest::newRow("month first") << "1/31/2024 9:00"
                                 << "24-01-31";
    QTest::newRow("no such day") << "2024-02-30"
                                 << "2024-02-30";
    QTest::newRow("no date") << "yesterday"
                             << "yesterday";
    QTest::newRow("empty") << ""
                           << "";
}

void tst_FaxReply::dateIsShortened()
{
    QFETCH(QString, text);
    QTEST(FaxReply::ShortDate(text), "date");
}

void tst_FaxReply::namesThatLeaveTheFolderAreRefused()
{
    QVERIFY(FaxReply::IsBareName("Fax 1.tif"));
    for (const QString name : {"", ".", "..", "../x.tif", "a/b", "a\\b", "a,b", "a'b", "a\nb"})
        QVERIFY2(!FaxReply::IsBareName(name), qPrintable(name));
}

QTEST_GUILESS_MAIN(tst_FaxReply)
#include "tst_FaxReply.moc"
