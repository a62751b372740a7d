#include "server/forms/frmUserLogin.h"

#include "ui_frmUserLogin.h"

#include <QCloseEvent>
#include <QIcon>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QTimer>

namespace {
constexpr int pictureSize = 64; ///< device-independent pixels
}

/// The pictures of a static library are dropped unless somebody asks for them.
static void InitPictures()
{
    Q_INIT_RESOURCE(login);
}

frmUserLogin::frmUserLogin(const Ports &ports, LoginOwner &owner, bool fromMainWindow, QWidget *parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmUserLogin>())
    , login(ports, owner, fromMainWindow)
{
    InitPictures();
    ui->setupUi(this);
    setWindowIcon(QIcon(":/login/picLogin.svg"));
    if (fromMainWindow)
        ui->btnExit->setText(tr("Cancel"));
    ui->btnBrowse->setVisible(!fromMainWindow); // the profile is open already
    ShowHead();
    ConnectControls();
    ShowControls();
}

frmUserLogin::~frmUserLogin() = default;

void frmUserLogin::ConnectControls()
{
    connect(&login, &Login::Changed, this, &frmUserLogin::ShowControls);
    connect(&login, &Login::FocusRequested, this, &frmUserLogin::Focus);
    connect(ui->txtServer, &QLineEdit::textEdited, &login, &Login::SetServer);
    connect(ui->cmbAccount, &QComboBox::editTextChanged, &login, &Login::SetAccount);
    connect(ui->txtPwd, &QLineEdit::textEdited, &login, &Login::SetPassword);
    connect(ui->chkRememberPwd, &QCheckBox::clicked, &login, &Login::SetRememberPwd);
    connect(ui->chkAutoLogin, &QCheckBox::clicked, &login, &Login::SetAutoLogin);
    connect(ui->btnLogin, &QPushButton::clicked, &login, &Login::ClickLogin);
    connect(ui->btnBrowse, &QPushButton::clicked, &login, &Login::ClickBrowse);
    connect(ui->btnExit, &QPushButton::clicked, &login, &Login::ClickExit);
}

void frmUserLogin::CloseWindow()
{
    done(CheckUserLogin() ? Accepted : Rejected);
}

void frmUserLogin::reject()
{
    const LoginControls &controls = login.Controls();
    if (!controls.strLoginTag.isEmpty())
        login.ClickLogin();
    else if (controls.bExitEnabled)
        login.ClickExit();
}

void frmUserLogin::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    if (bLoaded || event->spontaneous())
        return;
    bLoaded = true;
    if (login.Load())
        QTimer::singleShot(0, &login, &Login::Activate);
}

void frmUserLogin::closeEvent(QCloseEvent *event)
{
    login.ClickExit();
    event->setAccepted(!isVisible());
}

void frmUserLogin::changeEvent(QEvent *event)
{
    QDialog::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange)
        ShowHead();
}

/// The head stands on the colour of input fields, with the product's name in large letters.
void frmUserLogin::ShowHead()
{
    ui->picHead->setBackgroundRole(QPalette::Base);
    ui->picHead->setForegroundRole(QPalette::Text);
    ui->labTitle->setForegroundRole(QPalette::Text);
    ui->labSubtitle->setForegroundRole(QPalette::Text);
    ui->picLogin->setPixmap(windowIcon().pixmap(QSize(pictureSize, pictureSize), devicePixelRatioF()));
    QFont title = font();
    title.setPointSizeF(title.pointSizeF() * 1.6);
    title.setBold(true);
    ui->labTitle->setFont(title);
}

void frmUserLogin::ShowControls()
{
    const LoginControls &controls = login.Controls();
    const auto showText = [](QLineEdit *box, const QString &text) {
        if (box->text() != text) // setting the same text would move the cursor
            box->setText(text);
    };
    showText(ui->txtServer, controls.strServer);
    ShowAccounts(controls);
    showText(ui->txtPwd, controls.strPwd);
    ui->chkRememberPwd->setChecked(controls.bRememberPwd);
    ui->chkAutoLogin->setChecked(controls.bAutoLogin);
    const bool isFree = controls.bInputEnabled && !controls.bFixed;
    for (QWidget *widget : std::initializer_list<QWidget *>{ui->txtServer, ui->cmbAccount, ui->chkRememberPwd,
                                                            ui->chkAutoLogin})
        widget->setEnabled(isFree);
    ui->txtPwd->setEnabled(controls.bInputEnabled);
    ui->btnLogin->setEnabled(controls.bLoginEnabled);
    ui->btnLogin->setText(controls.strLoginCaption);
    ui->btnBrowse->setEnabled(controls.bBrowseEnabled);
    ui->btnExit->setEnabled(controls.bExitEnabled);
    ui->labLoginTip->setText(controls.strLoginTip);
}

void frmUserLogin::ShowAccounts(const LoginControls &controls)
{
    const QSignalBlocker blocker(ui->cmbAccount);
    QStringList shown;
    for (int item = 0; item < ui->cmbAccount->count(); ++item)
        shown.append(ui->cmbAccount->itemText(item));
    if (shown != controls.aAccounts) {
        ui->cmbAccount->clear();
        ui->cmbAccount->addItems(controls.aAccounts);
    }
    if (ui->cmbAccount->currentText() != controls.strAccount)
        ui->cmbAccount->setEditText(controls.strAccount);
}

/// As by the Tab key: what stands in the field is selected, and typing replaces it.
void frmUserLogin::Focus(LoginField field)
{
    switch (field) {
    case LoginField::Server:
        ui->txtServer->setFocus(Qt::TabFocusReason);
        break;
    case LoginField::Account:
        ui->cmbAccount->setFocus(Qt::TabFocusReason);
        break;
    case LoginField::Password:
        ui->txtPwd->setFocus(Qt::TabFocusReason);
        break;
    }
}
