#include "server/FaxListReply.h"
#include "server/FaxReply.h"

#include <QTest>

class tst_FaxReply : public QObject
{
    Q_OBJECT

private slots:
    void listGivesTheFaxesOfItsLines()
    {
        // Lines with "|" for the byte between two fields, and what they give: id:size:kind.
        const QList<std::pair<QByteArray, QString>> lists{
            {"", ""},
            {"OK#", ""},
            {"OK#A|10#B|20|9#C|30|4#", "A:10:0 B:20:9 C:30:4"},
            {"OK#A|10|4|more than three#", "A:10:0"},
            {"OK#A|10#short#C|30#", "A:10:0"},
            {"OK#../A|1#A'B|1#|1#A/B|1#A.tif|1#OK1|1#", "OK1:1:0"}, // ids that are no safe file names
            {"OK#" + QByteArray(65, 'A') + "|1#", ""},
            {"OK#A|ten|nine#B|-5#C|99999999999#", "A:0:0 B:-5:0 C:2147483647:0"},
            {"OK#A|1", ""}, // no empty tail: the last line is taken for it
        };
        for (auto [reply, expected] : lists) {
            QStringList faxes;
            for (const NewFaxItem &item : FaxListReply::Parse(reply.replace('|', '\0').replace("#", "\r\n")))
                faxes.append(QString("%1:%2:%3").arg(item.FaxID).arg(item.Size).arg(item.Kind));
            QCOMPARE(faxes.join(' '), expected);
        }
    }

    void idsAreQuotedAndEscaped()
    {
        QCOMPARE(FaxReply::QuotedIds("a;b", 0), QString("'a','b'"));
        QCOMPARE(FaxReply::QuotedIds(";Ua;;Ub;U", 1), QString("'a','b'"));
        QCOMPARE(FaxReply::QuotedIds("", 0), QString());
        QCOMPARE(FaxReply::QuotedIds("a') or ('1", 0), QString("'a~$@~) or (~$@~1'"));
    }

    void namesThatLeaveTheFolderAreRefused()
    {
        QVERIFY(FaxReply::IsBareName("Fax 1.tif"));
        for (const QString name : {"", ".", "..", "../x.tif", "a/b", "a\\b", "a,b", "a'b", "a\nb"})
            QVERIFY2(!FaxReply::IsBareName(name), qPrintable(name));
    }
};

QTEST_GUILESS_MAIN(tst_FaxReply)
#include "tst_FaxReply.moc"
