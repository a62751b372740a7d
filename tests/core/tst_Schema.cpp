#include "core/Globals.h"
#include "core/RaisedError.h"
#include "core/Schema.h"
#include "fakes/FakePorts.h"
#include "fixtures/OldDatabases.h"
#include "fixtures/Profile.h"
#include "fixtures/SmallDisk.h"
#include "fixtures/TestTable.h"

#include <QDir>
#include <QFile>

class tst_Schema : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        Global() = {};
        folder = std::make_unique<QTemporaryDir>();
        fakes = std::make_unique<FakePorts>();
        fakes->prompts.aAnswers = {mbAnswerYes};
    }

    void cleanup() { Global() = {}; }

    void newDatabaseHoldsFoldersAndVersionOnly()
    {
        QVERIFY(CreateClientDatabase(Path()));
        QVERIFY(CheckDatabaseV28());
        QVERIFY(!CheckDatabaseV25()); // has all that those versions ask for, but another number
        QCOMPARE(Profile::Values(
                     "Select Folder_ID || Folder_Name || Folder_Type || parentID || isSystem From FaxFolder"),
                 (QStringList{"1000My Faxes001", "1001Incoming101", "1002Draft 201", "1003Outgoing301",
                              "1004Sent401", "1005Sending510041", "1006Sent610041", "1007Undelivered610041",
                              "1008Recyle Bin701"}));
        QCOMPARE(Profile::Value("Select count(*) From Option"), "0");
        Profile::Execute("Insert Into ReceiveFax(Fax_ID) Values('A')");
        QVERIFY_THROWS_EXCEPTION(RaisedError, Profile::Execute("Insert Into ReceiveFax(Fax_ID) Values('A')"));
        QVERIFY(!CreateClientDatabase(Path())); // and leaves what is there
        QVERIFY(OpenClientDatabase(Path()));
        QCOMPARE(Profile::Value("Select count(*) From ReceiveFax"), "1");
        // The probe of that table lacks a comma; files that rely on it are in use.
        Profile::Execute("Alter Table ContactGroup Drop Column Group_name");
        QVERIFY(CheckFile());
    }

    void unusableFileIsNotOpened()
    {
        QVERIFY(CreateClientDatabase(Path()));
        Global().objDB->CloseDB();
        const QByteArray whole = ReadTestFile(Path());
        QVERIFY(whole.size() > 8192);
        for (const QByteArray &contents :
             {QByteArray(), QByteArray(20000, 'x'), whole.first(100), whole.first(2000),
              whole.first(100) + QByteArray(whole.size() - 100, '\xff')}) {
            QVERIFY(WriteTestFile(Path(), contents));
            QVERIFY(!OpenClientDatabase(Path()));
            Global().objDB->CloseDB();
            QCOMPARE(ReadTestFile(Path()), contents);
        }
        const QString missing = folder->path() + "/none.mfd";
        QVERIFY(!OpenClientDatabase(missing));
        QVERIFY(!QFile::exists(missing));
        QVERIFY(!CreateClientDatabase(folder->path() + "/missing/MFax_Client.mfd"));
    }

    void unsuitableVersionIsRefused()
    {
        const QString setVersion = "Update DatabaseVersion Set Version='%1'";
        const QString invalid = "Invalid or incompatible user profile.";
        const std::tuple<QString, QString, QString> rows[] = {
            {"2.5", setVersion.arg("%2"), "Unsupported database version: %2 , need version: 2.8"},
            {"2.5", setVersion.arg("2.8"), invalid},
            {"1.0", "Drop Table UserList", invalid},
            {"2.5", "Delete From DatabaseVersion", invalid.chopped(1) + "(Can not get Version)."}};
        for (const auto &[schema, change, text] : rows) {
            OldDatabases::Make(Path(), schema);
            OldDatabases::Execute(Path(), change);
            QVERIFY(!CheckFile());
            Global().objDB->CloseDB();
            QVERIFY(QFile::remove(Path()));
            QCOMPARE(fakes->prompts.Texts().last(), text);
        }
        QCOMPARE(fakes->prompts.aBoxes.size(), 4);
        QVERIFY(Backups().isEmpty());
    }

    void upgradeKeepsRowsAndBackup_data()
    {
        const TestTable<QString> row{"success"};
        row("1.0", "Upgrade database version 1.0 to 2.8 succefully!");
        row("2.5", "Upgrade 2.5 to 2.8 succefully!");
    }

    void upgradeKeepsRowsAndBackup()
    {
        QFETCH(QString, success);
        const QString version = QTest::currentDataTag();
        const QString name = "MFax_Client.mfd  V" + version + "  20240131 Bk%1.bak";
        const QString first = folder->filePath(name.arg(1)), second = folder->filePath(name.arg(2));
        QVERIFY(WriteTestFile(first, "the day's first"));
        OldDatabases::Make(Path(), version);
        QVERIFY(CheckFile());
        QCOMPARE(fakes->prompts.Texts(),
                 (QStringList{"The Velmar Client will upgrade your database from version " + version +
                                  " to 2.8 automatically.\nPlease confirm, or press Cancel to exit.",
                              success}));
        QCOMPARE(fakes->prompts.aBoxes.first().lFlags, mbYesNo + mbQuestion);

        QVERIFY(OpenClientDatabase(Path())); // reads what is on disk
        QVERIFY(CheckDatabaseV28());
        QCOMPARE(Profile::Value("Select title From ReceiveFax Where Fax_ID='R1'"), "Old offer");
        QCOMPARE(Profile::Value("Select title From SendFax Where fax_ID='S1'"), "Old order");

        QCOMPARE(Backups(), (QStringList{name.arg(1), name.arg(2)}));
        QCOMPARE(ReadTestFile(first), "the day's first");
        QCOMPARE(OldDatabases::Value(second, "Select Version From DatabaseVersion"), version);
        QCOMPARE(OldDatabases::Value(second, "Select title From SendFax"), "Old order");
    }

    void stoppedUpgradeLeavesTheOldFile_data()
    {
        const TestTable<QString, QString, long> row{"version", "obstacle", "answer"};
        row("step from 1.0", "1.0", "Create Table ReceiptQueue(Fax_ID TEXT)", mbAnswerYes);
        row("step from 2.5", "2.5", "Alter Table SendFax Add sSndReserve3", mbAnswerYes);
        row("no room for the backup", "2.5", {}, mbAnswerYes);
        row("box not shown", "2.5", {}, mbAnswerOK);
    }

    void stoppedUpgradeLeavesTheOldFile()
    {
        QFETCH(QString, version);
        QFETCH(QString, obstacle);
        QFETCH(long, answer);
        OldDatabases::Make(Path(), version);
        if (!obstacle.isEmpty())
            OldDatabases::Execute(Path(), obstacle);
        const QByteArray before = ReadTestFile(Path());
        fakes->prompts.aAnswers = {answer};
        {
            const SmallDisk disk(obstacle.isEmpty() ? before.size() - 1 : RLIM_INFINITY);
            QVERIFY(!CheckFile());
        }
        const QStringList failure{"Upgrade version " + version + " Failed."};
        QCOMPARE(fakes->prompts.Texts().mid(1), answer == mbAnswerYes ? failure : QStringList());
        Global().objDB->CloseDB();
        QCOMPARE(ReadTestFile(Path()), before);
        QCOMPARE(Backups().size(), obstacle.isEmpty() ? 0 : 1);
    }

private:
    QString Path() const { return folder->path() + "/MFax_Client.mfd"; }
    QStringList Backups() const
    {
        return QDir(folder->path()).entryList({"*.bak*"}, QDir::Files, QDir::Name);
    }
    /// What a login does with an existing file.
    bool CheckFile()
    {
        return OpenClientDatabase(Path()) && CheckDatabaseVersion(fakes->message, fakes->clock);
    }

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<FakePorts> fakes;
};

QTEST_GUILESS_MAIN(tst_Schema)
#include "tst_Schema.moc"
