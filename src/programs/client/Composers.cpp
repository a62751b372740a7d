#include "programs/client/Composers.h"

#include "compose/forms/frmHeader.h"
#include "compose/forms/frmSelReceiver.h"
#include "compose/forms/frmSelectContact.h"
#include "compose/forms/frmSendOption.h"
#include "controls/PlaceOver.h"
#include "core/ports/Ports.h"
#include "desktop/forms/frmMain.h"
#include "programs/client/ServerParts.h"

#include <algorithm>

namespace {

bool Run(QDialog &form, const QWidget &owner)
{
    PlaceOver(form, owner);
    return form.exec() == QDialog::Accepted;
}

} // namespace

Composers::Composers(const Ports &systemPorts, Forms &forms, Mailbox &mailbox, frmMain &mainWindow,
                     ServerParts &serverParts)
    : ports(systemPorts)
    , window(mainWindow)
    , parts{
          mailbox,
          mainWindow,
          serverParts.faxUpload,
          forms,
          turn,
          [&serverParts] { return serverParts.session.bOnline; },
          [&serverParts] { return serverParts.session.IsConnected() && !serverParts.session.bIsSocketBusy; }}
{
}

Composers::~Composers()
{
    for (const QPointer<frmNewFax> &form : open)
        delete form;
}

void Composers::Open(const ComposerStart &start)
{
    open.removeAll(nullptr);
    frmNewFax *form = FindEditor(start.strFaxID);
    if (!form) {
        form = new frmNewFax(ports, parts, Dialogs());
        form->setAttribute(Qt::WA_DeleteOnClose);
        open.append(form);
        PlaceOver(*form, window);
        form->Open(start);
    }
    form->raise();
    form->activateWindow();
}

bool Composers::Close()
{
    const QList<QPointer<frmNewFax>> forms = open;
    return std::all_of(forms.begin(), forms.end(), [](const QPointer<frmNewFax> &form) {
        return !form || !form->isVisible() || form->TryClose();
    });
}

frmNewFax *Composers::FindEditor(const QString &faxID) const
{
    const auto found = std::find_if(open.begin(), open.end(), [&faxID](const QPointer<frmNewFax> &form) {
        return form && form->isVisible() && !faxID.isEmpty() && form->FaxID() == faxID;
    });
    return found == open.end() ? nullptr : found->data();
}

ComposerDialogs Composers::Dialogs() const
{
    ComposerDialogs dialogs;
    dialogs.askOptions = [this](QWidget &owner, const QString &option,
                                int fixedResolution) -> std::optional<QString> {
        frmSendOption form(ports);
        form.Init(option, fixedResolution);
        Run(form, owner);
        return form.IsChanged() ? std::optional(form.SendOption()) : std::nullopt;
    };
    dialogs.askContact = [this](QWidget &owner, const ContactChoice &choice) {
        frmSelectContact form(choice, ports.message);
        return Run(form, owner) ? form.Result() : QString();
    };
    dialogs.selectReceivers = [this](QWidget &owner, const QList<SelectedReceiver> &receivers) {
        frmSelReceiver form(ports.message, receivers);
        return Run(form, owner) ? std::optional(form.Receivers()) : std::nullopt;
    };
    dialogs.editHeader = [this](QWidget &owner, const QString &path) {
        frmHeader form(ports);
        form.Init(path);
        Run(form, owner);
        return ComposerDialogs::HeaderEdit{form.IsSaved(), form.NewName()};
    };
    return dialogs;
}
