#include "mailbox/FaxViewer.h"

#include "core/FaxImage.h"
#include "core/Globals.h"
#include "core/Message.h"
#include "core/Utilities.h"
#include "core/ports/Ports.h"
#include "mailbox/FaxFiles.h"
#include "mailbox/FaxRow.h"
#include "mailbox/ShownMailbox.h"
#include "mailbox/ShownText.h"

FaxViewer::FaxViewer(ShownMailbox &shownMailbox, const Ports &systemPorts,
                     std::function<void(const QString &)> composer)
    : mailbox(shownMailbox)
    , ports(systemPorts)
    , editDraft(std::move(composer))
{
}

void FaxViewer::mnuViewFax()
{
    const int row = mailbox.SelectedRow();
    if (row == 0)
        return;
    const QString id = mailbox.List().Row(row).ID();
    const bool isSent = mailbox.GetFaxTable() == 1;
    if (mailbox.SelectedNode()->Family == FolderFamily::Draft) {
        mailbox.Marks().MarkOpened(id, isSent);
        editDraft(id);
        return;
    }
    const QString path = FindFileOfFax(id, isSent);
    if (path.isEmpty())
        ports.message.ShowMessage(tr("This fax has no file to open."), mbExclamation);
    else if (Open(path, ports))
        mailbox.Marks().MarkOpened(id, isSent);
}

bool FaxViewer::Open(const QString &path, const Ports &ports)
{
    constexpr int showNormal = 1;
    const auto refuse = [&ports](const QString &text, const QString &file) {
        ports.message.ShowMessage(text + "\n" + ToListText(file), mbExclamation);
        return false;
    };
    const QString viewer = AppPath(ports.folders) + "VelmarBrowser.exe";
    if (!FileExists(path))
        return refuse(tr("The file of this fax is missing:"), path);
    if (!FileExists(viewer))
        return refuse(tr("The viewer program is not installed:"), viewer);
    const QString shown = FileForViewer(path);
    if (shown.isEmpty())
        return refuse(tr("The file of this fax could not be copied for the viewer:"), path);
    if (!ShellOpen(ports.shell, viewer, "Open", {"/Brenmot", shown}, {}, showNormal))
        return refuse(tr("The viewer program could not be started:"), viewer);
    return true;
}

QString FaxViewer::FileForViewer(const QString &path)
{
    if (!FaxImage::HasSizePrefix(path))
        return path;
    const QString copy = Global().strOutputBoxPath + "tmp~" + GetBareName(path);
    return FaxImage::CopyWithoutSizePrefix(path, copy) ? copy : QString();
}
