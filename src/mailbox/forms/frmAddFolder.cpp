#include "mailbox/forms/frmAddFolder.h"

#include "ui_frmAddFolder.h"

frmAddFolder::frmAddFolder(FolderChanges &folderChanges, QWidget *parent)
    : QDialog(parent)
    , changes(folderChanges)
    , ui(std::make_unique<Ui::frmAddFolder>())
{
    ui->setupUi(this);
    connect(ui->btnOK, &QPushButton::clicked, this, &frmAddFolder::ClickOK);
    connect(ui->btnCancel, &QPushButton::clicked, this, &frmAddFolder::reject);
}

frmAddFolder::~frmAddFolder() = default;

void frmAddFolder::Init(const FolderChanges::Naming &newNaming)
{
    naming = newNaming;
    if (naming.bRename)
        setWindowTitle(tr("Rename folder"));
    ui->txtFolderName->setText(naming.strCurrentName);
    ui->txtFolderName->selectAll();
    ui->txtFolderName->setFocus();
}

void frmAddFolder::ClickOK()
{
    if (changes.SaveName(naming, ui->txtFolderName->text()))
        return accept();
    ui->txtFolderName->selectAll();
    ui->txtFolderName->setFocus();
}
