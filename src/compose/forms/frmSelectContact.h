#pragma once

#include "compose/ReceiverCompletion.h"

#include <QDialog>

#include <memory>

class Message;

namespace Ui {
class frmSelectContact;
}

/// The window in which the user tells which of several contacts or users was meant.
class frmSelectContact final : public QDialog
{
    Q_OBJECT

public:
    frmSelectContact(const ContactChoice &choice, Message &message, QWidget *parent = nullptr);
    ~frmSelectContact() override;

    /// The chosen line; empty when the window was cancelled.
    QString Result() const { return strResult; }

private:
    void Fill(const ContactChoice &choice);
    void ClickOK();

    std::unique_ptr<Ui::frmSelectContact> ui;
    QStringList aLines;
    QString strResult;
};
