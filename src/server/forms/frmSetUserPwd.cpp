#include "server/forms/frmSetUserPwd.h"

#include "ui_frmSetUserPwd.h"

frmSetUserPwd::frmSetUserPwd(const Ports &ports, PasswordChange::Change change,
                             PasswordChange::IsConnected isConnected, QWidget *parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmSetUserPwd>())
    , passwordChange(ports, std::move(change), std::move(isConnected))
{
    ui->setupUi(this);
    connect(ui->btnOK, &QPushButton::clicked, this, &frmSetUserPwd::ClickOK);
    connect(ui->btnCancel, &QPushButton::clicked, this, &frmSetUserPwd::reject);
}

frmSetUserPwd::~frmSetUserPwd() = default;

void frmSetUserPwd::reject()
{
    if (!passwordChange.IsBusy())
        QDialog::reject();
}

void frmSetUserPwd::ClickOK()
{
    setEnabled(false);
    const PasswordChange::Result result =
        passwordChange.ClickOK(ui->txtOldPwd->text(), ui->txtNewPwd->text(), ui->txtPwdConfirm->text());
    setEnabled(true);
    switch (result) {
    case PasswordChange::resChanged:
        accept();
        break;
    case PasswordChange::resInvalidNew:
        ui->txtNewPwd->setFocus();
        ui->txtNewPwd->selectAll();
        break;
    case PasswordChange::resInvalidOld:
    case PasswordChange::resRefused:
        ui->txtOldPwd->setFocus();
        ui->txtOldPwd->selectAll();
        break;
    }
}
