#include "compose/forms/frmSelReceiver.h"

#include "compose/ForwardFax.h"
#include "controls/BusyPointer.h"
#include "controls/Icons.h"
#include "controls/MarkedDelegate.h"
#include "controls/MarkedHeader.h"
#include "controls/RememberedColumns.h"
#include "controls/RememberedSize.h"
#include "controls/SelectedRows.h"
#include "core/Message.h"
#include "core/ModelRoles.h"
#include "ui_frmSelReceiver.h"

#include <QKeyEvent>
#include <QLocale>
#include <QMenu>
#include <QScopeGuard>
#include <QShortcut>

namespace {

/// At 96 dpi, by column.
constexpr int aColumnWidths[] = {0, 150, 120, 120, 100, 100, 150, 80};

bool IsEnter(const QKeyEvent &key)
{
    return (key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter) &&
           !(key.modifiers() & ~Qt::KeypadModifier);
}

} // namespace

frmSelReceiver::frmSelReceiver(Message &messageBox, QWidget *parent)
    : QDialog(parent)
    , message(messageBox)
    , ui(std::make_unique<Ui::frmSelReceiver>())
    , picker(messageBox)
{
    ui->setupUi(this);
    SetUpGrid();
    SetUpList();
    ConnectButtons();
    RememberSize(*this);
    RememberColumns(*ui->grdContact);
    message.RunGuarded("error in Form_Load", [this] { picker.Load(); });
    for (const PickerGroup &group : picker.Groups())
        ui->cmbGroup->addItem(group.ShownText());
    connect(ui->cmbGroup, &QComboBox::currentIndexChanged, this, &frmSelReceiver::ShowGroup);
    ShowGroup(ui->cmbGroup->currentIndex());
    ui->txtFind->setFocus();
}

frmSelReceiver::frmSelReceiver(Message &messageBox, const QList<SelectedReceiver> &receivers, QWidget *parent)
    : frmSelReceiver(messageBox, parent)
{
    ui->picForward->hide();
    picker.Selected().Replace(receivers);
    ShowButtons();
}

frmSelReceiver::frmSelReceiver(Message &messageBox, ForwardFax &forwarding, bool maySend, QWidget *parent)
    : frmSelReceiver(messageBox, parent)
{
    forward = &forwarding;
    setWindowTitle(tr("Forward fax"));
    ForwardFax::Input defaults;
    message.RunGuarded("error in Form_Load", [&] { defaults = forward->ReadDefaults(); });
    ui->txtSubject->setText(defaults.strSubject);
    ui->txtSubject->setCursorPosition(0);
    ui->cmbImportance->setCurrentIndex(defaults.lImportance);
    ui->chkSend->setEnabled(maySend);
    ui->chkSend->setChecked(maySend);
}

frmSelReceiver::~frmSelReceiver() = default;

const QList<SelectedReceiver> &frmSelReceiver::Receivers() const
{
    return picker.Selected().Receivers().All();
}

bool frmSelReceiver::IsSendWanted() const
{
    return ui->chkSend->isEnabled() && ui->chkSend->isChecked();
}

// Controls

void frmSelReceiver::SetUpGrid()
{
    auto *header = new MarkedHeader(ui->grdContact);
    ui->grdContact->setHeader(header);
    ui->grdContact->setModel(&picker.Contacts());
    ui->grdContact->setItemDelegate(new MarkedDelegate(ui->grdContact));
    ui->grdContact->setColumnHidden(ContactTable::colID, true);
    header->setSectionsClickable(true);
    header->setStretchLastSection(true);
    for (int column = ContactTable::colContact; column < ContactTable::colCount; ++column)
        header->resizeSection(column, qRound(aColumnWidths[column] * logicalDpiX() / 96.0));
    connect(header, &QHeaderView::sectionClicked, this, &frmSelReceiver::SortBy);
    connect(ui->grdContact, &QAbstractItemView::doubleClicked, this, &frmSelReceiver::AddSelected);
    connect(ui->grdContact, &QWidget::customContextMenuRequested, this, &frmSelReceiver::ShowMenu);
    connect(ui->grdContact->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &frmSelReceiver::ShowButtons);
    ui->grdContact->installEventFilter(this);
    connect(ui->txtFind, &QLineEdit::textChanged, this, &frmSelReceiver::Find);
    ui->txtFind->installEventFilter(this);
    auto *find = new QShortcut(QKeySequence::Find, this);
    connect(find, &QShortcut::activated, ui->txtFind, qOverload<>(&QWidget::setFocus));
    connect(find, &QShortcut::activated, ui->txtFind, &QLineEdit::selectAll);
}

void frmSelReceiver::SetUpList()
{
    ui->lstSelected->setModel(&picker.Selected());
    ui->lstSelected->setItemDelegate(new MarkedDelegate(ui->lstSelected));
    ui->lstSelected->SetHint(tr("Nobody yet.\nPress Enter on a contact to add it."));
    connect(ui->lstSelected, &QAbstractItemView::doubleClicked, this, &frmSelReceiver::RemoveSelected);
    connect(ui->lstSelected->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &frmSelReceiver::ShowButtons);
    ui->lstSelected->installEventFilter(this);
}

void frmSelReceiver::ConnectButtons()
{
    connect(ui->btnAddOne, &QPushButton::clicked, this, &frmSelReceiver::AddSelected);
    connect(ui->btnAddAll, &QPushButton::clicked, this,
            [this] { Add([this] { return picker.AddAllRows(); }); });
    connect(ui->btnRemoveOne, &QPushButton::clicked, this, &frmSelReceiver::RemoveSelected);
    connect(ui->btnRemoveAll, &QPushButton::clicked, this, &frmSelReceiver::RemoveAll);
    connect(ui->btnOK, &QPushButton::clicked, this, &frmSelReceiver::ClickOK);
    auto *done = new QShortcut(QKeySequence("Ctrl+Return"), this); // Enter alone adds
    connect(done, &QShortcut::activated, ui->btnOK, &QPushButton::click);
    connect(ui->btnCancel, &QPushButton::clicked, this, &frmSelReceiver::reject);
}

void frmSelReceiver::ShowButtons()
{
    const ReceiverPicker::Buttons enabled = picker.EnabledButtons(
        ui->grdContact->selectionModel()->hasSelection(), ui->lstSelected->selectionModel()->hasSelection());
    ui->btnAddOne->setEnabled(enabled.bAddOne);
    ui->btnAddAll->setEnabled(enabled.bAddAll);
    ui->btnRemoveOne->setEnabled(enabled.bRemoveOne);
    ui->btnRemoveAll->setEnabled(enabled.bRemoveAll);
}

// The grid

void frmSelReceiver::ShowGroup(int index)
{
    if (index < 0)
        return;
    message.RunGuarded("error in cmbGroup_Click", [&] {
        const BusyPointer busy;
        picker.ShowGroup(index);
    });
    const bool hasUsers = picker.Contacts().Table().HasUsers();
    for (int column = ContactTable::colPhone; column < ContactTable::colCount; ++column)
        ui->grdContact->setColumnHidden(column, hasUsers);
    ui->grdContact->SetHint(hasUsers ? tr("No users here.") : tr("No contacts here."));
    Find(ui->txtFind->text());
    ShowButtons();
}

void frmSelReceiver::SortBy(int column)
{
    const BusyPointer busy;
    picker.Contacts().SortBy(column);
    ui->grdContact->scrollTo(ui->grdContact->currentIndex());
}

/// The order of the columns for those who have no pointer to click on a header.
void frmSelReceiver::ShowMenu(const QPoint &place)
{
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(tr("&Add to the recipients"), this, &frmSelReceiver::AddSelected)
        ->setEnabled(ui->btnAddOne->isEnabled());
    QMenu *sort = menu->addMenu(tr("S&ort by"));
    for (int column = ContactTable::colContact; column < ContactTable::colCount; ++column) {
        if (ui->grdContact->isColumnHidden(column))
            continue;
        const auto icon = picker.Contacts().headerData(column, Qt::Horizontal, ImageKeyRole).toString();
        sort->addAction(Icons::GetForMenu(icon), picker.Contacts().Table().Caption(column), this,
                        [this, column] { SortBy(column); });
    }
    menu->popup(ui->grdContact->viewport()->mapToGlobal(place));
}

void frmSelReceiver::ShowCount()
{
    ui->labCount->setText(tr("Entries: %1").arg(QLocale().toString(picker.Contacts().rowCount())));
}

void frmSelReceiver::Find(const QString &text)
{
    ShowCount();
    if (text.isEmpty())
        return;
    const QModelIndex found = picker.Contacts().index(picker.Contacts().Table().Find(text), 1);
    if (found.isValid()) {
        ui->grdContact->selectionModel()->setCurrentIndex(found, QItemSelectionModel::ClearAndSelect |
                                                                     QItemSelectionModel::Rows);
    } else {
        ui->grdContact->clearSelection(); // Return shall not add who was found by fewer letters
        ui->labCount->setText(tr("Not found."));
    }
}

// Keyboard

bool frmSelReceiver::eventFilter(QObject *watched, QEvent *event)
{
    return (event->type() == QEvent::KeyPress && PressKey(watched, static_cast<QKeyEvent &>(*event))) ||
           QDialog::eventFilter(watched, event);
}

bool frmSelReceiver::PressKey(const QObject *widget, const QKeyEvent &key)
{
    if (widget == ui->lstSelected) {
        if (key.key() != Qt::Key_Delete)
            return false;
        RemoveSelected();
        return true;
    }
    if (IsEnter(key)) {
        AddSelected();
        ui->txtFind->selectAll(); // the next name takes its place
        return true;
    }
    return widget == ui->txtFind ? PressKeyInFind(key) : TypeIntoFind(key);
}

/// The grid follows the keys that move in it.
bool frmSelReceiver::PressKeyInFind(const QKeyEvent &key)
{
    switch (key.key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown: {
        QKeyEvent moved(QEvent::KeyPress, key.key(), key.modifiers());
        QCoreApplication::sendEvent(ui->grdContact, &moved);
        return true;
    }
    default:
        return false;
    }
}

/// What is typed in the grid is looked for. A blank selects.
bool frmSelReceiver::TypeIntoFind(const QKeyEvent &key)
{
    const bool isCommand = key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    if (isCommand || key.text().trimmed().isEmpty() || !key.text().front().isPrint())
        return false;
    ui->txtFind->setFocus();
    ui->txtFind->setText(key.text());
    return true;
}

// Recipients

void frmSelReceiver::Add(const std::function<int()> &add)
{
    const int known = add();
    if (known >= 0)
        ui->lstSelected->setCurrentIndex(picker.Selected().index(known, 0));
    else if (picker.Selected().rowCount() > 0)
        ui->lstSelected->scrollToBottom();
    ShowButtons();
}

void frmSelReceiver::AddSelected()
{
    Add([this] { return picker.AddRows(GetSelectedRows(*ui->grdContact->selectionModel())); });
}

void frmSelReceiver::RemoveSelected()
{
    const QList<int> places = GetSelectedRows(*ui->lstSelected->selectionModel());
    if (places.isEmpty())
        return;
    picker.Selected().Remove(places);
    const int next = qMin(places.first(), picker.Selected().rowCount() - 1);
    ui->lstSelected->setCurrentIndex(picker.Selected().index(next, 0));
    ShowButtons();
}

void frmSelReceiver::RemoveAll()
{
    picker.Selected().Replace({});
    ShowButtons();
}

void frmSelReceiver::ClickOK()
{
    if (forward) {
        setCursor(Qt::WaitCursor); // of this window, not of the box that may come up
        const auto restore = qScopeGuard([this] { unsetCursor(); });
        const ForwardFax::Input input{ui->txtSubject->text(), ui->cmbImportance->currentIndex(),
                                      ui->txtOtherReceiver->text()};
        if (!forward->ClickOK(Receivers(), input))
            return;
    }
    accept();
}
