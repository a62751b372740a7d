#include "core/Globals.h"
#include "core/SettingsFile.h"
#include "fakes/FakePorts.h"
#include "fixtures/Profile.h"
#include "server/UserProfile.h"
#include "server/wire/Frames.h"

#include <QDir>
#include <QFileInfo>
#include <QTest>

class tst_UserProfile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void firstLoginLaysTheProfileOut();
    void firstLoginWithBothBoxesMakesTwoRows();
    void laterLoginKeepsTheChoices_data();
    void laterLoginKeepsTheChoices();
    void accountIsFoundWithoutRegardToCase();
    void movedFolderIsMadeAgainWhereItWas();
    void storedSettingsComeIntoTheGlobals();
    void folderThatCannotBeUsedIsIgnored_data();
    void folderThatCannotBeUsedIsIgnored();
    void hugeAccountCountIsMended();
    void headersOfTheUserAreKept();
    void otherDatabaseVersionClosesTheProfile();
    void unwritableFolderIsTold();
    void unfinishedDatabaseIsNoProfile();
    void usableAccounts_data();
    void usableAccounts();

private:
    /// A login of an account whose password is "secret".
    static LoginEntry Entry(const QString &account, bool remember = false, bool autoLogin = false)
    {
        return {account, "secret", false, remember, autoLogin};
    }
    static QString Setting(const QString &section, const QString &key)
    {
        return ReadIniValue(section, key, Global().strIniFile);
    }
    static void Set(const QString &section, const QString &key, const QString &value)
    {
        QVERIFY(WriteIniValue(section, key, value, Global().strIniFile));
    }
    /// Enters "anna", whose database the fixture has made, as a known account.
    static void EnterAnna(const QString &entry = "anna")
    {
        Set("UserList", "TotalCount", "1");
        Set("UserList", "1", entry);
        Set(entry, "UserFolder", Global().strAppDataPath + "anna/");
    }

    std::unique_ptr<Profile> profile;
    std::unique_ptr<FakePorts> fakes;
};

void tst_UserProfile::init()
{
    profile = std::make_unique<Profile>(Profile::NoOptionRow);
    fakes = std::make_unique<FakePorts>();
    fakes->folders.strRoot = profile->Root();
    Global().objDB->CloseDB();
}

void tst_UserProfile::cleanup()
{
    fakes.reset();
    profile.reset();
}

void tst_UserProfile::firstLoginLaysTheProfileOut()
{
    EnterAnna();
    Set("bert", "ServerID", "S1");
    UserProfile user(fakes->ports);
    QVERIFY(user.Save(Entry("bert")));
    QVERIFY(user.IsOpen());

    const QString folder = Global().strAppDataPath + "bert/";
    QCOMPARE(Global().strUserFolder, folder);
    QCOMPARE(Global().strDataBasePath, folder + "Database/MFax_Client.mfd");
    for (const QString &box : {Global().strInputBoxPath, Global().strOutputBoxPath, Global().strHeaderPath})
        QVERIFY2(QFileInfo(box).isDir(), qPrintable(box));
    QCOMPARE(Global().strUserName, "bert");
    QCOMPARE(Global().strPwdDigest, Frames::Md5Digest("secret"));
    QCOMPARE(Global().strServerID, "S1");
    QCOMPARE(UserProfile::KnownAccounts(), (QStringList{"anna", "bert"}));
    QCOMPARE(Setting("bert", "UserFolder"), folder);
    QCOMPARE(Setting("bert", "UserPwd"), "");
    QCOMPARE(Setting("General", "LastUser"), "bert");

    // The row is written behind the reading: the first session runs on the defaults.
    QCOMPARE(Profile::Values("Select MarkFax From Option"), QStringList{"5"});
    QCOMPARE(Profile::Value("Select ContactVersion From Option"), "-1");
    QCOMPARE(Profile::Value("Select Pwd From Option"), "");
    QCOMPARE(Global().CheckFax, 1);
    QCOMPARE(Global().MarkFax, 0);
    QCOMPARE(Global().Copies, "1");
    QCOMPARE(Global().Deepness, 200);
    QCOMPARE(Global().ServerDeepness, 150);
    QCOMPARE(Global().ContactVersion, 0);
    QVERIFY(Global().ShowInTaskBar);
}

void tst_UserProfile::firstLoginWithBothBoxesMakesTwoRows()
{
    UserProfile user(fakes->ports);
    QVERIFY(user.Save(Entry("bert", true, true)));
    QCOMPARE(Profile::Values("Select AutoLogin From Option"), (QStringList{"1", ""}));
    QCOMPARE(Profile::Values("Select RememberPwd From Option"), (QStringList{"", "1"}));
    QCOMPARE(Profile::Values("Select Distinct Pwd From Option"), QStringList{Frames::Md5Digest("secret")});
    QCOMPARE(Setting("bert", "UserPwd"), Frames::Md5Digest("secret"));
    QCOMPARE(Setting("bert", "AutoLogin"), "1");
}

void tst_UserProfile::laterLoginKeepsTheChoices_data()
{
    QTest::addColumn<bool>("remember");
    QTest::addColumn<bool>("autoLogin");
    QTest::addColumn<bool>("digest");
    QTest::addColumn<QString>("row"); // AutoLogin, RememberPwd, Pwd
    QTest::newRow("none") << false << false << false << "0,0,old";
    QTest::newRow("remember, typed") << true << false << false << "0,1,new";
    QTest::newRow("remember, stored digest") << true << false << true << "0,9,old";
    QTest::newRow("automatic, stored digest") << true << true << true << "1,9,old";
    QTest::newRow("automatic, typed") << true << true << false << "1,1,new";
}

void tst_UserProfile::laterLoginKeepsTheChoices()
{
    QFETCH(bool, remember);
    QFETCH(bool, autoLogin);
    QFETCH(bool, digest);
    EnterAnna();
    const QString newDigest = Frames::Md5Digest("new");
    UserProfile user(fakes->ports);
    QVERIFY(user.Open(UserProfile::FindUserFolder("anna")));
    Profile::Execute("Insert Into Option(AutoLogin,RememberPwd,Pwd) Values(9,9,'old')");
    QVERIFY(user.Save({"anna", digest ? newDigest : "new", digest, remember, autoLogin}));
    QFETCH(QString, row);
    QCOMPARE(Profile::Values("Select AutoLogin||','||RememberPwd||','||Pwd From Option"),
             QStringList{row.replace("new", newDigest)});
    QCOMPARE(Setting("anna", "UserPwd"), remember ? newDigest : QString());
}

void tst_UserProfile::accountIsFoundWithoutRegardToCase()
{
    EnterAnna("Anna");
    UserProfile user(fakes->ports);
    QVERIFY(user.Save(Entry("aNNA")));
    QCOMPARE(Global().strUserFolder, Global().strAppDataPath + "anna/");
    QCOMPARE(Setting("UserList", "TotalCount"), "1");
    QVERIFY(!QFileInfo::exists(Global().strAppDataPath + "aNNA"));
}

void tst_UserProfile::movedFolderIsMadeAgainWhereItWas()
{
    EnterAnna();
    Set("anna", "UserFolder", profile->Root() + "\\moved\\store"); // no slash at its end
    UserProfile user(fakes->ports);
    QVERIFY(user.Save(Entry("anna")));
    QCOMPARE(Global().strUserFolder, profile->Root() + "/moved/store/");
    QVERIFY(QFileInfo(profile->Root() + "/moved/store/Database/MFax_Client.mfd").isFile());
    QCOMPARE(UserProfile::KnownAccounts(), QStringList{"anna"});
}

void tst_UserProfile::storedSettingsComeIntoTheGlobals()
{
    EnterAnna();
    UserProfile user(fakes->ports);
    QVERIFY(user.Open(UserProfile::FindUserFolder("anna")));
    Profile::Execute("Insert Into Option(SwitchTo,Connected,MarkFax,AutoPrint,Copies,Company,ShowInTaskBar,"
                     "CloseToTray,lServerResendTimes,SoundPath) Values('True',-1,'7s','False','2',"
                     "'O~$@~Neil',0,1,3,'/a.wav')");
    QVERIFY(user.Save(Entry("anna")));
    const Globals &global = Global();
    QVERIFY(global.SwitchTo && global.Connected && global.CloseToTray);
    QVERIFY(!global.AutoPrint && !global.ShowInTaskBar);
    QCOMPARE(global.MarkFax, 7);
    QCOMPARE(global.Copies, "2");
    QCOMPARE(global.Company, "O'Neil");
    QCOMPARE(global.lServerResendTimes, 3);
    QCOMPARE(global.SoundPath, "/a.wav");
    QCOMPARE(global.CheckFax, 0); // a column that was never written is no default
}

void tst_UserProfile::folderThatCannotBeUsedIsIgnored_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("relative") << "store/anna";
    QTest::newRow("parent") << "/tmp/../etc/";
    QTest::newRow("other system's") << "C:\\Velmar\\anna\\";
}

void tst_UserProfile::folderThatCannotBeUsedIsIgnored()
{
    QFETCH(QString, folder);
    EnterAnna();
    Set("anna", "UserFolder", folder);
    QCOMPARE(UserProfile::FindUserFolder("anna"), QString());
}

void tst_UserProfile::hugeAccountCountIsMended()
{
    EnterAnna();
    Set("UserList", "TotalCount", "2147483647");
    QCOMPARE(UserProfile::KnownAccounts(), QStringList{"anna"});
    QVERIFY(UserProfile(fakes->ports).Save(Entry("bert")));
    QCOMPARE(Setting("UserList", "TotalCount"), "2");
    QCOMPARE(UserProfile::KnownAccounts(), (QStringList{"anna", "bert"}));
}

void tst_UserProfile::headersOfTheUserAreKept()
{
    EnterAnna();
    QDir().mkpath(profile->Root() + "/program/Header");
    QVERIFY(WriteTestFile(profile->Root() + "/program/Header/General.GNI", "ours"));
    QVERIFY(WriteTestFile(profile->Root() + "/program/Header/Compact.GNI", "ours"));
    QVERIFY(WriteTestFile(Global().strAppDataPath + "anna/Header/Compact.GNI", "the user's"));
    UserProfile user(fakes->ports);
    QVERIFY(user.Save(Entry("anna")));
    QCOMPARE(ReadTestFile(Global().strHeaderPath + "General.GNI"), "ours");
    QCOMPARE(ReadTestFile(Global().strHeaderPath + "Compact.GNI"), "the user's");
    QVERIFY(!QFileInfo::exists(Global().strHeaderPath + "Detailed.GNI"));
}

void tst_UserProfile::otherDatabaseVersionClosesTheProfile()
{
    EnterAnna();
    UserProfile user(fakes->ports);
    QVERIFY(user.Open(UserProfile::FindUserFolder("anna")));
    Profile::Execute("Update DatabaseVersion Set Version='2.7'");
    QVERIFY(!user.Save(Entry("anna")));
    QCOMPARE(fakes->prompts.Texts(), QStringList{"Unsupported database version: 2.7 , need version: 2.8"});
    QVERIFY(!user.IsOpen());
    QVERIFY(!Global().objDB->IsOpen());
}

void tst_UserProfile::unwritableFolderIsTold()
{
    QVERIFY(WriteTestFile(Global().strAppDataPath + "bert", "a file where the folder should be"));
    UserProfile user(fakes->ports);
    QVERIFY(!user.Save(Entry("bert")));
    QCOMPARE(fakes->prompts.Texts(), QStringList{"Failed to save user profiles."});
    QVERIFY(!user.IsOpen());
}

void tst_UserProfile::unfinishedDatabaseIsNoProfile()
{
    const QString folder = Global().strAppDataPath + "bert/Database/";
    QVERIFY(QDir().mkpath(folder + "MFax_Client.mfd.new/blocked"));
    QVERIFY(!UserProfile(fakes->ports).Save(Entry("bert")));
    QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList());
    QVERIFY(QDir(folder + "MFax_Client.mfd.new").removeRecursively());
    QVERIFY(WriteTestFile(folder + "MFax_Client.mfd.new", "what a crash left"));
    QVERIFY(UserProfile(fakes->ports).Save(Entry("bert")));
    QCOMPARE(QDir(folder).entryList(QDir::Files),
             (QStringList{"MFax_Client.mfd", "MFax_Client.mfd-journal"}));
}

void tst_UserProfile::usableAccounts_data()
{
    QTest::addColumn<QString>("account");
    QTest::addColumn<bool>("usable");
    for (const char *account : {"anna", "Anna B. O'Neil", "a@b.example", "Jürgen", "a;b=c"})
        QTest::newRow(account) << QString::fromUtf8(account) << true;
    for (const char *account : {"", ".", "..", "a..b", "a/b", "a\\b", "[a", "a]", " a", "a ", ".a", "a.",
                                "General", "USERLIST", "a\tb", "a\x7f", "\"a\""})
        QTest::newRow(account) << QString::fromUtf8(account) << false;
    QTest::newRow("too long") << QString(200, 'a') << false;
    QTest::newRow("line separator") << QString("a") + QChar(0x2028) + "b" << false;
}

void tst_UserProfile::usableAccounts()
{
    QFETCH(QString, account);
    QTEST(UserProfile::IsUsableAccount(account), "usable");
}

QTEST_GUILESS_MAIN(tst_UserProfile)
#include "tst_UserProfile.moc"
