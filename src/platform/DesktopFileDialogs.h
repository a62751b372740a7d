#pragma once

#include "core/ports/FileDialogs.h"

/// The desktop's file dialogs, over the active window.
class DesktopFileDialogs final : public FileDialogs
{
public:
    QString ChooseFile(const FileDialogSetup &setup) override;
    QStringList ChooseFiles(const FileDialogSetup &setup) override;
    QString ChooseTarget(const FileDialogSetup &setup) override;
};
