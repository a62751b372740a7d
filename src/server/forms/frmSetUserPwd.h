#pragma once

#include "server/PasswordChange.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmSetUserPwd;
}

/// The window in which a user changes the password; it closes when the server has accepted.
class frmSetUserPwd : public QDialog
{
    Q_OBJECT

public:
    frmSetUserPwd(const Ports &ports, PasswordChange::Change change, PasswordChange::IsConnected isConnected,
                  QWidget *parent = nullptr);
    ~frmSetUserPwd() override;

public slots:
    /// Does nothing while the server is being asked.
    void reject() override;

private:
    void ClickOK();

    std::unique_ptr<Ui::frmSetUserPwd> ui;
    PasswordChange passwordChange;
};
