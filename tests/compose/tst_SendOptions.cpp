#include "compose/ConversionOptions.h"
#include "compose/SendOptionChoices.h"
#include "core/Globals.h"
#include "fixtures/FaxFile.h"
#include "fixtures/Profile.h"
#include "fixtures/TestTable.h"

#include <QTemporaryDir>

namespace {

/// A packed text from fields joined by "|", line breaks as "/".
QString Packed(const QString &fields)
{
    return QString(fields).replace('|', '\2').replace('/', "\r\n");
}

QString Shown(const QString &packed)
{
    return QString(packed).replace('\2', '|').replace("\r\n", "/");
}

const QDateTime now(QDate(2024, 1, 31), QTime(9, 30, 20));

} // namespace

class tst_SendOptions final : public QObject
{
    Q_OBJECT

private slots:
    void packedTextReadsBack()
    {
        QCOMPARE(Shown(SendOptions().Pack()), "-1|1|3|-1|1|200||");
        const QString packed = Packed("2024-02-01/9:45/|0|3|10/-3|2|-1|4|");
        QCOMPARE(SendOptions::Parse(packed).Pack(), packed);
        QCOMPARE(Shown(SendOptions::Parse(Packed("-1|2|")).Pack()), "-1|2||||||");
        QCOMPARE(SendOptions::Parse("").strDeepness, "200");
        QCOMPARE(SendOptions::Parse(Packed("||||||2.9|")).ImagePrint(), 2);
    }

    void minusOneMeansNeverOnlyAsTheWholeField_data()
    {
        const TestTable<QString, QString> row{"field", "resending"};
        row("never", "-1", "1 0 0");
        row("the server's one minute", "-1/-3", "0 -1 -3");
        row("own", "10/-5", "0 10 -5");
        row("whole parts", "7.9/-2.9", "0 7 -2");
        row("nothing", "", "0 0 0");
        row("garbage", "often/many", "0 0 0");
        row("beyond all numbers", "-99999999999/1e300", "0 -2147483648 2147483647");
    }

    void minusOneMeansNeverOnlyAsTheWholeField()
    {
        QFETCH(QString, field);
        SendOptions options;
        options.strResending = Packed(field);
        const Resending read = options.ReadResending();
        QTEST(QString("%1 %2 %3").arg(read.bNever).arg(read.lInterval).arg(read.lTimes), "resending");
    }

    void rowOfAFaxGivesItsOptionsBack()
    {
        Profile profile;
        Profile::Execute("Insert Into SendFax(TimingSend,FaxLevel,busyResend,IsDontRetry,RetryInterval,"
                         "ResendTimes,Resolution,Deepness) Values('-1','2','3','True','0','0','1','0'),"
                         "('-1','1','3','False','-1','-3','0','-1')");
        QStringList rebuilt;
        const auto rows = Global().objDB->SelectEx("Select * From SendFax");
        while (rows->Next())
            rebuilt.append(Shown(SendOptions::FromRow(*rows).Pack()));
        QCOMPARE(rebuilt, (QStringList{"-1|2|3|-1|1|150||", "-1|1|3|-1/-3|0|-1||"}));
    }

    void windowReadsAndPacksTheOptions_data()
    {
        const TestTable<QString, QString> row{"packed", "after"};
        row("no options", "", "-1|1|3|-10/-4|2|150|0|");
        row("rebuilt from a row", "-1|0|3|-1/-3|0|-1|", "-1|0|3|-1/-4|0|-1|0|");
        row("later, own attempts are not kept", "2024-02-01/9:45/|1|3|10/-7|1|99|3|",
            "2024-02-01/9:45/|1|3|10/-5|1|99|3|");
        row("at 0", "0|2|3|-1|2|300|1|", "-1|2|3|-1|2|255|1|");
        row("threshold of 0 is the default", "-1|1|3|-1|2|0|4|", "-1|1|3|-1|2|180|4|");
        row("garbage counts as 0", "x|y|3|z|w|v|u|", "-1|0|3|0/-5|0|180|0|");
        row("no such buttons", "-1|7|3|5000/1|9|-5|5|", "-1|1|3|1000/-5|2|1|0|");
        row("afternoon", "2024-01-31/3:00 PM/|1|3|-1|2|9|0|", "2024-01-31/3:00 PM/|1|3|-1|2|9|0|");
        row("no time is midnight", "2024-02-01/soon/|1|3|-1|2|9|0|", "2024-02-01/00:00/|1|3|-1|2|9|0|");
        row("seconds ago", "2024-01-31/9:30/|1|3|-1|2|9|0|", "");
        row("midnight has passed", "2024-01-31//|1|3|-1|2|9|0|", "");
        row("no date", "2024-99-99/10:00/|1|3|-1|1|1||", "");
    }

    void windowReadsAndPacksTheOptions()
    {
        QFETCH(QString, packed);
        const FaxDefaults defaults{2, 180, 0, 120, 4, 5};
        const auto choices = SendOptionChoices::Load(Packed(packed), 0, defaults, now);
        QTEST(Shown(choices.Store(defaults, now).value_or(QString())), "after");
    }

    void defaultThresholdMayBeTheServers()
    {
        const FaxDefaults defaults{1, -1, 0, 120, 0, 0};
        const auto choices = SendOptionChoices::Load(Packed("-1|1|3|-1|1||"), 0, defaults, now);
        QVERIFY(choices.bServerDeepness && choices.lDeepness == 120 && choices.lOwnDeepness == 150);
    }

    void defaultTimeIsTheNextQuarterButForTheQuarterItself_data()
    {
        const TestTable<QTime, QString> row{"now", "offered"};
        row("full hour", {9, 0}, "9:15");
        row("15", {9, 15}, "9:45");
        row("31", {14, 31}, "14:45");
        row("45", {9, 45}, "9:45");
        row("46", {9, 46}, "10:00");
        row("midnight", {23, 59}, "00:00");
    }

    void defaultTimeIsTheNextQuarterButForTheQuarterItself()
    {
        QFETCH(QTime, now);
        QTEST(SendOptionChoices::DefaultTime(now), "offered");
    }

    void firstReadyFaxTellsItsResolution()
    {
        const QTemporaryDir folder;
        const QString fine = '*' + folder.filePath("fine.tif"), normal = '*' + folder.filePath("normal.tif");
        QVERIFY(FaxFile{.lDotsPerInchY = 196}.Write(fine.mid(1)));
        QVERIFY(FaxFile{.lDotsPerInchY = 98}.Write(normal.mid(1)));
        QCOMPARE(ReadyResolution({"/tmp/letter.doc", normal, fine}), 1);
        QCOMPARE(ReadyResolution({fine, normal}), 2);
        QCOMPARE(ReadyResolution({"*/no/such.tif", normal}), 0);
        QCOMPARE(ReadyResolution({fine.mid(1)}), 0);
    }

    void conversionFollowsFileOptionsAndDefaults_data()
    {
        const TestTable<QString, int, int, int, QString> row{"packed", "ready", "resolve", "serverResolve",
                                                             "conversion"};
        const QString fine = "-1|1|3|-1|1|99|3|", normal = "-1|1|3|-1|2|-1|1.9|", byServer = "-1|1|3|-1|0||";
        row("a ready fax rules", fine, 1, 1, 0, "0 99 3");
        row("a ready fine fax rules", normal, 2, 1, 1, "1 120 1");
        row("options fine", fine, 0, 2, 1, "1 99 3");
        row("options normal", normal, 0, 1, 0, "0 120 1");
        row("options of the server", byServer, 0, 1, 1, "0 0 0");
        row("server's number is unknown", byServer, 0, 1, 2, "1 0 0");
        row("defaults of the server", "", 0, 0, 1, "0 120 0");
        row("defaults", "", 0, 1, 1, "1 120 0");
        row("default as it stands", "", 0, 2, 0, "2 120 0");
    }

    void conversionFollowsFileOptionsAndDefaults()
    {
        QFETCH(QString, packed);
        QFETCH(int, ready);
        QFETCH(int, resolve);
        QFETCH(int, serverResolve);
        const FaxDefaults defaults{resolve, -1, serverResolve, 120, 0, 0};
        const ConversionOptions chosen = ConversionOptions::Choose(Packed(packed), ready, defaults);
        QTEST(QString("%1 %2 %3").arg(chosen.lResolution).arg(chosen.lThreshold).arg(chosen.lFitting),
              "conversion");
        FaxDefaults own = defaults;
        own.lDeepness = 88;
        QCOMPARE(ConversionOptions::Choose("", 0, own).lThreshold, 88);
    }
};

QTEST_GUILESS_MAIN(tst_SendOptions)
#include "tst_SendOptions.moc"
