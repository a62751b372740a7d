#include "programs/client/ClientProgram.h"

#include "core/ports/Ports.h"
#include "platform/QtEventPump.h"
#include "programs/client/MainStage.h"
#include "server/forms/frmUserLogin.h"

#include <QApplication>

#include <algorithm>

ClientProgram::ClientProgram(Ports &ports, QtEventPump &pump)
    : ports(ports)
    , pump(pump)
{
}

ClientProgram::~ClientProgram()
{
    delete loginWindow;
}

void ClientProgram::ShowLogin()
{
    loginWindow = new frmUserLogin(ports, *this);
    loginWindow->setAttribute(Qt::WA_DeleteOnClose);
    loginWindow->show();
}

void ClientProgram::Close()
{
    if (mainStage)
        mainStage->Close();
    else if (!loginWindow || !loginWindow->close()) // it stays while it asks about the profile
        pump.Quit();
}

bool ClientProgram::IsMainWindowLoaded() const
{
    return mainStage && mainStage->IsLoaded();
}

MainStage &ClientProgram::LoadMainStage()
{
    if (!mainStage)
        mainStage = std::make_unique<MainStage>(ports, *this, [this] { pump.Quit(); });
    return *mainStage;
}

void ClientProgram::MarkOnline(bool online, bool usedDigest)
{
    Session &session = LoadMainStage().ServerSession();
    session.bOnline = online;
    session.bDigestUsed = usedDigest;
}

void ClientProgram::TakeClient(std::shared_ptr<clsClient> client)
{
    LoadMainStage().ServerSession().SetClient(std::move(client));
}

void ClientProgram::ShowMainWindow()
{
    LoadMainStage().Show();
}

void ClientProgram::CloseLogin()
{
    if (loginWindow)
        loginWindow->CloseWindow();
    if (!mainStage)
        pump.Quit();
}

int ClientProgram::Count() const
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    return static_cast<int>(std::count_if(windows.begin(), windows.end(), [this](const QWidget *window) {
        if (IsMainWindowLoaded() && window == &mainStage->Window())
            return true; // in the tray, too
        return window->isVisible() &&
               (window->windowType() == Qt::Window || window->windowType() == Qt::Dialog);
    }));
}

bool ClientProgram::LoginFromMainWindow()
{
    frmUserLogin form(ports, *this, true, &mainStage->Window());
    loginWindow = &form;
    form.exec();
    return form.CheckUserLogin();
}

void ClientProgram::OpenComposer(const QString &faxFile)
{
    ComposerStart start;
    start.strOutsideFile = faxFile;
    LoadMainStage().Compose(start);
}

void ClientProgram::EditDraft(const QString &faxID)
{
    ComposerStart start;
    start.strFaxID = faxID;
    LoadMainStage().Compose(start);
}
