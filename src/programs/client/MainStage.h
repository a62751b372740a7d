#pragma once

#include "core/OutsideFile.h"
#include "desktop/HelpCommands.h"
#include "desktop/forms/frmMain.h"
#include "mailbox/FaxViewer.h"
#include "mailbox/ShownMailbox.h"
#include "programs/client/Composers.h"
#include "programs/client/ServerParts.h"
#include "server/forms/frmProcess.h"

#include <functional>
#include <optional>

class Forms;
struct Ports;

/// Everything that lives from the end of the login to the end of the program: the mailbox, the main window,
/// the server link and the progress window, connected to each other.
class MainStage final
{
public:
    /// `ended` is called as the main window closes, when the user has been logged off.
    MainStage(Ports &ports, Forms &forms, std::function<void()> ended);

    frmMain &Window() { return window; }
    Session &ServerSession() { return server.session; }
    /// Loads the folders and shows the window.
    void Show();
    bool IsLoaded() const { return bLoaded; }
    /// A composer that stays open keeps the program running.
    void Close() { window.Unload(); }
    void Compose(const ComposerStart &start) { composers.Open(start); }

private:
    void ConnectCommands();
    void ConnectReading();
    void LogOff();
    void SetPassword();
    void ForwardFaxes();
    void GetHistory();
    void NameFolder(const std::optional<FolderChanges::Naming> &naming);

    Ports &ports;
    std::function<void()> ended;
    ShownMailbox mailbox;
    frmMain window;
    FaxViewer faxViewer;
    HelpCommands help;
    std::optional<OutsideFile> outsideFile; ///< unset where the system refuses it: the rest works without
    ServerParts server;
    frmProcess progressWindow;
    Composers composers;
    bool bLoaded = false;
};
