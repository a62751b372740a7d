#include "endtoend/ClientUnderTest.h"

#include "core/Globals.h"
#include "core/Utilities.h"

#include <QElapsedTimer>

ClientUnderTest::ClientUnderTest(const QString &home, int timerFactor)
    : timers(timerFactor)
{
    folders.strRoot = home;
    Global() = Globals();
    Global().strAppDataPath = GetSpecialFolder(folders, 35) + QStringLiteral("Velmar/");
    Global().strIniFile = Global().strAppDataPath + QStringLiteral("FaxSetup.ini");
}

ClientUnderTest::~ClientUnderTest()
{
    Global() = Globals();
}

bool ClientUnderTest::LogIn(const LoginChoice &choice)
{
    return RunLogin([&](Login &login) {
        login.SetServer(choice.strServer);
        login.SetAccount(choice.strAccount);
        login.SetPassword(choice.strPassword);
        login.SetRememberPwd(choice.bRememberPwd);
        login.SetAutoLogin(choice.bAutoLogin);
        login.ClickLogin();
    });
}

bool ClientUnderTest::WorkOffline(const LoginChoice &choice)
{
    return RunLogin([&](Login &login) {
        login.SetAccount(choice.strAccount);
        login.SetPassword(choice.strPassword);
        login.ClickBrowse();
    });
}

bool ClientUnderTest::StartLogin()
{
    return RunLogin([](Login &) {});
}

bool ClientUnderTest::RunLogin(const std::function<void(Login &)> &act)
{
    bLoginClosed = false;
    Login login(ports, *this, bMainLoaded);
    if (!login.Load())
        return false;
    login.Activate();
    act(login);
    WaitUntil([&] { return bLoginClosed || !login.IsLoggingIn(); }, 30000);
    lastControls = login.Controls();
    return bLoginClosed;
}

bool ClientUnderTest::WaitUntil(const std::function<bool()> &condition, int milliseconds)
{
    QElapsedTimer elapsed;
    elapsed.start();
    while (!condition() && elapsed.elapsed() < milliseconds)
        pump.RunSlice(10);
    return condition();
}

QStringList ClientUnderTest::ProgressRows() const
{
    QStringList rows;
    for (const ProgressRow &row : progress.Rows())
        rows.append(row.strFile + QLatin1Char(' ') + row.strState);
    return rows;
}

QStringList ClientUnderTest::StoredIds(const QString &table) const
{
    QStringList found;
    const auto statement =
        Global().objDB->SelectEx(QStringLiteral("Select Fax_ID From %1 Order By Fax_ID").arg(table));
    while (statement->Next())
        found.append(statement->Text(0));
    return found;
}

void ClientUnderTest::MarkOnline(bool online, bool usedDigest)
{
    session.bOnline = online;
    session.bDigestUsed = usedDigest;
}

void ClientUnderTest::ShowMainWindow()
{
    bMainLoaded = true;
    session.bAcceptReplies = true;
}
