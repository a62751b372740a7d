#include "fakes/WireDialogue.h"

#include <QTest>

#include <functional>

/// The bytes that the server gets, written out: both ends of the protocol are held against them.
class tst_Frames : public QObject
{
    Q_OBJECT

private slots:
    void everyCommandHasItsGoldenBytes_data();
    void everyCommandHasItsGoldenBytes();
    void logInHandsTheDigestBack();
    void emptyListsSendNothing();
    void unsafeDownloadsSendNothing();
    void binaryTailFollowsTheText();
    void shortInputIsNotYetALength();
    void percentRoundsHalvesToEven_data();
    void percentRoundsHalvesToEven();
};

namespace {
using Call = std::function<void(clsClient &)>;
}
Q_DECLARE_METATYPE(Call)

void tst_Frames::everyCommandHasItsGoldenBytes_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QByteArray>("hex");
    const auto row = [](const char *name, const Call &call, const char *hex) {
        QTest::newRow(name) << call << QByteArray(hex);
    };
    row(
        "1 LogIn, plain",
        [](clsClient &client) {
            QString password = QStringLiteral("abc");
            client.LogIn(QStringLiteral("Zoë"), password, false);
        },
        "01000000 5a6feb 0d0a 3930303135303938334344323446423044363936334637443238453137463732");
    row(
        "1 LogIn, digested",
        [](clsClient &client) {
            QString password = QStringLiteral("0F");
            client.LogIn(QStringLiteral("u"), password, true);
        },
        "01000000 75 0d0a 3046");
    row(
        "2 LogOut", [](clsClient &client) { client.LogOut(); }, "02000000");
    row(
        "3 GetContactVersion", [](clsClient &client) { client.GetContactVersion(); }, "03000000");
    row(
        "4 GetPublicContactGroup", [](clsClient &client) { client.GetPublicContactGroup(); }, "04000000");
    row(
        "5 GetPublicContacts", [](clsClient &client) { client.GetPublicContacts(); }, "05000000");
    row(
        "6 GetNewFaxList", [](clsClient &client) { client.GetNewFaxList(); }, "06000000");
    row(
        "7 GetFax",
        [](clsClient &client) { client.GetFax(70000, QStringLiteral("A1"), QStringLiteral("/x/")); },
        "07000000 3730303030 00 4131");
    row(
        "8 SendFaxFile",
        [](clsClient &client) {
            client.SendFaxFile(QStringLiteral("1;") + QChar(u'\0') + QStringLiteral("t€"),
                               QCoreApplication::applicationFilePath());
        },
        "08000000 05000000 313b007480");
    row(
        "9 GetFaxState",
        [](clsClient &client) {
            client.GetFaxState(QStringLiteral("A") + QChar(u'\0') + QStringLiteral("B"));
        },
        "09000000 03000000 410042");
    row(
        "10 GetHistoryList", [](clsClient &client) { client.GetHistoryList(QStringLiteral("2024-01-01")); },
        "0a000000 323032342d30312d3031");
    row(
        "11 ChangePassword",
        [](clsClient &client) {
            client.ChangePassword(QStringLiteral("u"), QString(), QStringLiteral("abc"));
        },
        "0b000000 75 00 4434314438434439384630304232303445393830303939384543463834323745 00"
        "3930303135303938334344323446423044363936334637443238453137463732");
    row(
        "13 GetUserList", [](clsClient &client) { client.GetUserList(); }, "0d000000");
    row(
        "14 GetDepartmentList", [](clsClient &client) { client.GetDepartmentList(); }, "0e000000");
    row(
        "15 CancelSendingFax", [](clsClient &client) { client.CancelSendingFax(QStringLiteral("A;B;")); },
        "0f000000 04000000 413b423b");
    row(
        "16 ResendErrorFax", [](clsClient &client) { client.ResendErrorFax(QStringLiteral("A;")); },
        "10000000 02000000 413b");
    row(
        "17 NewFaxReceived", [](clsClient &client) { client.NewFaxReceived(); }, "11000000");
    row(
        "18 GetFaxConfigAndKeepTouckTime", [](clsClient &client) { client.GetFaxConfigAndKeepTouckTime(); },
        "12000000");
    row(
        "19 SendReturnReceipt", [](clsClient &client) { client.SendReturnReceipt(QStringLiteral("A;")); },
        "13000000 02000000 413b");
    row(
        "20 GetReturnReceiptState",
        [](clsClient &client) { client.GetReturnReceiptState(QStringLiteral("A;")); },
        "14000000 02000000 413b");
}

void tst_Frames::everyCommandHasItsGoldenBytes()
{
    QFETCH(Call, call);
    QFETCH(QByteArray, hex);
    WireDialogue wire;
    call(*wire.client);
    QCOMPARE(wire.socket.aWrites.size(), 1);
    QCOMPARE(wire.socket.TakeWrite().toHex(), hex.replace(" ", ""));
}

void tst_Frames::logInHandsTheDigestBack()
{
    WireDialogue wire;
    QString password = QStringLiteral("abc");
    wire.client->LogIn(QStringLiteral("u"), password, false);
    QCOMPARE(password, QStringLiteral("900150983CD24FB0D6963F7D28E17F72"));
    wire.client->LogIn(QStringLiteral("u"), password, true);
    QCOMPARE(password, QStringLiteral("900150983CD24FB0D6963F7D28E17F72"));
}

void tst_Frames::emptyListsSendNothing()
{
    WireDialogue wire;
    wire.client->GetFaxState({});
    wire.client->CancelSendingFax({});
    wire.client->ResendErrorFax({});
    wire.client->SendReturnReceipt({});
    wire.client->GetReturnReceiptState({});
    wire.client->SendFaxFile({}, QCoreApplication::applicationFilePath());
    wire.client->SendFaxFile(QStringLiteral("h"), wire.Path(QStringLiteral("missing.tif")));
    QVERIFY(wire.socket.aWrites.isEmpty());
    wire.socket.FeedShort("OK"); // and nothing waits for a long reply or for a header's answer
    QCOMPARE(wire.TakeReply().lState, int(ClientReply::statShort));
}

void tst_Frames::unsafeDownloadsSendNothing()
{
    WireDialogue wire;
    wire.client->GetFax(0, QStringLiteral("../evil"), wire.Folder());
    wire.client->GetFax(0, QString(), wire.Folder());
    wire.client->GetFax(0, QStringLiteral("A1"), QString());
    QVERIFY(wire.socket.aWrites.isEmpty());
    wire.socket.FeedShort("OK");
    QCOMPARE(wire.TakeReply().lState, int(ClientReply::statShort));
}

void tst_Frames::binaryTailFollowsTheText()
{
    QCOMPARE(Frames::FormA(Frames::cmdLogOut, "ab", QByteArray("\0\xff", 2)),
             QByteArray("\x02\0\0\0ab\0\xff", 8));
    QCOMPARE(Frames::FormC(0x01020304, "xyz"), QByteArray("\x0c\0\0\0\x04\x03\x02\x01xyz", 11));
    QCOMPARE(Frames::GoOn().toHex(), QByteArray("476f4f6e"));
}

void tst_Frames::shortInputIsNotYetALength()
{
    QVERIFY(!Frames::HasLength("abc"));
    QCOMPARE(Frames::ReadLong("abc"), 0);
    QCOMPARE(Frames::ReadLong(QByteArray("\xfe\xff\xff\xff", 4)), -2);
    QCOMPARE(Frames::BehindLength("abc"), QByteArray());
    QCOMPARE(Frames::BehindLength("abcdef"), QByteArray("ef"));
}

void tst_Frames::percentRoundsHalvesToEven_data()
{
    QTest::addColumn<qint64>("done");
    QTest::addColumn<qint64>("total");
    QTest::addColumn<int>("percent");
    QTest::newRow("nothing of nothing") << qint64(0) << qint64(0) << 0;
    QTest::newRow("0.5 goes down") << qint64(1) << qint64(200) << 0;
    QTest::newRow("1.5 goes up") << qint64(3) << qint64(200) << 2;
    QTest::newRow("2.5 goes down") << qint64(5) << qint64(200) << 2;
    QTest::newRow("a third") << qint64(1) << qint64(3) << 33;
    QTest::newRow("large") << qint64(2147483646) << qint64(2147483647) << 100;
    QTest::newRow("frame headers count too") << qint64(102) << qint64(100) << 102;
}

void tst_Frames::percentRoundsHalvesToEven()
{
    QFETCH(qint64, done);
    QFETCH(qint64, total);
    QTEST(Frames::Percent(done, total), "percent");
}

QTEST_GUILESS_MAIN(tst_Frames)
#include "tst_Frames.moc"
