#include "core/Globals.h"
#include "core/SettingsFile.h"
#include "endtoend/ClientUnderTest.h"
#include "fixtures/OldDatabases.h"
#include "fixtures/Profile.h"
#include "fixtures/TrialServer.h"
#include "server/PasswordChange.h"

#include <QDir>
#include <QtTest>

namespace {

const QString refusedText = "User name or password incorrect";
const QString unsavedText = "Failed to save user profiles.";

} // namespace

/// Each test starts with an untouched data folder; the server is one for all that need no script.
class tst_LoginEndToEnd : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(server.AddUser("anna", "anna"));
        QVERIFY(server.Start());
    }

    void init() { home = std::make_unique<QTemporaryDir>(); }

    void firstLoginLaysTheProfileOut()
    {
        ClientUnderTest client(Home());
        QVERIFY(client.LogIn(Anna()));
        QCOMPARE(client.prompts.Texts(), QStringList());
        QVERIFY(client.session.bOnline && client.session.IsConnected() && !client.session.bDigestUsed);
        QCOMPARE(QDir(DataPath() + "anna").entryList(QDir::Dirs | QDir::NoDotAndDotDot),
                 (QStringList{"Database", "Header", "InputBox", "OutputBox"}));
        QCOMPARE(QDir(DataPath() + "anna/Database").entryList({"*.mfd", "*.new*"}, QDir::Files),
                 QStringList{"MFax_Client.mfd"});
        QCOMPARE(Profile::Values("Select MarkFax From Option"), QStringList{"5"});
        QCOMPARE(ReadIniValue("General", "LastUser", Global().strIniFile), "anna");
        client.session.CancelTransfer();
        ClientUnderTest otherCase(Home()); // is the same account
        QVERIFY(otherCase.LogIn({server.Address(), "ANNA", "anna"}));
        QCOMPARE(QDir(DataPath()).entryList(QDir::Dirs | QDir::NoDotAndDotDot), QStringList{"anna"});
    }

    void automaticLoginNeedsNoClick()
    {
        QVERIFY(ClientUnderTest(Home()).LogIn(Anna(true, true)));
        ClientUnderTest client(Home());
        QVERIFY(client.StartLogin());
        QVERIFY(client.session.bDigestUsed && client.session.IsConnected());
        QCOMPARE(client.prompts.Texts(), QStringList());
    }

    void refusalIsToldAndTheWindowStays()
    {
        TrialServer crowded; // one user has taken the only place
        for (const QString account : {"anna", "bert", "locked"})
            QVERIFY(crowded.AddUser(account, account, account == "locked"));
        QVERIFY(crowded.Start({}, {}, {"--max-users", "1"}));
        ClientUnderTest holder(home->filePath("elsewhere"));
        QVERIFY(holder.LogIn({crowded.Address(), "bert", "bert"}));
        const std::pair<QString, QString> refusals[] = {{"locked", "The user is locked by Administrator"},
                                                        {"bert", "The user has logged in."},
                                                        {"anna", "Too many users logged in already."}};
        for (const auto &[account, text] : refusals) {
            ClientUnderTest client(Home());
            QVERIFY(!client.LogIn({crowded.Address(), account, account}));
            QCOMPARE(client.prompts.Texts(), QStringList{text});
            VerifyReady(client.LastControls());
            QVERIFY(!QFileInfo::exists(DataPath() + account));
        }
    }

    void serverThatFailsIsToldAndTheWindowStays_data()
    {
        QTest::addColumn<QByteArray>("script");
        QTest::addColumn<QString>("text");
        const QString lost =
            "Failed to connect to Velmar server at: %1\nOr client has exceeded max number of "
            "allowed connections.";
        QTest::newRow("another protocol")
            << QByteArray(R"(on greeting once short "Welcome\r\n1.5\r\n")")
            << "The desired communication protocol is version 1.6 beta\nPlease install the newest version of "
               "Velmar Client";
        QTest::newRow("reset behind the greeting") << QByteArray("on greeting once answer abort") << lost;
        QTest::newRow("no greeting") << QByteArray("on greeting once silence") << lost;
        QTest::newRow("no answer to the login") << QByteArray("on 1 once silence") << lost;
        QTest::newRow("refusal of one line")
            << QByteArray("on 1 once short \"ERR\"") << "Unexpected data received from server!|" + lost;
    }

    void serverThatFailsIsToldAndTheWindowStays()
    {
        QFETCH(QByteArray, script);
        QFETCH(QString, text);
        TrialServer failing;
        QVERIFY(failing.AddUser("anna", "anna") && failing.Start(script));
        constexpr int timerFactor = 20; // 10 s of silence pass in half a second
        ClientUnderTest client(Home(), timerFactor);
        QVERIFY(!client.LogIn({failing.Address()}));
        QCOMPARE(client.prompts.Texts().join('|'), text.replace("%1", failing.Address()));
        VerifyReady(client.LastControls());
        QVERIFY(!QFileInfo::exists(DataPath() + "anna"));
        QVERIFY(client.LogIn({failing.Address()}));
    }

    void offlineWorkNeedsTheStoredPassword()
    {
        ClientUnderTest stranger(Home());
        QVERIFY(!stranger.WorkOffline(Anna()));
        QCOMPARE(stranger.prompts.Texts(),
                 QStringList{"The user had not logged in yet, cannot work offline."});
        QVERIFY(ClientUnderTest(Home()).LogIn(Anna(true)));

        ClientUnderTest client(Home());
        QVERIFY(!client.WorkOffline({{}, "anna", "wrong"}));
        QCOMPARE(client.prompts.Texts(), QStringList{refusedText});
        VerifyReady(client.LastControls());
        QVERIFY(!Global().objDB->IsOpen());
        QVERIFY(client.WorkOffline(Anna()));
        QVERIFY(!client.session.bOnline && !client.session.HasClient());
    }

    void changedPasswordCountsAtOnce()
    {
        QVERIFY(server.AddUser("carl", "first"));
        const LoginChoice carl{server.Address(), "carl", "first", true};
        {
            ClientUnderTest client(Home());
            QVERIFY(client.LogIn(carl));
            PasswordChange window(
                client.ports, [&](auto old, auto next) { return client.runs.ChangePassword(old, next); },
                [&] { return client.session.IsConnected(); });
            QCOMPARE(window.ClickOK("wrong", "second", "second"), PasswordChange::resInvalidOld);
            QCOMPARE(window.ClickOK("first", "second", "second"), PasswordChange::resChanged);
            QCOMPARE(client.prompts.Texts(), (QStringList{"The password you gave is incorrect.",
                                                          "Your new password has been saved."}));
            client.session.CancelTransfer();
            QVERIFY(client.session.ConnectToServer()); // with the new digest
        }
        ClientUnderTest client(Home());
        QVERIFY(!client.LogIn(carl));
        QCOMPARE(client.prompts.Texts(), QStringList{refusedText});
        ClientUnderTest later(Home());
        QVERIFY(later.RunLogin([](Login &login) { login.ClickLogin(); })); // remembered, and new
        QVERIFY(later.session.bDigestUsed && later.prompts.aBoxes.isEmpty());
    }

    void oldDatabaseIsUpgradedAtTheLogin()
    {
        QVERIFY(ClientUnderTest(Home()).LogIn(Anna()));
        QVERIFY(QFile::remove(DatabasePath()));
        OldDatabases::Make(DatabasePath(), "2.5");
        ClientUnderTest client(Home());
        client.prompts.aAnswers = {mbAnswerNo};
        QVERIFY(!client.LogIn(Anna()));
        VerifyReady(client.LastControls());
        QVERIFY(!client.session.HasClient() && !Global().objDB->IsOpen());
        QCOMPARE(OldDatabases::Value(DatabasePath(), "Select Version From DatabaseVersion"), "2.5");

        client.prompts.aAnswers = {mbAnswerYes};
        QVERIFY(client.LogIn(Anna())); // the server has let go of the refused connection
        QCOMPARE(client.prompts.Texts().last(), "Upgrade 2.5 to 2.8 succefully!");
        QCOMPARE(client.StoredIds(), QStringList{"R1"});
        QCOMPARE(client.StoredIds("SendFax"), QStringList{"S1"});
        client.session.CancelTransfer();
        VerifyNextLogin();
    }

    void damagedDatabaseIsToldAndKept()
    {
        QVERIFY(ClientUnderTest(Home()).LogIn(Anna(true)));
        const QByteArray rubbish(8192, 'x');
        QVERIFY(WriteTestFile(DatabasePath(), rubbish));

        ClientUnderTest client(Home());
        QVERIFY(!client.LogIn(Anna()));
        QCOMPARE(
            client.prompts.Texts(),
            (QStringList{"Failed to load user anna's configuration. \nIf this problem still remains, please "
                         "reinstall Velmar Client",
                         "Invalid or incompatible user profile(Can not get Version)."}));
        VerifyReady(client.LastControls());
        QVERIFY(!client.WorkOffline(Anna()));
        QCOMPARE(client.prompts.Texts().last(), "Failed to load user data: anna");
        QCOMPARE(ReadTestFile(DatabasePath()), rubbish);
        QVERIFY(QFile::remove(DatabasePath()));
        VerifyNextLogin();
    }

    void impossibleFoldersAreTold()
    {
        for (const QString blocked : {"", "anna", "anna/Database", "anna/InputBox"}) {
            const QString file = QDir::cleanPath(DataPath() + blocked);
            QVERIFY(QDir().mkpath(QFileInfo(file).path()));
            QVERIFY(WriteTestFile(file, "a file where the folder should be"));
            ClientUnderTest client(Home());
            QVERIFY(!client.LogIn(Anna()));
            const QString noFolder = "Cannot create working directory:\n" + DataPath();
            QCOMPARE(client.prompts.Texts(), QStringList{blocked.isEmpty() ? noFolder : unsavedText});
            QVERIFY(!client.session.HasClient());
            QVERIFY(QFile::remove(file));
        }
        VerifyNextLogin();
    }

    void brokenSettingsFileDoesNotHinderTheLogin_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("rubbish") << QByteArray("\xff\xfe[[[\0==\r[General\n[anna]\nUserFolder", 35);
        QTest::newRow("entries without sense")
            << QByteArray("[UserList]\nTotalCount=2147483647\n1=../anna\n[anna]\nUserFolder=../../etc\n");
        QTest::newRow("a folder in its place") << QByteArray();
    }

    void brokenSettingsFileDoesNotHinderTheLogin()
    {
        QFETCH(QByteArray, content);
        QVERIFY(ClientUnderTest(Home()).LogIn(Anna()));
        const QString settings = DataPath() + "FaxSetup.ini";
        QVERIFY(QFile::remove(settings));
        QVERIFY(content.isEmpty() ? QDir().mkpath(settings + "/blocked") : WriteTestFile(settings, content));

        ClientUnderTest client(Home());
        QVERIFY(client.LogIn(Anna()));
        QCOMPARE(client.prompts.Texts(), content.isEmpty() ? QStringList{unsavedText} : QStringList());
        QVERIFY(client.session.IsConnected());
        QCOMPARE(Global().objDB->DataBasePath(), DatabasePath());
    }

private:
    LoginChoice Anna(bool remember = false, bool autoLogin = false) const
    {
        return {server.Address(), "anna", "anna", remember, autoLogin};
    }
    QString Home() const { return home->path(); }
    QString DataPath() const { return Home() + "/common/Velmar/"; }
    QString DatabasePath() const { return DataPath() + "anna/Database/MFax_Client.mfd"; }
    /// The window can be used for another try.
    static void VerifyReady(const LoginControls &controls);
    /// Whatever happened before, the account can be used now.
    void VerifyNextLogin() const;

    TrialServer server;
    std::unique_ptr<QTemporaryDir> home;
};

void tst_LoginEndToEnd::VerifyReady(const LoginControls &controls)
{
    QVERIFY(controls.bLoginEnabled && controls.bBrowseEnabled && controls.bExitEnabled);
    QVERIFY(controls.bInputEnabled);
    QCOMPARE(controls.strLoginCaption, "&Login");
    QCOMPARE(controls.strLoginTag, QString());
    QVERIFY2(controls.strLoginTip.startsWith("Ready"), qPrintable(controls.strLoginTip));
}

void tst_LoginEndToEnd::VerifyNextLogin() const
{
    ClientUnderTest client(Home());
    QVERIFY2(client.LogIn(Anna()), qPrintable(client.prompts.Texts().join('|')));
    QVERIFY(client.session.IsConnected());
    QCOMPARE(Profile::Value("Select Version From DatabaseVersion"), "2.8");
}

QTEST_GUILESS_MAIN(tst_LoginEndToEnd)
#include "tst_LoginEndToEnd.moc"
