#include "compose/forms/frmSelectContact.h"

#include "controls/MarkedDelegate.h"
#include "controls/RememberedSize.h"
#include "core/Message.h"
#include "mailbox/ShownText.h"
#include "ui_frmSelectContact.h"

#include <QPushButton>
#include <QStringListModel>

frmSelectContact::frmSelectContact(const ContactChoice &choice, Message &message, QWidget *parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmSelectContact>())
{
    ui->setupUi(this);
    RememberSize(*this);
    if (choice.lKind == ContactChoice::chUser)
        setWindowTitle(tr("Choose a user"));
    ui->labContact->setText(tr("Several match \"%1\". Who is meant?").arg(ToListText(choice.strKeyword)));
    ui->lstContact->setItemDelegate(new MarkedDelegate(ui->lstContact));
    message.RunGuarded("error in Form_Load", [&] { Fill(choice); });
    connect(ui->lstContact, &QAbstractItemView::doubleClicked, this, &frmSelectContact::ClickOK);
    connect(ui->btnOK, &QPushButton::clicked, this, &frmSelectContact::ClickOK);
    connect(ui->btnCancel, &QPushButton::clicked, this, &frmSelectContact::reject);
}

frmSelectContact::~frmSelectContact() = default;

void frmSelectContact::Fill(const ContactChoice &choice)
{
    aLines = choice.ReadLines();
    QStringList shown;
    shown.reserve(aLines.size());
    for (const QString &line : aLines)
        shown.append(ToListText(line));
    ui->lstContact->setModel(new QStringListModel(shown, this));
    ui->lstContact->setCurrentIndex(ui->lstContact->model()->index(0, 0));
}

void frmSelectContact::ClickOK()
{
    strResult = aLines.value(ui->lstContact->currentIndex().row());
    accept();
}
