#include "compose/forms/frmSendOption.h"

#include "controls/RememberedSize.h"
#include "core/Message.h"
#include "core/ports/Clock.h"
#include "core/ports/Ports.h"
#include "ui_frmSendOption.h"

#include <QLineEdit>
#include <QSignalBlocker>

#include <algorithm>

namespace {

template <std::size_t Count>
int ChosenOf(const std::array<QRadioButton *, Count> &buttons)
{
    const auto chosen = std::find_if(buttons.begin(), buttons.end(),
                                     [](const QRadioButton *button) { return button->isChecked(); });
    return static_cast<int>(chosen - buttons.begin());
}

} // namespace

frmSendOption::frmSendOption(const Ports &servicePorts, QWidget *parent)
    : QDialog(parent)
    , ports(servicePorts)
    , defaults(FaxDefaults::FromSettings())
    , ui(std::make_unique<Ui::frmSendOption>())
{
    ui->setupUi(this);
    optImportance = {ui->optImportance_0, ui->optImportance_1, ui->optImportance_2};
    optPixel = {ui->optPixel_0, ui->optPixel_1, ui->optPixel_2};
    optImagePrint = {ui->optImagePrint_0, ui->optImagePrint_1, ui->optImagePrint_2, ui->optImagePrint_3,
                     ui->optImagePrint_4};
    ui->cmbSendTime->addItems(SendOptionChoices::QuarterHours());
    ConnectControls();
    Init({}, 0);
    RememberSize(*this);
}

frmSendOption::~frmSendOption() = default;

void frmSendOption::ConnectControls()
{
    connect(ui->optSendTime, &QRadioButton::toggled, this, [this](bool later) {
        choices.bSendTime = later;
        ShowStates();
    });
    for (QRadioButton *button : {ui->optServer, ui->optReSend, ui->optNoReSend})
        connect(button, &QRadioButton::toggled, this, &frmSendOption::ChooseResend);
    connect(ui->Slider1, &QSlider::valueChanged, this, &frmSendOption::SetDeepness);
    connect(ui->chkServerDeepness, &QCheckBox::toggled, this, &frmSendOption::SetServerDeepness);
    connect(ui->btnOK, &QPushButton::clicked, this, &frmSendOption::ClickOK);
    connect(ui->btnCancel, &QPushButton::clicked, this, &frmSendOption::reject);
}

void frmSendOption::Init(const QString &newSendOption, int fixedResolution)
{
    strSendOption = newSendOption;
    bChanged = false;
    choices = SendOptionChoices::Load(strSendOption, fixedResolution, defaults, ports.clock.Now());
    ShowChoices();
}

void frmSendOption::ShowChoices()
{
    const SendOptionChoices loaded = choices; // the controls report each change on the way
    (loaded.bSendTime ? ui->optSendTime : ui->optImmed)->setChecked(true);
    ui->dtpSendTime->setDate(loaded.date);
    ui->cmbSendTime->setCurrentText(loaded.strTime);
    optImportance[loaded.lImportance]->setChecked(true);
    const std::array resend{ui->optServer, ui->optReSend, ui->optNoReSend};
    resend[loaded.resend]->setChecked(true);
    ui->udDelay->setValue(loaded.lDelay);
    ui->udTryTime->setValue(loaded.lTryTime);
    ui->optPixel_0->setText(loaded.strServerPixel);
    optPixel[loaded.lPixel]->setChecked(true);
    for (QRadioButton *button : optPixel)
        button->setEnabled(!loaded.bPixelFixed);
    ui->chkServerDeepness->setChecked(loaded.bServerDeepness);
    optImagePrint[loaded.lImagePrint]->setChecked(true);
    choices = loaded;
    ShowStates();
}

void frmSendOption::ShowStates()
{
    ui->picSendTime->setEnabled(choices.bSendTime);
    ui->cmbSendTime->setEnabled(choices.bSendTime);
    for (QWidget *box : std::initializer_list<QWidget *>{ui->udDelay, ui->udTryTime})
        box->setEnabled(choices.resend == SendOptionChoices::rsOwn);
    ui->labServer->setText(SendOptionChoices::ServerText(choices.resend, defaults));
    ui->Picture6->setEnabled(!choices.bServerDeepness);
    const QSignalBlocker blocker(ui->Slider1);
    ui->Slider1->setValue(choices.lDeepness);
    ui->labValue->setText(tr("Current value:%1").arg(choices.lDeepness));
}

void frmSendOption::ChooseResend()
{
    choices.resend = ui->optServer->isChecked()   ? SendOptionChoices::rsServer
                     : ui->optReSend->isChecked() ? SendOptionChoices::rsOwn
                                                  : SendOptionChoices::rsNever;
    ShowStates();
}

void frmSendOption::SetDeepness(int value)
{
    choices.SetDeepness(value);
    ShowStates();
}

void frmSendOption::SetServerDeepness(bool server)
{
    choices.SetServerDeepness(server, defaults);
    ShowStates();
}

void frmSendOption::ReadControls()
{
    choices.date = ui->dtpSendTime->date();
    choices.strTime = ui->cmbSendTime->currentText();
    choices.lImportance = ChosenOf(optImportance);
    choices.lDelay = ui->udDelay->value();
    choices.lPixel = ChosenOf(optPixel);
    choices.lImagePrint = ChosenOf(optImagePrint);
}

void frmSendOption::ClickOK()
{
    ReadControls();
    const std::optional<QString> stored = choices.Store(defaults, ports.clock.Now());
    if (!stored) {
        ports.message.ShowMessage(tr("Invalid sending time."), mbExclamation);
        ui->cmbSendTime->setFocus();
        ui->cmbSendTime->lineEdit()->selectAll();
        return;
    }
    strSendOption = *stored;
    bChanged = true;
    accept();
}
