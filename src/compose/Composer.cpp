#include "compose/Composer.h"

#include "compose/ConversionOptions.h"
#include "compose/SafeNames.h"
#include "core/FaxImage.h"
#include "core/Globals.h"
#include "core/Message.h"
#include "core/RaisedError.h"
#include "core/Utilities.h"
#include "core/ports/FileDialogs.h"
#include "core/ports/Ports.h"
#include "core/ports/Shell.h"
#include "desktop/Forms.h"
#include "desktop/MainWindow.h"
#include "mailbox/FaxViewer.h"
#include "mailbox/Mailbox.h"
#include "server/FaxSender.h"

#include <QScopeGuard>

#include <algorithm>

namespace {

constexpr QLatin1StringView fileFilter(
    "All supported "
    "files|*.bmp;*.jpg;*.png;*.gif;*.doc;*.xls;*.pdf;*.rtf;*.htm;*.html;*.txt;*.tif;*.tiff;*.3G;"
    "*.PSD;*.PPT|Word Documents(*.doc)|*.doc|Excel Documents(*.xls)|*.xls|PPT files(*.ppt)|*.ppt|PDF files(*."
    "pdf)|*.pdf|RTF files(*.rtf)|*.rtf|HTML files(*.htm;*.html)|*.htm;*.html|Images "
    "files(*.bmp;*.jpg;*.png;*."
    "gif)|*.bmp;*.jpg;*.png;*.gif|Txt files(*.txt)|*.txt|TIF,TIFF files(*.tif;*.tiff)|*.tif;*.tiff|3G "
    "files(*."
    "3G)|*.3G|Photoshop PSD(*.psd)|*.psd|All files|*.*");

QString Without(QString text, const QString &characters)
{
    for (const QChar character : characters)
        text.remove(character);
    return text;
}

} // namespace

Composer::Composer(const Ports &systemPorts, const ComposerParts &composerParts,
                   ComposerWindow &composerWindow)
    : ports(systemPorts)
    , parts(composerParts)
    , window(composerWindow)
    , draft(systemPorts, composerParts.mailbox)
    , conversion(systemPorts, composerParts.turn)
{
    QObject::connect(&conversion, &DocumentConversion::Rendered, &conversion,
                     [this](const QString &path) { draft.strTifFile = path; });
    QObject::connect(&conversion, &DocumentConversion::ViewRequested, &conversion,
                     [this](const QString &path) { FaxViewer::Open(path, ports); });
}

bool Composer::IsOnlyWindow() const
{
    return parts.forms.Count() == 2; // the main window and this one
}

void Composer::Form_Load(const ComposerStart &start)
{
    if (IsOnlyWindow()) {
        parts.mainWindow.SetEnabled(false);
        bDisabledMain = true;
    }
    bLoading = true;
    const auto loaded = qScopeGuard([this] { bChanged = bNeedPrint = bLoading = false; });
    ports.message.RunGuarded("error in frmNewFax Load", [this] { conversion.Open(); });
    DraftFields fields;
    draft.strFaxID = start.strFaxID;
    if (draft.strFaxID.isEmpty())
        StartNew(start, fields);
    else
        LoadDraft(fields);
    window.ShowFields(fields);
    window.ShowFiles();
}

void Composer::StartNew(const ComposerStart &start, DraftFields &fields)
{
    if (!start.strReceiver.isEmpty())
        fields.strReceive = start.strReceiver + ';';
    if (!start.strOutsideFile.isEmpty())
        files.Add('*' + start.strOutsideFile);
    if (FileExists(start.strExtraFile))
        files.Add(start.strExtraFile);
}

void Composer::LoadDraft(DraftFields &fields)
{
    QStringList missing;
    ports.message.RunGuarded("error in frmNewFax Load", [&] { draft.Load(fields, missing); });
    files.aFiles = fields.aFiles;
    if (!files.aFiles.isEmpty())
        files.aSelected = {0};
    if (!missing.isEmpty())
        ports.message.ShowMessage(
            tr("The files below do not exist anymore, and will be remove from the list: ") + "\r\n" +
                missing.join("\r\n") + "\r\n",
            mbExclamation);
}

bool Composer::Form_QueryUnload()
{
    if (conversion.Shown().bVisible || conversion.IsRunning())
        return false;
    EnableMain(); // even when the user then stays: what disabled it was this window's opening
    if (!bChanged)
        return true;
    const long answer =
        ports.message.ShowMessage(tr("The fax has been changed, save it now?"), mbYesNoCancel + mbQuestion);
    if (answer != mbAnswerYes && answer != mbAnswerNo && answer != mbAnswerCancel)
        return false; // not asked: another box stands
    bSending = false;
    const bool isSaved = answer != mbAnswerYes || SaveFax(false);
    draft.RemoveLeftover();
    return answer != mbAnswerCancel && isSaved;
}

void Composer::EnableMain()
{
    if (IsOnlyWindow() || bDisabledMain)
        parts.mainWindow.SetEnabled(true);
    bDisabledMain = false;
}

void Composer::ChangeFiles(bool dropRendered)
{
    if (dropRendered)
        draft.strTifFile.clear();
    bChanged = bNeedPrint = true;
    window.ShowFiles();
}

void Composer::btnAddFile_Click()
{
    if (files.IsFull()) // the dialog opens all the same
        ports.message.ShowMessage(tr("Too many files in file list..."), mbExclamation);
    FileDialogSetup setup;
    setup.strFilter = fileFilter;
    setup.strFolder = files.FolderOfLast();
    AddChosen(ports.fileDialogs.ChooseFiles(setup));
}

void Composer::AddFiles(const QStringList &offered)
{
    if (files.IsFull())
        ports.message.ShowMessage(tr("Too many files in the file list."), mbExclamation);
    else
        AddChosen(offered);
}

void Composer::AddChosen(const QStringList &chosen)
{
    if (chosen.isEmpty())
        return;
    if (!files.AddChosen(chosen))
        ports.message.ShowMessage(tr("Too many files in the file list."), mbExclamation);
    ChangeFiles(true);
}

void Composer::btnDeleteFile_Click()
{
    files.RemoveSelected();
    ChangeFiles(true);
}

void Composer::btnViewFile_Click()
{
    constexpr int showNormal = 1;
    for (const QString &path : files.SelectedPaths()) {
        if (!ShellOpen(ports.shell, path, "Open", {}, {}, showNormal))
            ports.message.ShowMessage(tr("File does not exists or can not found proper program to open it."),
                                      mbExclamation);
    }
}

void Composer::MoveFile(int step)
{
    if (files.Move(step))
        ChangeFiles(false);
}

void Composer::MoveFiles(const QList<int> &entries, int target)
{
    files.MoveBefore(entries, target);
    ChangeFiles(false);
}

void Composer::OnHeaderChanged()
{
    if (!bLoading)
        bChanged = bNeedPrint = true;
}

void Composer::btnOption_Click()
{
    QString option = draft.strSendOption;
    if (!window.AskOptions(option, ReadyResolution(files.aFiles)))
        return;
    bNeedPrint = true;
    if (!option.isEmpty())
        draft.strSendOption = option;
}

bool Composer::NeedsConversion() const
{
    return bNeedPrint || !FileExists(draft.strTifFile); // it may have been deleted meanwhile
}

int Composer::RenderedPages() const
{
    return NeedsConversion() ? 0 : FaxImage::GetPageCount(draft.strTifFile);
}

bool Composer::PrintFile()
{
    SafeNames names;
    const DraftFields fields = window.Fields();
    const ConversionOptions options = ConversionOptions::Choose(
        draft.strSendOption, ReadyResolution(files.aFiles), FaxDefaults::FromSettings());
    return conversion.PrintFile({.aFiles = names.Replace(files.aFiles),
                                 .strUserFolder = Global().strUserFolder,
                                 .strHeader = fields.strHeader,
                                 .strCompanyName = Global().Company,
                                 .strRecipients = CompactPath(RemoveLastChar(fields.strReceive, ";"), 64),
                                 .lThreshold = options.lThreshold,
                                 .lFitting = options.lFitting,
                                 .lResolution = options.lResolution,
                                 .strApplicationData = Global().strAppDataPath},
                                bSending);
}

void Composer::btnPreview_Click()
{
    ports.message.RunGuarded("error in btnPreview_Click  ", [this] {
        bSending = false;
        if (!NeedsConversion())
            FaxViewer::Open(draft.strTifFile, ports);
        else if (PrintFile())
            bNeedPrint = false;
        window.ShowFiles(); // the number of pages
    });
}

void Composer::btnSave_Click()
{
    bSending = false;
    if (Without(window.Fields().strReceive, "\";").isEmpty()) {
        ports.message.ShowMessage(tr("You must specify a recipient at least."), mbInformation);
        return;
    }
    SaveFax(false);
    conversion.bPrinted = false;
}

bool Composer::HasContent() const
{
    return !files.aFiles.isEmpty() || FileExists(draft.strTifFile);
}

bool Composer::MayBeReceivers(const QString &text)
{
    const qsizetype opened = text.count('<');
    const qsizetype closed = text.count('>');
    return !Without(text, "\"").isEmpty() && !(closed == 1 && opened == 0) && !(closed == 0 && opened == 1);
}

void Composer::btnSend_Click()
{
    if (!HasContent()) {
        ports.message.ShowMessage(tr("There's no content to Fax, please add a faxing file first."),
                                  mbExclamation);
        return;
    }
    if (!MayBeReceivers(window.Fields().strReceive)) {
        ports.message.ShowMessage(tr("You must specify a recipient at least."), mbInformation);
        window.FocusReceivers();
        return;
    }
    bSending = true;
    const auto sent = qScopeGuard([this] { bSending = false; });
    if (NeedsConversion() && !PrintFile())
        return;
    if (!SaveFax(true)) {
        ports.message.ShowMessage(tr("Saving fax failed."), mbExclamation);
        return;
    }
    window.Hide();
    const auto end = qScopeGuard([this] {
        EnableMain();
        window.Unload();
    });
    SendNow();
}

void Composer::SendNow()
{
    if (window.Fields().bSend && parts.maySend())
        parts.faxUpload.GetSendFaxID(true, draft.strFaxID + ';', true, true); // tells of another transfer
    if (parts.isLinkAtRest())
        parts.mailbox.RefreshFolderUnreadCounts();
}

bool Composer::SaveFax(bool toQueue)
{
    bool isSaved = false;
    ports.message.RunGuarded("Error In SaveFax :", [&] {
        DraftFields fields = window.Fields();
        fields.aFiles = files.aFiles;
        const bool hasReceivers = draft.SplitReceivers(fields);
        window.ShowReceivers(fields.strReceive);
        if (!hasReceivers && bSending) {
            ports.message.ShowMessage(tr("You must specify some recipients for the fax."), mbInformation);
            bNeedPrint = false;
            window.FocusReceivers();
            return;
        }
        draft.Save(fields, toQueue, conversion.bPrinted);
        ShowRenamed(fields.aFiles);
        bChanged = false;
        isSaved = true;
    });
    if (isSaved && !toQueue && LosesReadyFiles())
        ports.message.ShowMessage(
            tr("A draft does not keep ready fax files. Please add them again before you "
               "send this one."),
            mbInformation);
    return isSaved;
}

/// A row lists documents only. The pages of a ready file are in the rendering, which takes the place of an
/// empty list when the draft is opened again.
bool Composer::LosesReadyFiles() const
{
    const auto ready = std::count_if(files.aFiles.begin(), files.aFiles.end(),
                                     [](const QString &entry) { return entry.startsWith('*'); });
    return ready > 0 && (ready < files.aFiles.size() || draft.strTifFile.isEmpty());
}

void Composer::ShowRenamed(const QStringList &saved)
{
    if (saved == files.aFiles)
        return;
    files.aFiles = saved;
    files.aSelected = {0};
    window.ShowFiles();
}
