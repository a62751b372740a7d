#pragma once

#include "compose/SendOptionChoices.h"

#include <QDialog>

#include <array>
#include <memory>

class QRadioButton;
struct Ports;

namespace Ui {
class frmSendOption;
}

/// The window in which one fax gets its send options.
class frmSendOption final : public QDialog
{
    Q_OBJECT

public:
    explicit frmSendOption(const Ports &ports, QWidget *parent = nullptr);
    ~frmSendOption() override;

    /// What the window starts with; before it is shown. An empty `strSendOption` is a fax without options.
    /// `fixedResolution`: see `ReadyResolution`; above 0 the resolution cannot be chosen.
    void Init(const QString &strSendOption, int fixedResolution);

    /// The options as the user has left them; those of `Init` when the window was cancelled.
    const QString &SendOption() const { return strSendOption; }
    /// True once the user has pressed OK.
    bool IsChanged() const { return bChanged; }

private:
    void ConnectControls();
    void ShowChoices();
    void ShowStates();
    void ReadControls();
    void ChooseResend();
    void SetDeepness(int value);
    void SetServerDeepness(bool server);
    void ClickOK();

    const Ports &ports;
    const FaxDefaults defaults;
    std::unique_ptr<Ui::frmSendOption> ui;
    std::array<QRadioButton *, SendOptionChoices::Importances> optImportance;
    std::array<QRadioButton *, SendOptionChoices::Pixels> optPixel;
    std::array<QRadioButton *, SendOptionChoices::ImagePrints> optImagePrint;
    SendOptionChoices choices;
    QString strSendOption;
    bool bChanged = false;
};
