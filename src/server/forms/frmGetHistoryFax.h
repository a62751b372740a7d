#pragma once

#include "server/HistoryRange.h"

#include <QDialog>

#include <memory>

class Clock;

namespace Ui {
class frmGetHistoryFax;
}

/// The window in which the user chooses the faxes to be fetched from the server again.
class frmGetHistoryFax final : public QDialog
{
    Q_OBJECT

public:
    explicit frmGetHistoryFax(const Clock &clock, QWidget *parent = nullptr);
    ~frmGetHistoryFax() override;

    /// What to ask the server for; empty until the user has pressed OK.
    const QString &Request() const { return strRequest; }

private:
    void ConnectControls();
    void ChooseTime(int choice);
    void ShowStates();
    HistoryRequest ReadControls() const;
    void ClickOK();

    const Clock &clock;
    std::unique_ptr<Ui::frmGetHistoryFax> ui;
    QString strRequest;
};
