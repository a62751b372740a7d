#pragma once

#include "server/Login.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmUserLogin;
}

/// The login window.
class frmUserLogin : public QDialog
{
    Q_OBJECT

public:
    /// `fromMainWindow`: a login from the running main window, which `parent` then is.
    frmUserLogin(const Ports &ports, LoginOwner &owner, bool fromMainWindow = false,
                 QWidget *parent = nullptr);
    ~frmUserLogin() override;

    /// True after a good login.
    bool CheckUserLogin() const { return login.CheckUserLogin(); }

    /// What `LoginOwner::CloseLogin` calls. The window lives on until the event loop runs again.
    void CloseWindow();

public slots:
    /// Esc: ends a login that is under way, otherwise the window.
    void reject() override;

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void ConnectControls();
    void ShowHead();
    void ShowControls();
    void ShowAccounts(const LoginControls &controls);
    void Focus(LoginField field);

    std::unique_ptr<Ui::frmUserLogin> ui;
    Login login;
    bool bLoaded = false;
};
