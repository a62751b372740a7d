#pragma once

#include "mailbox/FolderChanges.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmAddFolder;
}

/// The window in which a folder gets its name. It closes when the folder has been made or renamed.
class frmAddFolder final : public QDialog
{
    Q_OBJECT

public:
    explicit frmAddFolder(FolderChanges &changes, QWidget *parent = nullptr);
    ~frmAddFolder() override;

    /// What is named; before the window is shown.
    void Init(const FolderChanges::Naming &naming);

private:
    void ClickOK();

    FolderChanges &changes;
    FolderChanges::Naming naming;
    std::unique_ptr<Ui::frmAddFolder> ui;
};
