#include "server/forms/frmGetHistoryFax.h"

#include "controls/RememberedSize.h"
#include "core/ports/Clock.h"
#include "ui_frmGetHistoryFax.h"

frmGetHistoryFax::frmGetHistoryFax(const Clock &systemClock, QWidget *parent)
    : QDialog(parent)
    , clock(systemClock)
    , ui(std::make_unique<Ui::frmGetHistoryFax>())
{
    ui->setupUi(this);
    ui->cmbTime->addItems(HistoryRange::Captions());
    ConnectControls();
    ui->cmbTime->setCurrentIndex(HistoryRange::rngThisMonth);
    ShowStates();
    RememberSize(*this);
}

frmGetHistoryFax::~frmGetHistoryFax() = default;

void frmGetHistoryFax::ConnectControls()
{
    connect(ui->cmbTime, &QComboBox::currentIndexChanged, this, &frmGetHistoryFax::ChooseTime);
    // The days stay in their order: the one that is not being changed goes along, but not with half a day.
    for (DateBox *day : {ui->pictTimeFrom, ui->pictTimeTo})
        day->setKeyboardTracking(false);
    connect(ui->pictTimeFrom, &QDateEdit::dateChanged, this, [this](QDate day) {
        if (day > ui->pictTimeTo->date())
            ui->pictTimeTo->setDate(day);
    });
    connect(ui->pictTimeTo, &QDateEdit::dateChanged, this, [this](QDate day) {
        if (day < ui->pictTimeFrom->date())
            ui->pictTimeFrom->setDate(day);
    });
    connect(ui->optDescTime, &QRadioButton::toggled, this, &frmGetHistoryFax::ShowStates);
    for (QCheckBox *box : {ui->chkReceiveFax, ui->chkSendingFax, ui->chkSendedFax, ui->chkSendFailFax})
        connect(box, &QCheckBox::toggled, this, &frmGetHistoryFax::ShowStates);
    connect(ui->btnOK, &QPushButton::clicked, this, &frmGetHistoryFax::ClickOK);
    connect(ui->btnCancel, &QPushButton::clicked, this, &frmGetHistoryFax::reject);
}

void frmGetHistoryFax::ChooseTime(int choice)
{
    const HistoryRange range =
        HistoryRange::Of(static_cast<HistoryRange::Choice>(choice), clock.Now().date());
    ui->pictTimeFrom->setDate(range.from);
    ui->pictTimeTo->setDate(range.to);
}

void frmGetHistoryFax::ShowStates()
{
    ui->picDescTime->setEnabled(ui->optDescTime->isChecked());
    ui->btnOK->setEnabled(ReadControls().IsAny());
}

HistoryRequest frmGetHistoryFax::ReadControls() const
{
    HistoryRequest request;
    request.bAllTime = ui->optAllTime->isChecked();
    request.range = {ui->pictTimeFrom->date(), ui->pictTimeTo->date()};
    request.bSending = ui->chkSendingFax->isChecked();
    request.bSended = ui->chkSendedFax->isChecked();
    request.bSendFail = ui->chkSendFailFax->isChecked();
    request.bReceive = ui->chkReceiveFax->isChecked();
    return request;
}

void frmGetHistoryFax::ClickOK()
{
    for (DateBox *day : {ui->pictTimeFrom, ui->pictTimeTo})
        day->interpretText();
    strRequest = ReadControls().Text(clock.Now().date());
    accept();
}
