#include "programs/client/MainStage.h"

#include "compose/ForwardFax.h"
#include "compose/forms/frmSelReceiver.h"
#include "controls/PlaceOver.h"
#include "core/Globals.h"
#include "core/Message.h"
#include "core/ports/Instance.h"
#include "core/ports/Ports.h"
#include "core/ports/Timer.h"
#include "desktop/Forms.h"
#include "mailbox/forms/frmAddFolder.h"
#include "server/forms/frmGetHistoryFax.h"
#include "server/forms/frmSetUserPwd.h"

#include <QCoreApplication>
#include <QScopeGuard>

MainStage::MainStage(Ports &ports, Forms &forms, std::function<void()> ended)
    : ports(ports)
    , ended(std::move(ended))
    , mailbox(ports.message, ports.clock, ports.ids)
    , window(mailbox, ports.message)
    , faxViewer(mailbox, ports, [&forms](const QString &id) { forms.EditDraft(id); })
    , help(ports, QCoreApplication::applicationVersion())
    , server(ports, window, mailbox, forms,
             [this, &forms] { return outsideFile ? outsideFile->Take(forms.Count()) : QString(); })
    , progressWindow(server.progress, &window)
    , composers(ports, forms, mailbox, window, server)
{
    QObject::connect(&ports.instance, &Instance::RaiseRequested, &window, [this] { window.Raise(); });
    window.SetSessionState([this] {
        return frmMain::SessionState{server.session.bIsSocketBusy, server.session.bOnline};
    });
    window.SetFirstActivation([this] { server.runs.ActivateFirst(); });
    window.SetTrayState([this] { return server.notifier.HasTrayIcon(); });
    window.SetMayClose([this] { return composers.Close(); });
    window.SetClosing([this] { LogOff(); });
    ConnectCommands();
    ConnectReading();
}

/// A fax that has been on show for a while counts as read; a run of the server stops the timer.
void MainStage::ConnectReading()
{
    Timer &tmrMarkFax = server.session.MarkFaxTimer();
    QObject::connect(&mailbox, &ShownMailbox::FaxSelected, &window, [this, &tmrMarkFax] {
        tmrMarkFax.SetEnabled(false);
        tmrMarkFax.SetInterval(Global().MarkFax * 1000);
        tmrMarkFax.SetEnabled(server.session.AreTimersOn());
    });
    QObject::connect(&tmrMarkFax, &Timer::Tick, &window, [this, &tmrMarkFax] {
        tmrMarkFax.SetEnabled(false);
        mailbox.Marks().OnMarkFaxTick();
    });
    // Queued: the click or tick that has read the fax ends first, since sending the receipt takes its time.
    QObject::connect(&mailbox.Marks(), &ReadMarks::ReceiptsQueued, &server.receipts,
                     &ReturnReceipts::NotifyReceiptRead, Qt::QueuedConnection);
}

void MainStage::ConnectCommands()
{
    window.SetCommand("mnuReceive", [this] { server.faxDownload.mnuReceive(); });
    window.SetCommand("mnuSend", [this] { server.runs.mnuSend(); });
    window.SetCommand("mnuSendReceive", [this] { server.runs.mnuSendReceive(); });
    window.SetCommand("mnuSyncAddressBook", [this] { server.runs.mnuSyncAddressBook(); });
    window.SetCommand("mnuLoginServer", [this] { server.runs.mnuLoginServer(); });
    window.SetCommand("mnuLogoutServer", [this] { server.runs.mnuLogoutServer(); });
    window.SetCommand("mnuNewFax", [this] { Compose({}); });
    window.SetCommand("mnuInterResend", [this] { ForwardFaxes(); });
    window.SetCommand("mnuViewFax", [this] { faxViewer.mnuViewFax(); });
    window.SetCommand("mnuCancelSend",
                      [this] { server.sentFaxes.mnuCancelSend(mailbox.GetGridSelectedID().aSent); });
    window.SetCommand("mnuResendError",
                      [this] { server.sentFaxes.mnuResendError(mailbox.GetGridSelectedID().aSent); });
    window.SetCommand("mnuGetHistory", [this] { GetHistory(); });
    window.SetCommand("mnuSetPwd", [this] { SetPassword(); });
    window.SetCommand("mnuShowHelp", [this] { help.mnuShowHelp(); });
    window.SetCommand("mnuHelp_Website", [this] { help.mnuHelp_Website(); });
    window.SetCommand("mnuSupport", [this] { help.mnuSupport(); });
    window.SetCommand("mnuAddFolder", [this] { NameFolder(mailbox.Changes().mnuAddFolder()); });
    window.SetCommand("mnuEditFolder", [this] { NameFolder(mailbox.Changes().mnuEditFolder()); });
}

void MainStage::Show()
{
    bLoaded = true;
    ports.message.RunGuarded("error in frmMain Load",
                             [this] { outsideFile.emplace(ports.blocks, ports.instance); });
    window.Load();
}

void MainStage::LogOff()
{
    const auto end = qScopeGuard([this] { ended(); });
    progressWindow.hide();
    server.runs.LogOffAtClose();
}

void MainStage::SetPassword()
{
    frmSetUserPwd form(
        ports,
        [this](const QString &oldPassword, const QString &newPassword) {
            return server.runs.ChangePassword(oldPassword, newPassword);
        },
        [this] { return server.session.IsConnected(); });
    PlaceOver(form, window);
    form.exec();
}

void MainStage::GetHistory()
{
    frmGetHistoryFax form(ports.clock);
    PlaceOver(form, window);
    form.exec();
    server.faxHistory.mnuGetHistory(form.Request());
}

void MainStage::NameFolder(const std::optional<FolderChanges::Naming> &naming)
{
    if (!naming)
        return;
    frmAddFolder form(mailbox.Changes());
    form.Init(*naming);
    PlaceOver(form, window);
    form.exec();
}

void MainStage::ForwardFaxes()
{
    ForwardFax forward(ports, {window, mailbox, server.faxUpload});
    if (!forward.Begin(mailbox.SelectedFaxes(), mailbox.GetFaxTable() == 1))
        return;
    frmSelReceiver form(ports.message, forward, server.session.bOnline);
    PlaceOver(form, window);
    if (form.exec() == QDialog::Accepted && form.IsSendWanted())
        forward.Send();
}
