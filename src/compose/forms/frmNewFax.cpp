#include "compose/forms/frmNewFax.h"

#include "compose/HeaderProfiles.h"
#include "compose/ReceiverPicker.h"
#include "compose/Recipients.h"
#include "compose/forms/ConversionPanel.h"
#include "controls/Icons.h"
#include "controls/RememberedSize.h"
#include "core/Globals.h"
#include "core/Message.h"
#include "core/Utilities.h"
#include "core/ports/Clock.h"
#include "core/ports/Ports.h"
#include "ui_frmNewFax.h"

#include <QCloseEvent>
#include <QImage>
#include <QKeyEvent>
#include <QSaveFile>
#include <QScopedValueRollback>
#include <QShortcut>

#include <algorithm>

frmNewFax::frmNewFax(const Ports &systemPorts, const ComposerParts &parts, ComposerDialogs composerDialogs,
                     QWidget *parent)
    : QDialog(parent)
    , ports(systemPorts)
    , dialogs(std::move(composerDialogs))
    , ui(std::make_unique<Ui::frmNewFax>())
    , composer(systemPorts, parts, *this)
    , receiverKeys([this](const ContactChoice &choice) { return dialogs.askContact(*this, choice); })
    , maySend(parts.maySend)
{
    ui->setupUi(this);
    setWindowFlags(windowFlags() | Qt::WindowMinMaxButtonsHint);
    setWindowIcon(Icons::Get("tbNewFax"));
    picProcess = new ConversionPanel(composer.Conversion(), this);
    SetUpReceivers();
    ConnectButtons();
    ConnectChanges();
    ConnectFiles();
    RememberSize(*this);
}

frmNewFax::~frmNewFax() = default;

void frmNewFax::Open(const ComposerStart &start)
{
    show();
    RunGuarded("frmNewFax Load", [&] {
        FillHeaders();
        composer.Form_Load(start);
    });
    if (composer.IsEditing())
        setWindowTitle(tr("Edit fax"));
    ui->chkSend->setEnabled(maySend());
    ShowHeaderButtons();
    ShowCounts();
}

void frmNewFax::SetUpReceivers()
{
    constexpr int lines = 3;
    const int height = ui->txtReceive->fontMetrics().lineSpacing() * lines +
                       2 * ui->txtReceive->frameWidth() +
                       2 * static_cast<int>(ui->txtReceive->document()->documentMargin());
    ui->txtReceive->setFixedHeight(height);
    ui->txtReceive->installEventFilter(this);
}

/// A routine may ask or wait; the window stays until it has ended.
void frmNewFax::RunGuarded(const QString &routine, const std::function<void()> &run)
{
    const QScopedValueRollback<int> running(lRunning, lRunning + 1);
    ports.message.RunGuarded("error in " + routine, run);
}

void frmNewFax::ConnectButtons()
{
    const auto onClick = [this](QPushButton *button, void (Composer::*routine)()) {
        connect(button, &QPushButton::clicked, this, [this, button, routine] {
            RunGuarded(button->objectName() + "_Click", [this, routine] { (composer.*routine)(); });
        });
    };
    onClick(ui->btnAddFile, &Composer::btnAddFile_Click);
    onClick(ui->btnDeleteFile, &Composer::btnDeleteFile_Click);
    onClick(ui->btnViewFile, &Composer::btnViewFile_Click);
    onClick(ui->btnUp, &Composer::btnUp_Click);
    onClick(ui->btnDown, &Composer::btnDown_Click);
    onClick(ui->btnOption, &Composer::btnOption_Click);
    onClick(ui->btnPreview, &Composer::btnPreview_Click);
    onClick(ui->btnSave, &Composer::btnSave_Click);
    onClick(ui->btnSend, &Composer::btnSend_Click);
    ui->btnScanImage->setEnabled(false); // no scanner is asked yet
    connect(ui->btnClose, &QPushButton::clicked, this, &frmNewFax::close);
    connect(ui->btnSelReceive, &QPushButton::clicked, this,
            [this] { RunGuarded("btnSelReceive_Click", [this] { SelectReceivers(); }); });
    connect(ui->btnEditHeader, &QPushButton::clicked, this,
            [this] { RunGuarded("btnEditHeader_Click", [this] { EditHeader(); }); });
    connect(ui->btnDelete, &QPushButton::clicked, this,
            [this] { RunGuarded("btnDelete_Click", [this] { DeleteHeader(); }); });
    connect(new QShortcut(QKeySequence("Ctrl+Return"), this), &QShortcut::activated, ui->btnSend,
            &QPushButton::click);
    connect(new QShortcut(QKeySequence::Save, this), &QShortcut::activated, ui->btnSave, &QPushButton::click);
}

void frmNewFax::ConnectChanges()
{
    const auto onText = [this] { composer.OnTextChanged(); };
    connect(ui->txtSubject, &QLineEdit::textChanged, this, onText);
    connect(ui->txtMemo, &QPlainTextEdit::textChanged, this, onText);
    connect(ui->chkSend, &QCheckBox::toggled, this, onText);
    connect(ui->txtReceive, &QPlainTextEdit::textChanged, this, [this] {
        composer.OnHeaderChanged();
        ShowCounts();
    });
    connect(ui->cmbHeader, &QComboBox::currentIndexChanged, this, [this](int index) {
        if (!bFillingHeaders)
            RunGuarded("cmbHeader_Click", [&] { ChooseHeader(index); });
    });
    connect(picProcess, &ConversionPanel::VisibleChanged, this, &frmNewFax::LockWhileConverting);
}

void frmNewFax::LockWhileConverting(bool converting)
{
    if (converting)
        focusBefore = focusWidget();
    ui->picMain->setEnabled(!converting);
    ui->picSend->setEnabled(!converting);
    if (converting)
        return;
    ShowCounts();
    if (focusBefore)
        focusBefore->setFocus();
}

void frmNewFax::ConnectFiles()
{
    connect(ui->lstFile, &SourceFileView::itemSelectionChanged, this, [this] {
        composer.SelectFiles(ui->lstFile->SelectedRows());
        EnableFiles();
    });
    connect(ui->lstFile, &SourceFileView::itemActivated, ui->btnViewFile, &QPushButton::click);
    connect(ui->lstFile, &SourceFileView::FilesOffered, this, [this](const QStringList &paths) {
        RunGuarded("lstFile_DragDrop", [&] { composer.AddFiles(paths); });
    });
    connect(ui->lstFile, &SourceFileView::PictureOffered, this,
            [this](const QImage &picture) { RunGuarded("lstFile_Paste", [&] { AddPicture(picture); }); });
    // Queued: the rows are shown anew, and the view is still in the drag.
    connect(
        ui->lstFile, &SourceFileView::RowsMoved, this,
        [this](const QList<int> &rows, int target) { composer.MoveFiles(rows, target); },
        Qt::QueuedConnection);
    const auto onKey = [this](const QKeySequence &keys, QPushButton *button) {
        connect(new QShortcut(keys, ui->lstFile, nullptr, nullptr, Qt::WidgetShortcut), &QShortcut::activated,
                button, &QPushButton::click);
    };
    onKey(QKeySequence::Delete, ui->btnDeleteFile);
    onKey(QKeySequence("Alt+Up"), ui->btnUp);
    onKey(QKeySequence("Alt+Down"), ui->btnDown);
}

DraftFields frmNewFax::Fields() const
{
    DraftFields fields;
    fields.strReceive = ui->txtReceive->toPlainText();
    fields.strSubject = ui->txtSubject->text();
    fields.strMemo = ui->txtMemo->toPlainText();
    fields.strHeader = ui->cmbHeader->currentText();
    fields.bSend = ui->chkSend->isChecked();
    return fields;
}

void frmNewFax::ShowFields(const DraftFields &fields)
{
    ui->txtReceive->SetText(fields.strReceive);
    ui->txtSubject->setText(fields.strSubject);
    ui->txtMemo->SetText(fields.strMemo);
    ui->chkSend->setChecked(fields.bSend);
    SelectHeader(fields.strHeader);
    FocusReceivers();
}

void frmNewFax::ShowReceivers(const QString &receivers)
{
    if (ui->txtReceive->toPlainText() != receivers) // to set the same text would count as a change
        ui->txtReceive->ReplaceText(receivers);
}

void frmNewFax::ShowFiles()
{
    ui->lstFile->ShowEntries(composer.Files().aFiles, composer.Files().aSelected);
    EnableFiles();
    ShowCounts();
}

void frmNewFax::EnableFiles()
{
    const SourceFiles &files = composer.Files();
    ui->btnDeleteFile->setEnabled(!files.aFiles.isEmpty());
    ui->btnViewFile->setEnabled(!files.aFiles.isEmpty());
    ui->btnUp->setEnabled(files.CanMove(-1));
    ui->btnDown->setEnabled(files.CanMove(1));
}

void frmNewFax::ShowCounts()
{
    const qsizetype receivers = Recipients::SplitItems(ui->txtReceive->toPlainText()).size();
    const int rendered = composer.RenderedPages();
    const int pages = rendered > 0 ? rendered : ui->lstFile->Pages();
    QStringList parts{tr("Recipients: %1").arg(receivers),
                      tr("Files: %1").arg(composer.Files().aFiles.size())};
    if (pages > 0)
        parts.append(tr("Pages: %1").arg(pages));
    ui->labCounts->setText(parts.join(QStringLiteral("   ")));
}

void frmNewFax::FocusReceivers()
{
    ui->txtReceive->setFocus();
    ui->txtReceive->moveCursor(QTextCursor::End);
}

void frmNewFax::Unload()
{
    bUnloading = true;
    close();
}

bool frmNewFax::AskOptions(QString &sendOption, int fixedResolution)
{
    const std::optional<QString> answer = dialogs.askOptions(*this, sendOption, fixedResolution);
    if (answer)
        sendOption = *answer;
    return answer.has_value();
}

void frmNewFax::FillHeaders()
{
    const QScopedValueRollback filling(bFillingHeaders, true);
    ui->cmbHeader->clear();
    ui->cmbHeader->addItems(HeaderProfiles::Entries(Global().strHeaderPath));
    ui->cmbHeader->setCurrentIndex(0);
}

void frmNewFax::SelectHeader(const QString &text)
{
    const QScopedValueRollback filling(bFillingHeaders, true);
    const int index = ui->cmbHeader->findText(text, Qt::MatchFixedString);
    ui->cmbHeader->setCurrentIndex(std::max(index, 0));
}

void frmNewFax::ChooseHeader(int index)
{
    QStringList entries = HeaderEntries();
    if (HeaderProfiles::CommandsOf(entries, index).bMakesNew) {
        const QString name = dialogs.editHeader(*this, {}).strNewName;
        const QScopedValueRollback filling(bFillingHeaders, true);
        const qsizetype place = name.isEmpty() ? 0 : HeaderProfiles::Insert(entries, name);
        if (!name.isEmpty())
            ui->cmbHeader->insertItem(static_cast<int>(place), name);
        ui->cmbHeader->setCurrentIndex(static_cast<int>(place));
    }
    ShowHeaderButtons();
    composer.OnHeaderChanged();
}

QStringList frmNewFax::HeaderEntries() const
{
    QStringList entries;
    for (int i = 0; i < ui->cmbHeader->count(); ++i)
        entries.append(ui->cmbHeader->itemText(i));
    return entries;
}

void frmNewFax::ShowHeaderButtons()
{
    const auto commands = HeaderProfiles::CommandsOf(HeaderEntries(), ui->cmbHeader->currentIndex());
    ui->btnEditHeader->setEnabled(commands.bEdit);
    ui->btnDelete->setEnabled(commands.bDelete);
}

void frmNewFax::EditHeader()
{
    const QString path = HeaderProfiles::PathOf(Global().strHeaderPath, ui->cmbHeader->currentText());
    if (dialogs.editHeader(*this, path).bSaved)
        composer.OnProfileSaved();
}

void frmNewFax::DeleteHeader()
{
    if (!HeaderProfiles::Delete(Global().strHeaderPath, ui->cmbHeader->currentText(), ports.message))
        return;
    QStringList entries = HeaderEntries();
    const int gone = ui->cmbHeader->currentIndex();
    const qsizetype next = HeaderProfiles::Remove(entries, gone);
    {
        const QScopedValueRollback filling(bFillingHeaders, true);
        ui->cmbHeader->removeItem(gone);
    }
    ui->cmbHeader->setCurrentIndex(static_cast<int>(next));
    ChooseHeader(ui->cmbHeader->currentIndex());
}

void frmNewFax::SelectReceivers()
{
    const QString text = ui->txtReceive->toPlainText();
    const QString chosen =
        ReceiverPicker::SelectReceivers(text, receiverKeys, [this](const QList<SelectedReceiver> &receivers) {
            return dialogs.selectReceivers(*this, receivers);
        });
    if (chosen != text)
        ShowReceivers(chosen);
    FocusReceivers();
}

bool frmNewFax::TypeReceiver(QChar key)
{
    std::optional<QString> text;
    RunGuarded("txtReceive_KeyPress",
               [&] { text = receiverKeys.txtReceive_KeyPress(key, ui->txtReceive->toPlainText()); });
    if (text)
        ShowReceivers(*text);
    return text.has_value();
}

/// A pasted picture is kept with the user's files: a draft must find it again.
void frmNewFax::AddPicture(const QImage &picture)
{
    const QString folder = Global().strUserFolder + "Pasted/";
    const QString path =
        folder + ports.clock.Now().toString(QStringLiteral("yyyy-MM-dd HH-mm-ss-zzz")) + ".png";
    QSaveFile file(path); // a full disk leaves no half picture
    if (CreatePrivateFolder(folder) && file.open(QIODevice::WriteOnly) && picture.save(&file, "PNG") &&
        file.commit())
        composer.AddFiles({path});
    else
        ports.message.ShowMessage(tr("The picture cannot be kept:") + '\n' + path, mbExclamation);
}

bool frmNewFax::TryClose()
{
    if (bClosing) // it still asks: Qt would take a second close for an accepted one
        return false;
    activateWindow();
    close();
    return !isVisible();
}

void frmNewFax::closeEvent(QCloseEvent *event)
{
    const QScopedValueRollback<bool> isClosing(bClosing, true);
    if (!bUnloading && (lRunning > 0 || !composer.Form_QueryUnload()))
        event->ignore();
}

void frmNewFax::resizeEvent(QResizeEvent *event)
{
    QDialog::resizeEvent(event);
    picProcess->Place();
}

bool frmNewFax::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == ui->txtReceive && event->type() == QEvent::KeyPress) {
        const QString typed = static_cast<QKeyEvent *>(event)->text();
        if (typed.size() == 1 && TypeReceiver(typed[0]))
            return true;
    }
    return QDialog::eventFilter(watched, event);
}
