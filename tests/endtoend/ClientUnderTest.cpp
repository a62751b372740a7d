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
    bLoginClosed = false;
    Login login(ports, *this, bMainLoaded);
    if (!login.Load())
        return false;
    login.Activate();
    login.SetServer(choice.strServer);
    login.SetAccount(choice.strAccount);
    login.SetPassword(choice.strPassword);
    login.ClickLogin();
    WaitUntil([&] { return bLoginClosed || !login.IsLoggingIn(); }, 30000);
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
