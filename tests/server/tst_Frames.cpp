#include "fakes/WireDialogue.h"

#include <QTest>

#include <functional>

namespace {
using Call = std::function<void(clsClient &)>;

void LogIn(clsClient &client, const QString &user, QString password, bool alreadyDigested)
{
    client.LogIn(user, password, alreadyDigested);
}
} // namespace
Q_DECLARE_METATYPE(Call)

/// The bytes that the server gets, written out: both ends of the protocol are held against them.
class tst_Frames : public QObject
{
    Q_OBJECT

private slots:
    void everyCommandHasItsGoldenBytes_data()
    {
        struct Row
        {
            const char *name;
            Call call;
            QByteArray hex;
        };
        const QByteArray abcDigest = "3930303135303938334344323446423044363936334637443238453137463732";
        const QByteArray emptyDigest = "4434314438434439384630304232303445393830303939384543463834323745";
        const QString nul(QChar(u'\0'));
        const QString file = QCoreApplication::applicationFilePath();
        const Row rows[] = {
            {"1 plain", [](auto &c) { LogIn(c, "Zoë", "abc", false); }, "01000000 5a6feb 0d0a" + abcDigest},
            {"1 digested", [](auto &c) { LogIn(c, "u", "0F", true); }, "01000000 75 0d0a 3046"},
            {"2", &clsClient::LogOut, "02000000"},
            {"3", &clsClient::GetContactVersion, "03000000"},
            {"4", &clsClient::GetPublicContactGroup, "04000000"},
            {"5", &clsClient::GetPublicContacts, "05000000"},
            {"6", &clsClient::GetNewFaxList, "06000000"},
            {"7", [](auto &c) { c.GetFax(70000, "A1", "/x/"); }, "07000000 3730303030 00 4131"},
            {"8", [=](auto &c) { c.SendFaxFile("1;" + nul + "t€", file); }, "08000000 05000000 313b007480"},
            {"9", [=](auto &c) { c.GetFaxState("A" + nul + "B"); }, "09000000 03000000 410042"},
            {"10", [](auto &c) { c.GetHistoryList("2024-01-01"); }, "0a000000 323032342d30312d3031"},
            {"11", [](auto &c) { c.ChangePassword("u", "", "abc"); },
             "0b000000 75 00" + emptyDigest + "00" + abcDigest},
            {"13", &clsClient::GetUserList, "0d000000"},
            {"14", &clsClient::GetDepartmentList, "0e000000"},
            {"15", [](auto &c) { c.CancelSendingFax("A;B;"); }, "0f000000 04000000 413b423b"},
            {"16", [](auto &c) { c.ResendErrorFax("A;"); }, "10000000 02000000 413b"},
            {"17", &clsClient::NewFaxReceived, "11000000"},
            {"18", &clsClient::GetFaxConfigAndKeepTouckTime, "12000000"},
            {"19", [](auto &c) { c.SendReturnReceipt("A;"); }, "13000000 02000000 413b"},
            {"20", [](auto &c) { c.GetReturnReceiptState("A;"); }, "14000000 02000000 413b"},
        };
        QTest::addColumn<Call>("call");
        QTest::addColumn<QByteArray>("hex");
        for (const Row &row : rows)
            QTest::newRow(row.name) << row.call << row.hex;
    }

    void everyCommandHasItsGoldenBytes()
    {
        QFETCH(Call, call);
        QFETCH(QByteArray, hex);
        WireDialogue wire;
        call(*wire.client);
        QCOMPARE(wire.socket.aWrites.size(), 1);
        QCOMPARE(wire.socket.TakeWrite().toHex(), hex.replace(" ", ""));
    }

    void whatIsEmptyOrUnsafeSendsNothing()
    {
        WireDialogue wire;
        wire.client->GetFaxState({});
        wire.client->SendReturnReceipt({});
        wire.client->SendFaxFile({}, QCoreApplication::applicationFilePath());
        wire.client->SendFaxFile("h", wire.Path("missing.tif"));
        wire.client->GetFax(0, "../evil", wire.Folder());
        wire.client->GetFax(0, {}, wire.Folder());
        wire.client->GetFax(0, "A1", {});
        QVERIFY(wire.socket.aWrites.isEmpty());
        QVERIFY(wire.IsIdle());
    }

    void framesAreBuiltAndCut()
    {
        QCOMPARE(Frames::FormC(0x01020304, "xyz"), QByteArray("\x0c\0\0\0\x04\x03\x02\x01xyz", 11));
        QCOMPARE(Frames::GoOn(), "GoOn");
        QCOMPARE(Frames::ReadLong("abc"), 0);
        QCOMPARE(Frames::ReadLong(QByteArray("\xfe\xff\xff\xff", 4)), -2);
        QCOMPARE(Frames::BehindLength("abc"), QByteArray());
        QCOMPARE(Frames::Percent(0, 0), 0);
        QCOMPARE(Frames::Percent(5, 200), 2); // halves to even
    }
};

QTEST_GUILESS_MAIN(tst_Frames)
#include "tst_Frames.moc"
