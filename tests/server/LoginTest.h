#pragma once

#include "fakes/FakePorts.h"
#include "fixtures/Profile.h"
#include "server/Login.h"

#include <functional>
#include <memory>

class clsClient;

inline const QString digestOfSecret = "5EBE2294ECD0E0F08EAB7690D2A6EE69";

/// The program around the login, which writes down what is asked of it.
class FakeLoginOwner final : public LoginOwner
{
public:
    bool IsMainWindowLoaded() const override { return bMainLoaded; }
    void MarkOnline(bool online, bool usedDigest) override
    {
        aCalls.append(QString("online %1 digest %2").arg(int(online)).arg(int(usedDigest)));
        bMainLoaded = true; // something must take it
    }
    void TakeClient(std::shared_ptr<clsClient> newClient) override
    {
        client = std::move(newClient);
        aCalls.append("client");
    }
    void ShowMainWindow() override { aCalls.append("show"); }
    void CloseLogin() override
    {
        aCalls.append("close");
        if (onClose)
            onClose();
    }

    bool bMainLoaded = false;
    QStringList aCalls;
    std::shared_ptr<clsClient> client;
    std::function<void()> onClose;
};

/// A login window's logic on a profile of "anna" that no settings file knows yet; tests of it derive from
/// this.
class LoginTest
{
protected:
    void SetUp();
    void TearDown();

    FakePrompts &Prompts() { return fakes->prompts; }
    FakeSocket &Server() { return *fakes->sockets.Last(); }
    const LoginControls &Controls() const { return login->Controls(); }
    static void Set(const QString &section, const QString &key, const QString &value);
    /// Enters "anna" as the last user, with one row of settings when columns are given.
    static void EnterAnna(const QString &columns = {}, const QString &values = {});
    void MakeLogin(bool fromMainWindow = false);
    void Fill(const QString &account = "bert");
    /// Fills the window, clicks and lets the server accept the connection.
    void ConnectToServer();
    void Greet() { Server().FeedShort("Welcome\r\n1.6 beta\r\n"); }
    /// Greets and takes the login.
    void Accept()
    {
        Greet();
        Server().FeedShort("OK\r\n");
    }
    bool IsReady() const;

    std::unique_ptr<Profile> profile;
    std::unique_ptr<FakePorts> fakes;
    std::unique_ptr<FakeLoginOwner> owner;
    std::unique_ptr<Login> login;
};
