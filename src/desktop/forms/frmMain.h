#pragma once

#include "desktop/CommandStates.h"
#include "desktop/MainWindow.h"

#include <QMainWindow>
#include <QPointer>
#include <QString>

#include <functional>
#include <memory>

class AddressPane;
class CommandActions;
class DateBar;
class FolderPane;
class ListPane;
class Message;
class PaneLayout;
class PreviewPane;
class ShownMailbox;
class StatusPanels;

namespace Ui {
class frmMain;
}

/// The main window: menus, tool bar, status bar and the panes of the mailbox. The program gives it the
/// routines behind its commands; a command without one is shown and stays disabled.
class frmMain final : public QMainWindow, public MainWindow
{
    Q_OBJECT

public:
    /// What the enabled commands depend on outside the mailbox.
    struct SessionState
    {
        bool bIsSocketBusy = false;
        bool bOnline = false;
    };

    frmMain(ShownMailbox &mailbox, Message &message, QWidget *parent = nullptr);
    ~frmMain() override;

    // What the program connects

    /// The routine behind a menu item such as "mnuReceive"; its tool bar button runs it too. What it raises
    /// is shown in a box.
    void SetCommand(const QString &name, std::function<void()> run);
    void SetSessionState(std::function<SessionState()> provider) { sessionState = std::move(provider); }
    /// Runs once, after the window has first been shown.
    void SetFirstActivation(std::function<void()> run) { firstActivation = std::move(run); }
    /// Tells whether a tray icon can bring the window back: only then it may hide.
    void SetTrayState(std::function<bool()> provider) { hasTrayIcon = std::move(provider); }
    /// Runs as the window closes, after the layout was stored: the place to log off.
    void SetClosing(std::function<void()> run) { closing = std::move(run); }
    /// Asked before the window closes; false keeps it open.
    void SetMayClose(std::function<bool()> ask) { mayClose = std::move(ask); }

    /// Restores the panes and the window from the settings of the account, loads the folders and shows the
    /// window. Once, after a login.
    void Load();

    // MainWindow
    bool IsVisible() const override { return isVisible(); }
    bool IsActive() const override { return isActiveWindow(); }
    void SetEnabled(bool enabled) override;
    void Raise() override;
    void Unload() override;
    void SetCommMenu(bool enabled) override;
    void SetGridCommands() override;
    void SetServerPanel(const QString &text) override;
    void SetTotalPercent(int percent) override;
    void SetBusyPointer(bool busy) override;

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void PlacePanes();
    void SetUpCommands();
    void SetUpOwnCommands();
    void SetUpToolBar();
    void ConnectPanes();
    void GoToPane(int step);
    void MoveNextBorder();
    void SetUpFolderCommands();
    void SetFolderCommands();

    void RunOnSelection(const std::function<void()> &run);
    void RunGuarded(const QString &routine, const std::function<void()> &run);
    CommandStates::GridInput ReadGridInput() const;

    void LoadControlPostion();
    void StoreLayout();
    bool MayHideInTray() const;

    ShownMailbox &mailbox;
    Message &message;
    std::unique_ptr<Ui::frmMain> ui;
    FolderPane *tvFolder;
    AddressPane *tvAddressbook;
    DateBar *frmeHistory;
    ListPane *listPane;
    PreviewPane *picPreview;
    StatusPanels *panels;
    std::unique_ptr<CommandActions> commands;
    std::unique_ptr<PaneLayout> paneLayout;
    std::function<SessionState()> sessionState;
    std::function<void()> firstActivation;
    std::function<void()> closing;
    std::function<bool()> mayClose;
    std::function<bool()> hasTrayIcon;
    QPointer<QWidget> focusBefore; ///< what had the focus as the window was disabled
    bool bShownOnce = false;
    bool bUnloading = false; ///< the program ends: no hiding in the tray
    bool bClosing = false;
};
