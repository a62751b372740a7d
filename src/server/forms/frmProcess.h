#pragma once

#include <QDialog>
#include <QPointer>

#include <memory>

class Progress;
class ProgressModel;

namespace Ui {
class frmProcess;
}

/// The progress window of all send, receive and synchronisation runs: it shows what `Progress` holds. Not
/// modal. It is no child of the main window, since a run disables that one with all its children, but stays
/// in front of it.
class frmProcess : public QDialog
{
    Q_OBJECT

public:
    /// Both outlive this window.
    frmProcess(Progress &progress, QWidget *mainWindow);
    ~frmProcess() override;

public slots:
    /// Esc and the window's own closing act like the button.
    void reject() override;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void SetUpGrid();
    void ShowOver(bool owned);
    void CentreOver(const QWidget &other);
    void ShowControls();
    void ShowRows();
    void SelectRow(int row);

    std::unique_ptr<Ui::frmProcess> ui;
    Progress &progress;
    QPointer<QWidget> mainWindow;
    ProgressModel *model;
    bool bPlaced = false;
};
