// The part of the login that talks with the server.
#include "core/Globals.h"
#include "core/Message.h"
#include "core/RaisedError.h"
#include "core/Schema.h"
#include "core/SettingsFile.h"
#include "core/Utilities.h"
#include "core/ports/Ports.h"
#include "core/ports/Socket.h"
#include "core/ports/Timer.h"
#include "server/Login.h"
#include "server/LoginReply.h"
#include "server/wire/clsClient.h"

#include <QCoreApplication>

void Login::Connect()
{
    const ServerAddress address = ServerAddress::FromText(controls.strServer);
    Global().strServerIP = address.strHost;
    Global().strServerPort = address.strPort;
    stage = stgConnecting;
    std::unique_ptr<Socket> socket = ports.sockets.Create();
    if (!socket) {
        Restore(QCoreApplication::translate("server", "Ready..."));
        ShowText(QCoreApplication::translate(
                     "server", "Cannot initialize WinSock, please reinstall the Velmar Client."),
                 mbCritical);
        return;
    }
    lastClient = std::move(sockClient);
    sockClient = std::make_shared<clsClient>(std::move(socket), ports);
    WatchClient();
    sockClient->Connect(address.strHost, QString::number(ToNumber(address.strPort)));
}

void Login::WatchClient()
{
    connect(sockClient.get(), &clsClient::Connected, this, &Login::sockClient_Connected);
    connect(sockClient.get(), &clsClient::ConnectClosed, this, &Login::sockClient_Error);
    connect(sockClient.get(), &clsClient::Error, this, &Login::sockClient_Error);
    connect(sockClient.get(), &clsClient::DataArrival, this, &Login::sockClient_DataArrival);
}

/// Closes the connection; nothing of it is heard any more.
void Login::ReleaseClient()
{
    tmrSilence->SetEnabled(false);
    if (!sockClient)
        return;
    disconnect(sockClient.get(), nullptr, this, nullptr);
    sockClient->Cancel();
}

void Login::sockClient_Connected()
{
    // From here on the user cannot abort, and must not begin a second login beside this one.
    stage = stgGreeting;
    controls.strLoginTag.clear();
    controls.bLoginEnabled = false;
    tmrSilence->SetEnabled(true);
    emit Changed();
}

/// The connection could not be made or was lost, or the server has fallen silent.
void Login::sockClient_Error()
{
    ReleaseClient();
    Restore(QCoreApplication::translate("server", "Ready...."));
    ShowText(QCoreApplication::translate("server", "Failed to connect to Velmar server at: ") +
                 controls.strServer + '\n' +
                 QCoreApplication::translate("server",
                                             "Or client has exceeded max number of allowed connections."),
             mbCritical);
}

void Login::sockClient_DataArrival(const ClientReply &reply)
{
    if (stage != stgGreeting && stage != stgAnswer)
        return;
    tmrSilence->SetEnabled(true);
    if (reply.lState == ClientReply::statPart)
        return;
    TakeReply(LoginReply::Classify(reply));
}

void Login::TakeReply(const LoginReply &reply)
{
    switch (reply.kind) {
    case LoginReply::rplUnexpected:
        ShowText(QCoreApplication::translate("server", "Unexpected data received from server!"),
                 mbExclamation);
        break;
    case LoginReply::rplRefused:
        TakeRefusal(reply.strCode);
        break;
    case LoginReply::rplGreeting:
        if (stage == stgGreeting)
            TakeGreeting(reply.strVersion);
        break;
    case LoginReply::rplAccepted:
        if (stage == stgAnswer)
            TakeAcceptance();
        break;
    case LoginReply::rplOther:
        break;
    }
}

void Login::TakeGreeting(const QString &version)
{
    if (!LoginReply::IsSpokenVersion(version)) {
        ReleaseClient();
        Restore(QCoreApplication::translate("server", "Ready..."));
        ShowText(
            QCoreApplication::translate("server", "The desired communication protocol is version ") +
                LoginReply::SpokenVersion() + '\n' +
                QCoreApplication::translate("server", "Please install the newest version of Velmar Client"),
            mbExclamation);
        return;
    }
    stage = stgAnswer;
    QString password = controls.strPwd; // comes back as the digest; the box keeps what it shows
    sockClient->LogIn(controls.strAccount, password, bPwdIsDigest);
}

void Login::TakeRefusal(const QString &code)
{
    ReleaseClient();
    Restore(QCoreApplication::translate("server", "Ready..."));
    const QString text = LoginReply::RefusalText(code);
    if (!text.isEmpty())
        ShowText(text, mbInformation);
    emit FocusRequested(controls.bFixed ? LoginField::Password : LoginField::Account);
}

void Login::TakeAcceptance()
{
    stage = stgFinished;
    tmrSilence->SetEnabled(false);
    // What follows may ask the user; a connection that closes meanwhile is the session's to make again.
    disconnect(sockClient.get(), nullptr, this, nullptr);
    if (!bFromMainWindow && !PrepareProfile()) {
        ReleaseClient();
        profile.Close();
        Restore(QCoreApplication::translate("server", "Ready..."));
        return;
    }
    HandOver();
}

/// Everything that the main window needs on disk and in the globals. On false the reason has been shown.
bool Login::PrepareProfile()
{
    controls.bLoginEnabled = controls.bExitEnabled = false;
    emit Changed();
    try {
        const QString folder = UserProfile::FindUserFolder(controls.strAccount);
        if (!profile.IsOpen() && !folder.isEmpty())
            profile.Open(folder);
        if (!profile.Save(Entry()) || !CheckDatabaseVersion(ports.message, ports.clock))
            return false;
    } catch (const RaisedError &error) {
        ShowText(QCoreApplication::translate("server", "Failed to save user profiles.") + '\n' +
                     error.Description(),
                 mbCritical);
        return false;
    }
    if (!WriteIniValue("General", "ServerIP", controls.strServer, Global().strIniFile) &&
        !profile.HasLostSettings())
        ShowText(QCoreApplication::translate("server", "Failed to save user profiles."), mbExclamation);
    return true;
}

void Login::HandOver()
{
    if (bFromMainWindow) // what the server has just accepted is what the session must reconnect with
        Global().strPwdDigest = Entry().Digest();
    bLoginOK = true;
    const bool isLoaded = owner.IsMainWindowLoaded(); // the owner may load it to take what follows
    if (!bFromMainWindow)
        owner.MarkOnline(true, bPwdIsDigest);
    owner.TakeClient(std::move(sockClient));
    if (!isLoaded)
        owner.ShowMainWindow();
    owner.CloseLogin();
}
