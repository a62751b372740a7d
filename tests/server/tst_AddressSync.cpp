#include "addressbook/AddressTree.h"
#include "core/Globals.h"
#include "core/RaisedError.h"
#include "fixtures/SessionBench.h"
#include "fixtures/TestTable.h"
#include "server/AddressList.h"
#include "server/AddressStore.h"
#include "server/AddressSync.h"
#include "server/ReturnReceipts.h"

#include <optional>

namespace {

/// A reply of these lines; "|" stands for the NUL between the fields.
QByteArray Reply(QByteArray lines)
{
    return "OK\r\n" + lines.replace('|', '\0').replace("\n", "\r\n");
}

const QByteArray abVersions = Reply("1|2|3|4|O'Neil Ltd|5|3|S1\n"), abConfig = Reply("1|150|0\n");

/// The profile has the server's versions but for one.
void SetVersions(const QString &different)
{
    Profile::Execute("Update Option Set ContactGroupVersion='1.0',ContactVersion=' 2',UserListVersion='03',"
                     "DepartmentVersion='4',Company=''");
    Profile::Execute(QString("Update Option Set %1='-1'").arg(different));
}

bool IsAdvanced()
{
    return Profile::Value("Select ContactGroupVersion || ContactVersion || UserListVersion || "
                          "DepartmentVersion From Option") == "1234";
}

struct NoisyTree final : AddressTree
{
    explicit NoisyTree(const SessionBench &bench)
        : bench(bench)
    {
    }
    void LoadAddressBook() override { bench.Socket().FeedShort("OK\r\n"); }

    const SessionBench &bench;
};

struct Bench : SessionBench
{
    Bench() { Global().strServerID = "S1"; }

    ReturnReceipts receipts{ports.ports, session, desktop.mailbox, desktop.mainWindow};
    AddressSync sync{ports.ports, {session, progress, receipts, desktop.addressTree}};
};

} // namespace

/// The comparison of the versions and the writing of the lists, against a server that the test plays.
class tst_AddressSync : public QObject
{
    Q_OBJECT

private slots:
    void init() { bench.emplace(); }
    void cleanup()
    {
        QVERIFY(!bench->ports.pump.IsStuck() && !bench->session.bIsSocketBusy);
        Global().objDB->Begin(); // raises when a transaction was left open
        bench.reset();
    }

    void equalVersionsFetchNoList()
    {
        SetVersions("Company");
        bench->SayShort(abVersions).SayShort(abConfig);
        bench->sync.GetServerData();
        QCOMPARE(bench->Heard(), QStringList({"3", "18"}));
        QVERIFY(IsAdvanced());
        QCOMPARE(bench->progress.Bar(), 100);
        QCOMPARE(bench->desktop.addressTree.lLoads, 0);
        QCOMPARE(Profile::Value("Select Company || lServerTryInterval || lServerResendTimes From Option"),
                 QString("O~$@~Neil Ltd53"));
        QCOMPARE(Global().Company, QString("O'Neil Ltd"));
        QVERIFY(Global().lServerTryInterval == 5 && Global().lServerResendTimes == 3);
    }

    void replyReplacesTheList_data()
    {
        const TestTable<QString, QByteArray, QString, bool, QStringList> row{"column", "reply", "rows",
                                                                             "advanced", "boxes"};
        const QString groups = "ContactGroupVersion", contacts = "ContactVersion",
                      departments = "DepartmentVersion", users = "UserListVersion";
        const QByteArray nine = "|a'b|c|d|e|f|g|h|i|j|";
        const QString failed = "Failed to synchronize contacts.\n";
        const QStringList unexpected("Unexpected data received from server!");
        row("groups", groups, Reply("g'1|Sales|s\ng2|B|\n"), "own/Own/|g~$@~1/Sales/s|g2/B/", true, {});
        row("group with an apostrophe", groups, Reply("g1|Sales|s\ng2|O~$@~Neil|\ng3|C|\n"),
            "own/Own/|g1/Sales/s", false, {failed + "A name of the server holds an apostrophe: O'Neil"});
        row("contacts", contacts, Reply("c1" + nine + "g1\nc2" + nine + "|more\n"),
            "own/Own/|c1/a~$@~b/g1|c2/a~$@~b/", true, {});
        row("no contacts", contacts, Reply(""), "own/Own/", true, {});
        row("short contact", contacts, Reply("c1" + nine + "g1\nc2|short\nc3" + nine + "g1\n"),
            "own/Own/|c1/a~$@~b/g1", false, unexpected);
        row("ids that cannot be used", contacts,
            Reply("c1" + nine + "g1\nc'2" + nine + "g1\nc3" + nine + "g'1\nown" + nine + "\nc4" + nine +
                  "\n"),
            "own/Own/|c1/a~$@~b/g1|c4/a~$@~b/", false,
            {failed + "Entries of the server that were left out, since their ids cannot be used or are not "
                      "unique: 3."});
        row("contacts cut on the way", contacts, Reply("c1" + nine + "g1\nc2|a"), "own/Own/|old/Old/", false,
            unexpected);
        row("refused contacts", contacts, "ERR\r\n20\r\n", "own/Own/|old/Old/", false, {});
        row("departments", departments, Reply("d1|Of'fice|x\n"), "d1/Of~$@~fice/x", true, {});
        row("users", users, Reply("u1|anna|An'na|d1\nu2|b|B|\n"), "u1/anna/An~$@~na|u2/b/B", true, {});
        row("short user", users, Reply("u1|a|A|d\nu2|b\n"), "u1/a/A", false, unexpected);
    }

    void replyReplacesTheList()
    {
        QFETCH(QString, column);
        QFETCH(QByteArray, reply);
        const QMap<QString, QString> tables{
            {"ContactGroupVersion", "Group_ID || '/' || Group_Name || '/' || Group_Detail From ContactGroup"},
            {"ContactVersion", "ID || '/' || Name || '/' || Group_ID From Contacts"},
            {"DepartmentVersion", "ID || '/' || Department || '/' || Describle From UserDepartment"},
            {"UserListVersion", "ID || '/' || LoginName || '/' || UserName From UserList"}};
        Profile::Execute("Insert Into ContactGroup(Group_ID,Group_Name,Group_Detail,isPublic) "
                         "Values('own','Own','',0),('old','Old','',1)");
        Profile::Execute("Insert Into Contacts(ID,Name,Group_ID,isPublic) "
                         "Values('own','Own','',0),('old','Old','',1)");
        Profile::Execute("Insert Into UserDepartment Values('old','Old','')");
        Profile::Execute("Insert Into UserList Values('old','Old','','')");
        SetVersions(column);
        bench->SayShort(abVersions).SayLong(reply).SayShort(abConfig);
        bench->sync.GetServerData();
        QTEST(Profile::Values("Select " + tables[column] + " Order By rowid").join('|'), "rows");
        QTEST(IsAdvanced(), "advanced");
        QCOMPARE(bench->progress.Text(), QString("Completed."));
        QTEST(bench->ports.prompts.Texts(), "boxes");
        QCOMPARE(bench->desktop.addressTree.lLoads, column.startsWith("Contact") ? 1 : 0);
    }

    void unaskedReplyBetweenTheCommandsIsNoList()
    {
        SetVersions("ContactVersion");
        NoisyTree tree(*bench);
        AddressSync sync(bench->ports.ports, {bench->session, bench->progress, bench->receipts, tree});
        bench->SayShort(abVersions).SayLong(Reply("c1|a|b|c|d|e|f|g|h|i|g1\n")).SayShort(abConfig);
        sync.GetServerData();
        QCOMPARE(Profile::Value("Select ID From Contacts"), QString("c1"));
        QVERIFY(IsAdvanced());
    }

    void stoppedListKeepsItsRows()
    {
        int rows = 0;
        const AddressListReply cut(Reply("d1|A|\nd2|B|\nd3|C|\n"));
        const auto result =
            AddressStore::Replace(AddressList::Departments(), cut.Lines(), [&] { return ++rows < 3; });
        QCOMPARE(result, AddressStore::Result::Stopped);
        QCOMPARE(Profile::Value("Select group_concat(ID) From UserDepartment"), QString("d1,d2"));
    }

    void brokenVersionReply()
    {
        const QString failed = "Failed to synchronize contacts.";
        const QString noNumber = "The server's default settings hold no number: \"%1\"";
        const std::pair<QByteArray, QString> rows[] = {
            // the box, or what is raised
            {"ERR\r\n20\r\n", failed},
            {Reply("1|2|3|4|Firm|5|3\n"), failed},
            {Reply("1|2|3|4|Firm||3|S1\n"), noNumber.arg("")},
            {Reply("1|2|3|4|Firm|5|3,Pwd='x'|S1\n"), noNumber.arg("3,Pwd='x'")}};
        for (const auto &[reply, expected] : rows) {
            bench.emplace();
            QString error;
            bench->SayShort(reply);
            try {
                bench->sync.GetServerData();
                error = bench->ports.prompts.Texts().join('|');
            } catch (const RaisedError &raised) {
                error = raised.Description();
            }
            QCOMPARE(error, expected);
            QCOMPARE(bench->Heard(), QStringList("3"));
            QCOMPARE(Profile::Value("Select count(*) From Option Where Company is null And Pwd is null"),
                     "1");
        }
    }

private:
    std::optional<Bench> bench;
};

QTEST_GUILESS_MAIN(tst_AddressSync)
#include "tst_AddressSync.moc"
