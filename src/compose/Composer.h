#pragma once

#include "compose/DocumentConversion.h"
#include "compose/Draft.h"
#include "compose/SourceFiles.h"

#include <QCoreApplication>
#include <QString>

#include <functional>

class FileDialogs;
class FaxSender;
class Forms;
class Mailbox;
class MainWindow;
struct Ports;

/// What a composer works with. All outlive it.
struct ComposerParts
{
    Mailbox &mailbox;
    MainWindow &mainWindow;
    FaxSender &faxUpload;
    Forms &forms;
    ConversionTurn &turn;
    std::function<bool()> maySend;      ///< logged in, and not working offline
    std::function<bool()> isLinkAtRest; ///< connected, and neither sending nor receiving
};

/// What the opener of a composer gives; at most one of the four.
struct ComposerStart
{
    QString strReceiver;    ///< recipients to begin with
    QString strFaxID;       ///< of the draft to edit
    QString strOutsideFile; ///< a ready fax file
    QString strExtraFile;   ///< a document
};

/// The window of a composer, as the logic sees it.
class ComposerWindow
{
public:
    virtual ~ComposerWindow() = default;

    /// What the controls hold, the files aside.
    virtual DraftFields Fields() const = 0;
    /// Fills the controls, without counting as a change by the user.
    virtual void ShowFields(const DraftFields &fields) = 0;
    virtual void ShowReceivers(const QString &receivers) = 0;
    /// The list, its selection or what is enabled around it has changed.
    virtual void ShowFiles() = 0;
    virtual void FocusReceivers() = 0;
    virtual void Hide() = 0;
    /// Closes the window without a question.
    virtual void Unload() = 0;
    /// The options dialog, modal; false when it was cancelled. `fixedResolution` 1: standard, 2: fine.
    virtual bool AskOptions(QString &sendOption, int fixedResolution) = 0;
};

/// One composer: what its buttons do to the draft, the file list and the conversion.
class Composer final
{
    Q_DECLARE_TR_FUNCTIONS(Composer)

public:
    Composer(const Ports &systemPorts, const ComposerParts &composerParts, ComposerWindow &composerWindow);

    // The window's life

    void Form_Load(const ComposerStart &start);
    /// False when the window stays open.
    bool Form_QueryUnload();

    // Buttons

    void btnAddFile_Click();
    void btnDeleteFile_Click();
    void btnViewFile_Click();
    void btnUp_Click() { MoveFile(-1); }
    void btnDown_Click() { MoveFile(1); }
    void btnOption_Click();
    void btnPreview_Click();
    void btnSave_Click();
    void btnSend_Click();

    // What the user has changed

    void OnTextChanged() { bChanged = bChanged || !bLoading; }
    /// The recipients or the header profile: both are on the pages.
    void OnHeaderChanged();
    /// Files dropped or pasted; a full list takes none.
    void AddFiles(const QStringList &files);
    void MoveFiles(const QList<int> &entries, int target);
    void SelectFiles(const QList<int> &entries) { files.aSelected = entries; }
    void OnProfileSaved() { bNeedPrint = true; }

    const SourceFiles &Files() const { return files; }
    /// Pages of the fax as it was last converted; 0 when that no longer matches, or never was.
    int RenderedPages() const;
    DocumentConversion &Conversion() { return conversion; }
    const QString &FaxID() const { return draft.strFaxID; }
    bool IsEditing() const { return !draft.strFaxID.isEmpty(); }

private:
    void LoadDraft(DraftFields &fields);
    void StartNew(const ComposerStart &start, DraftFields &fields);
    void EnableMain();
    void AddChosen(const QStringList &chosen);
    void ChangeFiles(bool dropRendered);
    void MoveFile(int step);
    bool NeedsConversion() const;
    bool PrintFile();
    bool SaveFax(bool toQueue);
    bool HasContent() const;
    static bool MayBeReceivers(const QString &text);
    bool IsOnlyWindow() const;
    void SendNow();
    bool LosesReadyFiles() const;
    void ShowRenamed(const QStringList &saved);

    const Ports &ports;
    ComposerParts parts;
    ComposerWindow &window;
    Draft draft;
    SourceFiles files;
    DocumentConversion conversion;
    bool bChanged = false;   ///< something that the user can lose
    bool bNeedPrint = false; ///< the rendered fax no longer matches
    bool bLoading = false;
    bool bSending = false;
    bool bDisabledMain = false;
};
