#include "server/LoginTest.h"

#include "core/Globals.h"
#include "core/SettingsFile.h"
#include "server/wire/clsClient.h"

#include <QTest>

void LoginTest::SetUp()
{
    profile = std::make_unique<Profile>(Profile::NoOptionRow);
    fakes = std::make_unique<FakePorts>();
    fakes->folders.strRoot = profile->Root();
    owner = std::make_unique<FakeLoginOwner>();
    Global().objDB->CloseDB();
    MakeLogin();
}

void LoginTest::TearDown()
{
    QVERIFY(!fakes->pump.IsStuck());
    login.reset();
    owner.reset();
    fakes.reset();
    profile.reset();
}

void LoginTest::Set(const QString &section, const QString &key, const QString &value)
{
    QVERIFY(WriteIniValue(section, key, value, Global().strIniFile));
}

void LoginTest::EnterAnna(const QString &columns, const QString &values)
{
    Set("General", "ServerIP", "faxhost:9000");
    Set("General", "LastUser", "anna");
    Set("UserList", "TotalCount", "1");
    Set("UserList", "1", "anna");
    Set("anna", "UserFolder", Global().strAppDataPath + "anna/");
    if (columns.isEmpty())
        return;
    Global().objDB->OpenDB(UserProfile::DatabaseFile(Global().strUserFolder));
    Profile::Execute("Insert Into Option(" + columns + ") Values(" + values + ")");
    Global().objDB->CloseDB();
}

void LoginTest::MakeLogin(bool fromMainWindow)
{
    owner->bMainLoaded = fromMainWindow;
    login = std::make_unique<Login>(fakes->ports, *owner, fromMainWindow);
}

void LoginTest::Fill(const QString &account)
{
    login->SetServer("faxhost:9000");
    login->SetAccount(account);
    login->SetPassword("secret");
}

void LoginTest::ConnectToServer()
{
    Fill();
    login->ClickLogin();
    Server().AcceptConnection();
}

bool LoginTest::IsReady() const
{
    const LoginControls &controls = Controls();
    return controls.bLoginEnabled && controls.bBrowseEnabled && controls.bExitEnabled &&
           controls.bInputEnabled && controls.strLoginCaption == "&Login" && controls.strLoginTag.isEmpty() &&
           !login->IsLoggingIn();
}
