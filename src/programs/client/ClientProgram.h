#pragma once

#include "desktop/Forms.h"
#include "server/Login.h"

#include <QObject>
#include <QPointer>

#include <memory>

class MainStage;
class QtEventPump;
class frmUserLogin;
struct Ports;

/// The running program: the login window first, then the main window and what belongs to it. It ends when
/// the last of them has closed.
class ClientProgram final : public QObject, public LoginOwner, public Forms
{
    Q_OBJECT

public:
    /// Both outlive this object.
    ClientProgram(Ports &ports, QtEventPump &pump);
    ~ClientProgram() override;

    void ShowLogin();
    /// Ends the program as closing its window does.
    void Close();

    // LoginOwner
    bool IsMainWindowLoaded() const override;
    void MarkOnline(bool online, bool usedDigest) override;
    void TakeClient(std::shared_ptr<clsClient> client) override;
    void ShowMainWindow() override;
    void CloseLogin() override;

    // Forms
    int Count() const override;
    bool LoginFromMainWindow() override;
    void OpenComposer(const QString &faxFile) override;
    void EditDraft(const QString &faxID) override;

private:
    MainStage &LoadMainStage();

    Ports &ports;
    QtEventPump &pump;
    QPointer<frmUserLogin> loginWindow;
    std::unique_ptr<MainStage> mainStage;
};
