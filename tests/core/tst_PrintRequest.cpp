#include "core/RaisedError.h"
#include "core/formats/PrintRequest.h"

#include <QTest>

/// The text by which the client tells the print tool what to do. Fields are parted by character 2, here "~".
class tst_PrintRequest final : public QObject
{
    Q_OBJECT

private slots:
    void packedRequestIsReadBack()
    {
        PrintRequest request;
        request.aFiles = QStringList{"/home/anna/a, b.doc", "*/home/anna/ready.tif"};
        request.strUserFolder = "/data/Velmar/Anna/";
        request.strHeader = "*General";
        request.strCompanyName = QString("Zimmer") + QChar(2) + "& Sohn" + QChar(1);
        request.strRecipients = QStringLiteral(u"J\u00f6rg; Ben");
        request.lThreshold = 150;
        request.lFitting = 4;
        request.lResolution = 2;
        request.strApplicationData = "/data/Velmar/";
        const QString packed = request.Pack();
        QCOMPARE(QString(packed).replace(QChar(2), '~'),
                 QStringLiteral(u"/home/anna/a, b.doc|*/home/anna/ready.tif|~/data/Velmar/Anna/~*General~"
                                u"Zimmer & Sohn ~J\u00f6rg; Ben~150~4~2~/data/Velmar/"));
        QCOMPARE(PrintRequest::Parse(packed).aFiles, request.aFiles);
        QCOMPARE(PrintRequest::Parse(packed).Pack(), packed);
        for (const QString &cutByTheList : {QString("/a|b.doc"), "/a" + QString(QChar(2))}) {
            request.aFiles = QStringList{cutByTheList};
            QVERIFY_THROWS_EXCEPTION(RaisedError, request.Pack());
        }
    }

    void numberOutOfRangeIsBroughtIntoIt()
    {
        const std::tuple<QString, int, int, bool> rows[] = {
            {"0~4~1", 0, 4, true}, {"-1~-1~0", 200, 0, false}, {"99999999999~5~4294967297", 255, 0, false}};
        for (const auto &[numbers, threshold, fitting, fine] : rows) {
            const PrintRequest request = Parse("/a.pdf|~/user~<None>~~~" + numbers + "~/data");
            QCOMPARE(request.lThreshold, threshold);
            QCOMPARE(request.lFitting, fitting);
            QCOMPARE(request.IsFine(), fine);
        }
    }

    void cutOrForeignTextIsRefused()
    {
        const QString whole("/a.pdf|~/user~<None>~~~200~0~1~/");
        QVERIFY(!Parse(whole).aFiles.isEmpty());
        for (qsizetype length = 0; length < whole.size(); ++length)
            QVERIFY_THROWS_EXCEPTION(RaisedError, Parse(whole.left(length)));
        for (const char *bad :
             {"Converting letter.pdf", "~~~~~~~~", "/a.pdf~/user~<None>~~~200~0~1~/data",
              "|~/user~<None>~~~200~0~1~/data", "*|~/user~<None>~~~200~0~1~/data",
              "/a.pdf|~user~<None>~~~200~0~1~/data", "/a.pdf|~/user~<None>~~~dark~0~1~/data",
              "/a.pdf|~/user~<None>~~~200~0~1~/data~"})
            QVERIFY_THROWS_EXCEPTION(RaisedError, Parse(bad));
    }

private:
    static PrintRequest Parse(QString text) { return PrintRequest::Parse(text.replace('~', QChar(2))); }
};

QTEST_GUILESS_MAIN(tst_PrintRequest)
#include "tst_PrintRequest.moc"
