#include "fixtures/LoginTest.h"
#include "server/wire/Frames.h"

#include <QDir>
#include <QFileInfo>
#include <QTest>

class tst_UserProfile : public QObject, private LoginTest
{
    Q_OBJECT

private slots:
    void init() { SetUp(); }
    void cleanup() { TearDown(); }

    void firstLoginRunsOnTheDefaults()
    {
        EnterAnna();
        Set("bert", "ServerID", "S1");
        UserProfile user(fakes->ports);
        QVERIFY(user.Save(Entry("bert")));
        QVERIFY(user.IsOpen());
        for (const QString &box :
             {Global().strInputBoxPath, Global().strOutputBoxPath, Global().strHeaderPath})
            QVERIFY2(QFileInfo(box).isDir(), qPrintable(box));
        QCOMPARE(Global().strUserName, "bert");
        QCOMPARE(Global().strServerID, "S1");
        QCOMPARE(UserProfile::KnownAccounts(), (QStringList{"anna", "bert"}));
        // The row is written behind the reading.
        QVERIFY(Global().CheckFax == 1 && Global().MarkFax == 0 && Global().Copies == "1");
    }

    void laterLoginKeepsTheChoices()
    {
        EnterAnna();
        const QString typed = Frames::Md5Digest("new");
        struct Case
        {
            LoginEntry entry;
            QString strRow; // AutoLogin, RememberPwd, Pwd
        };
        const QList<Case> cases = {{{"anna", "new", false, false, false}, "0,0,old"},
                                   {{"anna", "new", false, true, false}, "0,1," + typed},
                                   {{"anna", typed, true, true, false}, "0,9,old"},
                                   {{"anna", typed, true, true, true}, "1,9,old"},
                                   {{"anna", "new", false, true, true}, "1,1," + typed}};
        for (const Case &test : cases) {
            UserProfile user(fakes->ports);
            QVERIFY(user.Open(UserProfile::FindUserFolder("anna")));
            Profile::Execute("Delete From Option");
            Profile::Execute("Insert Into Option(AutoLogin,RememberPwd,Pwd) Values(9,9,'old')");
            QVERIFY(user.Save(test.entry));
            QCOMPARE(Profile::Values("Select AutoLogin||','||RememberPwd||','||Pwd From Option"),
                     QStringList{test.strRow});
            QCOMPARE(Setting("anna", "UserPwd"), test.entry.bRememberPwd ? typed : QString());
            Global().objDB->CloseDB();
        }
    }

    void folderIsTakenWhereItWasOrIgnored()
    {
        EnterAnna();
        Set("anna", "UserFolder", profile->Root() + "\\moved\\store"); // no slash at its end
        UserProfile user(fakes->ports);
        QVERIFY(user.Save(Entry("anna")));
        QCOMPARE(Global().strUserFolder, profile->Root() + "/moved/store/");
        QVERIFY(QFileInfo(profile->Root() + "/moved/store/Database/MFax_Client.mfd").isFile());
        QCOMPARE(UserProfile::KnownAccounts(), QStringList{"anna"});

        for (const char *unusable : {"store/anna", "/tmp/../etc/", "C:\\Velmar\\anna\\"}) {
            Set("anna", "UserFolder", unusable);
            QCOMPARE(UserProfile::FindUserFolder("anna"), QString());
        }
    }

    void storedSettingsComeIntoTheGlobals()
    {
        EnterAnna();
        UserProfile user(fakes->ports);
        QVERIFY(user.Open(UserProfile::FindUserFolder("anna")));
        Profile::Execute(
            "Insert Into Option(SwitchTo,Connected,MarkFax,AutoPrint,Company,ShowInTaskBar,CloseToTray) "
            "Values('True',-1,'7s','False','O~$@~Neil',0,1)");
        QVERIFY(user.Save(Entry("anna")));
        const Globals &global = Global();
        QVERIFY(global.SwitchTo && global.Connected && global.CloseToTray);
        QVERIFY(!global.AutoPrint && !global.ShowInTaskBar);
        QCOMPARE(global.MarkFax, 7);
        QCOMPARE(global.Company, "O'Neil");
        QCOMPARE(global.CheckFax, 0); // a column that was never written is no default
    }

    void headersOfTheUserAreKept()
    {
        EnterAnna();
        QDir().mkpath(profile->Root() + "/program/Header");
        const QString installed = profile->Root() + "/program/Header/General.GNI";
        QVERIFY(WriteTestFile(installed, "ours"));
        QVERIFY(QFile::setPermissions(installed, QFile::ReadOwner));
        QVERIFY(WriteTestFile(profile->Root() + "/program/Header/Compact.GNI", "ours"));
        QVERIFY(WriteTestFile(Global().strAppDataPath + "anna/Header/compact.gni", "the user's"));
        UserProfile user(fakes->ports);
        QVERIFY(user.Save(Entry("anna")));
        QCOMPARE(ReadTestFile(Global().strHeaderPath + "General.GNI"), "ours");
        QVERIFY(QFile::permissions(Global().strHeaderPath + "General.GNI") & QFile::WriteOwner);
        QCOMPARE(QDir(Global().strHeaderPath).entryList(QDir::Files, QDir::Name | QDir::IgnoreCase),
                 (QStringList{"compact.gni", "General.GNI"}));
    }

    void unfinishedDatabaseIsNoProfile()
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

    void usableAccounts()
    {
        for (const char *account : {"anna", "Anna B. O'Neil", "a@b.example", "Jürgen", "a;b=c"})
            QVERIFY2(UserProfile::IsUsableAccount(QString::fromUtf8(account)), account);
        for (const char *account : {"", ".", "..", "a..b", "a/b", "a\\b", "[a", "a]", " a", "a ", ".a", "a.",
                                    "General", "USERLIST", "a\tb", "a\x7f", "\"a\"",
                                    "a\xe2\x80\xa8"
                                    "b"})
            QVERIFY2(!UserProfile::IsUsableAccount(QString::fromUtf8(account)), account);
        QVERIFY(!UserProfile::IsUsableAccount(QString(200, 'a')));
    }

private:
    /// A login of an account whose password is "secret".
    static LoginEntry Entry(const QString &account, bool remember = false, bool autoLogin = false)
    {
        return {account, "secret", false, remember, autoLogin};
    }
};

QTEST_GUILESS_MAIN(tst_UserProfile)
#include "tst_UserProfile.moc"
