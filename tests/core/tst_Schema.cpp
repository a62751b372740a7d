#include "core/Globals.h"
#include "core/RaisedError.h"
#include "core/Schema.h"
#include "fakes/FakePorts.h"
#include "fixtures/OldDatabases.h"
#include "fixtures/Profile.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <csignal>

#include <sys/resource.h>

namespace {

const QString strInvalid = "Invalid or incompatible user profile.";

/// While it lives, no file grows beyond the limit: a disk that is full.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limit{bytes, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &before); }

private:
    rlimit before{};
};

} // namespace

class tst_Schema : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void newDatabaseHoldsFoldersAndVersionOnly();
    void existingFileIsNotCreatedAgain();
    void pathlessOpenTakesTheProgramFolder();
    void unusableFileIsNotOpened_data();
    void unusableFileIsNotOpened();
    void missingFileIsNotMade();
    void fileWithOneTableOpensButHasNoVersion();
    void groupTableNeedsNoName();
    void unsuitableVersionIsRefused_data();
    void unsuitableVersionIsRefused();
    void upgradeKeepsRowsAndBackup_data();
    void upgradeKeepsRowsAndBackup();
    void secondUpgradeOfTheDayMakesASecondBackup();
    void declinedUpgradeTouchesNothing_data();
    void declinedUpgradeTouchesNothing();
    void failedStepLeavesTheOldFile_data();
    void failedStepLeavesTheOldFile();
    void backupOnFullDiskStopsTheUpgrade();

private:
    QString Path() const { return folder->path() + "/MFax_Client.mfd"; }
    bool CheckFile();
    QStringList Backups() const
    {
        return QDir(folder->path()).entryList({"*.bak*"}, QDir::Files, QDir::Name);
    }

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<FakePorts> fakes;
};

void tst_Schema::init()
{
    Global() = {};
    folder = std::make_unique<QTemporaryDir>();
    fakes = std::make_unique<FakePorts>();
}

void tst_Schema::cleanup()
{
    Global() = {};
}

/// What a login does with an existing file.
bool tst_Schema::CheckFile()
{
    return OpenClientDatabase(Path()) && CheckDatabaseVersion(fakes->message, fakes->clock);
}

void tst_Schema::newDatabaseHoldsFoldersAndVersionOnly()
{
    QVERIFY(CreateClientDatabase(Path()));
    QCOMPARE(Global().strDataBasePath, Path());
    QVERIFY(CheckDatabaseV28());
    QVERIFY(!CheckDatabaseV25()); // has all that those versions ask for, but another number
    QVERIFY(!CheckDatabaseV10());
    const QString folders =
        "Select Folder_ID || Folder_Name || Folder_Type || parentID || isSystem From FaxFolder";
    QCOMPARE(
        Profile::Values(folders),
        (QStringList{"1000My Faxes001", "1001Incoming101", "1002Draft 201", "1003Outgoing301", "1004Sent401",
                     "1005Sending510041", "1006Sent610041", "1007Undelivered610041", "1008Recyle Bin701"}));
    QCOMPARE(Profile::Value("Select count(*) From Option"), "0");
    QCOMPARE(Profile::Values("Select Version From DatabaseVersion"), QStringList{"2.8"});
    Profile::Execute("Insert Into ReceiveFax(Fax_ID) Values('A')");
    QVERIFY_THROWS_EXCEPTION(RaisedError, Profile::Execute("Insert Into ReceiveFax(Fax_ID) Values('A')"));
}

void tst_Schema::existingFileIsNotCreatedAgain()
{
    QVERIFY(CreateClientDatabase(Path()));
    Profile::Execute("Insert Into UserList(ID) Values('7')");
    QVERIFY(!CreateClientDatabase(Path()));
    QVERIFY(!CreateClientDatabase(folder->path() + "/missing/MFax_Client.mfd"));
    QVERIFY(OpenClientDatabase(Path()));
    QCOMPARE(Profile::Value("Select count(*) From UserList"), "1");
    QCOMPARE(Profile::Value("Select count(*) From FaxFolder"), "9");
}

void tst_Schema::pathlessOpenTakesTheProgramFolder()
{
    QDir(folder->path()).mkdir("Database");
    const QString path = folder->path() + "/Database/MFax_Client.mfd";
    QVERIFY(CreateClientDatabase(path));
    QVERIFY(OpenClientDatabase({}, folder->path()));
    QVERIFY(OpenClientDatabase({}, folder->path() + "/"));
    QCOMPARE(Global().strDataBasePath, path);
}

void tst_Schema::unusableFileIsNotOpened_data()
{
    QTest::addColumn<QByteArray>("contents");
    const QTemporaryDir newFolder;
    const QString path = newFolder.filePath("MFax_Client.mfd");
    QVERIFY(CreateClientDatabase(path));
    Global().objDB->CloseDB();
    const QByteArray whole = ReadTestFile(path);
    QVERIFY(whole.size() > 8192);
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("garbage") << QByteArray(20000, 'x');
    QTest::newRow("header and nothing else") << whole.first(100);
    QTest::newRow("half a page") << whole.first(2000);
    QTest::newRow("garbage behind the header") << whole.first(100) + QByteArray(whole.size() - 100, '\xff');
}

void tst_Schema::unusableFileIsNotOpened()
{
    QFETCH(QByteArray, contents);
    QVERIFY(WriteTestFile(Path(), contents));
    QVERIFY(!OpenClientDatabase(Path()));
    QString version = "none";
    QVERIFY(!GetDatabaseVersion(version));
    QVERIFY(!CheckDatabaseV28());
    Global().objDB->CloseDB();
    QCOMPARE(ReadTestFile(Path()), contents);
}

void tst_Schema::missingFileIsNotMade()
{
    QVERIFY(!OpenClientDatabase(Path()));
    QVERIFY(!OpenClientDatabase(folder->path()));
    QVERIFY(!QFile::exists(Path()));
    QVERIFY(!CheckDatabaseVersion(fakes->message, fakes->clock));
}

void tst_Schema::fileWithOneTableOpensButHasNoVersion()
{
    OldDatabases::Execute(Path(), "Create Table FaxFolder(Folder_ID TEXT)");
    QVERIFY(OpenClientDatabase(Path()));
    QString version;
    QVERIFY(!GetDatabaseVersion(version));
    QVERIFY(!CheckDatabaseVersion(fakes->message, fakes->clock));
    QCOMPARE(fakes->prompts.Texts(),
             QStringList{"Invalid or incompatible user profile(Can not get Version)."});
    QCOMPARE(fakes->prompts.aBoxes.first().lFlags, mbCritical);
}

// The probe of that table lacks a comma; files that rely on it are in use.
void tst_Schema::groupTableNeedsNoName()
{
    QVERIFY(CreateClientDatabase(Path()));
    Profile::Execute("Alter Table ContactGroup Drop Column Group_name");
    QVERIFY(CheckFile());
}

void tst_Schema::unsuitableVersionIsRefused_data()
{
    QTest::addColumn<QString>("schema");
    QTest::addColumn<QString>("change");
    QTest::addColumn<QString>("text");
    const QString setVersion = "Update DatabaseVersion Set Version='%1'";
    QTest::newRow("2.7") << "2.5" << setVersion.arg("2.7")
                         << "Unsupported database version: 2.7 , need version: 2.8";
    QTest::newRow("placeholder") << "2.5" << setVersion.arg("%2")
                                 << "Unsupported database version: %2 , need version: 2.8";
    QTest::newRow("2.8 over 2.5") << "2.5" << setVersion.arg("2.8") << strInvalid;
    QTest::newRow("2.5 over 1.0") << "1.0" << setVersion.arg("2.5") << strInvalid;
    QTest::newRow("no row") << "2.5"
                            << "Delete From DatabaseVersion"
                            << "Invalid or incompatible user profile(Can not get Version).";
    QTest::newRow("table gone") << "2.5"
                                << "Drop Table UserList" << strInvalid;
    QTest::newRow("queue gone") << "2.5"
                                << "Drop Table ReceiptQueue" << strInvalid;
}

void tst_Schema::unsuitableVersionIsRefused()
{
    QFETCH(QString, schema);
    QFETCH(QString, change);
    QFETCH(QString, text);
    OldDatabases::Make(Path(), schema);
    OldDatabases::Execute(Path(), change);
    QVERIFY(!CheckFile());
    QCOMPARE(fakes->prompts.Texts(), QStringList{text});
    QVERIFY(Backups().isEmpty());
}

void tst_Schema::upgradeKeepsRowsAndBackup_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("success");
    QTest::newRow("1.0") << "1.0"
                         << "Upgrade database version 1.0 to 2.8 succefully!";
    QTest::newRow("2.5") << "2.5"
                         << "Upgrade 2.5 to 2.8 succefully!";
}

void tst_Schema::upgradeKeepsRowsAndBackup()
{
    QFETCH(QString, version);
    QFETCH(QString, success);
    OldDatabases::Make(Path(), version);
    fakes->prompts.aAnswers = {mbAnswerYes};
    QVERIFY(CheckFile());

    const QString question = "The Velmar Client will upgrade your database from version " + version +
                             " to 2.8 automatically.\nPlease confirm, or press Cancel to exit.";
    QCOMPARE(fakes->prompts.Texts(), (QStringList{question, success}));
    QCOMPARE(fakes->prompts.aBoxes.first().lFlags, mbYesNo + mbQuestion);
    QCOMPARE(fakes->prompts.aBoxes.last().lFlags, mbInformation);

    QVERIFY(OpenClientDatabase(Path())); // reads what is on disk
    QVERIFY(CheckDatabaseV28());
    QCOMPARE(Profile::Value("Select title From ReceiveFax Where Fax_ID='R1'"), "Old offer");
    QCOMPARE(Profile::Value("Select title From SendFax Where fax_ID='S1'"), "Old order");

    QCOMPARE(Backups(), QStringList{"MFax_Client.mfd  V" + version + "  20240131 Bk1.bak"});
    const QString backup = folder->filePath(Backups().first());
    QCOMPARE(OldDatabases::Value(backup, "Select Version From DatabaseVersion"), version);
    QCOMPARE(OldDatabases::Value(backup, "Select title From SendFax"), "Old order");
    QCOMPARE(OldDatabases::Value(backup, "PRAGMA integrity_check"), "ok");
}

void tst_Schema::secondUpgradeOfTheDayMakesASecondBackup()
{
    for (int round = 0; round < 2; ++round) {
        OldDatabases::Make(Path(), "2.5");
        fakes->prompts.aAnswers = {mbAnswerYes};
        QVERIFY(CheckFile());
        Global().objDB->CloseDB();
        QVERIFY(QFile::remove(Path()));
    }
    QCOMPARE(Backups(), (QStringList{"MFax_Client.mfd  V2.5  20240131 Bk1.bak",
                                     "MFax_Client.mfd  V2.5  20240131 Bk2.bak"}));
}

void tst_Schema::declinedUpgradeTouchesNothing_data()
{
    QTest::addColumn<long>("answer");
    QTest::newRow("No") << long(mbAnswerNo);
    QTest::newRow("box not shown") << long(mbAnswerOK);
}

void tst_Schema::declinedUpgradeTouchesNothing()
{
    QFETCH(long, answer);
    OldDatabases::Make(Path(), "2.5");
    const QByteArray before = ReadTestFile(Path());
    fakes->prompts.aAnswers = {answer};
    QVERIFY(!CheckFile());
    Global().objDB->CloseDB();
    QCOMPARE(ReadTestFile(Path()), before);
    QVERIFY(Backups().isEmpty());
}

void tst_Schema::failedStepLeavesTheOldFile_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("obstacle");
    QTest::newRow("1.0") << "1.0"
                         << "Create Table ReceiptQueue(Fax_ID TEXT)";
    QTest::newRow("2.5") << "2.5"
                         << "Alter Table SendFax Add sSndReserve3";
}

void tst_Schema::failedStepLeavesTheOldFile()
{
    QFETCH(QString, version);
    QFETCH(QString, obstacle);
    OldDatabases::Make(Path(), version);
    OldDatabases::Execute(Path(), obstacle);
    const QByteArray before = ReadTestFile(Path());
    fakes->prompts.aAnswers = {mbAnswerYes};
    QVERIFY(!CheckFile());
    QCOMPARE(fakes->prompts.aBoxes.last().strText, "Upgrade version " + version + " Failed.");
    QCOMPARE(fakes->prompts.aBoxes.last().lFlags, mbExclamation);

    Global().objDB->CloseDB();
    QCOMPARE(ReadTestFile(Path()), before);
    QVERIFY(OpenClientDatabase(Path()));
    QCOMPARE(CheckDatabaseV10() || CheckDatabaseV25(), true);
    QCOMPARE(Backups().size(), 1);
}

void tst_Schema::backupOnFullDiskStopsTheUpgrade()
{
    OldDatabases::Make(Path(), "2.5");
    const QByteArray before = ReadTestFile(Path());
    fakes->prompts.aAnswers = {mbAnswerYes};
    {
        const FullDisk full(before.size() - 1);
        QVERIFY(!CheckFile());
    }
    Global().objDB->CloseDB();
    QCOMPARE(ReadTestFile(Path()), before);
    QVERIFY(Backups().isEmpty());
}

QTEST_GUILESS_MAIN(tst_Schema)
#include "tst_Schema.moc"
