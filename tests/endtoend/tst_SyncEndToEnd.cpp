#include "core/Globals.h"
#include "endtoend/FetchTest.h"
#include "fixtures/Profile.h"
#include "fixtures/TestTable.h"

#include <QTimer>

namespace {

constexpr int lQuickTicks = 4; ///< six ticks of the watchdog in 1.5 s
const QString strAll = "2 60 1 1";

QStringList Contacts(int count, const QString &name)
{
    QStringList lines;
    for (int i = 0; i < count; ++i)
        lines.append(QString("c%1\t%2 %1\tFirm\tSales\tClerk\t555%1\t\t\tmail%1@firm.example\t\tg1")
                         .arg(QString::number(i), name));
    return lines;
}

/// How many public groups, contacts, departments and users are stored.
QString Stored()
{
    return Profile::Value("Select (Select count(*) From ContactGroup Where isPublic=1) || ' ' || (Select "
                          "count(*) From Contacts Where isPublic=1) || ' ' || (Select count(*) From "
                          "UserDepartment) || ' ' || (Select count(*) From UserList)");
}

QString Versions()
{
    return Profile::Value("Select ContactGroupVersion || ' ' || ContactVersion || ' ' || UserListVersion || "
                          "' ' || DepartmentVersion From Option");
}

const QString strNone = "-1 -1 -1 -1";

struct SyncTest : FetchTest
{
    bool BeginWithAddresses(const QByteArray &script = {})
    {
        return server.Publish("groups", {"g1\tSuppliers\t", "g2\tCustomers\t"}) &&
               server.Publish("contacts", Contacts(60, "O'Neil")) &&
               server.Publish("departments", {"d1\tOffice\t"}) && Begin({}, script, lQuickTicks);
    }
    QStringList Boxes() const { return client->prompts.Texts(); }
    int TreeLoads() const { return client->desktop.addressTree.lLoads; }
};

} // namespace

/// The public addresses against the real server.
class tst_SyncEndToEnd : public QObject
{
    Q_OBJECT

private slots:
    void onlyWhatChangedIsFetched()
    {
        SyncTest test;
        QVERIFY(test.BeginWithAddresses("on 5 pieces 700 0"));
        QVERIFY(test.Synchronise());
        QCOMPARE(Stored(), strAll);
        QCOMPARE(Profile::Value("Select Name From Contacts Where ID='c7'"), QString("O~$@~Neil 7"));
        QCOMPARE(test.client->progress.Rows(),
                 QList<ProgressRow>({{"imgOK", "Syncing public contacts: 100%", ""}}));
        QCOMPARE(test.TreeLoads(), 1);
        const QString versions = Versions();

        Profile::Execute("Delete From ContactGroup");
        Profile::Execute("Delete From Contacts");
        QVERIFY(test.Synchronise());
        QCOMPARE(Stored(), QString("0 0 1 1"));
        QCOMPARE(test.TreeLoads(), 1);

        QVERIFY(test.server.Publish("contacts", Contacts(3, "New")) && test.server.AddUser("ben", "ben"));
        QVERIFY(test.Synchronise());
        QCOMPARE(Stored(), QString("0 3 1 2"));
        QCOMPARE(test.TreeLoads(), 2);
        QVERIFY(Versions() != versions);
        QCOMPARE(test.Boxes(), QStringList());
        QCOMPARE(test.client->progress.Text(), QString("Tasks were completed successfully."));
    }

    void faultKeepsTheVersions_data()
    {
        const TestTable<QString, QStringList> row{"stored", "boxes"};
        const QString noContacts = "2 0 1 1", unexpected = "Unexpected data received from server!";
        row("on 3 once abort", "0 0 0 0", {"Failed to synchronize contacts."});
        row("on 4 once close-after 20", "0 60 1 1", {});
        row("on 5 once close-after 3000", noContacts, {});
        row("on 13 once close-after 20", "2 60 1 0", {});
        row("on 14 once close-after 12", "2 60 0 1", {});
        row("on 5 once refuse 22", noContacts, {});
        row("on 5 once fields 9", noContacts, {unexpected});
        row("on 5 once delay 2500", noContacts, {});
        row("on 5 once stall-after 3000", noContacts, {});
        row("on 5 once declare 100", noContacts, {unexpected});
    }

    void faultKeepsTheVersions()
    {
        SyncTest test;
        QVERIFY(test.BeginWithAddresses(QTest::currentDataTag()));
        QVERIFY(test.Synchronise());
        QTEST(Stored(), "stored");
        QTEST(test.Boxes(), "boxes");
        QCOMPARE(Versions(), strNone);

        QVERIFY(test.Synchronise());
        QCOMPARE(Stored(), strAll);
        QVERIFY(test.client->session.IsConnected() && !Versions().contains("-1"));
    }

    void anotherServerIsAskedAbout()
    {
        SyncTest test;
        QVERIFY(test.BeginWithAddresses(
            "on 3 #2+ short \"OK\\r\\n1\\09\\01\\01\\0Firm\\05\\03\\0Other\\r\\n\"\non 5 #2+ long "
            "\"OK\\r\\n\""));
        QVERIFY(test.Synchronise());
        const QString versions = Versions(), identity = Global().strServerID;
        test.client->prompts.aAnswers = {mbAnswerNo, mbAnswerYes};
        QVERIFY(test.Synchronise());
        QCOMPARE(test.client->desktop.mainWindow.lUnloaded, 1);
        QVERIFY(Versions() == versions && Stored() == strAll && Global().strServerID == identity);

        QVERIFY(test.Synchronise());
        QCOMPARE(test.client->desktop.mainWindow.lUnloaded, 1);
        QCOMPARE(Global().strServerID, QString("Other"));
        QVERIFY(Versions().startsWith("1 9 1 1") && Stored().section(' ', 1, 1) == "0");
        QCOMPARE(test.Boxes().size(), 2);
    }

    void cancelEndsTheRun()
    {
        SyncTest test;
        QVERIFY(test.BeginWithAddresses("on 5 once stall-after 3000"));
        QTimer user;
        connect(&user, &QTimer::timeout, this, [&] {
            if (test.client->progress.IsSyncMode())
                test.client->progress.ClickCancelOperate();
        });
        user.start(10);
        QVERIFY(test.Synchronise());
        QVERIFY(!test.client->session.IsConnected());
        QVERIFY(Stored() == "2 0 0 0" && Versions() == strNone && test.Boxes().isEmpty());
        user.stop();
        QVERIFY(test.Synchronise());
        QCOMPARE(Stored(), strAll);
    }
};

QTEST_GUILESS_MAIN(tst_SyncEndToEnd)
#include "tst_SyncEndToEnd.moc"
