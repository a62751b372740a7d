#include "core/RaisedError.h"
#include "core/formats/PrintRequest.h"
#include "fixtures/TestTable.h"

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
        const PrintRequest read = PrintRequest::Parse(packed);
        QCOMPARE(read.aFiles, request.aFiles);
        QCOMPARE(read.strRecipients, request.strRecipients);
        QCOMPARE(read.Pack(), packed);
        QVERIFY(!read.IsFine());
    }

    void pathThatTheListWouldCutIsNotPacked()
    {
        for (const QString &path : {QString("/a|b.doc"), QString("/a\nb.doc"), "/a" + QString(QChar(2))}) {
            PrintRequest request;
            request.aFiles = QStringList{path};
            QVERIFY_THROWS_EXCEPTION(RaisedError, request.Pack());
        }
    }

    void numberOutOfRangeIsBroughtIntoIt_data()
    {
        const TestTable<QString, int, int, bool> row{"numbers", "threshold", "fitting", "fine"};
        row("plain", "0~4~1", 0, 4, true);
        row("unset", "-1~-1~0", 200, 0, false);
        row("too high", "256~5~7", 255, 0, false);
        row("huge", "99999999999~99999999999~4294967297", 255, 0, false);
    }

    void numberOutOfRangeIsBroughtIntoIt()
    {
        QFETCH(QString, numbers);
        const PrintRequest request = Parse("/a.pdf|~/user~<None>~~~" + numbers + "~/data");
        QTEST(request.lThreshold, "threshold");
        QTEST(request.lFitting, "fitting");
        QTEST(request.IsFine(), "fine");
    }

    void cutOrForeignTextIsRefused_data()
    {
        const TestTable<QString> row{"text"};
        row("empty", "");
        row("status line", "Converting letter.pdf");
        row("separators only", "~~~~~~~~");
        row("list without end", "/a.pdf~/user~<None>~~~200~0~1~/data");
        row("empty list", "|~/user~<None>~~~200~0~1~/data");
        row("mark without path", "/a.pdf|*|~/user~<None>~~~200~0~1~/data");
        row("no user", "/a.pdf|~~<None>~~~200~0~1~/data");
        row("user below the present folder", "/a.pdf|~user~<None>~~~200~0~1~/data");
        row("no number", "/a.pdf|~/user~<None>~~~dark~0~1~/data");
        row("ten fields", "/a.pdf|~/user~<None>~~~200~0~1~/data~");
    }

    void cutOrForeignTextIsRefused()
    {
        QFETCH(QString, text);
        QVERIFY_THROWS_EXCEPTION(RaisedError, Parse(text));
    }

    void everyCutIsRefused()
    {
        const QString text("/a.pdf|~/user~<None>~~~200~0~1~/");
        QVERIFY(!Parse(text).aFiles.isEmpty());
        for (qsizetype length = 0; length < text.size(); ++length)
            QVERIFY_THROWS_EXCEPTION(RaisedError, Parse(text.left(length)));
    }

private:
    static PrintRequest Parse(QString text) { return PrintRequest::Parse(text.replace('~', QChar(2))); }
};

QTEST_GUILESS_MAIN(tst_PrintRequest)
#include "tst_PrintRequest.moc"
